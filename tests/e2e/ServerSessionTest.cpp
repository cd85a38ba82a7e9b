// Whole sessions against the real binary over pipes: the wire format, every error, the limits.
#include <string>

#include <gtest/gtest.h>

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

TEST(ServerSessionTest, AnswersEachLineWithTheExactResponse) {
    const struct {
        std::string request;
        std::string response;
    } cases[] = {
        {R"({"jsonrpc":"2.0","id":1,"method":"ping"})", R"({"id":1,"jsonrpc":"2.0","result":{}})"},
        {R"({"id":"a/b","method":"ping","params":[1]})",
         R"({"id":"a/b","jsonrpc":"2.0","result":{}})"},
        {R"({"id":null,"method":"resources/list"})",
         R"({"id":null,"jsonrpc":"2.0","result":{"resources":[]}})"},
        {R"({"id":2,"method":"resources/templates/list"})",
         R"({"id":2,"jsonrpc":"2.0","result":{"resourceTemplates":[]}})"},
        {R"({"id":3,"method":"nope"})",
         R"({"error":{"code":-32601,"message":"Method not found: nope"},"id":3,"jsonrpc":"2.0"})"},
        {R"({"id":4,"method":7})",
         R"({"error":{"code":-32601,"message":"Method not found: "},"id":4,"jsonrpc":"2.0"})"},
        {"not json",
         R"({"error":{"code":-32700,"message":"Parse error"},"id":null,"jsonrpc":"2.0"})"},
        {"[1,2]", R"({"error":{"code":-32700,"message":"Parse error"},"id":null,"jsonrpc":"2.0"})"},
        {R"({"id":5,"method":"ping"} trailing)",
         R"({"error":{"code":-32700,"message":"Parse error"},"id":null,"jsonrpc":"2.0"})"},
        {nested(33),
         R"({"error":{"code":-32600,"message":"Request exceeds max depth"},"id":null,"jsonrpc":"2.0"})"},
        {R"({"id":6,"method":"tools/call","params":{"arguments":{}}})",
         R"({"error":{"code":-32602,"message":"Missing 'name' in tools/call"},"id":6,"jsonrpc":"2.0"})"},
        {R"({"id":7,"method":"tools/call","params":{"name":"nope"}})",
         R"({"error":{"code":-32602,"message":"Unknown tool: nope"},"id":7,"jsonrpc":"2.0"})"},
        {R"({"id":8,"method":"prompts/get","params":{}})",
         R"({"error":{"code":-32602,"message":"Missing 'name' in prompts/get"},"id":8,"jsonrpc":"2.0"})"},
        {R"({"id":12,"method":"prompts/get","params":{"name":"speak_every_reply","arguments":[]}})",
         R"({"error":{"code":-32602,"message":"speak_every_reply takes no arguments"},"id":12,"jsonrpc":"2.0"})"},
        {R"({"id":13,"method":"prompts/get","params":{"name":"other"}})",
         R"({"error":{"code":-32602,"message":"Unknown prompt: other"},"id":13,"jsonrpc":"2.0"})"},
        {R"({"id":14,"method":"prompts/get","params":{"name":"speak_every_reply","arguments":{}}})",
         R"({"id":14,"jsonrpc":"2.0","result":{"description":"Speak every assistant reply for this session until you say “stop speaking.”","messages":[{"content":{"text":"For this session, use the Orvo MCP `speak` tool on every assistant turn until I explicitly say “stop speaking.”","type":"text"},"role":"user"}]}})"},
        {R"({"id":10,"method":"prompts/list"})",
         R"({"id":10,"jsonrpc":"2.0","result":{"prompts":[{"arguments":[],"description":"Speak every assistant reply for this session until you say “stop speaking.”","name":"speak_every_reply"}]}})"},
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

TEST(ServerSessionTest, AcceptsDepthThirtyTwoWithCarriageReturnAndUnicode) {
    ServerProcess server;
    std::string deep = nested(32);
    deep.insert(1, R"("id":1,"method":"ping",)");
    server.sendLine(deep + "\r");
    EXPECT_EQ(server.readLine(), R"({"id":1,"jsonrpc":"2.0","result":{}})");
    server.sendLine(R"({"id":"é✓🙂","method":"ping"})");
    EXPECT_EQ(server.readLine(), R"({"id":"é✓🙂","jsonrpc":"2.0","result":{}})");
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

TEST(ServerSessionTest, HostileLinesNeitherCrashNorHang) {
    const std::size_t kMiB = 1048576;
    std::string objects;
    while (objects.size() + 5 <= kMiB) {
        objects += "{\"a\":";
    }
    const std::string cases[] = {std::string(kMiB, '['), objects, std::string(kMiB - 1, '[') + "]"};
    ServerProcess server;
    for (const std::string& line : cases) {
        server.sendLine(line);
        EXPECT_EQ(server.readLine(),
                  R"({"error":{"code":-32700,"message":"Parse error"},"id":null,"jsonrpc":"2.0"})");
    }
    server.sendLine(R"({"id":1,"method":"ping"})");
    EXPECT_EQ(server.readLine(), R"({"id":1,"jsonrpc":"2.0","result":{}})");
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

TEST(ServerSessionTest, AnswersAnUnterminatedLastLineThenExits) {
    ServerProcess server;
    server.send(R"({"id":1,"method":"ping"})");
    server.closeInput();
    EXPECT_EQ(server.readLine(), R"({"id":1,"jsonrpc":"2.0","result":{}})");
    EXPECT_EQ(server.waitForExit(), 0);
}

TEST(ServerSessionTest, ToolListIsSortedByName) {
    ServerProcess server;
    json tools = server.request({{"id", 1}, {"method", "tools/list"}})["result"]["tools"];
    ASSERT_FALSE(tools.empty());
    for (std::size_t i = 1; i < tools.size(); ++i) {
        EXPECT_LT(tools[i - 1]["name"].get<std::string>(), tools[i]["name"].get<std::string>());
    }
    for (const json& tool : tools) {
        EXPECT_FALSE(tool.contains("title"));
        EXPECT_TRUE(tool["annotations"].contains("readOnlyHint"));
    }
}

// The process must arrive at the selection its flags and environment name; which tools that
// selection offers is the registry's own test.
TEST(ServerSessionTest, SelectsToolsFromFlagsAndEnvironment) {
    using enum MCPToolset;
    const struct {
        std::vector<std::string> arguments;
        std::string origin;
        ToolSelection selection;
    } cases[] = {
        {{}, "", {false, MCPToolsets::all(), false}},
        {{"--toolsets", " state , nope"}, "1", {true, {state}, false}},
        {{"--read-only", "--toolsets"}, "true", {false, MCPToolsets::all(), true}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments) + " origin " + c.origin);
        ProcessOptions options;
        options.arguments = c.arguments;
        options.environment = {{"ORVO_ASSISTANT_ORIGIN", c.origin}};
        ServerProcess server(options);
        json response = server.request({{"id", 1}, {"method", "tools/list"}});
        std::vector<std::string> names;
        for (const json& tool : response["result"]["tools"]) {
            names.push_back(tool["name"]);
        }
        const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), c.selection);
        std::vector<std::string> expected;
        for (const MCPTool* tool : registry.tools()) {
            expected.emplace_back(tool->name());
        }
        EXPECT_EQ(names, expected);
    }
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
    json response = server.request(
        {{"id", 1}, {"method", "tools/call"}, {"params", {{"name", "orvo_version"}}}});
    EXPECT_EQ(response["result"],
              json::parse(R"({"content":[{"type":"text","text":"1.4.2"}],"isError":false})"));
    response = server.request({{"id", 2}, {"method", "initialize"}, {"params", json::object()}});
    EXPECT_EQ(response["result"]["serverInfo"],
              json::parse(R"({"name":"orvo-agent","version":"1.4.2"})"));
    EXPECT_EQ(response["result"]["protocolVersion"], "2024-11-05");
}

TEST(ServerSessionTest, OnlyAToolSetWithSpeakOffersVoice) {
    const struct {
        std::vector<std::string> arguments;
        std::string origin;
        bool voice;
    } cases[] = {
        {{}, "", true},
        {{"--toolsets", "state,meetings"}, "", false},
        {{}, "1", false},  // the app's own assistant speaks through the app
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments) + " origin " + c.origin);
        ProcessOptions options;
        options.arguments = c.arguments;
        options.environment = {{"ORVO_ASSISTANT_ORIGIN", c.origin}};
        ServerProcess server(options);
        json result = server.request({{"id", 1}, {"method", "initialize"}})["result"];
        EXPECT_EQ(result["capabilities"],
                  json::parse(
                      c.voice ? R"({"prompts":{"listChanged":false},"tools":{"listChanged":true}})"
                              : R"({"tools":{"listChanged":true}})"));
        const std::string instructions = result["instructions"];
        EXPECT_EQ(instructions.ends_with("require one-time connected-agent consent."), !c.voice);
        EXPECT_EQ(instructions.find("\nSESSION VOICE: ") != std::string::npos, c.voice);
        json prompts = server.request({{"id", 2}, {"method", "prompts/list"}});
        EXPECT_EQ(prompts["result"]["prompts"].size(), c.voice ? 1u : 0u);
        const json prompt = server.request(
            {{"id", 3}, {"method", "prompts/get"}, {"params", {{"name", "speak_every_reply"}}}});
        EXPECT_EQ(prompt.contains("result"), c.voice) << prompt;
    }
}

