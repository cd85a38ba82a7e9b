// Where the current user's directories are, on each system this program runs on.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>

namespace orvo {

// The current user's home directory from the user database (not $HOME); empty if there is none.
std::filesystem::path userHomeDirectory();

// The user's Application Support directory: the system's user-domain lookup where it has one,
// else `home` followed by "Library/Application Support".
std::filesystem::path applicationSupportDirectory(const std::filesystem::path& home);

// The user-domain Application Support directory as the system reports it, absent when it reports
// none. Linux has no such lookup and always answers `home` followed by
// "Library/Application Support".
std::optional<std::filesystem::path> reportedApplicationSupportDirectory(
    const std::filesystem::path& home);

// Like write(2) on a socket, never raising SIGPIPE; with `dontWait`, sends only what fits now and
// fails with EAGAIN when nothing does.
long sendWithoutSigpipe(int fd, const char* bytes, std::size_t size, bool dontWait);

}  // namespace orvo
