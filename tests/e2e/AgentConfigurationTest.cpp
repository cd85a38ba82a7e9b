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

// The page's fenced blocks in `language`, in order.
std::vector<std::string> codeBlocks(const std::string& page, const std::string& language) {
    std::vector<std::string> blocks;
    const std::string opening = "\n```" + language + "\n";
    for (std::size_t at = page.find(opening); at != std::string::npos;
         at = page.find(opening, at)) {
        at += opening.size();
        const std::size_t end = page.find("\n```", at);
        blocks.push_back(page.substr(at, end == std::string::npos ? end : end + 1 - at));
    }
    return blocks;
}

class AgentConfigurationTest : public UserAppTest {
protected:
    // The `_agent` that reaches the app from a server started with `arguments`.
    json agentSeenByTheApp(std::vector<std::string> arguments) {
        ProcessOptions options = asUser();
        options.arguments = std::move(arguments);
        ServerProcess server(options);
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
    std::smatch claude;
    ASSERT_TRUE(std::regex_search(
        page_, claude, std::regex("\n```sh\nclaude mcp add [^\n]* -- (\\S+)([^\n]*)\n```")))
        << "no `claude mcp add … -- command` block";
    EXPECT_EQ(claude[1], kPlaceholder);
    std::istringstream arguments(claude[2].str());
    EXPECT_EQ(agentSeenByTheApp({std::istream_iterator<std::string>(arguments), {}}), "claude");

    const std::vector<std::string> toml = codeBlocks(page_, "toml");
    ASSERT_EQ(toml.size(), 1u);
    std::smatch codex;
    ASSERT_TRUE(std::regex_match(toml[0], codex,
                                 std::regex(R"re(\[mcp_servers\.orvo\]\ncommand = "(.*)"\n)re"
                                            R"re(args = (.*)\ntool_timeout_sec = (\d+)\n)re")))
        << toml[0];
    EXPECT_EQ(codex[1], kPlaceholder);
    EXPECT_EQ(agentSeenByTheApp(json::parse(codex[2].str()).get<std::vector<std::string>>()),
              "codex");
    // Codex abandons a tool call at this limit; the app may take the longest for computer use.
    EXPECT_GE(std::stoi(codex[3]), MCPReplyTimeout::seconds("computer_inspect"));
}

TEST_F(AgentConfigurationTest, TheDocumentedHookGivesClaudeCodeTheOwnersDecision) {
    const std::vector<std::string> blocks = codeBlocks(page_, "json");
    ASSERT_EQ(blocks.size(), 1u);
    json settings = json::parse(blocks[0], nullptr, false);
    ASSERT_TRUE(settings.is_object()) << blocks[0];
    json hook = settings["hooks"]["PreToolUse"][0]["hooks"][0];
    ASSERT_EQ(hook["type"], "command") << settings;
    std::string command = hook["command"];
    ASSERT_TRUE(command.starts_with(kPlaceholder + " ")) << command;
    command.replace(0, kPlaceholder.size(), ORVO_BINARY_PATH);
    // Claude Code stops a hook at its timeout: it must outlast the wait for the owner.
    EXPECT_GT(hook.value("timeout", 0), ActionHoldWire::kReplyTimeoutSeconds);

    const std::string reason = "Not on main, please: open a pull request.";
    app_->on("action_hold", successReply({{"decision", "deny"}, {"reason", reason}}));
    const std::string input =
        R"({"session_id":"8f1c2a4e-5b6d-4c3e-9a7b-1d2e3f4a5b6c","cwd":"/repo",)"
        R"("transcript_path":"/Users/you/.claude/projects/-repo/8f1c2a4e.jsonl",)"
        R"("permission_mode":"default","hook_event_name":"PreToolUse","tool_name":"Bash",)"
        R"("tool_use_id":"toolu_01ABC123","tool_input":{"command":"git push --force origin main",)"
        R"("description":"Push it"}})";
    // Claude Code runs the command through the shell and writes the input to it.
    ProcessOptions options = asUser();
    options.program = "/bin/sh";
    options.arguments = {"-c", command};
    ServerProcess agentHook(options);
    agentHook.send(input);
    agentHook.closeInput();
    const std::optional<std::string> output = agentHook.readLine();
    ASSERT_EQ(agentHook.waitForExit(), 0);
    // Exit status 0: standard output is the decision.
    const json result = json::parse(output.value_or(""), nullptr, false);
    ASSERT_TRUE(result.is_object()) << output.value_or("no output");
    EXPECT_EQ(result.value("hookSpecificOutput", json()),
              json({{"hookEventName", "PreToolUse"},
                    {"permissionDecision", "deny"},
                    {"permissionDecisionReason", reason}}));
    ASSERT_EQ(app_->received().size(), 1u);
    EXPECT_EQ(app_->received()[0].request["args"].value("_agent", ""), "claude");
}

}  // namespace
}  // namespace orvo::test
