// The static facts every tool name carries: its groups, its MCP annotations, its concurrency.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "protocol/Json.h"

namespace orvo {

enum class MCPToolset : std::uint8_t {
    state,
    settings,
    voice,
    meetings,
    slate,
    computer,
    playbooks,
    augments
};

inline constexpr std::array<std::string_view, 8> kToolsetRawValues = {
    "state", "settings", "voice", "meetings", "slate", "computer", "playbooks", "augments"};
static_assert(kToolsetRawValues.size() == static_cast<std::size_t>(MCPToolset::augments) + 1);

// A set of toolsets, one bit per case.
class MCPToolsets {
public:
    constexpr MCPToolsets() = default;
    constexpr MCPToolsets(std::initializer_list<MCPToolset> sets) noexcept {
        for (MCPToolset set : sets) {
            insert(set);
        }
    }
    static constexpr MCPToolsets all() {
        MCPToolsets sets;
        sets.bits_ = 0xFF;
        return sets;
    }

    constexpr void insert(MCPToolset set) { bits_ |= bit(set); }
    constexpr bool contains(MCPToolset set) const { return (bits_ & bit(set)) != 0; }
    constexpr bool intersects(MCPToolsets other) const { return (bits_ & other.bits_) != 0; }
    constexpr bool empty() const { return bits_ == 0; }
    constexpr bool operator==(const MCPToolsets&) const = default;

private:
    static constexpr std::uint8_t bit(MCPToolset set) {
        return static_cast<std::uint8_t>(1U << static_cast<unsigned>(set));
    }
    std::uint8_t bits_ = 0;
};

struct MCPToolAnnotations {
    bool readOnlyHint = false;
    std::optional<bool> destructiveHint;
    std::optional<bool> idempotentHint;
    std::optional<bool> openWorldHint;

    json encode() const;
};

struct MCPToolMetadata {
    MCPToolsets toolsets;
    MCPToolAnnotations annotations;
    bool permitsConcurrentRequests = false;
};

// Hint patterns as read-only/destructive/idempotent/open-world.
inline constexpr MCPToolAnnotations kReading{true, false, true, false};
inline constexpr MCPToolAnnotations kComputerUse{false, true, false, true};
inline constexpr MCPToolAnnotations kCreating{false, false, false, false};
inline constexpr MCPToolAnnotations kDestructive{false, true, false, false};
inline constexpr MCPToolAnnotations kIdempotentChange{false, false, true, false};

// The enabled toolsets for a `--toolsets` value.
MCPToolsets parseToolsets(std::string_view value);

}  // namespace orvo
