// The one error that reaches the agent with its own JSON-RPC code.
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace orvo {

struct RPCError {
    int code = 0;
    std::string message;
    std::optional<nlohmann::json> data;

    bool operator==(const RPCError&) const = default;
};

// JSON-RPC codes used across the program.
namespace RPCCode {
inline constexpr int kParseError = -32700;
inline constexpr int kInvalidRequest = -32600;
inline constexpr int kMethodNotFound = -32601;
inline constexpr int kInvalidParams = -32602;
inline constexpr int kInternalError = -32603;
inline constexpr int kServerError = -32000;  // transport failures and server limits
inline constexpr int kAppNotRunning = -32001;
inline constexpr int kMalformedReply = -32002;
}  // namespace RPCCode

}  // namespace orvo
