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

// Written once before any request is read; only read afterwards.
struct StartupSettings {
    std::vector<std::string> arguments;  // the program path included
    std::optional<std::string> agentName;
    bool assistantOrigin = false;
    bool audibleCue = true;  // ORVO_MCP_AUDIBLE is anything but "0"
    bool hookMode = false;
    ToolSelection selection;
};

// Unknown arguments and missing values are ignored without a message. `assistantOriginValue` and
// `audibleValue` are the values of ORVO_ASSISTANT_ORIGIN and ORVO_MCP_AUDIBLE, null when unset.
StartupSettings readStartupSettings(std::span<const std::string> arguments,
                                    const char* assistantOriginValue, const char* audibleValue);

// Serves standard input and output until input ends; returns the exit status. `listing` holds the
// tools' listing entries serialised when the program was built.
int runServer(const StartupSettings& settings, std::span<const PrecomputedListingEntry> listing);

}  // namespace orvo
