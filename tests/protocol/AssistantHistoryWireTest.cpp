#include "protocol/AssistantHistoryWire.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

using namespace AssistantHistoryWire;

TEST(AssistantHistoryWireTest, WritesOnlyTheFieldsThatHaveValues) {
    EXPECT_EQ(dumpCompact(encode(SearchRequest{"x"})), R"({"query":"x"})");
    EXPECT_EQ(
        dumpCompact(encode(SearchRequest{"x", "claude", "/a/b", "2026-01-01", std::nullopt, "c2"})),
        R"({"after":"2026-01-01","backend":"claude","cursor":"c2","directory":"/a/b","query":"x"})");
    EXPECT_EQ(dumpCompact(encode(ReadRequest{"t1", "c"})), R"({"cursor":"c","task_id":"t1"})");
    EXPECT_EQ(dumpCompact(encode(ReadRequest{"t1"})), R"({"task_id":"t1"})");
}

TEST(AssistantHistoryWireTest, DecodesWhatItEncodes) {
    const SearchRequest full{"q", "b", "d", "a", "be", "c"};
    EXPECT_EQ(*decodeSearchRequest(encode(full)), full);
    EXPECT_EQ(*decodeReadRequest(encode(ReadRequest{"t", "c"})), (ReadRequest{"t", "c"}));
}

TEST(AssistantHistoryWireTest, DecodingToleratesNullAndUnknownKeysOnly) {
    EXPECT_EQ(*decodeSearchRequest(json::parse(R"({"query":"q","cursor":null,"extra":[1]})")),
              SearchRequest{"q"});
    const struct {
        std::string body;
        std::string message;
    } searchCases[] = {
        {R"({"backend":"b"})", "key not found: query"},
        {R"({"query":null})", "type mismatch for key query: expected string, found null"},
        {R"({"query":1})", "type mismatch for key query: expected string, found number"},
        {R"({"query":"q","before":false})",
         "type mismatch for key before: expected string, found boolean"},
        {R"(["query"])", "type mismatch: expected object, found array"},
    };
    for (const auto& c : searchCases) {
        SCOPED_TRACE(c.body);
        Result<SearchRequest> decoded = decodeSearchRequest(json::parse(c.body));
        ASSERT_FALSE(decoded);
        EXPECT_EQ(decoded.error(), (RPCError{-32602, c.message, std::nullopt}));
    }
    Result<ReadRequest> camel = decodeReadRequest(json::parse(R"({"taskID":"t1"})"));
    ASSERT_FALSE(camel);
    EXPECT_EQ(camel.error().message, "key not found: task_id");
    Result<ReadRequest> cursor = decodeReadRequest(json::parse(R"({"task_id":"t","cursor":2})"));
    ASSERT_FALSE(cursor);
    EXPECT_EQ(cursor.error().message,
              "type mismatch for key cursor: expected string, found number");
}

}  // namespace
}  // namespace orvo
