// The tools/list text: every offered tool's listing entry, serialised once.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "tools/ToolRegistry.h"

namespace orvo {

// One tool's listing entry as compact JSON, made when the program is built so that starting the
// server never builds a schema.
struct PrecomputedListingEntry {
    std::string_view name;
    std::string_view text;
};

// The entries generated at build time for every implemented tool, sorted by name. Only the
// shipped binary (and the tests that check them) link them in.
std::span<const PrecomputedListingEntry> generatedToolListing();

// The `tools/list` result of `registry` as compact JSON: {"tools": [...]}, sorted by name. Entries
// found in `precomputed` are copied; any other is built from its tool.
std::string listingText(const ToolRegistry& registry,
                        std::span<const PrecomputedListingEntry> precomputed);

// `text` as a C++ string literal, for the generated source.
std::string cppStringLiteral(std::string_view text);

}  // namespace orvo
