// Reading the small local files the tools look at, without ever blocking or growing unbounded.
#include "userfiles/FileText.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "protocol/Diagnostics.h"
#include "protocol/UniqueFd.h"

namespace orvo {
namespace {

FileRead failed(std::string failure) {
    return FileRead{FileRead::Outcome::failed, {}, std::move(failure)};
}

std::string tooLarge(std::size_t maxBytes) {
    return "the file is larger than " + std::to_string(maxBytes) + " bytes";
}

}  // namespace

FileRead readSmallFile(const std::filesystem::path& path, std::size_t maxBytes) {
    // O_NONBLOCK keeps a FIFO planted at the path from blocking the open.
    UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!fd) {
        const int error = errno;
        if (error == ENOENT || error == ENOTDIR) {
            return FileRead{};
        }
        return failed(errnoDescription(error));
    }
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) {
        return failed(errnoDescription(errno));
    }
    if (!S_ISREG(info.st_mode)) {
        return failed("not a regular file");
    }
    if (static_cast<std::size_t>(info.st_size) > maxBytes) {
        return failed(tooLarge(maxBytes));
    }
    std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
    std::size_t filled = 0;
    // The file may grow while we read; read past the size to notice.
    for (;;) {
        if (filled == bytes.size()) {
            if (bytes.size() > maxBytes) {
                return failed(tooLarge(maxBytes));
            }
            bytes.resize(bytes.size() + 4096);
        }
        const ssize_t n = ::read(fd.get(), bytes.data() + filled, bytes.size() - filled);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return failed(errnoDescription(errno));
        }
        if (n == 0) {
            break;
        }
        filled += static_cast<std::size_t>(n);
    }
    if (filled > maxBytes) {
        return failed(tooLarge(maxBytes));
    }
    bytes.resize(filled);
    return FileRead{FileRead::Outcome::read, std::move(bytes), {}};
}

std::optional<std::string> readRegularFile(const std::filesystem::path& path,
                                           std::size_t maxBytes) {
    FileRead file = readSmallFile(path, maxBytes);
    if (file.outcome != FileRead::Outcome::read) {
        return std::nullopt;
    }
    return std::move(file.bytes);
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
