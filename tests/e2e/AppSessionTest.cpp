// Sessions of the real binary against a fake app, as the user whose app it is: what only a
// process shows, from the home it finds to its end of input. What each answer and record holds
// is the server's unit tests'.
#include <thread>

#include <gtest/gtest.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

using AppSessionTest = UserAppTest;

TEST_F(AppSessionTest, ReadsAreRecordedInTheUsersHomeAndCuedOncePerBurst) {
    // HOME points elsewhere, so that only a home from the user database finds the files.
    ServerProcess server(asUser({"--agent", "codex"}, {{"HOME", "/nonexistent"}}));
    const std::string instructions =
        server.request({{"id", 0}, {"method", "initialize"}})["result"]["instructions"];
    EXPECT_NE(instructions.find(" points into " + user_->home.string() +
                                "/Library/Application Support/orvo-agent/docs/;"),
              std::string::npos)
        << instructions;
    for (int id = 1; id <= 3; ++id) {
        ASSERT_TRUE(
            server.request(toolCall(id, "get_meeting", {{"id", "m-42"}})).contains("result"));
    }
    std::this_thread::sleep_for(500ms);  // the cue is never waited for
    std::size_t cues = 0;
    for (const ReceivedRequest& request : app_->received()) {
        cues += request.request.value("method", "") == "connected_app_activity_cue" ? 1 : 0;
        EXPECT_EQ(request.request["args"].value("_agent", ""), "codex");
    }
    EXPECT_EQ(cues, 1u);
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);  // every queued record is written before it exits
    const std::filesystem::path log = user_->home / ".config/orvo-agent/mcp-context-reads.jsonl";
    EXPECT_EQ(splitLines(readFile(log).value_or("")).size(), 3u);
}

// Limits, duplicates and cancellation are the server's unit tests; what only a real process
// shows is that answers read together do not wait for a slow tool, and the end of input with
// calls in flight: each is half-closed, none answered, exit 0.
TEST_F(AppSessionTest, EndOfInputAbandonsTheCallsInFlightAndExits) {
    app_->on("computer_inspect", heldReply());
    app_->on("computer_click", heldReply());
    FakeReply slow = successReply(json::object());
    slow.delay = 1500ms;
    app_->on("list_meetings", slow);
    ServerProcess server(asUser());
    int id = 0;
    for (const char* tool : {"computer_click", "computer_inspect", "computer_inspect"}) {
        server.sendLine(dumpCompact(toolCall(++id, tool)));
    }
    ASSERT_TRUE(app_->waitForRequests(3));
    // Read together, so the ping's answer could be held back for the tool's.
    server.send(R"({"id":4,"method":"ping"})"
                "\n" +
                dumpCompact(toolCall(5, "list_meetings")) + "\n");
    EXPECT_EQ(server.readLine(1000ms), R"({"id":4,"jsonrpc":"2.0","result":{}})");
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);
    EXPECT_TRUE(app_->waitForFinished(4));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(app_->received()[i].disconnected);
    }
    EXPECT_EQ(server.readLine(),
              R"({"id":5,"jsonrpc":"2.0","result":{"content":[{"text":"{}","type":"text"}],)"
              R"("isError":false}})");
    EXPECT_EQ(server.readLine(100ms), std::nullopt);
}

}  // namespace
}  // namespace orvo::test
