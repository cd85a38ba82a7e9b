// Every tool name the program knows, one table of rows per family, and the lookups over them all.
#include "tools/ToolCatalog.h"

#include <algorithm>
#include <deque>
#include <vector>

namespace orvo {
namespace {

struct Catalogue {
    std::vector<const ToolRow*> rows;  // sorted by name, for binary search
    std::deque<MCPTool> tools;         // a deque: tools neither move nor copy
    std::vector<const MCPTool*> toolsByName;
};

// Built once, on first use: a server start needs only the rows it offers, never their schemas.
const Catalogue& catalogue() {
    static const Catalogue kCatalogue = [] {
        Catalogue built;
        for (auto family : {localFileTools, computerUseTools, computerInputTools, meetingTools,
                            voiceSettingsTools, slateAndPersonaTools, followUpAndHistoryTools,
                            playbookTools, scheduleTools}) {
            for (const ToolRow& row : family()) {
                built.rows.push_back(&row);
            }
        }
        std::ranges::sort(built.rows, {}, &ToolRow::name);
        for (const ToolRow* row : built.rows) {
            if (!row->description.empty()) {
                built.toolsByName.push_back(&built.tools.emplace_back(*row));
            }
        }
        return built;
    }();
    return kCatalogue;
}

}  // namespace

std::span<const ToolRow* const> toolRows() {
    return catalogue().rows;
}

const ToolRow* toolRow(std::string_view name) {
    const std::vector<const ToolRow*>& rows = catalogue().rows;
    auto it = std::ranges::lower_bound(rows, name, {}, &ToolRow::name);
    return it != rows.end() && (*it)->name == name ? *it : nullptr;
}

std::span<const MCPTool* const> registeredTools() {
    return catalogue().toolsByName;
}

}  // namespace orvo
