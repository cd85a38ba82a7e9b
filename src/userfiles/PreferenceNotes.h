// The user's preference notes: one Markdown file that agents read and append one-line notes to.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "protocol/Json.h"

namespace orvo {

inline constexpr std::size_t kMaxPreferenceNoteBytes = 1024;
inline constexpr std::size_t kMaxPreferencesFileBytes = 32768;

// `home`/.config/orvo-agent/preferences.md
std::filesystem::path preferencesFilePath(const std::filesystem::path& home);

// Line breaks become spaces (CR LF as one); then white space and line breaks, Unicode's included,
// are trimmed from both ends. A lone CR inside the note stays.
std::string normalizePreferenceNote(std::string_view note);

// The result objects of the two tools. Expected failures are inside them, as `error` with
// `details` and/or `fix`; on every failure the file is left exactly as it was.
json readPreferences(const std::filesystem::path& file);
json rememberPreference(const std::filesystem::path& file, std::optional<std::string_view> note);

// Waits for a rewrite of the notes in progress to end and lets no other begin, so that a process
// about to end leaves no temporary file behind. Never undone.
void holdPreferenceWrites();

}  // namespace orvo
