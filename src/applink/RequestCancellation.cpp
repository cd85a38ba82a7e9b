// The cancellation token of one tracked computer-use call, shared by the reader and the worker.
#include "applink/RequestCancellation.h"

#include <utility>

#include <sys/socket.h>

namespace orvo {
namespace {

thread_local RequestCancellation* tCurrent = nullptr;

}  // namespace

void RequestCancellation::cancel() {
    std::lock_guard<std::mutex> guard(lock_);
    cancelled_ = true;
    if (socket_) {
        ::shutdown(*socket_, SHUT_WR);
    }
}

bool RequestCancellation::isCancelled() const {
    std::lock_guard<std::mutex> guard(lock_);
    return cancelled_;
}

bool RequestCancellation::recordSocket(int fd) {
    std::lock_guard<std::mutex> guard(lock_);
    socket_ = fd;
    if (cancelled_) {
        ::shutdown(fd, SHUT_WR);
    }
    return cancelled_;
}

void RequestCancellation::clearSocket() {
    std::lock_guard<std::mutex> guard(lock_);
    socket_.reset();
}

RequestCancellation* currentCancellation() {
    return tCurrent;
}

CurrentCancellationScope::CurrentCancellationScope(RequestCancellation* token)
    : previous_(std::exchange(tCurrent, token)) {}

CurrentCancellationScope::~CurrentCancellationScope() {
    tCurrent = previous_;
}

}  // namespace orvo
