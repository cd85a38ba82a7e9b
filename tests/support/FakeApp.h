// A stand-in for the desktop app: a real socket that plays back scripted replies per method.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <sys/types.h>

#include "protocol/Json.h"

namespace orvo::test {

struct FakeReply {
    std::string bytes;                     // written as they are; empty closes without a reply
    std::chrono::milliseconds delay{0};    // cut short when the fake app is torn down
    std::chrono::milliseconds trickle{0};  // a pause before each byte after the first (0: none)
    // Holds the reply until the client goes away, as the app does while the owner decides.
    bool holdUntilDisconnect = false;
    // How long to watch for the client's half-close before replying (0: not watched).
    std::chrono::milliseconds watchHalfClose{0};
};

// No reply until the client goes away, as while the owner decides.
inline FakeReply heldReply() {
    FakeReply reply;
    reply.holdUntilDisconnect = true;
    return reply;
}

// The app's success and error replies, made with the app side's own encoders; `rawCode` is one
// of the app's error codes.
FakeReply successReply(const json& result);
FakeReply errorReply(std::string_view rawCode, std::string_view message,
                     const std::optional<json>& data = std::nullopt);

struct ReceivedRequest {
    std::string line;           // the request line as sent, without its line feed
    json request;               // parsed
    bool halfClosed = false;    // seen within watchHalfClose
    bool disconnected = false;  // a held request whose client went away
};

class FakeApp {
public:
    // Listens at `socketPath`; with `owner`, the socket is made under that user's id, so that
    // clients see it as that user's app.
    explicit FakeApp(std::filesystem::path socketPath,
                     std::optional<std::pair<uid_t, gid_t>> owner = std::nullopt);
    ~FakeApp();
    FakeApp(const FakeApp&) = delete;
    FakeApp& operator=(const FakeApp&) = delete;

    void on(const std::string& method, FakeReply reply);

    std::vector<ReceivedRequest> received() const;
    // Waits until `count` requests have been read (not necessarily answered).
    bool waitForRequests(std::size_t count,
                         std::chrono::milliseconds timeout = std::chrono::seconds(10));
    // Waits until `count` connections have been answered or abandoned.
    bool waitForFinished(std::size_t count,
                         std::chrono::milliseconds timeout = std::chrono::seconds(10));

private:
    void acceptLoop();
    void serve(int fd);

    std::filesystem::path path_;
    int listener_ = -1;
    std::atomic<bool> stopping_{false};
    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::map<std::string, FakeReply> replies_;
    FakeReply fallback_;
    std::vector<ReceivedRequest> received_;
    std::size_t finished_ = 0;
    std::vector<int> connections_;
    std::size_t liveServers_ = 0;  // detached connection threads still running
    std::thread acceptor_;
};

}  // namespace orvo::test
