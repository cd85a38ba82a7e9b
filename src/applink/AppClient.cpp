// Reaches the running app: one fresh socket connection per call, one request, one reply.
#include "applink/AppClient.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "applink/Platform.h"
#include "applink/RequestCancellation.h"
#include "protocol/AppEnvelope.h"
#include "protocol/Diagnostics.h"
#include "protocol/MCPSocketPath.h"

namespace orvo {
namespace {

// The longest socket path macOS can carry in sockaddr_un, terminator included.
constexpr std::size_t kMaxSocketPathBytes = 104;

RPCError serverError(std::string message) {
    return RPCError{RPCCode::kServerError, std::move(message), std::nullopt};
}

timeval toTimeval(std::chrono::milliseconds duration) {
    timeval value{};
    value.tv_sec = static_cast<decltype(value.tv_sec)>(duration.count() / 1000);
    value.tv_usec = static_cast<decltype(value.tv_usec)>((duration.count() % 1000) * 1000);
    return value;
}

}  // namespace

AppClient::AppClient(AppClientOptions options) : options_(std::move(options)) {}

std::chrono::milliseconds AppClient::replyTimeout(std::string_view method) const {
    if (options_.replyTimeout) {
        return options_.replyTimeout(method);
    }
    return std::chrono::seconds(MCPReplyTimeout::seconds(method));
}

Result<UniqueFd> AppClient::connectToApp(std::chrono::milliseconds replyTimeout) const {
    const std::string path = MCPSocketPath::resolve(options_.home).string();
    UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (!socket) {
        return serverError("socket() failed: " + errnoDescription(errno));
    }
    ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
    if (const int error = suppressSigpipe(socket.get()); error != 0) {
        return serverError("setsockopt(SO_NOSIGPIPE) failed: " + errnoDescription(error));
    }
    const timeval receive = toTimeval(replyTimeout);
    const timeval send = toTimeval(kSendTimeout);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &receive, sizeof receive);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &send, sizeof send);

    if (path.size() >= kMaxSocketPathBytes) {
        return serverError("socket path too long");
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        if (error == ENOENT || error == ECONNREFUSED) {
            return RPCError{RPCCode::kAppNotRunning,
                            "Orvo app is not running \u2014 open the app and try again.",
                            std::nullopt};
        }
        return serverError("connect() failed: " + errnoDescription(error));
    }
    unsigned peerUid = 0;
    if (const int error = peerUserId(socket.get(), peerUid); error != 0) {
        return serverError("getpeereid() failed: " + errnoDescription(error));
    }
    const unsigned ownUid = ::getuid();
    if (peerUid != ownUid) {
        return RPCError{rpcCode(MCPMutationErrorCode::peer_not_permitted),
                        "Refusing to talk to MCP server: peer uid " + std::to_string(peerUid) +
                            " does not match this user's uid " + std::to_string(ownUid) + ".",
                        std::nullopt};
    }
    return socket;
}

json AppClient::withAgentContext(json args, bool cancelOnDisconnect) const {
    if (!args.is_object()) {
        args = json::object();
    }
    args.erase(MCPTransportCancellation::argumentKey);
    if (cancelOnDisconnect) {
        args[MCPTransportCancellation::argumentKey] = true;
    }
    args.erase("_agent");
    if (options_.agentName) {
        args["_agent"] = *options_.agentName;
    }
    args.erase("_origin");
    if (options_.assistantOrigin) {
        args["_origin"] = "assistant";
    }
    return args;
}

Result<json> AppClient::callApp(std::string_view method, json args) const {
    RequestCancellation* token = isComputerUseTool(method) ? currentCancellation() : nullptr;
    if (token != nullptr && token->isCancelled()) {
        return serverError("Request cancelled");
    }
    Result<UniqueFd> socket = connectToApp(replyTimeout(method));
    if (!socket) {
        return std::move(socket).error();
    }
    const int fd = socket->get();
    const Result<std::string> request =
        encodeMCPMutationRequest(method, withAgentContext(std::move(args), token != nullptr));
    if (!request) {
        return request.error();
    }
    if (Status written = writeAll(fd, *request, IOClock::now() + kSendTimeout); !written) {
        return std::move(written).error();
    }
    if (token == nullptr) {
        ::shutdown(fd, SHUT_WR);
    } else {
        // The sending side stays open so that a later cancel can half-close it.
        token->recordSocket(fd);
    }
    Result<std::string> reply = readReply(fd, IOClock::now() + replyTimeout(method));
    if (token != nullptr) {
        token->clearSocket();
    }
    if (!reply) {
        return std::move(reply).error();
    }
    return mutationOutcome(decodeMCPMutationResponse(*reply));
}

Status AppClient::writeAll(int fd, std::string_view bytes, IOClock::time_point deadline) {
    const IOResult sent = sendAll(fd, bytes, deadline);
    switch (sent.status) {
        case IOStatus::done:
            return ok();
        case IOStatus::closed:
            return serverError("write() returned 0 (peer closed?)");
        default:
            // Running out of time reads as the send time-out's own EAGAIN.
            return serverError("write() failed: " + errnoDescription(sent.error));
    }
}

Result<std::string> AppClient::readReply(int fd, IOClock::time_point deadline) {
    std::string reply;
    const IOResult read = readUpTo(fd, reply, kMaxReplyBytes, deadline);
    switch (read.status) {
        case IOStatus::done:
            return reply;
        case IOStatus::timedOut:
            return RPCError{rpcCode(MCPMutationErrorCode::consent_pending_timeout),
                            "Orvo did not answer in time. The request may still be waiting for "
                            "the user; check the screen before retrying.",
                            std::nullopt};
        case IOStatus::tooLarge:
            return serverError("response too large (>1 MiB)");
        default:
            return serverError("read() failed: " + errnoDescription(read.error));
    }
}

}  // namespace orvo
