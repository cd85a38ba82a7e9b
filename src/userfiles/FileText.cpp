// Reading the small local files the tools look at, without ever blocking or growing unbounded.
#include "userfiles/FileText.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvo {

std::optional<std::string> readRegularFile(const std::filesystem::path& path,
                                           std::size_t maxBytes) {
    // O_NONBLOCK keeps a FIFO planted at the path from blocking the open.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return std::nullopt;
    }
    std::optional<std::string> contents;
    struct stat info {};
    if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) &&
        static_cast<std::size_t>(info.st_size) <= maxBytes) {
        std::string bytes;
        bytes.resize(static_cast<std::size_t>(info.st_size));
        std::size_t filled = 0;
        bool failed = false;
        // The file may grow while we read; read one byte past the size to notice.
        while (!failed) {
            if (filled == bytes.size()) {
                if (bytes.size() > maxBytes) {
                    failed = true;
                    break;
                }
                bytes.resize(bytes.size() + 4096);
            }
            const ssize_t n = ::read(fd, bytes.data() + filled, bytes.size() - filled);
            if (n < 0 && errno == EINTR) {
                continue;
            }
            if (n < 0) {
                failed = true;
            } else if (n == 0) {
                break;
            } else {
                filled += static_cast<std::size_t>(n);
            }
        }
        if (!failed && filled <= maxBytes) {
            bytes.resize(filled);
            contents = std::move(bytes);
        }
    }
    ::close(fd);
    return contents;
}

std::string_view trimWhitespace(std::string_view text) {
    constexpr std::string_view kWhitespace = " \t\n\r\f\v";
    const auto first = text.find_first_not_of(kWhitespace);
    if (first == std::string_view::npos) {
        return {};
    }
    const auto last = text.find_last_not_of(kWhitespace);
    return text.substr(first, last - first + 1);
}

}  // namespace orvo
