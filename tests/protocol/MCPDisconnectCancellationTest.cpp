#include "protocol/MCPDisconnectCancellation.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Runs an operation that waits up to two seconds for a stop, while `client` does its part.
template <class Client>
bool stoppedBy(Client client) {
    int fds[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, fds), 0);
    std::thread peer([&] { client(fds[1]); });
    const bool stopped = withMCPDisconnectCancellation(fds[0], [](std::stop_token stop) {
        const auto deadline = std::chrono::steady_clock::now() + 2s;
        while (!stop.stop_requested() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(1ms);
        }
        return stop.stop_requested();
    });
    peer.join();
    ::close(fds[0]);
    ::close(fds[1]);
    return stopped;
}

TEST(MCPDisconnectCancellationTest, StopsWhenTheClientGoesAwayOrSendsMore) {
    EXPECT_TRUE(stoppedBy([](int fd) { ::shutdown(fd, SHUT_WR); }));
    EXPECT_TRUE(stoppedBy([](int fd) { (void)::write(fd, "x", 1); }));
    EXPECT_FALSE(stoppedBy([](int) {}));  // a client that waits quietly is still there
}

TEST(MCPDisconnectCancellationTest, ReturnsTheOperationsResultWhenItFinishesFirst) {
    int fds[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, fds), 0);
    const auto start = std::chrono::steady_clock::now();
    const int result = withMCPDisconnectCancellation(fds[0], [](std::stop_token) { return 42; });
    EXPECT_EQ(result, 42);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);  // the watcher does not hold it up
    char byte;
    EXPECT_EQ(::recv(fds[0], &byte, 1, MSG_DONTWAIT), -1);  // nothing was consumed or sent
    ::close(fds[0]);
    ::close(fds[1]);
}

}  // namespace
}  // namespace orvo
