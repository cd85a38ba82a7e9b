// The tools one server run offers, chosen once at start-up and read-only afterwards.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "protocol/Json.h"
#include "tools/MCPTool.h"
#include "tools/MCPToolMetadata.h"

namespace orvo {

struct ToolSelection {
    bool assistantOrigin = false;  // the host app's own assistant: it speaks through the app itself
    MCPToolsets enabled = MCPToolsets::all();
    bool readOnly = false;
};

class ToolRegistry {
public:
    // Keeps the tools of `tools` that the selection offers. Two tools with one name are a
    // programming error and stop the process.
    static ToolRegistry assemble(std::span<const MCPTool* const> tools,
                                 const ToolSelection& selection);

    const MCPTool* find(std::string_view name) const;
    bool offers(std::string_view name) const { return find(name) != nullptr; }
    // Sorted by name.
    const std::vector<const MCPTool*>& tools() const { return byName_; }

private:
    std::vector<const MCPTool*> byName_;
};

// One tool's entry in the `tools/list` result.
json listingEntry(const MCPTool& tool);

}  // namespace orvo
