// Every tool type the program implements, one catalogue per family, and the registration order.
#include "tools/ToolCatalog.h"

#include <algorithm>

#include "tools/MCPToolMetadata.h"

namespace orvo {

std::span<const MCPTool* const> registeredTools() {
    static const std::vector<const MCPTool*> kOrdered = [] {
        std::vector<const MCPTool*> tools;
        for (auto family :
             {localFileTools, computerUseTools, meetingTools, voiceSettingsTools,
              slateAndPersonaTools, followUpAndHistoryTools, playbookTools, scheduleTools}) {
            std::span<const MCPTool* const> members = family();
            tools.insert(tools.end(), members.begin(), members.end());
        }
        // The metadata table lists tools in registration order; a tool without a row sorts last
        // and is never offered.
        std::ranges::stable_sort(
            tools, {}, [](const MCPTool* tool) { return registrationIndex(tool->name()); });
        return tools;
    }();
    return kOrdered;
}

}  // namespace orvo
