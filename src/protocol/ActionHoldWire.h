// The constants of the exchange between the action-hold hook and the app.
#pragma once

#include <string_view>

namespace orvo::ActionHoldWire {

// The method of the request in which the hook asks the app about a held call.
inline constexpr std::string_view kMethod = "action_hold";
// The flag that starts the program as the agent's pre-tool-use hook.
inline constexpr std::string_view kHookFlag = "--action-hold-hook";
// The environment variable whose value the hook hands to the app, unread.
inline constexpr std::string_view kTokenEnvKey = "ORVO_ACTION_HOLD_TOKEN";
// How long the hook waits for the owner's answer, in seconds.
inline constexpr int kReplyTimeoutSeconds = 110;

}  // namespace orvo::ActionHoldWire
