#include "tools/ToolListing.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

// A stale or incomplete build-time entry would offer a tool as it was, or fall back to building it.
TEST(ToolListingTest, BuildTimeEntriesMatchWhatTheToolsSerialiseToday) {
    const auto generated = generatedToolListing();
    ASSERT_EQ(generated.size(), registeredTools().size());
    for (std::size_t i = 0; i < generated.size(); ++i) {
        EXPECT_EQ(generated[i].name, registeredTools()[i]->name());
    }
    using enum MCPToolset;
    const ToolSelection selections[] = {
        {}, {false, {voice, slate}, false}, {true, {}, false}, {false, MCPToolsets::all(), true}};
    for (const ToolSelection& selection : selections) {
        const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), selection);
        EXPECT_EQ(listingText(registry, generated), listingText(registry, {}));
    }
}

TEST(ToolListingTest, StringLiteralsEscapeWhatCppWouldMisread) {
    EXPECT_EQ(cppStringLiteral("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(cppStringLiteral("\n?\xE2\x80\x94"
                               "7"),
              R"("\012\077\342\200\2247")");
}

}  // namespace
}  // namespace orvo
