// Every tool type the program implements, one catalogue per family, and the registration order.
#pragma once

#include <span>
#include <vector>

#include "tools/MCPTool.h"

namespace orvo {

// Family catalogues, each in its own file.
std::span<const MCPTool* const> localFileTools();
std::span<const MCPTool* const> computerUseTools();
std::span<const MCPTool* const> meetingTools();
std::span<const MCPTool* const> voiceSettingsTools();
std::span<const MCPTool* const> slateAndPersonaTools();
std::span<const MCPTool* const> followUpAndHistoryTools();
std::span<const MCPTool* const> playbookTools();
std::span<const MCPTool* const> scheduleTools();

// Every implemented tool, in the registration order that the metadata table fixes.
std::span<const MCPTool* const> registeredTools();

}  // namespace orvo
