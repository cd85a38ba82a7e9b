// The kinds of action an agent must wait on the owner for, named as the app names them.
#include "protocol/ActionHoldCategory.h"

#include <vector>

namespace orvo {
namespace {

std::vector<ActionHoldCategory> buildDefaultEnabled() {
    std::vector<ActionHoldCategory> enabled;
    for (ActionHoldCategory category : kAllActionHoldCategories) {
        // Prompts typed into another agent are routine for an orchestrating agent, so the
        // owner opts into holding them.
        if (category != ActionHoldCategory::agent_prompts) {
            enabled.push_back(category);
        }
    }
    return enabled;
}

}  // namespace

std::optional<ActionHoldCategory> parseActionHoldCategory(std::string_view raw) {
    for (ActionHoldCategory category : kAllActionHoldCategories) {
        if (rawValue(category) == raw) {
            return category;
        }
    }
    return std::nullopt;
}

std::span<const ActionHoldCategory> defaultEnabledActionHoldCategories() {
    static const std::vector<ActionHoldCategory> enabled = buildDefaultEnabled();
    return enabled;
}

}  // namespace orvo
