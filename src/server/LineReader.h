// Splits standard input into the protocol's lines, with the size and encoding rules of the wire.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvo {

inline constexpr std::size_t kMaxLineBytes = 1048576;

class LineReader {
public:
    explicit LineReader(int fd, std::size_t maxLineBytes = kMaxLineBytes);

    // The next line without its line feed; empty for a line to skip (oversize, not UTF-8);
    // absent at end of input or on a read error. The view lives until the next call.
    std::optional<std::string_view> next();
    // Whether the next call can return a whole line without reading.
    bool hasBufferedLine() const;

private:
    bool fill();

    int fd_;
    std::size_t maxLineBytes_;
    std::vector<char> block_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::string partial_;  // a line that spans reads
    bool discarding_ = false;
    bool ended_ = false;
};

}  // namespace orvo
