// Lets SIGTERM and SIGINT end the server cleanly: files whole, audit records written.
#include "server/TerminationWatch.h"

#include <csignal>
#include <cstdlib>

#include <pthread.h>
#include <unistd.h>

namespace orvo {
namespace {

sigset_t terminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

}  // namespace

void blockTerminationSignals() {
    const sigset_t signals = terminationSignals();
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationWatch::TerminationWatch(std::function<void()> onSignal)
    : onSignal_(std::move(onSignal)), waiter_([this] { watch(); }) {}

TerminationWatch::~TerminationWatch() {
    finish();
}

void TerminationWatch::finish() {
    if (!waiter_.joinable()) {
        return;
    }
    if (!claimed_.exchange(true)) {
        // Wakes the waiter with one of its own signals; it sees the claim and returns.
        ::pthread_kill(waiter_.native_handle(), SIGINT);
    }
    waiter_.join();
}

void TerminationWatch::watch() {
    const sigset_t signals = terminationSignals();
    int received = 0;
    while (::sigwait(&signals, &received) != 0) {
    }
    if (claimed_.exchange(true)) {
        return;
    }
    onSignal_();
    // Ended by the signal itself, so that whoever sent it sees the death it asked for. Only this
    // thread unblocks it; the others never run a handler.
    (void)std::signal(received, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, received);
    ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    (void)::raise(received);
    ::_exit(128 + received);
}

}  // namespace orvo
