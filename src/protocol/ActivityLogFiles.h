// Where the activity log files live, for this program and the app alike.
#pragma once

#include <filesystem>

namespace orvo::ActivityLogFiles {

// Marks this process as the unit-test host: from then on every location below is inside
// testDirectory(), so that tests never write into a home. Only a test binary's start-up calls it.
void enterTestHost();
bool insideTestHost();

// The system temporary directory followed by "orvo-agent-tests-" and the process id; worked out
// once per process. Nothing creates it but the writers that use it.
const std::filesystem::path& testDirectory();

// `home` is the current user's home directory. None of these creates a directory or a file.
std::filesystem::path contextReads(const std::filesystem::path& home);
std::filesystem::path assistantHistory(const std::filesystem::path& home);
// Stops the process when the system reports no Application Support directory: everything the
// app keeps lives there, so there is no sensible place to fall back to.
std::filesystem::path assistantHistoryDatabase(const std::filesystem::path& home);

}  // namespace orvo::ActivityLogFiles
