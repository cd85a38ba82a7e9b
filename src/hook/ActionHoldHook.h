// The agent's pre-tool-use hook: asks the owner, through the app, before a held action runs.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "applink/AppClient.h"
#include "protocol/Json.h"

namespace orvo {

inline constexpr std::string_view kHookLogPrefix = "orvo-agent action hold: ";
inline constexpr std::string_view kFailedClosedReason =
    "Orvo did not answer while this was waiting, so it did not run. Do not retry it unless the "
    "owner asks again.";

enum class HoldOutcomeKind { allowed, refused, failedOpen, failedClosed, agentGone };

struct HoldOutcome {
    HoldOutcomeKind kind = HoldOutcomeKind::allowed;
    std::string text;  // the owner's reason when refused, the failure when failed
};

struct HoldWait {
    std::chrono::milliseconds step{500};
    std::chrono::milliseconds limit;  // the reply time limit of "action_hold"
    // Whether the agent that started the hook is still its parent.
    std::function<bool()> agentStillThere;
};

// Sends the "action_hold" request and waits for the owner's answer.
HoldOutcome askOwner(const AppClient& app, const json& args, const HoldWait& wait);

// What the agent's hook input asks for: nothing (unreadable, or nothing held), or the arguments of
// the "action_hold" request.
struct HookCall {
    bool readable = false;
    std::optional<json> holdArgs;  // set when something is held
};

HookCall readHookCall(std::string_view input, const std::optional<std::string>& token);

struct HookResult {
    std::string output;                 // for standard output: empty, or one deny line
    std::vector<std::string> logLines;  // for standard error, without the prefix
};

// One run of the hook on the agent's input: classifies the call and, when anything is held, asks.
HookResult runHook(std::string_view input, const AppClient& app,
                   const std::optional<std::string>& token, const HoldWait& wait);

// Runs the hook for the pending tool call on standard input and ends the process with status 0.
[[noreturn]] void runActionHoldHook(const std::optional<std::string>& agentName,
                                    bool assistantOrigin);

}  // namespace orvo
