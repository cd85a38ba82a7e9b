// The app's half of cancellation: an operation is stopped when the client on its socket goes away.
#pragma once

#include <atomic>
#include <memory>
#include <type_traits>
#include <utility>

#include "protocol/RPCError.h"
#include "protocol/Result.h"

namespace orvo {

// Decides, once, whether an operation finished or was cancelled first; the operation polls it.
// Ours rather than std::stop_source, which the libc++ of Xcode 15 does not have.
class CancellationFlag {
public:
    bool isCancelled() const { return state_.load(std::memory_order_acquire) == kCancelled; }
    // Each returns whether it won: after one has, the other changes nothing.
    bool cancel() { return settle(kCancelled); }
    bool finish() { return settle(kFinished); }

private:
    static constexpr int kRunning = 0;
    static constexpr int kFinished = 1;
    static constexpr int kCancelled = 2;

    bool settle(int outcome) {
        int expected = kRunning;
        return state_.compare_exchange_strong(expected, outcome, std::memory_order_acq_rel);
    }

    std::atomic<int> state_{kRunning};
};

// Watches `fd` while it is alive; a client that half-closes, closes, or sends anything more after
// its request counts as gone, and the watcher cancels the flag it was given.
class MCPDisconnectWatcher {
public:
    MCPDisconnectWatcher(int fd, CancellationFlag& cancelOnDisconnect);
    ~MCPDisconnectWatcher();  // stops watching and joins
    MCPDisconnectWatcher(const MCPDisconnectWatcher&) = delete;
    MCPDisconnectWatcher& operator=(const MCPDisconnectWatcher&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

RPCError disconnectCancellationError();

// What the caller gets: the operation's own Result, or its plain value wrapped in one.
template <class T>
struct DisconnectOutcome {
    using Type = Result<T>;
};
template <class T>
struct DisconnectOutcome<Result<T>> {
    using Type = Result<T>;
};

// Runs `operation(flag)` and cancels the flag as soon as the client on `fd` disconnects. The
// caller gets the operation's result only when it finished first; once the client has gone, the
// result is the cancellation error whatever the operation returned, since nobody is waiting for it.
template <class Operation>
auto withMCPDisconnectCancellation(int fd, Operation&& operation) ->
    typename DisconnectOutcome<std::invoke_result_t<Operation, const CancellationFlag&>>::Type {
    CancellationFlag flag;
    MCPDisconnectWatcher watcher(fd, flag);
    auto result = std::forward<Operation>(operation)(std::as_const(flag));
    if (!flag.finish()) {
        return disconnectCancellationError();
    }
    return result;
}

}  // namespace orvo
