// Reading the small local files the tools look at, without ever blocking or growing unbounded.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace orvo {

// What became of reading a small file.
struct FileRead {
    enum class Outcome { read, missing, failed };
    Outcome outcome = Outcome::missing;
    std::string bytes;    // when read
    std::string failure;  // when failed: the system's description, or why the file was refused
};

// Reads a regular file (links followed) of at most `maxBytes`. A path with no file at it is
// missing; a file that is unreadable, not a regular file (a FIFO would block) or too large fails.
FileRead readSmallFile(const std::filesystem::path& path, std::size_t maxBytes);

// The bytes of a regular file (links followed) of at most `maxBytes`; absent when the file is
// missing, unreadable, not a regular file or larger than `maxBytes`.
std::optional<std::string> readRegularFile(const std::filesystem::path& path, std::size_t maxBytes);

// `text` without leading and trailing white space and line breaks.
std::string_view trimWhitespace(std::string_view text);

}  // namespace orvo
