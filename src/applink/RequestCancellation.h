// The cancellation token of one tracked computer-use call, shared by the reader and the worker.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

namespace orvo {

class RequestCancellation {
public:
    // Sets the flag for good; a recorded socket is half-closed so the app sees the client leave.
    void cancel();
    bool isCancelled() const;

    // Records the call's socket once its request is written; half-closes it at once when the call
    // was already cancelled. Returns whether it was.
    bool recordSocket(int fd);
    // Forgets the socket before it is closed, so that a late cancel never touches a reused number.
    void clearSocket();

private:
    mutable std::mutex lock_;
    bool cancelled_ = false;
    std::optional<int> socket_;
};

// The token of the call running on this thread, if any.
RequestCancellation* currentCancellation();

// Publishes `token` as the current thread's call for the scope's lifetime.
class CurrentCancellationScope {
public:
    explicit CurrentCancellationScope(RequestCancellation* token);
    ~CurrentCancellationScope();
    CurrentCancellationScope(const CurrentCancellationScope&) = delete;
    CurrentCancellationScope& operator=(const CurrentCancellationScope&) = delete;

private:
    RequestCancellation* previous_;
};

}  // namespace orvo
