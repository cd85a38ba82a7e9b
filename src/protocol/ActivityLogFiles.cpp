// Where the activity log files live, for this program and the app alike.
#include "protocol/ActivityLogFiles.h"

#include <cstdlib>

#include "protocol/Diagnostics.h"
#include "protocol/Platform.h"

namespace orvo::ActivityLogFiles {
namespace {

std::filesystem::path baseDirectory(const std::filesystem::path& home) {
    return home / ".config" / "orvo-agent";
}

}  // namespace

std::filesystem::path contextReads(const std::filesystem::path& home) {
    return baseDirectory(home) / "mcp-context-reads.jsonl";
}

std::filesystem::path assistantHistory(const std::filesystem::path& home) {
    return baseDirectory(home) / "assistant-history.jsonl";
}

std::filesystem::path assistantHistoryDatabase(const std::filesystem::path& home) {
    std::optional<std::filesystem::path> support = reportedApplicationSupportDirectory(home);
    if (!support) {
        logDiagnostic("the system reports no Application Support directory for this user");
        std::abort();
    }
    return *support / "orvo-agent" / "assistant-history.db";
}

}  // namespace orvo::ActivityLogFiles
