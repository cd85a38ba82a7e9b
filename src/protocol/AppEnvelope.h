// The request and reply that the server and the app exchange over the socket, both sides' halves.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "protocol/Json.h"
#include "protocol/Result.h"

namespace orvo {

// The app's refusals, in declaration order; each has its JSON-RPC code for the agent.
enum class MCPMutationErrorCode {
    validation_failed,
    slot_budget_full,
    consent_pending_timeout,
    consent_denied,
    refused,
    target_changed,
    app_not_running,
    too_many_requests,
    peer_not_permitted,
    internal_error,
};

struct MCPMutationErrorCodeInfo {
    std::string_view rawValue;
    int rpcCode;
};

inline constexpr std::array<MCPMutationErrorCodeInfo, 10> kMCPMutationErrorCodes = {{
    {"validation_failed", RPCCode::kInvalidParams},
    {"slot_budget_full", -32011},
    {"consent_pending_timeout", -32013},
    {"consent_denied", -32012},
    {"refused", -32016},
    {"target_changed", -32017},
    {"app_not_running", RPCCode::kAppNotRunning},
    {"too_many_requests", -32014},
    {"peer_not_permitted", -32015},
    {"internal_error", RPCCode::kInternalError},
}};
static_assert(kMCPMutationErrorCodes.size() ==
              static_cast<std::size_t>(MCPMutationErrorCode::internal_error) + 1);

std::string_view rawValue(MCPMutationErrorCode code);
int rpcCode(MCPMutationErrorCode code);
std::optional<MCPMutationErrorCode> mutationErrorCode(std::string_view rawValue);

struct MCPMutationSuccess {
    json result;
};
struct MCPMutationError {
    MCPMutationErrorCode code;
    std::string message;
    std::optional<json> data;
};
struct MCPMutationMalformed {
    std::string reason;
};
using MCPMutationDecodeResult =
    std::variant<MCPMutationSuccess, MCPMutationError, MCPMutationMalformed>;

// Replies nested deeper than this are malformed: nothing deeper is ever built from one.
inline constexpr int kMaxReplyDepth = 256;

// Server side: the request line, and the reading of the app's reply. The encoders here and
// below refuse with -32603 a value that JSON cannot hold (a NaN, an infinity, text that is not
// UTF-8) rather than write something else in its place.
Result<std::string> encodeMCPMutationRequest(std::string_view method, const json& args);
MCPMutationDecodeResult decodeMCPMutationResponse(std::string_view bytes);

// The tool's outcome for a decoded reply: the app's result, or an RPCError that always carries
// the app's symbolic code in data.code.
Result<json> mutationOutcome(MCPMutationDecodeResult decoded);

// App side: the reply lines.
Result<std::string> encodeMCPMutationSuccess(const json& result);
Result<std::string> encodeMCPMutationError(MCPMutationErrorCode code, std::string_view message,
                                           const std::optional<json>& data = std::nullopt);

// Computer-use tools run long, may be cancelled, and are the only calls that are.
inline constexpr std::string_view kComputerUsePrefix = "computer_";
constexpr bool isComputerUseTool(std::string_view name) {
    return name.starts_with(kComputerUsePrefix);
}

namespace MCPReplyTimeout {
// How long the whole reply may take, in seconds.
int seconds(std::string_view method);
}  // namespace MCPReplyTimeout

namespace MCPTransportCancellation {
// Tells the app to watch the connection and abandon the call when the client half-closes it.
// NOLINTNEXTLINE(readability-identifier-naming): the app uses this name too
inline constexpr std::string_view argumentKey = "_cancelOnDisconnect";
}  // namespace MCPTransportCancellation

}  // namespace orvo
