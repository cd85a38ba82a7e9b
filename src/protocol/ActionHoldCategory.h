// The kinds of action an agent must wait on the owner for, named as the app names them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

namespace orvo {

enum class ActionHoldCategory : std::uint8_t {
    publishing,
    messages,
    deleting,
    closing,
    services,
    on_screen,
    agent_prompts,
};

// Every case in declaration order, which is also the order the app lists them in.
inline constexpr std::array<ActionHoldCategory, 7> kAllActionHoldCategories = {
    ActionHoldCategory::publishing,   ActionHoldCategory::messages, ActionHoldCategory::deleting,
    ActionHoldCategory::closing,      ActionHoldCategory::services, ActionHoldCategory::on_screen,
    ActionHoldCategory::agent_prompts};

inline constexpr std::array<std::string_view, 7> kActionHoldCategoryRawValues = {
    "publishing", "messages", "deleting", "closing", "services", "on_screen", "agent_prompts"};
static_assert(kActionHoldCategoryRawValues.size() ==
              static_cast<std::size_t>(ActionHoldCategory::agent_prompts) + 1);

inline constexpr std::string_view rawValue(ActionHoldCategory category) {
    return kActionHoldCategoryRawValues[static_cast<std::size_t>(category)];
}

// The category whose raw value is exactly `raw`; any other spelling names none.
std::optional<ActionHoldCategory> parseActionHoldCategory(std::string_view raw);

// The categories switched on before the owner has chosen: all but agent_prompts, in case
// order. Only the app reads it.
std::span<const ActionHoldCategory> defaultEnabledActionHoldCategories();

}  // namespace orvo

// Hashes as the raw value, so a category and its wire name land in the same bucket.
template <>
struct std::hash<orvo::ActionHoldCategory> {
    std::size_t operator()(orvo::ActionHoldCategory category) const noexcept {
        return std::hash<std::string_view>{}(orvo::rawValue(category));
    }
};
