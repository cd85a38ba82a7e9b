#include "server/Server.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include "applink/AppClient.h"
#include "protocol/MCPSocketPath.h"
#include "support/FakeApp.h"
#include "support/Platform.h"
#include "support/ServerProcess.h"
#include "tools/ToolCatalog.h"
#include "userfiles/ContextAuditLog.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Observing runs beside others, acting one at a time, ordinary on the reading thread.
constexpr ToolRow kRows[] = {
    {"computer_inspect", {{MCPToolset::computer}, kComputerUse, true}, "test"},
    {"computer_click", {{MCPToolset::computer}, kComputerUse, false}, "test"},
    {"get_meeting_notes", {{MCPToolset::meetings}, kReading, true}, "test"},
};
const MCPTool kInspect(kRows[0]), kClick(kRows[1]), kNotes(kRows[2]);
const MCPTool* const kTools[] = {&kInspect, &kClick, &kNotes};

// A server in this process for the agent "claude", offering every tool, fed line by line, with
// its output on a pipe. Members are destroyed in reverse: the server ends before the app and the
// pipe it writes to.
class ServerTest : public ::testing::Test {
protected:
    explicit ServerTest(std::span<const MCPTool* const> tools = registeredTools())
        : registry_(ToolRegistry::assemble(tools, {})) {}
    void SetUp() override { ASSERT_TRUE(piped_); }
    // A record still queued would recreate the home after the test removed it.
    void TearDown() override { EXPECT_TRUE(log_.drain(10s)); }

    ServerOptions options() {
        // The program sits in bin/ of the home, so that a test can lay out its version file.
        return {{home_.path(), (home_.path() / "bin/orvo-agent-mcp").string(), &client_, &log_},
                "/docs/",
                pipe_[1],
                {}};
    }
    void send(const json& message) { server_.handleLine(dumpCompact(message)); }
    void call(const json& id, std::string_view tool, const json& arguments = json::object()) {
        send(test::toolCall(id, tool, arguments));
    }
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
    // The audit lines so far, without their time.
    json records() {
        EXPECT_TRUE(log_.drain(10s));
        json lines = json::array();
        for (const std::string& line : test::splitLines(test::readFile(logFile_).value_or(""))) {
            lines.push_back(json::parse(line));
            lines.back().erase("ts");
        }
        return lines;
    }

    test::TempDir home_;
    int pipe_[2] = {-1, -1};
    const bool piped_ = test::openPipe(pipe_) == 0;
    const UniqueFd readEnd_{pipe_[0]}, writeEnd_{pipe_[1]};
    std::string pending_;
    test::FakeApp app_{MCPSocketPath::resolve(home_.path())};
    AppClient client_{AppClientOptions{home_.path(), "claude", false, {}}};
    const std::filesystem::path logFile_ = home_.path() / "reads.jsonl";
    ContextAuditLog log_{ContextAuditLogOptions{logFile_}};
    ToolRegistry registry_;
    Server server_{registry_, options()};
};

class ServerTrackingTest : public ServerTest {
protected:
    ServerTrackingTest() : ServerTest(kTools) {}
};

TEST_F(ServerTest, EveryForwardedToolReachesTheAppUnchanged) {
    const json arguments = {{"not_in_any_schema", {1, "a/b", nullptr}}, {"templateName", nullptr}};
    std::size_t forwarded = 0;
    int id = 0;
    for (const MCPTool* tool : registry_.tools()) {
        const std::string name(tool->name());
        SCOPED_TRACE(name);
        const std::size_t before = app_.received().size();
        call(++id, name, arguments);
        const json answer = response();
        if (app_.received().size() == before) {
            continue;  // answered from local files
        }
        ++forwarded;
        json expected = arguments;
        expected["_agent"] = "claude";
        if (name.starts_with("computer_")) {
            expected["_cancelOnDisconnect"] = true;
        }
        EXPECT_EQ(app_.received()[before].request, json({{"method", name}, {"args", expected}}));
        EXPECT_EQ(answer["result"],
                  json::parse(R"({"content":[{"type":"text","text":"{}"}],"isError":false})"));
    }
    // Everything but the tools that answer from local files goes to the app.
    EXPECT_GE(forwarded, registry_.tools().size() - 8);
}

