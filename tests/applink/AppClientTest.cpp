#include "applink/AppClient.h"

#include <cmath>

#include <gtest/gtest.h>
#include <unistd.h>

#include "protocol/AppEnvelope.h"
#include "protocol/MCPSocketPath.h"
#include "support/FakeApp.h"
#include "support/ServerProcess.h"
#include "support/ThrowawayUser.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

// "= result", or "code message data" for an error, so that a case is one line.
std::string outcome(const Result<json>& result) {
    // Appended, not added: GCC 12 warns wrongly on "literal" + std::string.
    if (result) {
        return std::string("= ").append(dumpCompact(*result));
    }
    const RPCError& error = result.error();
    std::string text = std::to_string(error.code).append(" ").append(error.message);
    return error.data ? text.append(" ").append(dumpCompact(*error.data)) : text;
}

class AppClientTest : public ::testing::Test {
protected:
    std::string call(std::chrono::milliseconds timeout = 30s) const {
        const AppClient client(AppClientOptions{home_.path(), std::nullopt, false,
                                                [timeout](std::string_view) { return timeout; }});
        return outcome(client.callApp("m", json::object()));
    }
    std::filesystem::path socketPath() const { return MCPSocketPath::resolve(home_.path()); }

    test::TempDir home_;
};

TEST_F(AppClientTest, SendsOneRequestLineWithTheAgentContextAndHalfCloses) {
    test::FakeApp app(socketPath());
    test::FakeReply reply = test::successReply({{"notes", "a/b"}});
    reply.watchHalfClose = 2s;
    app.on("get_meeting_notes", reply);
    const json args = json::parse(R"({"id":"m-42","_agent":"spoofed","_origin":"x",)"
                                  R"("_cancelOnDisconnect":true,"url":"https://x/y","none":null})");
    for (const bool claude : {true, false}) {
        const std::optional<std::string> agent = claude ? "claude" : std::optional<std::string>();
        const AppClient client(AppClientOptions{home_.path(), agent, claude, {}});
        EXPECT_EQ(outcome(client.callApp("get_meeting_notes", args)), R"(= {"notes":"a/b"})");
    }
    const auto received = app.received();
    ASSERT_EQ(received.size(), 2u);
    EXPECT_EQ(received[0].line,
              R"({"args":{"_agent":"claude","_origin":"assistant","id":"m-42","none":null,)"
              R"("url":"https://x/y"},"method":"get_meeting_notes"})");
    EXPECT_EQ(
        received[1].line,
        R"({"args":{"id":"m-42","none":null,"url":"https://x/y"},"method":"get_meeting_notes"})");
    EXPECT_TRUE(received[0].halfClosed);
}

TEST_F(AppClientTest, ReadsEveryReplyShape) {
    const std::string head = R"({"ok":true,"result":")", tail = "\"}\n";
    const std::string fill(kMaxReplyBytes - head.size() - tail.size(), 'x');
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '[') + std::string(depth, ']');
    };
    const std::string malformed = "-32002 Malformed response from Orvo: ";
    const std::string notObject = malformed + "response was not a JSON object";
    const struct {
        std::string reply;
        std::string outcome;
    } cases[] = {
        {"{\"ok\":true}", "= {}"},
        {R"({"ok":true,"result":[1]})", "= [1]"},  // no line feed
        {R"({"ok":"true","result":1})", malformed + "error response missing 'error' object"},
        {"", notObject},
        {"[1]\n", notObject},
        {R"({"ok":false,"error":{}})", R"(-32603 Unknown error {"code":"internal_error"})"},
        {R"({"ok":false,"error":{"code":"refused","message":"no","data":[1]}})",
         R"(-32016 no {"code":"refused"})"},
        // The app's code, not a stray "code" in its data, reaches the agent; an unknown one is
        // an internal error.
        {R"({"ok":false,"error":{"code":"consent_denied","message":"No","data":{"code":"x"}}})",
         R"(-32012 No {"code":"consent_denied"})"},
        {R"({"ok":false,"error":{"code":"no_such_code","message":"No","data":{"n":1}}})",
         R"(-32603 No {"code":"internal_error","n":1})"},
        {head + fill + tail, "= \"" + fill + "\""},
        {head + fill + tail + " ", "-32000 response too large (>1 MiB)"},
        // Nesting is bounded before anything deep is built, copied or written.
        {R"({"ok":true,"result":)" + nested(kMaxReplyDepth - 1) + "}",
         "= " + nested(kMaxReplyDepth - 1)},
        {R"({"ok":true,"result":)" + nested(kMaxReplyDepth) + "}", notObject},
    };
    test::FakeApp app(socketPath());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reply.substr(0, 80));
        app.on("m", test::FakeReply{c.reply});
        EXPECT_EQ(call(), c.outcome);
    }
}

