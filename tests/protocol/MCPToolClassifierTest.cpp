// The MCP-tool classifier: verbs, providers and details of other servers' tool calls.
#include <regex>

#include <gtest/gtest.h>

#include "protocol/ActionHoldClassifier.h"
#include "support/HeldActionText.h"

namespace orvo {
namespace {

constexpr std::string_view kDeleteIn = "deleting|Deleting something in %|Delete something in %";
constexpr std::string_view kChangeIn = "services|Changing something in %|Change something in %";
constexpr std::string_view kSendIn = "messages|Sending something in %|Send something in %";

// The held text with each "%" replaced by the provider's name.
std::string in(std::string_view held, std::string_view provider) {
    return std::regex_replace(std::string(held), std::regex("%"), std::string(provider));
}

TEST(MCPToolClassifierTest, DecidesByTheWordsOfTheToolName) {
    constexpr std::string_view kSlack = "messages|Sending a Slack message|Send a Slack message";
    const struct {
        std::string_view tool;
        std::string held;
    } cases[] = {
        {"mcp__slack__send_message", std::string(kSlack)},
        {"mcp__acme__slack_post", std::string(kSlack)},
        {"mcp__claude_ai_Gmail__send_email", "messages|Sending an email|Send an email"},
        {"mcp__google__updateCalendarEvent",
         "messages|Sending a calendar invite|Send a calendar invite"},
        {"mcp__google__calendar_events", ""},
        {"mcp__notion__trash_page", in(kDeleteIn, "Notion")},
        {"mcp__slack__remove_then_send", in(kDeleteIn, "Slack")},
        {"mcp__notion__undelete_page", ""},
        {"mcp__vercel__deploy_project", "publishing|Deploying to Vercel|Deploy to Vercel"},
        {"mcp__vercel__deployment_status", ""},
        {"mcp__sentry__resolve_issue", in(kChangeIn, "Sentry")},
        {"mcp__sentry__resolveIssueIds", ""},
        {"mcp__linear__createIssue", in(kChangeIn, "Linear")},
        {"mcp__linear__SendHTTPRequest", in(kSendIn, "Linear")},
        {"mcp__a__b__delete_c", in(kDeleteIn, "A")},
        // Reading verbs win only at the start and as whole words; "read" and "draft" anywhere.
        {"mcp__linear__list_issues_and_delete", ""},
        {"mcp__linear__delete_list", in(kDeleteIn, "Linear")},
        {"mcp__shop__checkout_create", in(kChangeIn, "Shop")},
        {"mcp__notion__mark_as_read", ""},
        {"mcp__x__draft_email_send", ""},
        {"mcp__Orvo-Agent__delete_everything", ""},
        {"mcp__slack", ""},
        // Providers are named their own way, past the prefixes agents put on server names.
        {"mcp__claude_ai_LaunchDarkly__delete_flag", in(kDeleteIn, "LaunchDarkly")},
        {"mcp__plugin_ld_github__delete_flag", in(kDeleteIn, "GitHub")},
        {"mcp__plugin_tools_myServer__delete_flag", in(kDeleteIn, "MyServer")},
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
