#include "applink/AppClient.h"

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

class AppClientTest : public ::testing::Test {
protected:
    AppClient client(std::optional<std::string> agent = std::nullopt, bool origin = false,
                     std::chrono::milliseconds timeout = 30s) const {
        return AppClient(AppClientOptions{home_.path(), std::move(agent), origin,
                                          [timeout](std::string_view) { return timeout; }});
    }
    std::filesystem::path socketPath() const { return MCPSocketPath::resolve(home_.path()); }

    test::TempDir home_;
};

TEST_F(AppClientTest, SendsOneRequestLineWithTheAgentContextAndHalfCloses) {
    test::FakeApp app(socketPath());
    test::FakeReply reply = test::successReply({{"notes", "a/b"}});
    reply.watchHalfClose = 2s;
    app.on("get_meeting_notes", reply);
    const json args = {{"id", "m-42"},         {"_agent", "spoofed"},
                       {"_origin", "x"},       {"_cancelOnDisconnect", true},
                       {"url", "https://x/y"}, {"none", nullptr}};

    EXPECT_EQ(*client("claude", true).callApp("get_meeting_notes", args), json({{"notes", "a/b"}}));
    EXPECT_EQ(*client().callApp("get_meeting_notes", args), json({{"notes", "a/b"}}));

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

// The codes themselves are the app's table; what matters here is that the app's code, not a
// stray "code" in its data, reaches the agent, and that an unknown one is an internal error.
TEST_F(AppClientTest, MapsTheAppErrorCodeAndKeepsItInData) {
    const struct {
        std::string code;
        RPCError error;
    } cases[] = {
        {"consent_denied", {-32012, "Denied", json{{"code", "consent_denied"}, {"n", 1}}}},
        {"no_such_code", {-32603, "Denied", json{{"code", "internal_error"}, {"n", 1}}}},
    };
    test::FakeApp app(socketPath());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        app.on("m", test::errorReply(c.code, "Denied", json{{"code", "x"}, {"n", 1}}));
        Result<json> outcome = client().callApp("m", json::object());
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error(), c.error);
    }
}

TEST_F(AppClientTest, ReadsEveryReplyShape) {
    const struct {
        std::string name;
        std::string reply;
        Result<json> outcome;
    } cases[] = {
        {"no result", "{\"ok\":true}", json::object()},
        {"result without line feed", R"({"ok":true,"result":[1]})", json::array({1})},
        {"ok as a string", R"({"ok":"true","result":1})",
         RPCError{-32002, "Malformed response from Orvo: error response missing 'error' object",
                  std::nullopt}},
        {"closed at once", "",
         RPCError{-32002, "Malformed response from Orvo: response was not a JSON object",
                  std::nullopt}},
        {"not an object", "[1]\n",
         RPCError{-32002, "Malformed response from Orvo: response was not a JSON object",
                  std::nullopt}},
        {"error without message or code", R"({"ok":false,"error":{}})",
         RPCError{-32603, "Unknown error", json{{"code", "internal_error"}}}},
        {"data that is not an object",
         R"({"ok":false,"error":{"code":"refused","message":"no","data":[1]}})",
         RPCError{-32016, "no", json{{"code", "refused"}}}},
    };
    test::FakeApp app(socketPath());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        app.on("m", test::FakeReply{c.reply});
        Result<json> outcome = client().callApp("m", json::object());
        ASSERT_EQ(outcome.has_value(), c.outcome.has_value());
        if (outcome) {
            EXPECT_EQ(*outcome, *c.outcome);
        } else {
            EXPECT_EQ(outcome.error(), c.outcome.error());
        }
    }
}

TEST_F(AppClientTest, AcceptsAReplyOfExactlyOneMebibyte) {
    test::FakeApp app(socketPath());
    const std::string head = R"({"ok":true,"result":")";
    const std::string tail = "\"}\n";
    const std::string exact =
        head + std::string(kMaxReplyBytes - head.size() - tail.size(), 'x') + tail;
    ASSERT_EQ(exact.size(), kMaxReplyBytes);
    app.on("exact", test::FakeReply{exact});
    app.on("over", test::FakeReply{exact + " "});
    Result<json> accepted = client().callApp("exact", json::object());
    ASSERT_TRUE(accepted);
    EXPECT_EQ(accepted->get<std::string>().size(), kMaxReplyBytes - head.size() - tail.size());
    Result<json> refused = client().callApp("over", json::object());
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), (RPCError{-32000, "response too large (>1 MiB)", std::nullopt}));
}

