// A stand-in for the desktop app: a real socket that plays back scripted replies per method.
#include "support/FakeApp.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "applink/Platform.h"
#include "protocol/AppEnvelope.h"
#include "protocol/DescriptorIO.h"
#include "protocol/MCPDisconnectCancellation.h"
#include "support/Platform.h"

namespace orvo::test {
namespace {

// The request line; a client sends nothing after it but its half-close.
std::optional<std::string> readRequestLine(int fd) {
    std::string buffer;
    char chunk[4096];
    for (;;) {
        const auto newline = buffer.find('\n');
        if (newline != std::string::npos) {
            return buffer.substr(0, newline);
        }
        const ssize_t n = ::recv(fd, chunk, sizeof chunk, 0);
        if (n <= 0) {
            return std::nullopt;
        }
        buffer.append(chunk, static_cast<std::size_t>(n));
    }
}

bool sawHalfClose(int fd, std::chrono::milliseconds wait) {
    pollfd poller{fd, POLLIN, 0};
    if (::poll(&poller, 1, static_cast<int>(wait.count())) <= 0) {
        return false;
    }
    char byte;
    return ::recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

}  // namespace

FakeReply successReply(const json& result) {
    return FakeReply{*encodeMCPMutationSuccess(result)};
}

FakeReply errorReply(std::string_view rawCode, std::string_view message,
                     const std::optional<json>& data) {
    const MCPMutationErrorCode code =
        mutationErrorCode(rawCode).value_or(MCPMutationErrorCode::internal_error);
    return FakeReply{*encodeMCPMutationError(code, message, data)};
}

FakeApp::FakeApp(std::filesystem::path socketPath, std::optional<std::pair<uid_t, gid_t>> owner)
    : path_(std::move(socketPath)), fallback_(successReply(json::object())) {
    std::filesystem::create_directories(path_.parent_path());
    std::filesystem::remove(path_);
    // The peer credentials a client sees are those of whoever called listen().
    if (owner && (::setegid(owner->second) != 0 || ::seteuid(owner->first) != 0)) {
        throw std::runtime_error("cannot take the fake app's user id");
    }
    listener_ = openLocalSocket();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
    const bool listening =
        ::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::listen(listener_, 64) == 0;
    if (owner && (::seteuid(0) != 0 || ::setegid(0) != 0)) {
        throw std::runtime_error("cannot return to root");
    }
    if (!listening) {
        throw std::runtime_error("fake app cannot listen at " + path_.string());
    }
    acceptor_ = std::thread([this] { acceptLoop(); });
}

FakeApp::~FakeApp() {
    {
        std::lock_guard<std::mutex> guard(lock_);
        stopping_ = true;
        ::shutdown(listener_, SHUT_RDWR);
        for (int fd : connections_) {
            ::shutdown(fd, SHUT_RDWR);
        }
    }
    changed_.notify_all();
    acceptor_.join();
    std::unique_lock<std::mutex> guard(lock_);
    changed_.wait(guard, [this] { return liveServers_ == 0; });
    ::close(listener_);
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

void FakeApp::on(const std::string& method, FakeReply reply) {
    std::lock_guard<std::mutex> guard(lock_);
    replies_[method] = std::move(reply);
}

void FakeApp::acceptLoop() {
    for (;;) {
        const int fd = acceptConnection(listener_);
        if (fd < 0) {
            if (stopping_) {
                return;
            }
            continue;
        }
        // A reply to a client that already left must not end the test run with SIGPIPE.
        suppressSigpipe(fd);
        std::lock_guard<std::mutex> guard(lock_);
        if (stopping_) {
            ::close(fd);
            return;
        }
        connections_.push_back(fd);
        ++liveServers_;
        std::thread([this, fd] { serve(fd); }).detach();
    }
}

void FakeApp::serve(int fd) {
    std::optional<std::string> line = readRequestLine(fd);
    ReceivedRequest received;
    FakeReply reply;
    std::size_t index = 0;
    {
        std::lock_guard<std::mutex> guard(lock_);
        received.line = line.value_or("");
        received.request = json::parse(received.line, nullptr, false);
        const std::string method = received.request.is_object()
                                       ? received.request.value("method", std::string())
                                       : std::string();
        auto it = replies_.find(method);
        reply = it != replies_.end() ? it->second : fallback_;
        index = received_.size();
        received_.push_back(received);
    }
    changed_.notify_all();

    bool halfClosed = reply.watchHalfClose.count() > 0 && sawHalfClose(fd, reply.watchHalfClose);
    bool disconnected = false;
    if (reply.holdUntilDisconnect) {
        const Status held = withMCPDisconnectCancellation(fd, [&](const CancellationFlag& flag) {
            while (!flag.isCancelled() && !stopping_) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            return Done{};
        });
        disconnected = !held;
    } else {
        const std::size_t piece =
            reply.trickle.count() > 0 ? 1 : std::max<std::size_t>(reply.bytes.size(), 1);
        std::chrono::milliseconds pause = reply.delay;
        for (std::size_t at = 0; at == 0 || at < reply.bytes.size(); at += piece) {
            std::unique_lock<std::mutex> guard(lock_);
            if (changed_.wait_for(guard, pause, [this] { return stopping_.load(); })) {
                break;
            }
            guard.unlock();
            sendAll(fd, std::string_view(reply.bytes).substr(at, piece));
            pause = reply.trickle;
        }
    }
    {
        std::lock_guard<std::mutex> guard(lock_);
        received_[index].halfClosed = halfClosed;
        received_[index].disconnected = disconnected;
        ++finished_;
        std::erase(connections_, fd);
        ::close(fd);
        --liveServers_;
        // Notified under the lock: the destructor may free this object as soon as it sees zero.
        changed_.notify_all();
    }
}

std::vector<ReceivedRequest> FakeApp::received() const {
    std::lock_guard<std::mutex> guard(lock_);
    return received_;
}

bool FakeApp::waitForRequests(std::size_t count, std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> guard(lock_);
    return changed_.wait_for(guard, timeout, [&] { return received_.size() >= count; });
}

bool FakeApp::waitForFinished(std::size_t count, std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> guard(lock_);
    return changed_.wait_for(guard, timeout, [&] { return finished_ >= count; });
}

}  // namespace orvo::test
