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

// Response lines as the server writes them, keys sorted.
std::string errorLine(std::string_view id, int code, std::string_view message) {
    return R"({"error":{"code":)" + std::to_string(code) + R"(,"message":")" +
           std::string(message) + R"("},"id":)" + std::string(id) + R"(,"jsonrpc":"2.0"})";
}
std::string pong(std::string_view id) {
    return R"({"id":)" + std::string(id) + R"(,"jsonrpc":"2.0","result":{}})";
}

TEST(ServerSessionTest, AnswersEachLineWithTheExactResponse) {
    std::string deepest = nested(32);
    deepest.insert(1, R"("id":1,"method":"ping",)");
    // Exactly the line limit is still a line; one byte more is dropped with one diagnostic.
    std::string exact = R"({"id":1,"method":"ping","pad":")";
    exact += std::string(1048576 - exact.size() - 2, 'x') + "\"}";
    const struct {
        std::string request;  // lines that get no answer come before the one that does
        std::string response;
    } cases[] = {
        {R"({"jsonrpc":"2.0","id":1,"method":"ping"})", pong("1")},
        {R"({"id":"é✓🙂","method":"ping","params":[1]})", pong(R"("é✓🙂")")},
        {deepest + "\r", pong("1")},
        {exact, pong("1")},
        {R"({"jsonrpc":"2.0","method":"ping"})"
         "\n\n"
         R"({"method":"notifications/cancelled","params":{"requestId":1}})"
         "\n{\"id\":1,\"method\":\"ping\",\"x\":\"\xC3\x28\"}\n" +  // not UTF-8
             std::string(1048577, 'x') +
             "\n" + R"({"id":2,"method":"ping"})",
         pong("2")},
        {R"({"id":null,"method":"resources/list"})",
         R"({"id":null,"jsonrpc":"2.0","result":{"resources":[]}})"},
        {R"({"id":2,"method":"resources/templates/list"})",
         R"({"id":2,"jsonrpc":"2.0","result":{"resourceTemplates":[]}})"},
        {R"({"id":3,"method":"nope"})", errorLine("3", -32601, "Method not found: nope")},
        {R"({"id":4,"method":7})", errorLine("4", -32601, "Method not found: ")},
        {"not json", errorLine("null", -32700, "Parse error")},
        {std::string(R"({"id":11,"method":"ping"})").append(1, '\0').append("garbage"),
         errorLine("null", -32700, "Parse error")},
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
        // Ids come back exactly as sent or not at all: rounding would make two of them one.
        {R"({"id":123456789012345678901234567890,"method":"ping"})",
         errorLine("null", -32600,
                   "Invalid Request: id is a number that cannot be echoed exactly")},
        {R"({"id":1e30,"method":"ping"})", pong("1e+30")},
    };
    ServerProcess server;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.request.substr(0, 80));
        server.sendLine(c.request);
        EXPECT_EQ(server.readLine(), c.response);
    }
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);
    EXPECT_EQ(server.standardError(), "orvo-agent-mcp: dropped oversize line (>1048576 bytes)\n");
}

// The version file is found beside the binary itself, not beside the link the agent started.
TEST(ServerSessionTest, VersionComesFromResourcesBesideTheRealBinary) {
    TempDir dir;
    const std::filesystem::path binary = dir.path() / "install/bin/orvo-agent-mcp";
    writeFile(dir.path() / "install/Resources/VERSION", "1.4.2\n");
    std::filesystem::create_directories(binary.parent_path());
    std::filesystem::copy_file(ORVO_BINARY_PATH, binary);
    std::filesystem::create_symlink(binary, dir.path() / "orvo");
    ProcessOptions options;
    options.program = (dir.path() / "orvo").string();
    ServerProcess server(options);
    EXPECT_EQ(server.request(toolCall(1, "orvo_version"))["result"],
              json::parse(R"({"content":[{"type":"text","text":"1.4.2"}],"isError":false})"));
    const json result = server.request({{"id", 2}, {"method", "initialize"}})["result"];
    EXPECT_EQ(result["serverInfo"], json::parse(R"({"name":"orvo-agent","version":"1.4.2"})"));
    EXPECT_EQ(result["protocolVersion"], "2024-11-05");
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
        const json listing = server.request({{"id", 1}, {"method", "tools/list"}});
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
        EXPECT_EQ(result["instructions"].get<std::string>().find("\nSESSION VOICE: ") !=
                      std::string::npos,
                  c.voice);
        EXPECT_EQ(
            server.request({{"id", 3}, {"method", "prompts/list"}})["result"]["prompts"].size(),
            c.voice ? 1u : 0u);
        json prompt = server.request(
            {{"id", 4},
             {"method", "prompts/get"},
             {"params", {{"name", "speak_every_reply"}, {"arguments", json::object()}}}});
        EXPECT_EQ(prompt["result"]["messages"],
                  c.voice ? json::parse(R"([{"role":"user","content":{"type":"text","text":)"
                                        R"("For this session, use the Orvo MCP `speak` tool on )"
                                        R"(every assistant turn until I explicitly say )"
                                        R"(“stop speaking.”"}}])")
                          : json());
    }
}

using ThrowawayHomeTest = ThrowawayUserTest;

// The home comes from the user database, whatever HOME says.
TEST_F(ThrowawayHomeTest, TheDocsAreInTheUsersOwnHome) {
    ServerProcess server(asUser({}, {{"HOME", "/nonexistent"}}));
    const std::string instructions =
        server.request({{"id", 1}, {"method", "initialize"}})["result"]["instructions"];
    EXPECT_NE(instructions.find(" Docs: <file> points into " + user_->home.string() +
                                "/Library/Application Support/orvo-agent/docs/; start at "
                                "INDEX.md. "),
              std::string::npos)
        << instructions;
}

}  // namespace
}  // namespace orvo::test
