// The agent's pre-tool-use hook: asks the owner before a held action runs.
#pragma once

#include <optional>
#include <string>

namespace orvo {

// Runs the hook for one pending tool call and ends the process with status 0.
[[noreturn]] void runActionHoldHook(const std::optional<std::string>& agentName,
                                    bool assistantOrigin);

}  // namespace orvo
