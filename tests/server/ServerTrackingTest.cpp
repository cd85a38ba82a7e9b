#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include "applink/AppClient.h"
#include "protocol/MCPSocketPath.h"
#include "server/Server.h"
#include "support/FakeApp.h"
#include "support/Platform.h"
#include "support/ServerProcess.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Observing runs beside others, acting one at a time, ordinary on the reading thread.
constexpr ToolRow kRows[] = {
    {"computer_inspect", {{MCPToolset::computer}, kComputerUse, true}, "test"},
    {"computer_click", {{MCPToolset::computer}, kComputerUse, false}, "test"},
    {"get_meeting_notes", {{MCPToolset::meetings}, kReading, true}, "test"},
    {"slow", {{MCPToolset::state}, kReading, true}, "test"},
};
const MCPTool kInspect(kRows[0]), kClick(kRows[1]), kNotes(kRows[2]), kSlow(kRows[3]);
const MCPTool* const kTools[] = {&kInspect, &kClick, &kNotes};

// A server in this process, fed line by line, with its output on a pipe. Members are destroyed
// in reverse: the server ends before the app and the pipe it writes to.
class ServerTrackingTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(piped_); }
    void send(const json& message) { server_.handleLine(dumpCompact(message)); }
    void call(const json& id, std::string_view tool) { send(test::toolCall(id, tool)); }
    void cancel(const json& id) {
        send({{"method", "notifications/cancelled"}, {"params", {{"requestId", id}}}});
    }
    // The next response line, or null if none comes in time.
    json response(std::chrono::milliseconds timeout = 5s) {
        std::size_t newline = 0;
        while ((newline = pending_.find('\n')) == std::string::npos) {
            pollfd fd{pipe_[0], POLLIN, 0};
            char chunk[65536];
            if (::poll(&fd, 1, static_cast<int>(timeout.count())) <= 0) {
                return nullptr;
            }
            pending_.append(chunk, std::max<ssize_t>(::read(pipe_[0], chunk, sizeof chunk), 0));
        }
        json line = json::parse(pending_.substr(0, newline));
        pending_.erase(0, newline + 1);
        return line;
    }

    test::TempDir home_;
    int pipe_[2] = {-1, -1};
    const bool piped_ = test::openPipe(pipe_) == 0;
    const UniqueFd readEnd_{pipe_[0]}, writeEnd_{pipe_[1]};
    std::string pending_;
    test::FakeApp app_{MCPSocketPath::resolve(home_.path())};
    AppClient client_{AppClientOptions{home_.path(), std::nullopt, false, [](std::string_view m) {
                                           return m == "slow" ? 20ms
                                                              : std::chrono::milliseconds(5s);
                                       }}};
    ToolRegistry registry_ = ToolRegistry::assemble(kTools, {});
    Server server_{registry_, ServerOptions{{home_.path(), "", &client_}, "/docs/", pipe_[1], {}}};
};

TEST_F(ServerTrackingTest, SixteenStalledCallsProceedAndTheSeventeenthIsRefused) {
    app_.on("computer_inspect", test::heldReply());
    for (int id = 1; id <= 16; ++id) {
        call(id, "computer_inspect");
    }
    ASSERT_TRUE(app_.waitForRequests(16));
    call(17, "computer_click");
    EXPECT_EQ(response(), json::parse(R"({"jsonrpc":"2.0","id":17,"error":{"code":-32000,
        "message":"Maximum number of pending Computer Use requests reached"}})"));
    server_.finishInput();
    EXPECT_TRUE(app_.waitForFinished(16));
    for (const auto& request : app_.received()) {
        EXPECT_EQ(request.request["args"], json({{"_cancelOnDisconnect", true}}));
        EXPECT_TRUE(request.disconnected);
    }
    EXPECT_EQ(response(100ms), nullptr);  // cancelled calls are never answered
}

