#include "tools/ToolListing.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

TEST(ToolListingTest, BuildTimeEntriesAreWhatTheToolsSerialiseToday) {
    const auto generated = generatedToolListing();
    ASSERT_EQ(generated.size(), registeredTools().size());
    for (std::size_t i = 0; i < generated.size(); ++i) {
        const MCPTool& tool = *registeredTools()[i];
        SCOPED_TRACE(tool.name());
        EXPECT_EQ(generated[i].name, tool.name());
        EXPECT_EQ(generated[i].text, dumpCompact(listingEntry(tool)));
    }
}

TEST(ToolListingTest, ListingTextIsTheSameWithOrWithoutBuildTimeEntries) {
    using enum MCPToolset;
    const ToolSelection selections[] = {
        {}, {false, {voice, slate}, false}, {true, {}, false}, {false, MCPToolsets::all(), true}};
    for (const ToolSelection& selection : selections) {
        const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), selection);
        const std::string text = listingText(registry, generatedToolListing());
        EXPECT_EQ(text, listingText(registry, {}));
        const json parsed = json::parse(text);
        ASSERT_EQ(parsed["tools"].size(), registry.tools().size());
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
