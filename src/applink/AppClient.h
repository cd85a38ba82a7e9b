// Reaches the running app: one fresh socket connection per call, one request, one reply.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "protocol/DescriptorIO.h"
#include "protocol/Json.h"
#include "protocol/Result.h"
#include "protocol/UniqueFd.h"

namespace orvo {

inline constexpr std::size_t kMaxReplyBytes = 1048576;
inline constexpr std::chrono::seconds kSendTimeout{30};

struct AppClientOptions {
    std::filesystem::path home;  // the socket path is resolved from it for every call
    std::optional<std::string> agentName;
    bool assistantOrigin = false;
    // How long a method's reply may take; the shipped limits unless a test shortens them.
    std::function<std::chrono::milliseconds(std::string_view method)> replyTimeout;
};

class AppClient {
public:
    explicit AppClient(AppClientOptions options);

    // Asks the app to carry out `method`; its result, or the RPCError that explains the failure.
    Result<json> callApp(std::string_view method, json args) const;

    // The building blocks, shared with the action-hold hook.
    Result<UniqueFd> connectToApp(std::chrono::milliseconds replyTimeout) const;
    // `args` with the reserved members set from this process, never from the caller.
    json withAgentContext(json args, bool cancelOnDisconnect) const;
    std::chrono::milliseconds replyTimeout(std::string_view method) const;
    // The whole request must leave by `deadline`, and the whole reply arrive by it.
    static Status writeAll(int fd, std::string_view bytes, IOClock::time_point deadline);
    static Result<std::string> readReply(int fd, IOClock::time_point deadline);

private:
    AppClientOptions options_;
};

}  // namespace orvo
