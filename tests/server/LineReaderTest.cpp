#include "server/LineReader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "protocol/UniqueFd.h"
#include "support/ServerProcess.h"

namespace orvo {
namespace {

// Every outcome of reading `input`: the lines, "" for skipped ones, until the end.
std::vector<std::string> readAll(const std::string& input, std::size_t maxLineBytes) {
    test::TempDir dir;
    test::writeFile(dir.path() / "input", input);
    const UniqueFd fd(::open((dir.path() / "input").c_str(), O_RDONLY));
    LineReader reader(fd.get(), maxLineBytes);
    std::vector<std::string> lines;
    while (std::optional<std::string_view> line = reader.next()) {
        lines.emplace_back(*line);
    }
    EXPECT_EQ(reader.next(), std::nullopt);  // the end stays the end
    return lines;
}

using Lines = std::vector<std::string>;

TEST(LineReaderTest, SplitsSkipsAndEndsLikeTheByteReader) {
    // The reader takes 64 KiB at a time: a line that ends on a block's last byte, one that spans
    // two blocks, and an oversized one that spans three.
    const std::string a(65535, 'a'), b(70000, 'b'), c(140000, 'c');
    const struct {
        std::string name, input;
        Lines lines;
        std::size_t limit = 8;
    } cases[] = {
        {"empty input", "", {}},
        {"lines keep their carriage return", "a\r\nb\n", {"a\r", "b"}},
        {"empty lines are lines", "\n\nx\n", {"", "", "x"}},
        {"unterminated last line", "a\nbc", {"a", "bc"}},
        {"oversize at end of input", "ok\n" + std::string(100, 'x'), {"ok", ""}},
        {"limit at end of input", "12345678", {"12345678"}},
        {"not UTF-8 unterminated", "ok\n\xFF", {"ok", ""}},
        {"across read blocks", a + "\n" + b + "\n" + c + "\nok", {a, b, "", "ok"}, 100000},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(readAll(row.input, row.limit), row.lines);
    }
}

}  // namespace
}  // namespace orvo
