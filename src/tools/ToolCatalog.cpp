// Every tool type the program implements, one catalogue per family, and the registration order.
#include "tools/ToolCatalog.h"

#include <algorithm>
#include <utility>

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
        // and is never offered. Each tool's place is looked up once: this runs at every start.
        std::vector<std::pair<std::size_t, const MCPTool*>> placed;
        placed.reserve(tools.size());
        for (const MCPTool* tool : tools) {
            placed.emplace_back(registrationIndex(tool->name()), tool);
        }
        std::ranges::stable_sort(placed, {}, &std::pair<std::size_t, const MCPTool*>::first);
        std::ranges::transform(placed, tools.begin(),
                               &std::pair<std::size_t, const MCPTool*>::second);
        return tools;
    }();
    return kOrdered;
}

}  // namespace orvo
