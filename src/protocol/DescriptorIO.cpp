// Whole writes and bounded reads on a file descriptor, with interrupted calls retried and time
// limits that bound the whole transfer rather than each system call.
#include "protocol/DescriptorIO.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include <poll.h>
#include <unistd.h>

#include "protocol/Platform.h"

namespace orvo {
namespace {

constexpr std::size_t kReadChunkBytes = std::size_t{16} * 1024;

// Waits until `fd` is ready for `events` or the deadline passes.
IOResult waitUntilReady(int fd, short events, IOClock::time_point deadline) {
    for (;;) {
        const IOClock::time_point now = IOClock::now();
        if (now >= deadline) {
            return {IOStatus::timedOut, EAGAIN};
        }
        // Rounded up, so that a wait of less than a millisecond does not spin.
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
        pollfd poller{fd, events, 0};
        const int ready = ::poll(&poller, 1, static_cast<int>(std::min<long long>(left, INT_MAX)));
        if (ready > 0) {
            return {};
        }
        if (ready < 0 && errno != EINTR) {
            return {IOStatus::failed, errno, "poll"};
        }
    }
}

}  // namespace

IOResult writeAll(int fd, std::string_view bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return {IOStatus::failed, errno, "write"};
        }
        if (n == 0) {
            return {IOStatus::closed, 0};
        }
        written += static_cast<std::size_t>(n);
    }
    return {};
}

IOResult sendAll(int fd, std::string_view bytes, IOClock::time_point deadline) {
    const bool bounded = deadline != kNoDeadline;
    std::size_t written = 0;
    while (written < bytes.size()) {
        const long n =
            sendWithoutSigpipe(fd, bytes.data() + written, bytes.size() - written, bounded);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            if (!bounded) {
                return {IOStatus::timedOut, EAGAIN};  // the socket's own send time-out
            }
            if (IOResult ready = waitUntilReady(fd, POLLOUT, deadline);
                ready.status != IOStatus::done) {
                return ready;
            }
            continue;
        }
        if (n < 0) {
            return {IOStatus::failed, errno, "send"};
        }
        if (n == 0) {
            return {IOStatus::closed, 0};
        }
        written += static_cast<std::size_t>(n);
    }
    return {};
}

IOResult readUpTo(int fd, std::string& out, std::size_t limit, IOClock::time_point deadline) {
    const bool bounded = deadline != kNoDeadline;
    for (;;) {
        if (bounded) {
            if (IOResult ready = waitUntilReady(fd, POLLIN, deadline);
                ready.status != IOStatus::done) {
                return ready;
            }
        }
        std::array<char, kReadChunkBytes> chunk;
        const ssize_t n = ::read(fd, chunk.data(), chunk.size());
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            if (bounded) {
                continue;  // readiness that went away; wait again for the time that is left
            }
            return {IOStatus::timedOut, EAGAIN};  // the socket's own receive time-out
        }
        if (n < 0) {
            return {IOStatus::failed, errno, "read"};
        }
        if (n == 0) {
            return {};
        }
        out.append(chunk.data(), static_cast<std::size_t>(n));
        if (out.size() > limit) {
            return {IOStatus::tooLarge, 0};
        }
    }
}

}  // namespace orvo
