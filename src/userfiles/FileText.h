// Reading the small local files the tools look at, without ever blocking or growing unbounded.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace orvo {

// The bytes of a regular file (links followed) of at most `maxBytes`; absent when the file is
// missing, unreadable, not a regular file (a FIFO would block) or larger than `maxBytes`.
std::optional<std::string> readRegularFile(const std::filesystem::path& path, std::size_t maxBytes);

// `text` without leading and trailing white space and line breaks.
std::string_view trimWhitespace(std::string_view text);

}  // namespace orvo
