// The record in which an agent's lifecycle hooks, with the terminal and processes the agent runs
// in, are reported to the app. This program defines it for the app's side and never sends it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/AgentHookWire.h"

namespace orvo {

enum class AgentHookProvider : std::uint8_t { claude, codex };

inline constexpr std::array<AgentHookProvider, 2> kAllAgentHookProviders = {
    AgentHookProvider::claude, AgentHookProvider::codex};
inline constexpr std::array<std::string_view, 2> kAgentHookProviderRawValues = {"claude", "codex"};
static_assert(kAgentHookProviderRawValues.size() == kAllAgentHookProviders.size());

enum class AgentHookKind : std::uint8_t { sessionStart, userPromptSubmit, permissionRequest, stop };

inline constexpr std::array<AgentHookKind, 4> kAllAgentHookKinds = {
    AgentHookKind::sessionStart, AgentHookKind::userPromptSubmit, AgentHookKind::permissionRequest,
    AgentHookKind::stop};
inline constexpr std::array<std::string_view, 4> kAgentHookKindRawValues = {
    "sessionStart", "userPromptSubmit", "permissionRequest", "stop"};
static_assert(kAgentHookKindRawValues.size() == kAllAgentHookKinds.size());

inline constexpr std::string_view rawValue(AgentHookProvider provider) {
    return kAgentHookProviderRawValues[static_cast<std::size_t>(provider)];
}
inline constexpr std::string_view rawValue(AgentHookKind kind) {
    return kAgentHookKindRawValues[static_cast<std::size_t>(kind)];
}
// Exact spellings only.
std::optional<AgentHookProvider> parseAgentHookProvider(std::string_view raw);
std::optional<AgentHookKind> parseAgentHookKind(std::string_view raw);

// One process in the agent's ancestry.
struct AgentHookProcess {
    std::int32_t pid = 0;
    std::int32_t parentPID = 0;
    std::optional<std::string> executablePath;
    std::optional<std::string> tty;
    std::optional<double> startTime;  // seconds since 1970-01-01 UTC

    bool operator==(const AgentHookProcess&) const = default;
};

// Where the agent runs.
struct AgentHookHostContext {
    std::optional<std::string> tty;
    std::vector<AgentHookProcess> ancestors;  // parent first
    // Only keys that AgentHookWire allows; others are dropped when the event is encoded or read.
    std::map<std::string, std::string> environment;
    std::optional<std::string> terminalProgram;
    std::optional<std::int32_t> appPID;
    std::optional<std::string> appBundleID;

    bool operator==(const AgentHookHostContext&) const = default;
};

struct AgentHookEvent {
    std::int64_t schemaVersion = AgentHookWire::kSchemaVersion;
    AgentHookProvider provider = AgentHookProvider::claude;
    AgentHookKind kind = AgentHookKind::sessionStart;
    std::string sessionID;
    std::optional<std::string> turnID;
    std::string eventID;
    std::optional<std::string> cwd;
    AgentHookHostContext host;
    double timestamp = 0;  // seconds since 1970-01-01 UTC
    std::optional<std::string> finalMessage;
    std::optional<std::string> permissionDescription;
    std::optional<std::string> failure;
    bool finalMessageTruncated = false;

    bool operator==(const AgentHookEvent&) const = default;

    // Sets the final message, cut at a character boundary to at most kMaxFinalMessageBytes, and
    // marks it truncated when it was cut.
    void setFinalMessage(std::string_view message);

    // One line of JSON with the keys in field order; absent optional fields are left out, and a
    // final message past its limit is cut and flagged as setFinalMessage does. None when the
    // line would exceed kMaxEventBytes, or when a time is not finite or a text is not UTF-8.
    std::optional<std::string> encode() const;

    // Reads an encoded event back. None when the text exceeds kMaxEventBytes, is not a JSON
    // object, or lacks a required field or has a field of the wrong type; null reads as absent.
    static std::optional<AgentHookEvent> decode(std::string_view text);
};

}  // namespace orvo
