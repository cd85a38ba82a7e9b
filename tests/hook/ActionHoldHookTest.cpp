#include "hook/ActionHoldHook.h"

#include <gtest/gtest.h>

#include "protocol/AppEnvelope.h"
#include "protocol/MCPSocketPath.h"
#include "support/FakeApp.h"
#include "support/ServerProcess.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

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
    HookResult run(
        std::string_view input, std::optional<std::string> token = std::nullopt,
        std::function<bool()> agentStillThere = [] { return true; }) {
        const AppClient app(AppClientOptions{home_.path(), "claude", false, {}});
        return runHook(input, app, token, HoldWait{20ms, 400ms, std::move(agentStillThere)});
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
        std::string log;
    } cases[] = {
        {test::successReply({{"decision", "allow"}}), nullptr, ""},
        {test::successReply({{"decision", "deny"}, {"reason", "not now"}}), "not now", ""},
        {test::successReply({{"decision", "deny"}, {"reason", 7}}), "", ""},
        {test::errorReply("consent_denied", "Denied"), nullptr, "Denied; allowing"},
        {test::successReply({{"decision", "maybe"}}), kNotRun,
         "unknown action hold decision maybe; not running it"},
        {test::successReply({{"decided", "allow"}}), kNotRun,
         "malformed action hold reply; not running it"},
        {test::FakeReply{""}, kNotRun,
         "the app closed the connection without a reply; not running it"},
        {test::FakeReply{"nope"}, kNotRun,
         "malformed reply: response was not a JSON object; not running it"},
        {test::FakeReply{std::string(kMaxReplyBytes + 1, ' ')}, kNotRun,
         "reply too large; not running it"},
        {late, kNotRun, "no reply in time; not running it"},
        // A reply that is not wholly JSON refuses the call, whatever it starts with.
        {test::FakeReply{std::string(R"({"ok":true,"result":{"decision":"allow"}})")
                             .append(1, '\0')
                             .append("garbage")},
         kNotRun, "malformed reply: response was not a JSON object; not running it"},
        {test::FakeReply{std::string(R"({"ok":true,"result":{"decision":"allow","x":)")
                             .append(kMaxReplyDepth, '[')
                             .append(kMaxReplyDepth, ']')
                             .append("}}")},
         kNotRun, "malformed reply: response was not a JSON object; not running it"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reply.bytes.substr(0, 80));
        test::FakeApp app(socketPath());
        app.on("action_hold", c.reply);
        const HookResult result = run(kForcePush, "tok-1");
        EXPECT_EQ(result.output, c.denied ? denial(c.denied) : "");
        EXPECT_EQ(result.logLines,
                  c.log.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.log});
        ASSERT_TRUE(app.waitForRequests(1));
        EXPECT_EQ(
            app.received()[0].line,
            R"({"args":{"_agent":"claude","matches":[{"base":"Force-push the branch","category":"publishing","detail":"git push --force origin main","progressive":"Force-pushing the branch"}],"token":"tok-1","tool":"Bash"},"method":"action_hold"})");
    }
}

TEST_F(ActionHoldHookTest, AsksOnlyForHeldCallsAndLetsUnreadableInputThrough) {
    test::FakeApp app(socketPath());
    app.on("action_hold", test::successReply({{"decision", "allow"}}));
    const auto withDeepField = [](std::size_t depth) {
        return std::string(R"({"tool_name":"Bash","x":)")
            .append(depth, '[')
            .append(depth, ']')
            .append(R"(,"tool_input":{"command":"git push --force","y":{"z":[{}]}}})");
    };
    const struct {
        std::string input;
        std::vector<std::string> log;
        bool asked = false;
    } cases[] = {
        {R"({"tool_name":"Read","tool_input":{"file_path":"/etc/hosts"}})", {}},
        {R"({"tool_name":"Bash","tool_input":{"command":"git push --force -n"}})", {}},
        {"not json", {"unreadable hook input; allowing"}},
        {R"({"tool_name":"Bash","tool_input":"git push -f"})", {"unreadable hook input; allowing"}},
        {std::string(1 << 20, '['), {"unreadable hook input; allowing"}},
        {std::string(R"({"tool_name":"Read","tool_input":{}})").append(1, '\0') + kForcePush,
         {"unreadable hook input; allowing"}},
        // Depth in fields the classifier never reads is no reason to let a held call through.
        {withDeepField(255), {}, true},
        {withDeepField(100000), {}, true},
        {withDeepField(100000).append("]"), {"unreadable hook input; allowing"}},
    };
    std::size_t asked = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input.substr(0, 80));
        const HookResult result = run(c.input);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.logLines, c.log);
        asked += c.asked ? 1 : 0;
        EXPECT_TRUE(app.waitForRequests(asked));
        EXPECT_EQ(app.received().size(), asked);
    }
}

TEST_F(ActionHoldHookTest, FailsOpenWithoutTheAppAndQuietlyWhenTheAgentIsGone) {
    HookResult result = run(kForcePush);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.logLines,
              std::vector<std::string>{
                  "Orvo app is not running \u2014 open the app and try again.; allowing"});

    test::FakeApp app(socketPath());
    test::FakeReply late = test::successReply({{"decision", "deny"}});
    late.delay = 1s;
    app.on("action_hold", late);
    int checks = 0;
    result = run(kForcePush, "", [&] { return ++checks < 3; });
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.logLines.empty());
    ASSERT_TRUE(app.waitForFinished(1));
    EXPECT_EQ(app.received()[0].request["args"].contains("token"), false);  // empty token left out
}

}  // namespace
}  // namespace orvo
