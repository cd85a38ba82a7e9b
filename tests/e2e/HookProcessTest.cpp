// The hook as agents run it: the real binary, as the user whose app answers, one call per run.
// An owner's decision through the process is the documented hook's test, the other outcomes the
// hook's unit tests.
#include <gtest/gtest.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

const std::string kForcePush =
    R"({"session_id":"s1","transcript_path":"/tmp/t.jsonl","cwd":"/repo","hook_event_name":"PreToolUse","tool_name":"Bash","tool_input":{"command":"git push --force origin main"}})";

using HookProcessTest = UserAppTest;

TEST_F(HookProcessTest, AMissingAppFailsOpenWithOneLineOnStandardError) {
    app_.reset();
    ServerProcess hook(asUser({"--action-hold-hook"}));
    hook.send(kForcePush);
    hook.closeInput();
    EXPECT_EQ(hook.readLine(), std::nullopt);
    EXPECT_EQ(hook.waitForExit(), 0);
    EXPECT_EQ(hook.standardError(),
              "orvo-agent action hold: Orvo app is not running \u2014 open the app and try again.; "
              "allowing\n");
}

TEST_F(HookProcessTest, AnAgentThatExitsWhileTheOwnerDecidesEndsTheHookQuietly) {
    FakeReply slow = successReply({{"decision", "deny"}});
    slow.delay = std::chrono::seconds(60);
    app_->on("action_hold", slow);
    // The shell stands for the agent: it starts the hook, then exits while the hook waits.
    ProcessOptions options =
        asUser({"-c", "printf '%s' \"$CALL\" | \"$HOOK\" --action-hold-hook & sleep 0.5"},
               {{"CALL", kForcePush}, {"HOOK", ORVO_BINARY_PATH}});
    options.program = "/bin/sh";
    const auto start = std::chrono::steady_clock::now();
    ServerProcess agent(options);
    EXPECT_EQ(agent.readLine(std::chrono::seconds(20)), std::nullopt);  // output closed, empty
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(app_->received().size(), 1u);
    EXPECT_EQ(agent.waitForExit(), 0);
    EXPECT_EQ(agent.standardError(), "");
}

}  // namespace
}  // namespace orvo::test
