// The MCP-tool classifier: verbs, providers and details of other servers' tool calls.
#include <gtest/gtest.h>

#include "protocol/ActionHoldClassifier.h"
#include "support/HeldActionText.h"

namespace orvo {
namespace {

TEST(MCPToolClassifierTest, DecidesByTheWordsOfTheToolName) {
    constexpr std::string_view kSlack = "messages|Sending a Slack message|Send a Slack message";
    constexpr std::string_view kEmail = "messages|Sending an email|Send an email";
    constexpr std::string_view kInvite =
        "messages|Sending a calendar invite|Send a calendar invite";
    constexpr std::string_view kLinear =
        "services|Changing something in Linear|Change something in Linear";
    const struct {
        std::string_view tool;
        std::string_view held;
    } cases[] = {
        {"mcp__slack__send_message", kSlack},
        {"mcp__acme__slack_post", kSlack},
        {"mcp__claude_ai_Gmail__send_email", kEmail},
        {"mcp__google__gmail_reply", kEmail},
        {"mcp__linear__post_comment",
         "messages|Sending something in Linear|Send something in Linear"},
        {"mcp__google__updateCalendarEvent", kInvite},
        {"mcp__google__calendar_events", ""},
        {"mcp__notion__trash_page",
         "deleting|Deleting something in Notion|Delete something in Notion"},
        {"mcp__slack__remove_then_send",
         "deleting|Deleting something in Slack|Delete something in Slack"},
        {"mcp__notion__undelete_page", ""},
        {"mcp__vercel__deploy_project", "publishing|Deploying to Vercel|Deploy to Vercel"},
        {"mcp__vercel__deployment_status", ""},
        {"mcp__sentry__resolve_issue",
         "services|Changing something in Sentry|Change something in Sentry"},
        {"mcp__sentry__resolveIssueIds", ""},
        {"mcp__linear__createIssue", kLinear},
        {"mcp__linear__SendHTTPRequest",
         "messages|Sending something in Linear|Send something in Linear"},
        {"mcp__a__b__delete_c", "deleting|Deleting something in A|Delete something in A"},
        // Reading verbs win only at the start and as whole words; "read" and "draft" anywhere.
        {"mcp__linear__list_issues_and_delete", ""},
        {"mcp__linear__getIssues", ""},
        {"mcp__linear__delete_list",
         "deleting|Deleting something in Linear|Delete something in Linear"},
        {"mcp__shop__checkout_create",
         "services|Changing something in Shop|Change something in Shop"},
        {"mcp__notion__mark_as_read", ""},
        {"mcp__x__draft_email_send", ""},
        {"mcp__Orvo-Agent__delete_everything", ""},
        {"mcp__slack", ""},
        {"mcp__", ""},
        {"mcp__acme__issue_status", ""},
        // Providers are named their own way, past the prefixes agents put on server names.
        {"mcp__launchdarkly__delete_flag",
         "deleting|Deleting something in LaunchDarkly|Delete something in LaunchDarkly"},
        {"mcp__plugin_ld_github__delete_flag",
         "deleting|Deleting something in GitHub|Delete something in GitHub"},
        {"mcp__claude_ai_LaunchDarkly__delete_flag",
         "deleting|Deleting something in LaunchDarkly|Delete something in LaunchDarkly"},
        {"mcp__plugin_tools_myServer__delete_flag",
         "deleting|Deleting something in MyServer|Delete something in MyServer"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        const std::optional<ActionHoldMatch> match =
            ActionHoldClassifier::classifyMCPTool(c.tool, json::object());
        EXPECT_EQ(match ? heldActionText({*match}) : "", c.held);
    }
}

TEST(MCPToolClassifierTest, DetailIsTheToolAndItsFirstTextArgument) {
    const struct {
        json input;
        std::string detail;
    } cases[] = {
        {json::object(), "create_issue"},
        {{{"query", "q"}, {"title", " Fix it \n"}, {"text", "  "}, {"message", 5}},
         "create_issue: Fix it"},
        {{{"name", "n"}, {"summary", "s"}}, "create_issue: s"},
        {{{"text", std::string(130, 'x')}}, "create_issue: " + std::string(120, 'x')},
        {json::array({"text"}), "create_issue"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input.dump());
        std::optional<ActionHoldMatch> match =
            ActionHoldClassifier::classifyMCPTool("mcp__linear__createIssue", c.input);
        ASSERT_TRUE(match);
        EXPECT_EQ(match->detail, c.detail);
    }
}

}  // namespace
}  // namespace orvo
