// The app's half of cancellation: an operation is stopped when the client on its socket goes away.
#include "protocol/MCPDisconnectCancellation.h"

#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvo {

struct MCPDisconnectWatcher::State {
    State(int watched, CancellationFlag& flag) : fd(watched), cancelOnDisconnect(flag) {}

    int fd;
    CancellationFlag& cancelOnDisconnect;
    int wake[2] = {-1, -1};  // written once to end the watch when the operation finishes first
    std::thread thread;

    void watch() {
        for (;;) {
            pollfd fds[2] = {{fd, POLLIN, 0}, {wake[0], POLLIN, 0}};
            if (::poll(fds, 2, -1) < 0) {
                if (errno == EINTR) {
                    continue;
                }
                cancelOnDisconnect.cancel();
                return;
            }
            if (fds[1].revents != 0) {
                return;
            }
            if (fds[0].revents == 0) {
                continue;
            }
            // Look without consuming: only "nothing to read yet" means the client is still there.
            char byte;
            const ssize_t n = ::recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
            if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) {
                continue;
            }
            cancelOnDisconnect.cancel();
            return;
        }
    }
};

MCPDisconnectWatcher::MCPDisconnectWatcher(int fd, CancellationFlag& cancelOnDisconnect)
    : state_(std::make_unique<State>(fd, cancelOnDisconnect)) {
    if (::pipe(state_->wake) != 0) {
        // Without a way to wake it the watcher cannot be stopped; the operation runs unwatched.
        state_->wake[0] = state_->wake[1] = -1;
        return;
    }
    state_->thread = std::thread([state = state_.get()] { state->watch(); });
}

MCPDisconnectWatcher::~MCPDisconnectWatcher() {
    if (state_->thread.joinable()) {
        const char byte = 1;
        [[maybe_unused]] ssize_t ignored = ::write(state_->wake[1], &byte, 1);
        state_->thread.join();
    }
    for (int end : state_->wake) {
        if (end >= 0) {
            ::close(end);
        }
    }
}

RPCError disconnectCancellationError() {
    return {RPCCode::kServerError, "Request cancelled", std::nullopt};
}

}  // namespace orvo
