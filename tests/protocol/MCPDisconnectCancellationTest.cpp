#include "protocol/MCPDisconnectCancellation.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Runs an operation that waits up to two seconds for cancellation and then answers 42 anyway,
// while `client` does its part.
template <class Client>
Result<int> outcomeWith(Client client) {
    int fds[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, fds), 0);
    std::thread peer([&] { client(fds[1]); });
    Result<int> outcome = withMCPDisconnectCancellation(fds[0], [](const CancellationFlag& flag) {
        const auto deadline = std::chrono::steady_clock::now() + 2s;
        while (!flag.isCancelled() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(1ms);
        }
        return 42;
    });
    peer.join();
    ::close(fds[0]);
    ::close(fds[1]);
    return outcome;
}

TEST(MCPDisconnectCancellationTest, ClientGoingAwayOrSendingMoreCancelsInsteadOfAnswering) {
    const RPCError cancelled{-32000, "Request cancelled", std::nullopt};
    const Result<int> halfClosed = outcomeWith([](int fd) { ::shutdown(fd, SHUT_WR); });
    ASSERT_FALSE(halfClosed);
    EXPECT_EQ(halfClosed.error(), cancelled);
    const Result<int> sentMore = outcomeWith([](int fd) { (void)::write(fd, "x", 1); });
    ASSERT_FALSE(sentMore);
    EXPECT_EQ(sentMore.error(), cancelled);
    const Result<int> quiet = outcomeWith([](int) {});  // a client that waits is still there
    ASSERT_TRUE(quiet);
    EXPECT_EQ(*quiet, 42);
}

TEST(MCPDisconnectCancellationTest, ReturnsTheOperationsResultWhenItFinishesFirst) {
    int fds[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, fds), 0);
    const auto start = std::chrono::steady_clock::now();
    const Result<int> result =
        withMCPDisconnectCancellation(fds[0], [](const CancellationFlag&) { return 42; });
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, 42);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);  // the watcher does not hold it up
    char byte;
    EXPECT_EQ(::recv(fds[0], &byte, 1, MSG_DONTWAIT), -1);  // nothing was consumed or sent
    ::close(fds[0]);
    ::close(fds[1]);
}

}  // namespace
}  // namespace orvo