TEST_F(ServerTest, RefusalsAndOddResultsReachTheAgentAsErrors) {
    app_.on("get_meeting_notes",
            test::errorReply("consent_denied", "Denied", json{{"code", "x"}, {"n", 1}}));
    app_.on("list_meetings", test::successReply("just text"));
    call(1, "get_meeting_notes");
    EXPECT_EQ(response(), json::parse(R"({"jsonrpc":"2.0","id":1,"error":{"code":-32012,
        "message":"Denied","data":{"code":"consent_denied","n":1}}})"));
    call(2, "list_meetings");
    EXPECT_EQ(response(), json::parse(R"({"jsonrpc":"2.0","id":2,"error":{"code":-32603,
        "message":"Internal error: tool result is not a JSON object or array"}})"));
    // Deep nesting in a wide result cannot multiply the answer by its indentation. Computer use
    // answers from its own thread, so a long line cannot fill the pipe this thread reads.
    std::string wide = std::string(R"({"ok":true,"result":)").append(250, '[').append("0");
    for (int i = 0; i < 100000; ++i) {
        wide.append(",0");
    }
    app_.on("computer_inspect", test::FakeReply{wide.append(250, ']').append("}")});
    call(3, "computer_inspect");
    EXPECT_LT(dumpCompact(response()).size(), 4 * wide.size());
}

// The record names the app the reply named, and the argument the call was about.
TEST_F(ServerTest, ReadsThroughTheAppAreRecordedWithWhatTheAppNamed) {
    app_.on("computer_read",
            test::successReply(
                {{"app", "Notes"}, {"bundle_id", "com.example.notes"}, {"text", "secret"}}));
    app_.on("session_read", test::errorReply("consent_denied", "The owner said no"));
    call(1, "computer_read", {{"state_id", "s-1"}});
    const json read = response();
    call(2, "session_read", {{"task_id", "t-7"}});
    call(3, "set_tts_voice", {{"voice", "Ava"}});  // reads nothing of the user's
    json expected = json::parse(
        R"([{"tool":"computer_read","result":"ok","app":"Notes","bundle_id":"com.example.notes"},
            {"tool":"session_read","result":"error: The owner said no","task_id":"t-7"}])");
    expected[0]["output_bytes"] = read["result"]["content"][0]["text"].get<std::string>().size();
    EXPECT_EQ(records(), expected);
}

// Only a selection with speak offers the voice: its capability, its prompt and its paragraph.
TEST_F(ServerTest, InitializeNamesTheVersionTheDocsAndTheVoiceOffer) {
    test::writeFile(home_.path() / "Resources/VERSION", "1.4.2\n");
    const ToolRegistry noSpeak =
        ToolRegistry::assemble(registeredTools(), {true, MCPToolsets::all(), false});
    for (const bool voice : {true, false}) {
        SCOPED_TRACE(voice ? "speak offered" : "no speak");
        Server server(voice ? registry_ : noSpeak, options());
        const auto ask = [&](const json& request) {
            server.handleLine(dumpCompact(request));
            return response()["result"];
        };
        json result = ask({{"id", 1}, {"method", "initialize"}});
        const std::string instructions = result["instructions"];
        EXPECT_TRUE(
            instructions.starts_with("ORVO TOOLS: most tools need Orvo running. Docs: "
                                     "<file> points into /docs/; start at INDEX.md. "));
        EXPECT_EQ(instructions.find("\nSESSION VOICE: ") != std::string::npos, voice);
        result.erase("instructions");
        json expected = json::parse(R"({"protocolVersion":"2024-11-05","capabilities":
            {"tools":{"listChanged":true}},"serverInfo":{"name":"orvo-agent","version":"1.4.2"}})");
        if (voice) {
            expected["capabilities"]["prompts"] = {{"listChanged", false}};
        }
        EXPECT_EQ(result, expected);
        EXPECT_EQ(ask({{"id", 2}, {"method", "prompts/list"}})["prompts"].size(), voice ? 1u : 0u);
        EXPECT_EQ(
            ask({{"id", 3},
                 {"method", "prompts/get"},
                 {"params",
                  {{"name", "speak_every_reply"}, {"arguments", json::object()}}}})["messages"],
            voice ? json::parse(R"([{"role":"user","content":{"type":"text","text":)"
                                R"("For this session, use the Orvo MCP `speak` tool on )"
                                R"(every assistant turn until I explicitly say )"
                                R"(“stop speaking.”"}}])")
                  : json());
    }
}

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
        EXPECT_EQ(request.request["args"],
                  json({{"_agent", "claude"}, {"_cancelOnDisconnect", true}}));
        EXPECT_TRUE(request.disconnected);
    }
    EXPECT_EQ(response(100ms), nullptr);  // cancelled calls are never answered
}

