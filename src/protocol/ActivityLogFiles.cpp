// Where the activity log files live, for this program and the app alike.
#include "protocol/ActivityLogFiles.h"

#include <atomic>
#include <cstdlib>
#include <string>
#include <system_error>

#include <unistd.h>

#include "protocol/Diagnostics.h"
#include "protocol/Platform.h"

namespace orvo::ActivityLogFiles {
namespace {

std::atomic<bool> gTestHost{false};

std::filesystem::path baseDirectory(const std::filesystem::path& home) {
    if (insideTestHost()) {
        return testDirectory();
    }
    return home / ".config" / "orvo-agent";
}

}  // namespace

void enterTestHost() {
    gTestHost.store(true);
}

bool insideTestHost() {
    return gTestHost.load();
}

const std::filesystem::path& testDirectory() {
    static const std::filesystem::path kDirectory = [] {
        std::error_code error;
        std::filesystem::path temporary = std::filesystem::temp_directory_path(error);
        if (error) {
            temporary = "/tmp";
        }
        return temporary / ("orvo-agent-tests-" + std::to_string(::getpid()));
    }();
    return kDirectory;
}

std::filesystem::path contextReads(const std::filesystem::path& home) {
    return baseDirectory(home) / "mcp-context-reads.jsonl";
}

std::filesystem::path assistantHistory(const std::filesystem::path& home) {
    return baseDirectory(home) / "assistant-history.jsonl";
}

std::filesystem::path assistantHistoryDatabase(const std::filesystem::path& home) {
    if (insideTestHost()) {
        return testDirectory() / "assistant-history.db";
    }
    std::optional<std::filesystem::path> support = reportedApplicationSupportDirectory(home);
    if (!support) {
        logDiagnostic("the system reports no Application Support directory for this user");
        std::abort();
    }
    return *support / "orvo-agent" / "assistant-history.db";
}

}  // namespace orvo::ActivityLogFiles
