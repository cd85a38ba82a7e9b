// The audit log of the user's context that agents read, and the audible cue that marks each read.
#include "userfiles/ContextAuditLog.h"

#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "protocol/DescriptorIO.h"
#include "protocol/Diagnostics.h"

namespace orvo {
namespace {

void writeLine(const std::filesystem::path& file, const AuditRecord& record) {
    // Undecodable text is replaced while serialising, so every record makes a line.
    std::string line = auditLine(record, std::chrono::system_clock::now());
    line.push_back('\n');
    std::error_code ignored;  // a directory that cannot be made shows up as the open failing
    std::filesystem::create_directories(file.parent_path(), ignored);
    // O_APPEND puts each line at the end in its one write, even with another process appending;
    // O_NONBLOCK keeps a FIFO planted at the path from holding the queue.
    const int fd =
        ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0666);
    if (fd < 0) {
        logDiagnostic("ContextAuditLog: open for write failed: " + file.string() + ": " +
                      errnoDescription(errno));
        return;
    }
    if (const IOResult written = writeAll(fd, line); written.status != IOStatus::done) {
        logDiagnostic("ContextAuditLog: write failed: " + errnoDescription(written.error));
    }
    if (::close(fd) != 0 && errno != EINTR) {
        logDiagnostic("ContextAuditLog: write failed: " + errnoDescription(errno));
    }
}

}  // namespace

// Shared with the writer thread, which may outlive the log when a write hangs at exit.
struct ContextAuditLog::Queue {
    std::mutex lock;
    std::condition_variable changed;
    std::deque<AuditRecord> pending;
    bool writing = false;
    bool stopping = false;
    bool closed = false;  // the process is ending: no record is taken any more
};

ContextAuditLog::ContextAuditLog(ContextAuditLogOptions options)
    : options_(std::move(options)), queue_(std::make_shared<Queue>()) {
    if (!options_.now) {
        options_.now = [] { return std::chrono::steady_clock::now(); };
    }
}

ContextAuditLog::~ContextAuditLog() {
    std::unique_lock<std::mutex> guard(queue_->lock);
    queue_->stopping = true;
    const bool idle = queue_->pending.empty() && !queue_->writing;
    guard.unlock();
    queue_->changed.notify_all();
    if (writer_.joinable()) {
        if (idle) {
            writer_.join();
        } else {
            writer_.detach();
        }
    }
}

void ContextAuditLog::record(AuditRecord record) {
    std::unique_lock<std::mutex> guard(queue_->lock);
    // Held here, the caller never answers a call whose record would be lost.
    queue_->changed.wait(guard, [this] { return !queue_->closed; });
    queue_->pending.push_back(std::move(record));
    if (!writer_.joinable()) {
        writer_ = std::thread([queue = queue_, file = options_.file] {
            std::unique_lock<std::mutex> lock(queue->lock);
            for (;;) {
                queue->changed.wait(lock,
                                    [&] { return queue->stopping || !queue->pending.empty(); });
                if (queue->pending.empty()) {
                    return;
                }
                AuditRecord next = std::move(queue->pending.front());
                queue->pending.pop_front();
                queue->writing = true;
                lock.unlock();
                writeLine(file, next);
                lock.lock();
                queue->writing = false;
                queue->changed.notify_all();
            }
        });
    }
    queue_->changed.notify_all();
}

bool ContextAuditLog::drain(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> guard(queue_->lock);
    return queue_->changed.wait_for(guard, limit,
                                    [this] { return queue_->pending.empty() && !queue_->writing; });
}

bool ContextAuditLog::drainForExit(std::chrono::milliseconds limit) {
    {
        std::lock_guard<std::mutex> guard(queue_->lock);
        queue_->closed = true;
    }
    return drain(limit);
}

void ContextAuditLog::activityCue() {
    if (!options_.audible || !options_.sendCue) {
        return;
    }
    {
        std::lock_guard<std::mutex> guard(cueLock_);
        const std::chrono::steady_clock::time_point now = options_.now();
        if (lastCue_ && now - *lastCue_ < kActivityCueInterval) {
            return;
        }
        lastCue_ = now;
    }
    // The thread owns its copy of the function, so a cue still waiting on the app at shutdown
    // touches nothing that is gone.
    std::thread(options_.sendCue).detach();
}

std::string auditLine(const AuditRecord& record, std::chrono::system_clock::time_point time) {
    // Insertion order, so that a person reading the file sees the time and the tool first.
    nlohmann::ordered_json line;
    line["ts"] = auditTimestamp(time);
    line["tool"] = record.tool;
    line["result"] = record.result;
    if (record.app) {
        line["app"] = *record.app;
    }
    if (record.bundleId) {
        line["bundle_id"] = *record.bundleId;
    }
    if (record.outputBytes) {
        line["output_bytes"] = *record.outputBytes;
    }
    for (const auto& [key, value] : record.extras) {
        line[key] = value;
    }
    return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string auditTimestamp(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto milliseconds = floor<std::chrono::milliseconds>(time);
    const auto day = floor<days>(milliseconds);
    const year_month_day date{day};
    const hh_mm_ss clock{milliseconds - day};
    char text[48];
    (void)std::snprintf(
        text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return text;
}

}  // namespace orvo
