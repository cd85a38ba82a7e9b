#include "protocol/Json.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(JsonTest, BoundedParseMeasuresDepthAndLetsSyntaxErrorsWin) {
    const std::string balanced = std::string(500000, '[') + std::string(500000, ']');
    const struct {
        std::string text;
        int maxDepth;
        JsonParseStatus status;
    } cases[] = {
        {"{}", 1, JsonParseStatus::ok},
        {"{\"a\":1}", 1, JsonParseStatus::tooDeep},
        {"[[[[]]]", 3, JsonParseStatus::invalid},  // deep and broken: the syntax error wins
        {"", 8, JsonParseStatus::invalid},
        {"{} {}", 8, JsonParseStatus::invalid},
        {"{\"a\":\"\\ud800\"}", 8, JsonParseStatus::invalid},   // lone surrogate escape
        {std::string("{}\0", 3), 8, JsonParseStatus::invalid},  // the whole buffer is the document
        {std::string(4 * 1048576, '['), 32, JsonParseStatus::invalid},
        {balanced, 32, JsonParseStatus::tooDeep},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 20));
        EXPECT_EQ(parseJsonBounded(c.text, c.maxDepth).status, c.status);
    }
    // Too deep still names what the top level is, and pruning survives the same depth.
    EXPECT_EQ(parseJsonBounded(balanced, 32).topLevel, json::value_t::array);
    EXPECT_EQ(parseJsonPruned(balanced, 3).value, json::parse("[[[null]]]"));
    EXPECT_EQ(parseJsonPruned(balanced + "]", 3).status, JsonParseStatus::invalid);
}

TEST(JsonTest, BoundedParseKeepsTheWholeDocumentAndTheLastDuplicateKey) {
    const std::string text = R"({"id":[1,"x",null,true,-2.5],"m":{"k":{}},"id2":1,"id2":2})";
    BoundedParse parsed = parseJsonBounded(text, 32);
    ASSERT_EQ(parsed.status, JsonParseStatus::ok);
    EXPECT_EQ(parsed.topLevel, json::value_t::object);
    EXPECT_EQ(parsed.value, json::parse(R"({"id":[1,"x",null,true,-2.5],"m":{"k":{}},"id2":2})"));
    EXPECT_FALSE(parsed.pruned);

    // Members whose numbers would be written back changed are named; exact ones are not.
    EXPECT_EQ(parseJsonBounded(
                  R"({"id":123456789012345678901234567890,"n":[0.10000000000000000001],"x":0.1,)"
                  R"("y":1e30,"z":18446744073709551616,"w":-0.0})",
                  32)
                  .roundedMembers,
              (std::vector<std::string>{"id", "n", "z"}));

    // Pruning keeps the shallow part whole and reads what lies just below as null.
    BoundedParse pruned = parseJsonPruned(R"({"a":[1,[2,[3]],{"b":{}}],"c":{"d":[[]]},"e":1})", 3);
    ASSERT_EQ(pruned.status, JsonParseStatus::ok);
    EXPECT_TRUE(pruned.pruned);
    EXPECT_EQ(pruned.value,
              json::parse(R"({"a":[1,[null,null],{"b":null}],"c":{"d":[null]},"e":1})"));
}

TEST(JsonTest, DumpsSortedCompactWithSlashesAndUnicodeAsTheyAre) {
    const json value = {{"b", "a/b"}, {"a", "é🙂"}, {"c", {{"z", 1}, {"y", nullptr}}}};
    EXPECT_EQ(dumpCompact(value), R"({"a":"é🙂","b":"a/b","c":{"y":null,"z":1}})");
    EXPECT_EQ(dumpPretty(json{{"k", 1}}), "{\n  \"k\": 1\n}");
    EXPECT_EQ(dumpCompact(json("bad \xFF byte")), "\"bad \xEF\xBF\xBD byte\"");

    // Readable text is indented unless the indentation would dwarf the values.
    const json wide(100000, 0);
    EXPECT_EQ(dumpReadable(wide), dumpPretty(wide));
    json deep = wide;
    for (int level = 0; level < 200; ++level) {
        deep = json::array({std::move(deep)});
    }
    EXPECT_EQ(dumpReadable(deep), dumpCompact(deep));
}

TEST(JsonTest, ReadTellsMissingFromWrongTypeAndKeepsWholeNumbersInRange) {
    const json object = json::parse(
        R"({"s":"x","b":true,"n":-2.5,"whole":60.0,"half":60.5,"big":2147483648,)"
        R"("small":-2147483648.0,"huge":18446744073709551615,"edge":9223372036854775808.0,)"
        R"("o":{},"a":[],"null":null})");
    const auto message = [](auto result) -> std::string {
        return result ? (*result ? "value" : "none") : result.error().message;
    };
    const struct {
        std::string got;
        std::string want;
    } cases[] = {
        {message(read<std::string>(object, "s", "p.s")), "value"},
        {message(read<std::string>(object, "null", "p.null")), "none"},
        {message(read<std::string>(object, "absent", "p.absent")), "none"},
        {message(read<std::string>(object, "b", "p.b")), "p.b: expected string"},
        {message(read<bool>(object, "s", "p.s")), "p.s: expected boolean"},
        {message(read<double>(object, "big", "p.big")), "value"},
        {message(read<double>(object, "s", "p.s")), "p.s: expected number"},
        {message(read<std::int32_t>(object, "whole", "p.whole")), "value"},
        {message(read<std::int32_t>(object, "half", "p.half")), "p.half: expected integer"},
        {message(read<std::int32_t>(object, "big", "p.big")), "p.big: expected integer"},
        {message(read<std::int32_t>(object, "small", "p.small")), "value"},
        {message(read<std::int64_t>(object, "big", "p.big")), "value"},
        {message(read<std::int64_t>(object, "huge", "p.huge")), "p.huge: expected integer"},
        {message(read<std::int64_t>(object, "edge", "p.edge")), "p.edge: expected integer"},
        {message(read<std::int64_t>(object, "s", "p.s")), "p.s: expected integer"},
        {message(read<JsonObject>(object, "a", "p.a")), "p.a: expected object"},
        {message(read<JsonArray>(object, "o", "p.o")), "p.o: expected array"},
        {message(read<std::string>(json::array(), "s", "p.s")), "none"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.want);
        EXPECT_EQ(c.got, c.want);
    }
    EXPECT_EQ(*read<std::int32_t>(object, "small", "small"), -2147483648);
    EXPECT_EQ(*read<std::int64_t>(object, "whole", "whole"), 60);
    EXPECT_EQ(read<std::string>(object, "b", "b").error().code, -32602);
}

TEST(JsonTest, UTF8CheckRejectsEveryMalformedForm) {
    const struct {
        std::string bytes;
        bool valid;
    } cases[] = {
        {"", true},
        {"plain ascii text, long enough to take the fast path", true},
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
