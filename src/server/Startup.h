// Start-up: what the command line and environment ask for, and the server's run until end of input.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/ToolListing.h"
#include "tools/ToolRegistry.h"

namespace orvo {

inline constexpr std::string_view kActionHoldHookFlag = "--action-hold-hook";

// Written once before any request is read; only read afterwards.
struct StartupSettings {
    std::vector<std::string> arguments;  // the program path included
    std::optional<std::string> agentName;
    bool assistantOrigin = false;
    bool hookMode = false;
    ToolSelection selection;
};

// Unknown arguments and missing values are ignored without a message. `assistantOriginValue` is
// the value of ORVO_ASSISTANT_ORIGIN, null when unset.
StartupSettings readStartupSettings(std::span<const std::string> arguments,
                                    const char* assistantOriginValue);

// Serves standard input and output until input ends; returns the exit status. `listing` holds the
// tools' listing entries serialised when the program was built.
int runServer(const StartupSettings& settings, std::span<const PrecomputedListingEntry> listing);

}  // namespace orvo
