#include "protocol/Graphemes.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(GraphemesTest, CountsUserPerceivedCharacters) {
    const struct {
        std::string text;
        std::size_t count;
    } cases[] = {
        {"", 0},
        {"abc", 3},
        {"e\xCC\x81", 1},  // e + combining acute
        {"\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7", 1},  // family
        {"\xF0\x9F\x87\xAB\xF0\x9F\x87\xB7\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA", 2},  // two flags
        {"\r\n", 1},
        {std::string("a\xFF") + "b", 3},  // a bad byte stands alone
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(countGraphemes(c.text), c.count);
        EXPECT_FALSE(exceedsGraphemes(c.text, c.count));
        EXPECT_EQ(exceedsGraphemes(c.text, c.count - (c.count > 0 ? 1 : 0)), c.count > 0);
    }
}

}  // namespace
}  // namespace orvo
