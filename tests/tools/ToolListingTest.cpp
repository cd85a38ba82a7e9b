#include "tools/ToolListing.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

// A stale, incomplete or misescaped build-time entry would offer a tool other than it is, or fall
// back to building it. The entries are compared as the compiler read their literals.
TEST(ToolListingTest, BuildTimeEntriesMatchWhatTheToolsSerialiseToday) {
    const auto generated = generatedToolListing();
    EXPECT_TRUE(std::ranges::equal(generated, registeredTools(), {}, &PrecomputedListingEntry::name,
                                   &MCPTool::name));
    using enum MCPToolset;
    const ToolSelection selections[] = {
        {}, {false, {voice, slate}, false}, {true, {}, false}, {false, MCPToolsets::all(), true}};
    for (const ToolSelection& selection : selections) {
        const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), selection);
        EXPECT_EQ(listingText(registry, generated), listingText(registry, {}));
    }
}

}  // namespace
}  // namespace orvo
