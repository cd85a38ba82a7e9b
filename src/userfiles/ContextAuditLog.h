// The audit log of the user's context that agents read, and the audible cue that marks each read.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "protocol/Json.h"

namespace orvo {

inline constexpr std::string_view kActivityCueMethod = "connected_app_activity_cue";
inline constexpr std::chrono::milliseconds kActivityCueInterval{2000};

struct AuditRecord {
    std::string tool;
    std::string result;  // "ok", or "error: " followed by the error text
    std::optional<std::string> app;
    std::optional<std::string> bundleId;
    std::optional<std::int64_t> outputBytes;
    // Merged last, in order; a key already in the line takes the later value.
    std::vector<std::pair<std::string, json>> extras;
};

struct ContextAuditLogOptions {
    std::filesystem::path file;  // ActivityLogFiles::contextReads in the shipped program
    // Asks the app for its activity sound; run on a thread of its own and never waited for. None
    // sends none.
    std::function<void()> sendCue = nullptr;
    bool audible = true;  // false when ORVO_MCP_AUDIBLE is "0"
    // The throttle's clock; the steady clock unless a test steps time by hand.
    std::function<std::chrono::steady_clock::time_point()> now = nullptr;
};

class ContextAuditLog {
public:
    explicit ContextAuditLog(ContextAuditLogOptions options);
    // Waits for nothing: a record still being written is left to its thread, which ends with the
    // process.
    ~ContextAuditLog();
    ContextAuditLog(const ContextAuditLog&) = delete;
    ContextAuditLog& operator=(const ContextAuditLog&) = delete;

    // Queues one line for the file and returns at once. Lines are written one at a time, in the
    // order posted, on a thread of the log's own started by the first record. Failures go to
    // standard error only.
    void record(AuditRecord record);

    // Asks the app to play its activity sound, at most once per interval however many reads come
    // in a burst. Sent from a thread of its own; never waited for, its reply ignored.
    void activityCue();

    // Waits until every record posted so far is written, for at most `limit`; false if some were
    // not.
    bool drain(std::chrono::milliseconds limit);

    // drain() for a process that is about to end: from now on record() never returns, so that
    // no call is answered whose record was not written.
    bool drainForExit(std::chrono::milliseconds limit);

private:
    struct Queue;

    ContextAuditLogOptions options_;
    std::shared_ptr<Queue> queue_;
    std::thread writer_;
    std::mutex cueLock_;
    std::optional<std::chrono::steady_clock::time_point> lastCue_;
};

// One line of the file, without its line feed: `ts` first, then the record's fields, then extras.
std::string auditLine(const AuditRecord& record, std::chrono::system_clock::time_point time);

// ISO 8601 in UTC with milliseconds: 2026-11-21T10:27:21.123Z.
std::string auditTimestamp(std::chrono::system_clock::time_point time);

}  // namespace orvo
