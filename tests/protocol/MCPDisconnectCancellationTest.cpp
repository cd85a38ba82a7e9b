#include "protocol/MCPDisconnectCancellation.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>
#include <sys/socket.h>

#include "protocol/UniqueFd.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

// The operation waits up to `wait` for cancellation and then answers 42 anyway, while the client
// on the other end of the socket does its part. Either way the answer comes at once: the watcher
// neither misses the client going nor holds up an operation that finished first.
TEST(MCPDisconnectCancellationTest, ClientGoingAwayOrSendingMoreCancelsInsteadOfAnswering) {
    const struct {
        std::string_view name;
        void (*client)(int fd);
        std::chrono::milliseconds wait;
        std::string outcome;
    } cases[] = {
        {"half-closed", [](int fd) { ::shutdown(fd, SHUT_WR); }, 5s, "-32000 Request cancelled"},
        {"sent more", [](int fd) { (void)::write(fd, "x", 1); }, 5s, "-32000 Request cancelled"},
        {"still waiting", [](int) {}, 200ms, "42"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int fds[2];
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, fds), 0);
        const UniqueFd ours(fds[0]);
        const UniqueFd theirs(fds[1]);
        const auto start = std::chrono::steady_clock::now();
        std::thread peer(c.client, fds[1]);
        const Result<int> outcome =
            withMCPDisconnectCancellation(fds[0], [&](const CancellationFlag& flag) {
                while (!flag.isCancelled() && std::chrono::steady_clock::now() < start + c.wait) {
                    std::this_thread::sleep_for(1ms);
                }
                return 42;
            });
        peer.join();
        EXPECT_EQ(outcome ? std::to_string(*outcome)
                          : std::to_string(outcome.error().code) + " " + outcome.error().message,
                  c.outcome);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    }
}

}  // namespace
}  // namespace orvo
