// The user's dictation replacements: spoken phrases and the text written in their place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/Json.h"

namespace orvo {

// A first line of exactly this says the entries use backslash escapes.
inline constexpr std::string_view kReplacementEscapesMarker = "# VOICE_MODE_REPLACEMENT_ESCAPES_V1";
inline constexpr std::size_t kMaxReplacementsFileBytes = 1048576;

struct Replacement {
    std::size_t line = 0;  // counted from 1
    std::string spoken;
    std::string written;
};

struct InvalidLine {
    std::size_t line = 0;
    std::string reason;
};

struct ReplacementsFile {
    bool escapes = false;
    std::vector<Replacement> entries;  // in file order, each spoken phrase once
    std::vector<InvalidLine> invalidLines;
};

// `home`/.config/orvo-agent/replacements.txt
std::filesystem::path replacementsFilePath(const std::filesystem::path& home);

// Never fails: a line it cannot use is listed with its reason, and every other line still counts.
ReplacementsFile parseReplacements(std::string_view bytes);

struct ReplacementsQuery {
    std::optional<std::string> text;  // matched without regard to case in either side
    std::int64_t limit = 100;
    std::int64_t offset = 0;
};

// The `list_dictionary` result: a page of entries, the invalid lines, or why the file could not
// be read. A missing file lists nothing.
json listReplacements(const std::filesystem::path& file, const ReplacementsQuery& query);

}  // namespace orvo
