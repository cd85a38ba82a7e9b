// Lets SIGTERM and SIGINT end the server cleanly: files whole, audit records written.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace orvo {

// Blocks SIGTERM and SIGINT in the calling thread and in every thread it starts afterwards, so
// that they reach only TerminationWatch. Call before any other thread starts.
void blockTerminationSignals();

// Waits for SIGTERM or SIGINT on a thread of its own. The first one runs `onSignal` there, while
// every other thread goes on, and then ends the process by that signal, as it would have ended.
class TerminationWatch {
public:
    explicit TerminationWatch(std::function<void()> onSignal);
    // Calls finish().
    ~TerminationWatch();
    TerminationWatch(const TerminationWatch&) = delete;
    TerminationWatch& operator=(const TerminationWatch&) = delete;

    // The run ends by itself: signals from now on are left blocked, so they cannot cut the
    // normal shutdown short. If a signal came first, this never returns: the process ends.
    void finish();

private:
    void watch();

    std::function<void()> onSignal_;
    std::atomic<bool> claimed_{false};  // by the first signal, or by finish()
    std::thread waiter_;
};

}  // namespace orvo
