// Splits standard input into the protocol's lines, with the size and encoding rules of the wire.
#include "server/LineReader.h"

#include <cerrno>
#include <cstring>

#include <unistd.h>

#include "protocol/Diagnostics.h"
#include "protocol/Json.h"

namespace orvo {
namespace {

// Reading in blocks gives the same lines as reading byte by byte, at a fraction of the calls.
constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;

std::optional<std::string_view> finish(std::string_view line) {
    if (!isValidUTF8(line)) {
        return std::string_view{};
    }
    return line;
}

}  // namespace

LineReader::LineReader(int fd, std::size_t maxLineBytes)
    : fd_(fd), maxLineBytes_(maxLineBytes), block_(kBlockBytes) {}

bool LineReader::fill() {
    for (;;) {
        const ssize_t n = ::read(fd_, block_.data(), block_.size());
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;  // end of input, or an error treated as one
        }
        begin_ = 0;
        end_ = static_cast<std::size_t>(n);
        return true;
    }
}

bool LineReader::hasBufferedLine() const {
    return std::memchr(block_.data() + begin_, '\n', end_ - begin_) != nullptr;
}

std::optional<std::string_view> LineReader::next() {
    partial_.clear();  // the line handed out last time
    for (;;) {
        if (begin_ == end_) {
            if (ended_ || !fill()) {
                ended_ = true;
                if (discarding_) {
                    discarding_ = false;
                    return std::string_view{};
                }
                if (partial_.empty()) {
                    return std::nullopt;
                }
                return finish(partial_);
            }
        }
        const char* start = block_.data() + begin_;
        const std::size_t available = end_ - begin_;
        const auto* newline = static_cast<const char*>(std::memchr(start, '\n', available));
        const std::size_t taken =
            newline != nullptr ? static_cast<std::size_t>(newline - start) : available;
        begin_ += newline != nullptr ? taken + 1 : taken;

        if (!discarding_ && partial_.size() + taken > maxLineBytes_) {
            discarding_ = true;
            partial_.clear();
        }
        if (discarding_) {
            if (newline != nullptr) {
                discarding_ = false;
                logDiagnostic("dropped oversize line (>" + std::to_string(maxLineBytes_) +
                              " bytes)");
                return std::string_view{};
            }
            continue;
        }
        if (newline != nullptr && partial_.empty()) {
            return finish(std::string_view(start, taken));
        }
        partial_.append(start, taken);
        if (newline != nullptr) {
            return finish(partial_);
        }
    }
}

}  // namespace orvo