TEST_F(AppClientTest, ReportsWhyTheAppCannotBeReached) {
    const std::string notRunning =
        "-32001 Orvo app is not running \u2014 open the app and try again.";
    EXPECT_EQ(call(), notRunning);
    {
        test::FakeApp app(socketPath());
        const std::string silent =
            "-32013 Orvo did not answer in time. The request may still be waiting for the user; "
            "check the screen before retrying.";
        // The limit bounds the whole reply, not the wait for each byte.
        test::FakeReply trickle = test::successReply(json{{"pad", std::string(40, 'x')}});
        trickle.trickle = 20ms;
        app.on("m", trickle);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(call(150ms), silent);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 600ms);
    }
    // The socket file is left behind by an app that quit: nobody listens there.
    test::writeFile(socketPath(), "");
    EXPECT_EQ(call(), notRunning);
    const AppClient tooLong(
        AppClientOptions{home_.path() / std::string(80, 'h'), std::nullopt, false, {}});
    EXPECT_EQ(outcome(tooLong.callApp("m", json::object())), "-32000 socket path too long");
}

TEST_F(AppClientTest, RefusesAnAppRunningAsAnotherUser) {
    std::string whyNot;
    const test::ThrowawayUser* other = test::ThrowawayUser::get(whyNot);
    if (other == nullptr) {
        GTEST_SKIP() << whyNot;
    }
    // The other user must be able to reach the directory to make its socket there.
    std::filesystem::create_directories(socketPath().parent_path());
    for (auto path = socketPath().parent_path(); path != home_.path().parent_path();
         path = path.parent_path()) {
        std::filesystem::permissions(path, std::filesystem::perms::all);
    }
    test::FakeApp app(socketPath(), std::pair{other->uid, other->gid});
    EXPECT_EQ(call(), "-32015 Refusing to talk to MCP server: peer uid " +
                          std::to_string(other->uid) + " does not match this user's uid " +
                          std::to_string(::getuid()) + ".");
    EXPECT_TRUE(app.waitForFinished(1));
    EXPECT_EQ(app.received()[0].line, "");  // closed without writing
}

TEST(AppEnvelopeTest, ReplyTimeLimitsByMethod) {
    EXPECT_EQ(MCPReplyTimeout::seconds("action_hold"), 110);
    EXPECT_EQ(MCPReplyTimeout::seconds("action_hold_extra"), 30);
    EXPECT_EQ(MCPReplyTimeout::seconds("computer_"), 180);
    EXPECT_EQ(MCPReplyTimeout::seconds("get_meeting_notes"), 30);
}

TEST(AppEnvelopeTest, RequestsRefuseWhatJSONCannotHold) {
    // Never written as null or U+FFFD.
    for (const json& value :
         {json{{"k", json::array({1, std::nan("")})}}, json{{"bad \xFF key", 1}}}) {
        SCOPED_TRACE(value.dump(-1, ' ', false, json::error_handler_t::replace));
        const Result<std::string> encoded = encodeMCPMutationRequest("m", value);
        ASSERT_FALSE(encoded);
        EXPECT_EQ(encoded.error().code, RPCCode::kInternalError);
    }
}

}  // namespace
}  // namespace orvo
