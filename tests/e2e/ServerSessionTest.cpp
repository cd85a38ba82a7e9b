// Whole sessions against the real binary over pipes: the wire format, every error, the limits.
#include <string>

#include <gtest/gtest.h>

#include "server/Startup.h"
#include "support/UserAppTest.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"

namespace orvo::test {
namespace {

std::string nested(int depth) {
    // depth 1 is {}, each level wraps the previous in {"a": ...}
    std::string text = "{}";
    for (int level = 1; level < depth; ++level) {
        text = "{\"a\":" + text + "}";
    }
    return text;
}

// An error response line as the server writes it, keys sorted.
std::string errorLine(std::string_view id, int code, std::string_view message) {
    return R"({"error":{"code":)" + std::to_string(code) + R"(,"message":")" +
           std::string(message) + R"("},"id":)" + std::string(id) + R"(,"jsonrpc":"2.0"})";
}

TEST(ServerSessionTest, AnswersEachLineWithTheExactResponse) {
    std::string deepest = nested(32);
    deepest.insert(1, R"("id":1,"method":"ping",)");
    const struct {
        std::string request;
        std::string response;
    } cases[] = {
        {R"({"jsonrpc":"2.0","id":1,"method":"ping"})", R"({"id":1,"jsonrpc":"2.0","result":{}})"},
        {R"({"id":"é✓🙂","method":"ping","params":[1]})",
         R"({"id":"é✓🙂","jsonrpc":"2.0","result":{}})"},
        {deepest + "\r", R"({"id":1,"jsonrpc":"2.0","result":{}})"},
        {R"({"id":null,"method":"resources/list"})",
         R"({"id":null,"jsonrpc":"2.0","result":{"resources":[]}})"},
        {R"({"id":2,"method":"resources/templates/list"})",
         R"({"id":2,"jsonrpc":"2.0","result":{"resourceTemplates":[]}})"},
        {R"({"id":3,"method":"nope"})", errorLine("3", -32601, "Method not found: nope")},
        {R"({"id":4,"method":7})", errorLine("4", -32601, "Method not found: ")},
        {"not json", errorLine("null", -32700, "Parse error")},
        {R"({"id":5,"method":"ping"} trailing)", errorLine("null", -32700, "Parse error")},
        {nested(33), errorLine("null", -32600, "Request exceeds max depth")},
        {R"({"id":6,"method":"tools/call","params":{"arguments":{}}})",
         errorLine("6", -32602, "Missing 'name' in tools/call")},
        {R"({"id":7,"method":"tools/call","params":{"name":"nope"}})",
         errorLine("7", -32602, "Unknown tool: nope")},
        {R"({"id":8,"method":"prompts/get","params":{}})",
         errorLine("8", -32602, "Missing 'name' in prompts/get")},
        {R"({"id":9,"method":"prompts/get","params":{"name":"speak_every_reply","arguments":[]}})",
         errorLine("9", -32602, "speak_every_reply takes no arguments")},
        {R"({"id":10,"method":"prompts/get","params":{"name":"other"}})",
         errorLine("10", -32602, "Unknown prompt: other")},
        {std::string(R"({"id":11,"method":"ping"})").append(1, '\0').append("garbage"),
         errorLine("null", -32700, "Parse error")},
        // Ids come back exactly as sent or not at all: rounding would make two of them one.
        {R"({"id":123456789012345678901234567890,"method":"ping"})",
         errorLine("null", -32600,
                   "Invalid Request: id is a number that cannot be echoed exactly")},
        {R"({"id":1e30,"method":"ping"})", R"({"id":1e+30,"jsonrpc":"2.0","result":{}})"},
    };
    ServerProcess server;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.request.substr(0, 80));
        server.sendLine(c.request);
        EXPECT_EQ(server.readLine(), c.response);
    }
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);
}

TEST(ServerSessionTest, NotificationsAndUndecodableLinesGetNoAnswer) {
    ServerProcess server;
    server.sendLine(R"({"jsonrpc":"2.0","method":"ping"})");
    server.sendLine(R"({"method":"notifications/cancelled","params":{"requestId":1}})");
    server.sendLine("");
    server.send("{\"id\":1,\"method\":\"ping\",\"x\":\"\xC3\x28\"}\n");  // not UTF-8
    server.sendLine(R"({"id":2,"method":"ping"})");
    EXPECT_EQ(server.readLine(), R"({"id":2,"jsonrpc":"2.0","result":{}})");
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);
    EXPECT_EQ(server.readLine(100ms), std::nullopt);
    EXPECT_EQ(server.standardError(), "");
}

TEST(ServerSessionTest, DropsAnOversizeLineWithOneDiagnosticAndGoesOn) {
    ServerProcess server;
    // Exactly the limit is still a line (a padded valid request), one byte more is dropped.
    std::string exact = R"({"id":1,"method":"ping","pad":")";
    exact += std::string(1048576 - exact.size() - 2, 'x') + "\"}";
    ASSERT_EQ(exact.size(), 1048576u);
    server.sendLine(exact);
    EXPECT_EQ(server.readLine(), R"({"id":1,"jsonrpc":"2.0","result":{}})");
    server.sendLine(std::string(2 * 1048576, 'x'));
    server.sendLine(R"({"id":2,"method":"ping"})");
    EXPECT_EQ(server.readLine(), R"({"id":2,"jsonrpc":"2.0","result":{}})");
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);
    EXPECT_EQ(server.standardError(), "orvo-agent-mcp: dropped oversize line (>1048576 bytes)\n");
}

