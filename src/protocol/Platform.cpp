// Where the current user's directories are, on each system this program runs on.
#include "protocol/Platform.h"

#include <cerrno>
#include <string>
#include <vector>

#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#if defined(__APPLE__)
#include <limits.h>
#include <sysdir.h>
#elif defined(__linux__)
#else
#error "orvo-agent-mcp builds for macOS and Linux only"
#endif

namespace orvo {

std::filesystem::path userHomeDirectory() {
    long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    while (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    if (found == nullptr || found->pw_dir == nullptr) {
        return {};
    }
    return found->pw_dir;
}

std::filesystem::path applicationSupportDirectory(const std::filesystem::path& home) {
    return reportedApplicationSupportDirectory(home).value_or(home / "Library/Application Support");
}

std::optional<std::filesystem::path> reportedApplicationSupportDirectory(
    const std::filesystem::path& home) {
#if defined(__APPLE__)
    // The user domain answers with a path that starts with "~", the user's home.
    char path[PATH_MAX];
    sysdir_search_path_enumeration_state state = sysdir_start_search_path_enumeration(
        SYSDIR_DIRECTORY_APPLICATION_SUPPORT, SYSDIR_DOMAIN_MASK_USER);
    if (sysdir_get_next_search_path_enumeration(state, path) == 0) {
        return std::nullopt;
    }
    std::string found(path);
    if (found.starts_with("~/")) {
        return home / found.substr(2);
    }
    if (found == "~") {
        return home;
    }
    return std::filesystem::path(found);
#elif defined(__linux__)
    return home / "Library/Application Support";
#endif
}

long sendWithoutSigpipe(int fd, const char* bytes, std::size_t size, bool dontWait) {
    const int wait = dontWait ? MSG_DONTWAIT : 0;
#if defined(__APPLE__)
    // SO_NOSIGPIPE, set when the socket was made, covers send as well.
    return ::send(fd, bytes, size, wait);
#elif defined(__linux__)
    return ::send(fd, bytes, size, wait | MSG_NOSIGNAL);
#endif
}

}  // namespace orvo
