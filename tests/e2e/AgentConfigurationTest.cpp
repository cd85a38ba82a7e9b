// The configuration in docs/agents.md, run as written: the agents' commands against the real
// binary, and the hook fed the input Claude Code sends, its decision read as Claude Code reads it.
#include <iterator>
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

#include "protocol/ActionHoldWire.h"
#include "protocol/AppEnvelope.h"
#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

const std::string kPlaceholder = "/path/to/orvo-agent-mcp";

// The one fenced block in `language` that matches `pattern`, with its groups.
std::smatch documented(const std::string& page, const std::string& language,
                       const std::string& pattern) {
    std::smatch match;
    EXPECT_TRUE(
        std::regex_search(page, match, std::regex("\n```" + language + "\n" + pattern + "```")))
        << "no " << language << " block of the form " << pattern;
    return match;
}

class AgentConfigurationTest : public UserAppTest {
protected:
    // The `_agent` that reaches the app from a server started with `arguments`.
    json agentSeenByTheApp(std::vector<std::string> arguments) {
        ServerProcess server(asUser(std::move(arguments)));
        const std::size_t before = app_->received().size();
        // A tool that reads nothing of the user's, so that no activity cue joins the request.
        server.request(toolCall(1, "list_meeting_addons"));
        if (app_->received().size() != before + 1) {
            return "no request reached the app";
        }
        return app_->received().back().request["args"].value("_agent", json());
    }
    const std::string page_ =
        readFile(std::filesystem::path(ORVO_SOURCE_DIR) / "docs/agents.md").value_or("");
};

TEST_F(AgentConfigurationTest, TheDocumentedServersTellTheAppWhichAgentCalls) {
    const std::smatch claude = documented(page_, "sh", "claude mcp add [^\n]* -- (\\S+)([^\n]*)\n");
    ASSERT_FALSE(claude.empty());
    EXPECT_EQ(claude[1], kPlaceholder);
    std::istringstream arguments(claude[2].str());
    EXPECT_EQ(agentSeenByTheApp({std::istream_iterator<std::string>(arguments), {}}), "claude");

    const std::smatch codex = documented(page_, "toml",
                                         R"re(\[mcp_servers\.orvo\]\ncommand = "(.*)"\n)re"
                                         R"re(args = (.*)\ntool_timeout_sec = (\d+)\n)re");
    ASSERT_FALSE(codex.empty());
    EXPECT_EQ(codex[1], kPlaceholder);
    EXPECT_EQ(agentSeenByTheApp(json::parse(codex[2].str()).get<std::vector<std::string>>()),
              "codex");
    // Codex abandons a tool call at this limit; the app may take the longest for computer use.
    EXPECT_GE(std::stoi(codex[3]), MCPReplyTimeout::seconds("computer_inspect"));
}

TEST_F(AgentConfigurationTest, TheDocumentedHookGivesClaudeCodeTheOwnersDecision) {
    json settings = json::parse(documented(page_, "json", "([^`]*)")[1].str(), nullptr, false);
    ASSERT_TRUE(settings.is_object());
    json hook = settings["hooks"]["PreToolUse"][0]["hooks"][0];
    ASSERT_EQ(hook["type"], "command") << settings;
    std::string command = hook["command"];
    ASSERT_TRUE(command.starts_with(kPlaceholder + " ")) << command;
    command.replace(0, kPlaceholder.size(), ORVO_BINARY_PATH);
    // Claude Code stops a hook at its timeout: it must outlast the wait for the owner.
    EXPECT_GT(hook.value("timeout", 0), ActionHoldWire::kReplyTimeoutSeconds);

    app_->on("action_hold",
             successReply({{"decision", "deny"}, {"reason", "Use a pull request."}}));
    const std::string input =
        R"({"session_id":"8f1c2a4e-5b6d-4c3e-9a7b-1d2e3f4a5b6c","cwd":"/repo",)"
        R"("transcript_path":"/Users/you/.claude/projects/-repo/8f1c2a4e.jsonl",)"
        R"("permission_mode":"default","hook_event_name":"PreToolUse","tool_name":"Bash",)"
        R"("tool_use_id":"toolu_01ABC123","tool_input":{"command":"git push --force origin main",)"
        R"("description":"Push it"}})";
    // Claude Code runs the command through the shell and writes the input to it.
    ProcessOptions options = asUser({"-c", command}, {{"ORVO_ACTION_HOLD_TOKEN", "tok"}});
    options.program = "/bin/sh";
    ServerProcess agentHook(options);
    agentHook.send(input);
    agentHook.closeInput();
    // Exit status 0: standard output is the decision, and nothing else.
    EXPECT_EQ(agentHook.readLine(),
              R"({"hookSpecificOutput":{"hookEventName":"PreToolUse","permissionDecision":"deny",)"
              R"("permissionDecisionReason":"Use a pull request."}})");
    EXPECT_EQ(agentHook.readLine(), std::nullopt);
    ASSERT_EQ(agentHook.waitForExit(), 0);
    ASSERT_EQ(app_->received().size(), 1u);
    EXPECT_EQ(app_->received()[0].request["args"].value("_agent", ""), "claude");
    EXPECT_EQ(app_->received()[0].request["args"].value("token", ""), "tok");
}

}  // namespace
}  // namespace orvo::test
