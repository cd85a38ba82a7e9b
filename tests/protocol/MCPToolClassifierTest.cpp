// The MCP-tool classifier: verbs, providers and details of other servers' tool calls.
#include <gtest/gtest.h>

#include "protocol/ActionHoldClassifier.h"
#include "support/HeldActionText.h"

namespace orvo {
namespace {

std::string heldText(std::string_view toolName, const json& input = json::object()) {
    std::optional<ActionHoldMatch> match = ActionHoldClassifier::classifyMCPTool(toolName, input);
    return match ? heldActionText({*match}) : "";
}

TEST(MCPToolClassifierTest, DecidesByTheWordsOfTheToolName) {
    const struct {
        std::string_view tool;
        std::string_view held;
    } cases[] = {
        {"mcp__slack__send_message", "messages|Sending a Slack message|Send a Slack message"},
        {"mcp__claude_ai_Gmail__send_email", "messages|Sending an email|Send an email"},
        {"mcp__acme__forward_mail", "messages|Sending an email|Send an email"},
        {"mcp__google__gmail_reply", "messages|Sending an email|Send an email"},
        {"mcp__acme__slack_post", "messages|Sending a Slack message|Send a Slack message"},
        {"mcp__plugin_chat_slack__schedule_message",
         "messages|Sending a Slack message|Send a Slack message"},
        {"mcp__linear__post_comment",
         "messages|Sending something in Linear|Send something in Linear"},
        {"mcp__google__calendar_create_event",
         "messages|Sending a calendar invite|Send a calendar invite"},
        {"mcp__google__updateCalendarEvent",
         "messages|Sending a calendar invite|Send a calendar invite"},
        {"mcp__google__calendar_events", ""},
        {"mcp__github__delete_branch",
         "deleting|Deleting something in GitHub|Delete something in GitHub"},
        {"mcp__notion__trash_page",
         "deleting|Deleting something in Notion|Delete something in Notion"},
        {"mcp__figma__destructive_reset",
         "deleting|Deleting something in Figma|Delete something in Figma"},
        {"mcp__slack__remove_then_send",
         "deleting|Deleting something in Slack|Delete something in Slack"},
        {"mcp__notion__undelete_page", ""},
        {"mcp__vercel__deploy_project", "publishing|Deploying to Vercel|Deploy to Vercel"},
        {"mcp__vercel__deployment_status", ""},
        {"mcp__sentry__resolve_issue",
         "services|Changing something in Sentry|Change something in Sentry"},
        {"mcp__sentry__resolve_issue_id", ""},
        {"mcp__sentry__resolveIssueIds", ""},
        {"mcp__linear__createIssue",
         "services|Changing something in Linear|Change something in Linear"},
        {"mcp__atlassian__addCommentToJiraIssue",
         "services|Changing something in Atlassian|Change something in Atlassian"},
        {"mcp__a__b__delete_c", "deleting|Deleting something in A|Delete something in A"},
        {"mcp__linear__list_issues", ""},
        {"mcp__linear__getIssues", ""},
        {"mcp__notion__read_page", ""},
        {"mcp__notion__mark_as_read", ""},
        {"mcp__x__draft_email_send", ""},
        {"mcp__x__create-draft", ""},
        {"mcp__orvo-agent__computer_click", ""},
        {"mcp__Orvo-Agent__delete_everything", ""},
        {"mcp__slack", ""},
        {"mcp__", ""},
        {"mcp__acme__issue_status", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        EXPECT_EQ(heldText(c.tool), c.held);
    }
}

TEST(MCPToolClassifierTest, ReadingVerbsWinOnlyAtTheStartAsWholeWords) {
    for (std::string verb : {"get",
                             "list",
                             "search",
                             "read",
                             "fetch",
                             "lookup",
                             "query",
                             "describe",
                             "whoami",
                             "aggregate",
                             "analyze",
                             "check",
                             "view",
                             "find",
                             "count",
                             "export",
                             "download",
                             "authenticate",
                             "complete_authentication",
                             "guide",
                             "discover",
                             "load",
                             "show"}) {
        SCOPED_TRACE(verb);
        EXPECT_EQ(heldText("mcp__github__" + verb + "_and_delete"), "");
        // "read" anywhere is never held; the other verbs hold nothing back past the start.
        EXPECT_EQ(heldText("mcp__github__delete_" + verb),
                  verb == "read"
                      ? ""
                      : "deleting|Deleting something in GitHub|Delete something in GitHub");
    }
    EXPECT_EQ(heldText("mcp__shop__checkout_create"),
              "services|Changing something in Shop|Change something in Shop");
}

TEST(MCPToolClassifierTest, EveryActingVerbChangesSomething) {
    for (std::string verb :
         {"create", "update",    "edit",    "transition", "merge",  "publish", "upload",
          "add",    "write",     "set",     "move",       "rename", "assign",  "comment",
          "link",   "close",     "archive", "execute",    "submit", "invite",  "share",
          "append", "duplicate", "bulk",    "approve",    "reject", "restart", "terminate",
          "push",   "apply",     "revoke",  "trigger"}) {
        SCOPED_TRACE(verb);
        EXPECT_EQ(heldText("mcp__linear__" + verb + "_issue"),
                  "services|Changing something in Linear|Change something in Linear");
    }
}

TEST(MCPToolClassifierTest, ProvidersAreNamedTheirOwnWay) {
    const struct {
        std::string_view server;
        std::string_view name;
    } cases[] = {
        {"slack", "Slack"},
        {"google", "Google"},
        {"gmail", "Gmail"},
        {"atlassian", "Atlassian"},
        {"launchdarkly", "LaunchDarkly"},
        {"github", "GitHub"},
        {"linear", "Linear"},
        {"notion", "Notion"},
        {"figma", "Figma"},
        {"datadog", "Datadog"},
        {"vercel", "Vercel"},
        {"cloudflare", "Cloudflare"},
        {"netlify", "Netlify"},
        {"claude_ai_LaunchDarkly", "LaunchDarkly"},
        {"plugin_ld_launchdarkly", "LaunchDarkly"},
        {"plugin_linear", "Linear"},
        {"my-server", "My-server"},
        {"plugin_tools_myServer", "MyServer"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.server);
        const std::string name(c.name);
        EXPECT_EQ(heldText("mcp__" + std::string(c.server) + "__delete_flag"),
                  "deleting|Deleting something in " + name + "|Delete something in " + name);
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
