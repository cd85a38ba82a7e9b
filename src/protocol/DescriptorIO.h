// Whole writes and bounded reads on a file descriptor, with interrupted calls retried and time
// limits that bound the whole transfer rather than each system call.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace orvo {

using IOClock = std::chrono::steady_clock;
inline constexpr IOClock::time_point kNoDeadline = IOClock::time_point::max();

enum class IOStatus {
    done,
    closed,    // a write that wrote nothing: the reader has gone
    timedOut,  // the deadline passed, or a blocking descriptor's own time-out fired
    tooLarge,  // more than the limit arrived
    failed,    // see error
};

struct IOResult {
    IOStatus status = IOStatus::done;
    int error = 0;            // the errno value when failed
    std::string_view call{};  // the system call that failed: "poll", "read", "write" or "send"
};

// Writes every byte of `bytes` with write(2); for pipes and files, in a process that ignores
// SIGPIPE.
IOResult writeAll(int fd, std::string_view bytes);

// Sends every byte of `bytes` on a socket without ever raising SIGPIPE, by `deadline`: each send
// takes only what fits without blocking, and the wait for room gets only the time that is left.
IOResult sendAll(int fd, std::string_view bytes, IOClock::time_point deadline = kNoDeadline);

// Appends what `fd` gives to `out` until end of input (done), until `out` holds more than `limit`
// bytes (tooLarge), or until `deadline` (timedOut, with what arrived kept in `out`).
IOResult readUpTo(int fd, std::string& out, std::size_t limit,
                  IOClock::time_point deadline = kNoDeadline);

}  // namespace orvo
