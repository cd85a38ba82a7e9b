// The common shape of tools that the app carries out: their arguments go to the app as they are.
#pragma once

#include <initializer_list>
#include <string_view>

#include "tools/MCPTool.h"

namespace orvo {

// A forwarded tool only names itself, describes itself and declares its schema.
class ForwardingTool : public MCPTool {
public:
    // Sends `arguments` unchanged to the app under the tool's own name; the app's reply is the
    // result.
    Result<ToolOutput> call(const json& arguments, const ToolContext& context) const final;
};

// {"type": "object", "properties": ..., "required": ... (left out when empty),
//  "additionalProperties": false}: the shape of every tool's arguments.
json objectSchema(json properties, std::initializer_list<std::string_view> required = {});

}  // namespace orvo