// A number and a string are two ids, and an id is free again once its call has ended. A
// cancelled call is half-closed and never answered.
TEST_F(ServerTrackingTest, IdsStayApartAndACancelledCallIsNeverAnswered) {
    app_.on("computer_click", test::heldReply());
    call(5, "computer_click");
    ASSERT_TRUE(app_.waitForRequests(1));
    call(5, "computer_inspect");
    EXPECT_EQ(response(), json::parse(R"({"jsonrpc":"2.0","id":5,"error":{"code":-32600,
        "message":"Duplicate request id"}})"));
    call("5", "computer_inspect");
    EXPECT_EQ(response()["id"], "5");  // the observer ran beside the held click
    cancel("5");                       // another id: no effect
    cancel(99);                        // nothing by that id
    send({{"id", 1}, {"method", "ping"}});
    EXPECT_EQ(response()["id"], 1);
    EXPECT_FALSE(app_.received()[0].disconnected);
    cancel(5);
    ASSERT_TRUE(app_.waitForFinished(2));
    EXPECT_TRUE(app_.received()[0].disconnected);
    send({{"id", 2}, {"method", "ping"}});
    EXPECT_EQ(response()["id"], 2);  // the cancelled call wrote nothing before it
    // The id is free again once its call has ended, a moment after the app saw it go.
    json answer;
    for (int attempt = 0; attempt < 100 && !answer.contains("result"); ++attempt) {
        call(5, "computer_inspect");
        answer = response();
    }
    EXPECT_TRUE(answer.contains("result")) << answer;
}

// The server pretty-prints the app's result.
TEST_F(ServerTrackingTest, ActingCallsRunOneAtATimeInOrder) {
    test::FakeReply slow = test::successReply({{"ok", 1}});
    slow.delay = 100ms;
    app_.on("computer_click", slow);
    const auto start = std::chrono::steady_clock::now();
    for (int id = 0; id < 4; ++id) {
        call(id, "computer_click");
    }
    for (int id = 0; id < 4; ++id) {
        const json answer = response();
        EXPECT_EQ(answer["id"], id);
        EXPECT_EQ(answer["result"]["content"][0]["text"], "{\n  \"ok\": 1\n}");
    }
    // Any overlap of the four would finish sooner.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 400ms);
}

TEST_F(ServerTrackingTest, TenThousandCallsLeaveNoDescriptorBehind) {
    const std::size_t before = test::openDescriptorCount();
    app_.on("get_meeting_notes", test::successReply({{"ok", true}}));
    app_.on("computer_inspect", test::errorReply("refused", "no"));
    app_.on("computer_click", test::heldReply());
    for (std::size_t i = 0; i < 10000; ++i) {
        if (i % 50 == 1) {
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
