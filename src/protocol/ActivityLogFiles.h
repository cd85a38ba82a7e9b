// Where the activity log files live, for this program and the app alike.
#pragma once

#include <filesystem>

namespace orvo::ActivityLogFiles {

// `home` is the current user's home directory in the shipped program; tests hand in a temporary
// one. None of these creates a directory or a file.
std::filesystem::path contextReads(const std::filesystem::path& home);
std::filesystem::path assistantHistory(const std::filesystem::path& home);
// Stops the process when the system reports no Application Support directory: everything the
// app keeps lives there, so there is no sensible place to fall back to.
std::filesystem::path assistantHistoryDatabase(const std::filesystem::path& home);

}  // namespace orvo::ActivityLogFiles
