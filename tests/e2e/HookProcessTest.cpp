// The hook as agents run it: the real binary, as the user whose app answers, one call per run.
#include <gtest/gtest.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

const std::string kForcePush =
    R"({"session_id":"s1","transcript_path":"/tmp/t.jsonl","cwd":"/repo","hook_event_name":"PreToolUse","tool_name":"Bash","tool_input":{"command":"git push --force origin main"}})";

class HookProcessTest : public UserAppTest {
protected:
    ProcessOptions hookOptions() const {
        ProcessOptions options = asUser();
        options.arguments = {"--action-hold-hook"};
        options.environment = {{"ORVO_ACTION_HOLD_TOKEN", "tok"}};
        return options;
    }
    struct Run {
        std::string output;
        std::string log;
        std::optional<int> status;
    };
    Run runHook() {
        ServerProcess hook(hookOptions());
        hook.send(kForcePush);
        hook.closeInput();
        Run run;
        while (std::optional<std::string> line = hook.readLine()) {
            run.output += *line + "\n";
        }
        run.status = hook.waitForExit();
        run.log = hook.standardError();
        return run;
    }
};

// A refusal through the process is the documented hook's test, the other outcomes the hook's
// unit tests.
TEST_F(HookProcessTest, AnAllowedCallRunsSilentlyAfterTheTokenIsSent) {
    app_->on("action_hold", successReply({{"decision", "allow"}}));
    const Run run = runHook();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.log, "");
    ASSERT_EQ(app_->received().size(), 1u);
    // The request itself is the unit tests' to pin; the token comes from the environment.
    EXPECT_EQ(app_->received()[0].request["args"].value("token", ""), "tok");
}

TEST_F(HookProcessTest, AMissingAppFailsOpenWithOneLineOnStandardError) {
    app_.reset();
    const Run run = runHook();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.log,
              "orvo-agent action hold: Orvo app is not running \u2014 open the app and try again.; "
              "allowing\n");
}

TEST_F(HookProcessTest, AnAgentThatExitsWhileTheOwnerDecidesEndsTheHookQuietly) {
    FakeReply slow = successReply({{"decision", "deny"}});
    slow.delay = std::chrono::seconds(60);
    app_->on("action_hold", slow);
    // The shell stands for the agent: it starts the hook, then exits while the hook waits.
    ProcessOptions options = hookOptions();
    options.program = "/bin/sh";
    options.arguments = {"-c", "printf '%s' \"$CALL\" | \"$HOOK\" --action-hold-hook & sleep 0.5"};
    options.environment.emplace_back("CALL", kForcePush);
    options.environment.emplace_back("HOOK", ORVO_BINARY_PATH);
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