TEST(ServerSessionTest, VersionComesFromResourcesBesideTheRealBinary) {
    TempDir dir;
    const auto install = dir.path() / "install";
    std::filesystem::create_directories(install / "bin");
    std::filesystem::copy_file(ORVO_BINARY_PATH, install / "bin" / "orvo-agent-mcp");
    writeFile(install / "Resources" / "VERSION", "1.4.2\n");
    std::filesystem::create_directories(dir.path() / "elsewhere");
    std::filesystem::create_symlink(install / "bin" / "orvo-agent-mcp",
                                    dir.path() / "elsewhere" / "orvo");

    ProcessOptions options;
    options.program = (dir.path() / "elsewhere" / "orvo").string();
    ServerProcess server(options);
    json response = server.request(toolCall(1, "orvo_version"));
    EXPECT_EQ(response["result"],
              json::parse(R"({"content":[{"type":"text","text":"1.4.2"}],"isError":false})"));
    response = server.request({{"id", 2}, {"method", "initialize"}, {"params", json::object()}});
    EXPECT_EQ(response["result"]["serverInfo"],
              json::parse(R"({"name":"orvo-agent","version":"1.4.2"})"));
    EXPECT_EQ(response["result"]["protocolVersion"], "2024-11-05");
}

// The flags and the environment reach the same selection in the process as in readStartupSettings,
// and only a selection with speak offers the voice prompt and paragraph.
TEST(ServerSessionTest, FlagsAndEnvironmentChooseTheToolsAndTheVoice) {
    const struct {
        std::vector<std::string> arguments;
        const char* origin;
        bool voice;
    } cases[] = {
        {{}, "", true},
        {{"--toolsets", " state , nope"}, "", false},
        {{"--read-only", "--toolsets"}, "", false},  // speak is not read-only
        {{}, "1", false},  // the app's own assistant speaks through the app
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments) + " origin " + c.origin);
        ProcessOptions options;
        options.arguments = c.arguments;
        options.environment = {{"ORVO_ASSISTANT_ORIGIN", c.origin}};
        ServerProcess server(options);
        std::vector<std::string> arguments = {options.program};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const ToolRegistry registry = ToolRegistry::assemble(
            registeredTools(), readStartupSettings(arguments, c.origin, nullptr).selection);
        json expected = json::array();
        for (const MCPTool* tool : registry.tools()) {
            expected.push_back(tool->name());
        }
        json listing = server.request({{"id", 1}, {"method", "tools/list"}});
        json names = json::array();
        for (const json& tool : listing["result"]["tools"]) {
            names.push_back(tool["name"]);
        }
        EXPECT_EQ(names, expected);

        json result = server.request({{"id", 2}, {"method", "initialize"}})["result"];
        EXPECT_EQ(result["capabilities"],
                  json::parse(
                      c.voice ? R"({"prompts":{"listChanged":false},"tools":{"listChanged":true}})"
                              : R"({"tools":{"listChanged":true}})"));
        const std::string instructions = result["instructions"];
        EXPECT_EQ(instructions.ends_with("require one-time connected-agent consent."), !c.voice);
        EXPECT_EQ(instructions.find("\nSESSION VOICE: ") != std::string::npos, c.voice);
        json prompts = server.request({{"id", 3}, {"method", "prompts/list"}});
        EXPECT_EQ(prompts["result"]["prompts"].size(), c.voice ? 1u : 0u);
        const json prompt = server.request(
            {{"id", 4},
             {"method", "prompts/get"},
             {"params", {{"name", "speak_every_reply"}, {"arguments", json::object()}}}});
        EXPECT_EQ(prompt.contains("result"), c.voice) << prompt;
    }
}

class ThrowawayHomeTest : public UserAppTest {};

// The home comes from the user database, not from the environment.
TEST_F(ThrowawayHomeTest, DocsAndSettingsAreTheUsersOwn) {
    user_->writeHomeFile(".config/orvo-agent/settings.json",
                         R"({"dictationHotkey":"fn","assistantEnabled":true})");
    ServerProcess server(asUser());
    const std::string instructions =
        server.request({{"id", 1}, {"method", "initialize"}})["result"]["instructions"];
    EXPECT_NE(instructions.find(" Docs: <file> points into " + user_->home.string() +
                                "/Library/Application Support/orvo-agent/docs/; start at "
                                "INDEX.md. "),
              std::string::npos)
        << instructions;
    json response = server.request(toolCall(2, "current_settings"));
    const json snapshot =
        json::parse(response["result"]["content"][0].value("text", ""), nullptr, false);
    EXPECT_EQ(snapshot.value("dictationHotkey", ""), "fn");
    EXPECT_EQ(snapshot.value("assistantEnabled", true), false);  // the typed decode failed
}

}  // namespace
}  // namespace orvo::test
