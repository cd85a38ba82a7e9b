// The hook configuration in docs/agents.md, run as written: the real binary fed the input Claude
// Code sends, its decision read as Claude Code reads it.
#include <regex>

#include <gtest/gtest.h>

#include "protocol/ActionHoldWire.h"
#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

const std::string kPlaceholder = "/path/to/orvo-agent-mcp";

using AgentConfigurationTest = UserAppTest;

TEST_F(AgentConfigurationTest, TheDocumentedHookGivesClaudeCodeTheOwnersDecision) {
    const std::string page =
        readFile(std::filesystem::path(ORVO_SOURCE_DIR) / "docs/agents.md").value_or("");
    std::smatch block;
    ASSERT_TRUE(std::regex_search(page, block, std::regex("\n```json\n([^`]*)```")))
        << "no json block in docs/agents.md";
    json settings = json::parse(block[1].str(), nullptr, false);
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
