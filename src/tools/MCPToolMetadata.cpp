// The static facts every tool name carries: MCP annotations on the wire, and toolset values.
#include "tools/MCPToolMetadata.h"

#include "userfiles/FileText.h"

namespace orvo {

json MCPToolAnnotations::encode() const {
    json encoded = json::object();
    encoded["readOnlyHint"] = readOnlyHint;
    if (destructiveHint) {
        encoded["destructiveHint"] = *destructiveHint;
    }
    if (idempotentHint) {
        encoded["idempotentHint"] = *idempotentHint;
    }
    if (openWorldHint) {
        encoded["openWorldHint"] = *openWorldHint;
    }
    return encoded;
}

MCPToolsets parseToolsets(std::string_view value) {
    value = trimWhitespace(value);
    if (value.empty()) {
        return MCPToolsets::all();
    }
    MCPToolsets enabled;
    while (!value.empty()) {
        const auto comma = value.find(',');
        const std::string_view piece = trimWhitespace(value.substr(0, comma));
        value = comma == std::string_view::npos ? std::string_view{} : value.substr(comma + 1);
        if (piece == "all") {
            return MCPToolsets::all();
        }
        for (std::size_t i = 0; i < kToolsetRawValues.size(); ++i) {
            if (piece == kToolsetRawValues[i]) {
                enabled.insert(static_cast<MCPToolset>(i));
            }
        }
    }
    return enabled;
}

}  // namespace orvo
