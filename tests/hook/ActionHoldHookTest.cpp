#include "hook/ActionHoldHook.h"

#include <gtest/gtest.h>

#include "protocol/AppEnvelope.h"
#include "protocol/MCPSocketPath.h"
#include "support/FakeApp.h"
#include "support/ServerProcess.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

const std::string kForcePush =
    R"({"tool_name":"Bash","tool_input":{"command":"git push --force origin main"}})";
const char* const kNotRun =
    "Orvo did not answer while this was waiting, so it did not run. Do not retry it unless the "
    "owner asks again.";

std::string denial(std::string_view reason) {
    return R"({"hookSpecificOutput":{"hookEventName":"PreToolUse","permissionDecision":"deny",)"
           R"("permissionDecisionReason":")" +
           std::string(reason) + "\"}}\n";
}

class ActionHoldHookTest : public ::testing::Test {
protected:
    HookResult run(std::string_view input, const std::string& token) const {
        const AppClient app(AppClientOptions{home_.path(), "claude", false, {}});
        return runHook(input, app, token, HoldWait{20ms, 400ms, {}});
    }
    std::filesystem::path socketPath() const { return MCPSocketPath::resolve(home_.path()); }
    test::TempDir home_;
};

TEST_F(ActionHoldHookTest, EveryOutcomeOfTheExchange) {
    // The hook half-closes once its request is sent, so an app that is still deciding is one
    // that answers late.
    test::FakeReply late = test::successReply({{"decision", "allow"}});
    late.delay = 1s;
    const struct {
        test::FakeReply reply;
        const char* denied;  // the reason shown; null when the call may run
        std::string log;     // for a call refused for want of an answer, before "; not running it"
    } cases[] = {
        {test::successReply({{"decision", "allow"}}), nullptr, ""},
        {test::successReply({{"decision", "deny"}, {"reason", "not now"}}), "not now", ""},
        {test::successReply({{"decision", "deny"}, {"reason", 7}}), "", ""},
        {test::errorReply("consent_denied", "Denied"), nullptr, "Denied; allowing"},
        {test::successReply({{"decision", "maybe"}}), kNotRun,
         "unknown action hold decision maybe"},
        {test::successReply({{"decided", "allow"}}), kNotRun, "malformed action hold reply"},
        {test::FakeReply{""}, kNotRun, "the app closed the connection without a reply"},
        {test::FakeReply{"nope"}, kNotRun, "malformed reply: response was not a JSON object"},
        {test::FakeReply{std::string(kMaxReplyBytes + 1, ' ')}, kNotRun, "reply too large"},
        {late, kNotRun, "no reply in time"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reply.bytes.substr(0, 80));
        test::FakeApp app(socketPath());
        app.on("action_hold", c.reply);
        const HookResult result = run(kForcePush, "tok-1");
        EXPECT_EQ(result.output, c.denied ? denial(c.denied) : "");
        const std::string log = c.denied == kNotRun ? c.log + "; not running it" : c.log;
        EXPECT_EQ(result.logLines, log.empty() ? Lines{} : Lines{log});
        ASSERT_TRUE(app.waitForRequests(1));
        EXPECT_EQ(
            app.received()[0].line,
            R"({"args":{"_agent":"claude","matches":[{"base":"Force-push the branch","category":"publishing","detail":"git push --force origin main","progressive":"Force-pushing the branch"}],"token":"tok-1","tool":"Bash"},"method":"action_hold"})");
    }
}

TEST_F(ActionHoldHookTest, AsksOnlyForHeldCallsAndLetsUnreadableInputThrough) {
    test::FakeApp app(socketPath());
    app.on("action_hold", test::successReply({{"decision", "allow"}}));
    // Depth in fields the classifier never reads is no reason to let a held call through.
    const std::string deepField = std::string(R"({"tool_name":"Bash","x":)") +
                                  std::string(100000, '[') + std::string(100000, ']') +
                                  R"(,"tool_input":{"command":"git push --force","y":{"z":[{}]}}})";
    const struct {
        std::string input;
        bool unreadable;
        bool asked = false;
    } cases[] = {
        {R"({"tool_name":"Bash","tool_input":{"command":"git push --force -n"}})", false},
        {"not json", true},
        {R"({"tool_name":"Bash","tool_input":"git push -f"})", true},
        {deepField, false, true},
    };
    std::size_t asked = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input.substr(0, 80));
        const HookResult result = run(c.input, "");
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.logLines,
                  c.unreadable ? Lines{"unreadable hook input; allowing"} : Lines{});
        asked += c.asked ? 1 : 0;
        EXPECT_TRUE(app.waitForRequests(asked));
        EXPECT_EQ(app.received().size(), asked);
    }
    EXPECT_FALSE(app.received()[0].request["args"].contains("token"));  // an empty one is left out
}

}  // namespace
}  // namespace orvo
