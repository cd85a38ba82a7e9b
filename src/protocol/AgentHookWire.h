// The constants of the agent hook event record, which the app receives and checks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace orvo::AgentHookWire {

// The method under which an event reaches the app.
inline constexpr std::string_view kMethod = "agent_update_event";
// The largest encoded event, in UTF-8 bytes.
inline constexpr std::size_t kMaxEventBytes = 524288;
// The largest final message, in UTF-8 bytes; a longer one is cut and marked truncated.
inline constexpr std::size_t kMaxFinalMessageBytes = 262144;
// The layout of the record that this module writes.
inline constexpr std::int64_t kSchemaVersion = 1;

// The only environment variables an event carries: those that tell the terminal and pane the
// agent runs in. Sorted.
extern const std::span<const std::string_view> kAllowedEnvironmentKeys;
bool isAllowedEnvironmentKey(std::string_view key);

}  // namespace orvo::AgentHookWire
