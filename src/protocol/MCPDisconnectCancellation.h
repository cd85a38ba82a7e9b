// The app's half of cancellation: an operation is stopped when the client on its socket goes away.
#pragma once

#include <memory>
#include <stop_token>
#include <type_traits>
#include <utility>

namespace orvo {

// Watches `fd` while it is alive; a client that half-closes, closes, or sends anything more after
// its request counts as gone, and the watcher requests a stop on the token it was given.
class MCPDisconnectWatcher {
public:
    MCPDisconnectWatcher(int fd, std::stop_source stopOnDisconnect);
    ~MCPDisconnectWatcher();  // stops watching and joins
    MCPDisconnectWatcher(const MCPDisconnectWatcher&) = delete;
    MCPDisconnectWatcher& operator=(const MCPDisconnectWatcher&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

// Runs `operation(stopToken)` and requests a stop on that token as soon as the client on `fd`
// disconnects; returns the operation's result. The operation decides how quickly it honours it.
template <class Operation>
auto withMCPDisconnectCancellation(int fd, Operation&& operation)
    -> std::invoke_result_t<Operation, std::stop_token> {
    std::stop_source source;
    MCPDisconnectWatcher watcher(fd, source);
    return std::forward<Operation>(operation)(source.get_token());
}

}  // namespace orvo
