// Sessions of the real binary against a fake app, as the user whose app it is.
#include <gtest/gtest.h>

#include "support/UserAppTest.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"

namespace orvo::test {
namespace {

using AppSessionTest = UserAppTest;

TEST_F(AppSessionTest, EveryForwardedToolReachesTheAppUnchanged) {
    ServerProcess server(asUser({"--agent", "claude"}));
    const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), {});
    std::size_t forwarded = 0;
    const json arguments = {{"not_in_any_schema", {1, "a/b", nullptr}}, {"templateName", nullptr}};
    int id = 0;
    for (const MCPTool* tool : registry.tools()) {
        const std::string name(tool->name());
        SCOPED_TRACE(name);
        const std::size_t before = app_->received().size();
        const json response = server.request(toolCall(++id, name, arguments));
        ASSERT_TRUE(response.contains("result") || response.contains("error"));
        // Tools that read the user's context also ask the app for its audible cue, on the side.
        const std::vector<ReceivedRequest> received = app_->received();
        auto call = std::find_if(
            received.begin() + static_cast<std::ptrdiff_t>(before), received.end(),
            [&](const ReceivedRequest& request) { return request.request["method"] == name; });
        if (call == received.end()) {
            continue;  // answered locally
        }
        ++forwarded;
        json expected = arguments;
        expected["_agent"] = "claude";
        if (name.starts_with("computer_")) {
            expected["_cancelOnDisconnect"] = true;
        }
        EXPECT_EQ(call->request["args"], expected);
        EXPECT_EQ(response["result"],
                  json::parse(R"({"content":[{"type":"text","text":"{}"}],"isError":false})"));
    }
    // Everything but the tools that answer from local files goes to the app.
    EXPECT_GE(forwarded, registry.tools().size() - 8);
}

TEST_F(AppSessionTest, RefusalsAndOddResultsReachTheAgentAsErrors) {
    app_->on("get_meeting_notes",
             errorReply("consent_denied", "Denied", json{{"code", "x"}, {"n", 1}}));
    app_->on("list_meetings", successReply("just text"));
    ServerProcess server(asUser());
    EXPECT_EQ(server.request(toolCall(1, "get_meeting_notes", {{"id", "m-42"}})),
              json::parse(R"({"jsonrpc":"2.0","id":1,"error":{"code":-32012,"message":"Denied",
                  "data":{"code":"consent_denied","n":1}}})"));
    EXPECT_EQ(server.request(toolCall(2, "list_meetings")),
              json::parse(R"({"jsonrpc":"2.0","id":2,"error":{"code":-32603,
                  "message":"Internal error: tool result is not a JSON object or array"}})"));
    // Deep nesting in a wide result cannot multiply the answer by its indentation.
    std::string wide = std::string(R"({"ok":true,"result":)").append(250, '[').append("0");
    for (int i = 0; i < 100000; ++i) {
        wide.append(",0");
    }
    app_->on("list_meetings", FakeReply{wide.append(250, ']').append("}")});
    server.sendLine(dumpCompact(toolCall(3, "list_meetings")));
    const std::optional<std::string> line = server.readLine();
    ASSERT_TRUE(line);
    EXPECT_LT(line->size(), 4 * wide.size());
}

// Limits, duplicates and cancellation are the server's unit tests; what only a real process
// shows is the end of input with calls in flight: each is half-closed, none answered, exit 0.
TEST_F(AppSessionTest, EndOfInputAbandonsTheCallsInFlightAndExits) {
    app_->on("computer_inspect", heldReply());
    app_->on("computer_click", heldReply());
    ServerProcess server(asUser());
    int id = 0;
    for (const char* tool : {"computer_click", "computer_inspect", "computer_inspect"}) {
        server.sendLine(dumpCompact(toolCall(++id, tool)));
    }
    ASSERT_TRUE(app_->waitForRequests(3));
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);
    EXPECT_TRUE(app_->waitForFinished(3));
    for (const ReceivedRequest& request : app_->received()) {
        EXPECT_TRUE(request.disconnected);
    }
    EXPECT_EQ(server.readLine(std::chrono::milliseconds(100)), std::nullopt);
}

TEST_F(AppSessionTest, AnswersDoNotWaitForAToolThatWaitsForTheApp) {
    FakeReply slow = successReply(json::object());
    slow.delay = 1500ms;
    app_->on("list_meetings", slow);
    ServerProcess server(asUser());
    ASSERT_EQ(server.request({{"id", 0}, {"method", "ping"}})["id"], 0);
    // Read together, so the ping's answer could be held back for the tool's.
    server.send(R"({"id":1,"method":"ping"})"
                "\n" +
                dumpCompact(toolCall(2, "list_meetings")) + "\n");
    EXPECT_EQ(server.readLine(1000ms), R"({"id":1,"jsonrpc":"2.0","result":{}})");
}

}  // namespace
}  // namespace orvo::test