TEST_F(ServerTrackingTest, DuplicateIdsAreRefusedWhileNumberAndStringIdsStayApart) {
    app_.on("computer_click", test::heldReply());
    call(5, "computer_click");
    call(5, "computer_inspect");
    EXPECT_EQ(response(), json::parse(R"({"jsonrpc":"2.0","id":5,"error":{"code":-32600,
        "message":"Duplicate request id"}})"));
    call("5", "computer_inspect");
    EXPECT_EQ(response()["id"], "5");      // the observer ran beside the held click
    ASSERT_TRUE(app_.waitForRequests(2));  // the click too has reached the app
    cancel(5);
    EXPECT_TRUE(app_.waitForFinished(2));
    call(5, "computer_inspect");  // the id is free again once its call has ended
    EXPECT_EQ(response()["id"], 5);
}

TEST_F(ServerTrackingTest, ObserversOverlapWhileActingCallsRunOneAtATime) {
    test::FakeReply slow = test::successReply(json::object());
    slow.delay = 100ms;
    app_.on("computer_inspect", slow);
    app_.on("computer_click", slow);
    for (int id = 0; id < 4; ++id) {
        call(id, "computer_click");
    }
    for (int id = 0; id < 4; ++id) {
        EXPECT_EQ(response()["id"], id);  // in order, one after another
    }
    EXPECT_EQ(app_.peakConcurrency(), 1u);
    for (int id = 10; id < 14; ++id) {
        call(id, "computer_inspect");
    }
    for (int i = 0; i < 4; ++i) {
        EXPECT_NE(response(), nullptr);
    }
    EXPECT_GE(app_.peakConcurrency(), 2u);
}

TEST_F(ServerTrackingTest, CancellationHalfClosesTheCallAndSilencesIt) {
    app_.on("computer_click", test::heldReply());
    call(3, "computer_click");
    ASSERT_TRUE(app_.waitForRequests(1));
    cancel("3");  // another id: no effect
    cancel(99);   // nothing by that id
    send({{"id", 1}, {"method", "ping"}});
    EXPECT_EQ(response()["id"], 1);
    EXPECT_FALSE(app_.received()[0].disconnected);
    cancel(3);
    ASSERT_TRUE(app_.waitForFinished(1));
    EXPECT_TRUE(app_.received()[0].disconnected);
    send({{"id", 2}, {"method", "ping"}});
    EXPECT_EQ(response()["id"], 2);  // the cancelled call wrote nothing before it
}

// The client pins the request and its half-close; the server pretty-prints the app's result.
TEST_F(ServerTrackingTest, OrdinaryCallsAnswerWithThePrettyPrintedResult) {
    app_.on("get_meeting_notes", test::successReply({{"ok", 1}}));
    call(1, "get_meeting_notes");
    EXPECT_EQ(response()["result"]["content"][0]["text"], "{\n  \"ok\": 1\n}");
}

TEST_F(ServerTrackingTest, TenThousandCallsLeaveNoDescriptorBehind) {
    const std::size_t before = test::openDescriptorCount();
    app_.on("get_meeting_notes", test::successReply({{"ok", true}}));
    app_.on("computer_inspect", test::errorReply("refused", "no"));
    app_.on("computer_click", test::heldReply());
    test::FakeReply late = test::successReply(json::object());
    late.delay = 60ms;
    app_.on("slow", late);
    for (std::size_t i = 0; i < 10000; ++i) {
        if (i % 500 == 0) {
            EXPECT_EQ(kSlow.call(json::object(), {home_.path(), "", &client_}).error().code,
                      -32013);
        } else if (i % 50 == 1) {
            call(i, "computer_click");
            ASSERT_TRUE(app_.waitForRequests(i + 1));
            cancel(i);
        } else {
            call(i, i % 2 == 0 ? "get_meeting_notes" : "computer_inspect");
            ASSERT_NE(response(), nullptr) << i;
        }
        ASSERT_TRUE(app_.waitForFinished(i + 1)) << i;
    }
    server_.finishInput();
    EXPECT_EQ(test::openDescriptorCount(), before);
}

}  // namespace
}  // namespace orvo