class ThrowawayHomeTest : public UserAppTest {};

TEST_F(ThrowawayHomeTest, InstructionsNameTheDocsUnderTheUsersHome) {
    ProcessOptions options = asUser();
    options.arguments = {"--toolsets", "state"};  // no speak: the voice paragraph is left out
    ServerProcess server(options);
    json response = server.request({{"id", 1}, {"method", "initialize"}});
    const std::string instructions = response["result"]["instructions"];
    EXPECT_NE(instructions.find(" Docs: <file> points into " + user_->home.string() +
                                "/Library/Application Support/orvo-agent/docs/; start at "
                                "INDEX.md. "),
              std::string::npos)
        << instructions;
}

TEST_F(ThrowawayHomeTest, CurrentSettingsReadsTheUsersSettingsFile) {
    user_->writeHomeFile(".config/orvo-agent/settings.json",
                         R"({"dictationHotkey":"fn","assistantEnabled":true})");
    ServerProcess server(asUser());
    json response = server.request(
        {{"id", 1}, {"method", "tools/call"}, {"params", {{"name", "current_settings"}}}});
    const json content = response["result"]["content"][0];
    ASSERT_EQ(content["type"], "text");
    const json snapshot = json::parse(content["text"].get<std::string>());
    EXPECT_EQ(snapshot["dictationHotkey"], "fn");
    EXPECT_EQ(snapshot["assistantEnabled"], false);  // the typed decode failed on the hotkey
    EXPECT_EQ(snapshot["speechVolumePercent"], 60);
}

}  // namespace
}  // namespace orvo::test
