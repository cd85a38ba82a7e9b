// Which held actions a pending tool call of an agent would perform, so that the owner can be asked.
#include "protocol/ActionHoldClassifier.h"

namespace orvo::ActionHoldClassifier {

std::vector<ActionHoldMatch> classify(std::string_view toolName, const json& input) {
    if (toolName == "Bash") {
        return classifyCommand(stringMember(input, "command").value_or(""));
    }
    if (toolName.starts_with("mcp__")) {
        if (std::optional<ActionHoldMatch> match = classifyMCPTool(toolName, input)) {
            return {std::move(*match)};
        }
    }
    return {};
}

}  // namespace orvo::ActionHoldClassifier
