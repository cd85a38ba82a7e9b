// The tools one server run offers, chosen once at start-up and read-only afterwards.
#include "tools/ToolRegistry.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace orvo {
namespace {

// The host app's own assistant must not be offered these.
constexpr std::string_view kHiddenFromAssistant[] = {"speak"};

bool offered(const MCPTool& tool, const ToolSelection& selection) {
    const MCPToolMetadata& metadata = tool.metadata();
    if (selection.readOnly && !metadata.annotations.readOnlyHint) {
        return false;
    }
    if (!metadata.toolsets.intersects(selection.enabled)) {
        return false;
    }
    return !(selection.assistantOrigin && std::ranges::find(kHiddenFromAssistant, tool.name()) !=
                                              std::end(kHiddenFromAssistant));
}

}  // namespace

ToolRegistry ToolRegistry::assemble(std::span<const MCPTool* const> tools,
                                    const ToolSelection& selection) {
    ToolRegistry registry;
    for (const MCPTool* tool : tools) {
        if (offered(*tool, selection)) {
            registry.byName_.push_back(tool);
        }
    }
    std::ranges::stable_sort(registry.byName_, {}, &MCPTool::name);
    auto duplicate = std::ranges::adjacent_find(
        registry.byName_,
        [](const MCPTool* a, const MCPTool* b) { return a->name() == b->name(); });
    if (duplicate != registry.byName_.end()) {
        const std::string_view name = (*duplicate)->name();
        (void)std::fprintf(stderr, "Duplicate values for key: '%.*s'\n",
                           static_cast<int>(name.size()), name.data());
        std::abort();
    }
    return registry;
}

const MCPTool* ToolRegistry::find(std::string_view name) const {
    auto it = std::ranges::lower_bound(byName_, name, {}, &MCPTool::name);
    return it != byName_.end() && (*it)->name() == name ? *it : nullptr;
}

json listingEntry(const MCPTool& tool) {
    return json{{"name", tool.name()},
                {"description", tool.description()},
                {"inputSchema", tool.inputSchema()},
                {"annotations", tool.metadata().annotations.encode()}};
}

}  // namespace orvo
