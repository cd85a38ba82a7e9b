// Whole sessions against the real binary over pipes: the wire format, every error, the limits.
#include <string>

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

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
    std::string version =
        readFile(std::filesystem::path(ORVO_BINARY_PATH).parent_path() / "../Resources/VERSION")
            .value_or("");
    version = version.substr(0, version.find('\n'));
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
        // The version file is found from the path the binary was started by, as built.
        {R"({"id":12,"method":"tools/call","params":{"name":"orvo_version"}})",
         R"({"id":12,"jsonrpc":"2.0","result":{"content":[{"text":")" + version +
             R"(","type":"text"}],"isError":false}})"},
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

}  // namespace
}  // namespace orvo::test
