#include "protocol/AssistantHistoryWire.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

using namespace AssistantHistoryWire;

TEST(AssistantHistoryWireTest, WritesOnlyTheFieldsThatHaveValuesAndReadsThemBack) {
    const SearchRequest full{"x", "claude", "/a/b", "2026-01-01", "2026-02-01", "c2"};
    EXPECT_EQ(dumpCompact(encode(SearchRequest{"x"})), R"({"query":"x"})");
    EXPECT_EQ(dumpCompact(encode(full)),
              R"({"after":"2026-01-01","backend":"claude","before":"2026-02-01","cursor":"c2",)"
              R"("directory":"/a/b","query":"x"})");
    EXPECT_EQ(dumpCompact(encode(ReadRequest{"t1", "c"})), R"({"cursor":"c","task_id":"t1"})");
    EXPECT_EQ(*decodeSearchRequest(encode(full)), full);
    EXPECT_EQ(*decodeReadRequest(encode(ReadRequest{"t", "c"})), (ReadRequest{"t", "c"}));
}

TEST(AssistantHistoryWireTest, DecodingToleratesNullAndUnknownKeysOnly) {
    EXPECT_EQ(*decodeSearchRequest(json::parse(R"({"query":"q","cursor":null,"extra":[1]})")),
              SearchRequest{"q"});
    const struct {
        bool read;  // a ReadRequest, else a SearchRequest
        std::string body;
        std::string message;
    } cases[] = {
        {false, R"({"backend":"b"})", "key not found: query"},
        {false, R"({"query":null})", "type mismatch for key query: expected string, found null"},
        {false, R"({"query":"q","before":false})",
         "type mismatch for key before: expected string, found boolean"},
        {false, R"(["query"])", "type mismatch: expected object, found array"},
        {true, R"({"taskID":"t1"})", "key not found: task_id"},
        {true, R"({"task_id":"t","cursor":2})",
         "type mismatch for key cursor: expected string, found number"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body);
        const json body = json::parse(c.body);
        const auto errorOf = [](const auto& decoded) {
            return decoded ? std::nullopt : std::optional<RPCError>(decoded.error());
        };
        EXPECT_EQ(c.read ? errorOf(decodeReadRequest(body)) : errorOf(decodeSearchRequest(body)),
                  (RPCError{-32602, c.message, std::nullopt}));
    }
}

}  // namespace
}  // namespace orvo