TEST_F(AppClientTest, ReportsTheAppMissingOrSilent) {
    const RPCError notRunning{-32001, "Orvo app is not running \u2014 open the app and try again.",
                              std::nullopt};
    Result<json> missing = client().callApp("m", json::object());
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(), notRunning);

    {
        test::FakeApp app(socketPath());
        test::FakeReply late = test::successReply(json::object());
        late.delay = 400ms;
        app.on("m", late);
        Result<json> outcome = client(std::nullopt, false, 100ms).callApp("m", json::object());
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error(),
                  (RPCError{-32013,
                            "Orvo did not answer in time. The request may still be waiting for "
                            "the user; check the screen before retrying.",
                            std::nullopt}));
    }
    // The socket file is left behind by an app that quit: nobody listens there.
    test::writeFile(socketPath(), "");
    Result<json> stale = client().callApp("m", json::object());
    ASSERT_FALSE(stale);
    EXPECT_EQ(stale.error(), notRunning);
}

TEST_F(AppClientTest, RefusesAPathTooLongForTheSocketAddress) {
    test::TempDir base;
    const auto home = base.path() / std::string(80, 'h');
    AppClient longHome(AppClientOptions{home, std::nullopt, false, {}});
    Result<json> outcome = longHome.callApp("m", json::object());
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), (RPCError{-32000, "socket path too long", std::nullopt}));
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
    Result<json> outcome = client().callApp("m", json::object());
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(),
              (RPCError{-32015,
                        "Refusing to talk to MCP server: peer uid " + std::to_string(other->uid) +
                            " does not match this user's uid " + std::to_string(::getuid()) + ".",
                        std::nullopt}));
    EXPECT_TRUE(app.waitForFinished(1));
    EXPECT_EQ(app.received()[0].line, "");  // closed without writing
}

TEST(AppEnvelopeTest, ReplyTimeLimitsByMethod) {
    EXPECT_EQ(MCPReplyTimeout::seconds("action_hold"), 110);
    EXPECT_EQ(MCPReplyTimeout::seconds("action_hold_extra"), 30);
    EXPECT_EQ(MCPReplyTimeout::seconds("computer_"), 180);
    EXPECT_EQ(MCPReplyTimeout::seconds("computer_click"), 180);
    EXPECT_EQ(MCPReplyTimeout::seconds("get_meeting_notes"), 30);
}

TEST(AppEnvelopeTest, AppSideEncodersWriteWhatTheClientDecodes) {
    EXPECT_EQ(encodeMCPMutationError(MCPMutationErrorCode::consent_denied, "Denied"),
              "{\"error\":{\"code\":\"consent_denied\",\"message\":\"Denied\"},\"ok\":false}\n");
    EXPECT_EQ(encodeMCPMutationSuccess(json{{"path", "/a/b"}}),
              "{\"ok\":true,\"result\":{\"path\":\"/a/b\"}}\n");
    EXPECT_EQ(encodeMCPMutationRequest("m", json{{"u", "a/b"}}),
              "{\"args\":{\"u\":\"a/b\"},\"method\":\"m\"}\n");
    for (const auto& info : kMCPMutationErrorCodes) {
        SCOPED_TRACE(info.rawValue);
        const auto code = mutationErrorCode(info.rawValue);
        ASSERT_TRUE(code);
        auto decoded =
            decodeMCPMutationResponse(encodeMCPMutationError(*code, "m", json{{"k", 1}}));
        ASSERT_TRUE(std::holds_alternative<MCPMutationError>(decoded));
        EXPECT_EQ(std::get<MCPMutationError>(decoded).code, *code);
        EXPECT_EQ(std::get<MCPMutationError>(decoded).data, json({{"k", 1}}));
    }
}

}  // namespace
}  // namespace orvo
