// Diagnostics: single lines on standard error, each written whole.
#include "protocol/Diagnostics.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <unistd.h>

namespace orvo {

void logLine(std::string_view prefix, std::string_view message) {
    std::string line;
    line.reserve(prefix.size() + message.size() + 1);
    line.append(prefix).append(message).push_back('\n');
    std::size_t written = 0;
    while (written < line.size()) {
        const ssize_t n = ::write(STDERR_FILENO, line.data() + written, line.size() - written);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return;  // nowhere left to report to
        }
        written += static_cast<std::size_t>(n);
    }
}

std::string errnoDescription(int error) {
    // strerror's buffer is shared between threads; the category's message is the same text.
    return std::generic_category().message(error) + " (errno " + std::to_string(error) + ")";
}

}  // namespace orvo
