#include "protocol/Json.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(JsonTest, BoundedParseMeasuresDepthAndLetsSyntaxErrorsWin) {
    const struct {
        std::string text;
        int maxDepth;
        JsonParseStatus status;
    } cases[] = {
        {"{}", 1, JsonParseStatus::ok},
        {"{\"a\":1}", 1, JsonParseStatus::tooDeep},
        {"{\"a\":1}", 2, JsonParseStatus::ok},
        {"{\"a\":[[]]}", 3, JsonParseStatus::ok},
        {"{\"a\":[[1]]}", 3, JsonParseStatus::tooDeep},
        {"[[[[]]]", 3, JsonParseStatus::invalid},  // deep and broken: the syntax error wins
        {"", 8, JsonParseStatus::invalid},
        {"{} {}", 8, JsonParseStatus::invalid},
        {"{\"a\":\"\\ud800\"}", 8, JsonParseStatus::invalid},  // lone surrogate escape
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(parseJsonBounded(c.text, c.maxDepth).status, c.status);
    }
}

TEST(JsonTest, BoundedParseKeepsTheWholeDocumentAndTheLastDuplicateKey) {
    const std::string text = R"({"id":[1,"x",null,true,-2.5],"m":{"k":{}},"id2":1,"id2":2})";
    BoundedParse parsed = parseJsonBounded(text, 32);
    ASSERT_EQ(parsed.status, JsonParseStatus::ok);
    EXPECT_EQ(parsed.topLevel, json::value_t::object);
    EXPECT_EQ(parsed.value, json::parse(R"({"id":[1,"x",null,true,-2.5],"m":{"k":{}},"id2":2})"));
}

TEST(JsonTest, BoundedParseSurvivesMegabytesOfNesting) {
    const std::string opens(4 * 1048576, '[');
    EXPECT_EQ(parseJsonBounded(opens, 32).status, JsonParseStatus::invalid);
    const std::string balanced = std::string(500000, '[') + std::string(500000, ']');
    BoundedParse parsed = parseJsonBounded(balanced, 32);
    EXPECT_EQ(parsed.status, JsonParseStatus::tooDeep);
    EXPECT_EQ(parsed.topLevel, json::value_t::array);
}

TEST(JsonTest, DumpsSortedCompactWithSlashesAndUnicodeAsTheyAre) {
    const json value = {{"b", "a/b"}, {"a", "é🙂"}, {"c", {{"z", 1}, {"y", nullptr}}}};
    EXPECT_EQ(dumpCompact(value), R"({"a":"é🙂","b":"a/b","c":{"y":null,"z":1}})");
    EXPECT_EQ(dumpPretty(json{{"k", 1}}), "{\n  \"k\": 1\n}");
    EXPECT_EQ(dumpCompact(json("bad \xFF byte")), "\"bad \xEF\xBF\xBD byte\"");
}

TEST(JsonTest, UTF8CheckRejectsEveryMalformedForm) {
    const struct {
        std::string bytes;
        bool valid;
    } cases[] = {
        {"", true},
        {"plain ascii text, long enough to take the fast path", true},
        {"\xF0\x9F\x99\x82", true},
        {"\xF4\x8F\xBF\xBF", true},   // U+10FFFF
        {"\xC3", false},              // truncated
        {"\xC0\xAF", false},          // overlong slash
        {"\xED\xA0\x80", false},      // surrogate
        {"\xF4\x90\x80\x80", false},  // above U+10FFFF
        {"\x80", false},              // stray continuation
        {"abcdefgh\xFF", false},
        {std::string("nul\0inside", 10), true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.bytes));
        EXPECT_EQ(isValidUTF8(c.bytes), c.valid);
    }
}

}  // namespace
}  // namespace orvo
