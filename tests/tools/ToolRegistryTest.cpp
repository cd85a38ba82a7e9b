#include "tools/ToolRegistry.h"

#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include "tools/ToolCatalog.h"
#include "tools/ToolListing.h"

namespace orvo {
namespace {

std::set<std::string> offeredNames(const ToolSelection& selection) {
    const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), selection);
    std::set<std::string> names;
    for (const MCPTool* tool : registry.tools()) {
        names.emplace(tool->name());
    }
    return names;
}

TEST(ToolRegistryTest, CatalogueRowsAreWellFormed) {
    std::size_t tools = 0;
    for (std::size_t i = 0; i < toolRows().size(); ++i) {
        const ToolRow& row = *toolRows()[i];
        SCOPED_TRACE(row.name);
        if (i > 0) {
            EXPECT_LT(toolRows()[i - 1]->name, row.name) << "names are unique across families";
        }
        EXPECT_FALSE(row.metadata.toolsets.empty());
        if (row.metadata.annotations.readOnlyHint) {
            EXPECT_TRUE(row.metadata.permitsConcurrentRequests);
        }
        tools += row.description.empty() ? 0 : 1;
        // Computer use is the app's alone.
        if (row.name.starts_with("computer_") && !row.name.starts_with("computer_playbook_")) {
            EXPECT_EQ(row.handler, nullptr);
        }
    }
    EXPECT_EQ(tools, 89u);
    EXPECT_EQ(registeredTools().size(), tools);
}

TEST(ToolRegistryTest, ParsesToolsetValues) {
    using enum MCPToolset;
    const struct {
        std::string value;
        MCPToolsets enabled;
    } cases[] = {
        {"", MCPToolsets::all()},
        {" \t", MCPToolsets::all()},
        {"voice, all ", MCPToolsets::all()},
        {"nope", MCPToolsets{}},
        {"Voice", MCPToolsets{}},
        {" voice , ,slate,,nope ", MCPToolsets{voice, slate}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(parseToolsets(c.value), c.enabled);
    }
}

TEST(ToolRegistryTest, SelectionsOfferTheirTools) {
    using enum MCPToolset;
    using Names = std::set<std::string>;
    EXPECT_EQ(offeredNames({}).size(), 89u);
    EXPECT_EQ(offeredNames({false, {voice}, false}),
              (Names{"list_tts_voices", "set_tts_voice", "speak"}));
    EXPECT_EQ(offeredNames({true, {voice}, false}), (Names{"list_tts_voices", "set_tts_voice"}));
    EXPECT_TRUE(offeredNames({false, {}, false}).empty());
    EXPECT_EQ(offeredNames({false, MCPToolsets::all(), true}).size(), 28u);
}

TEST(ToolRegistryTest, ListingEntriesCarryAnnotationsAndNoTitle) {
    constexpr ToolRow kClick{"computer_click", {{MCPToolset::computer}, kComputerUse, false}, "d"};
    const MCPTool click(kClick);
    EXPECT_EQ(listingEntry(click), json::parse(R"({"name":"computer_click","description":"d",
                  "inputSchema":{"type":"object","properties":{},"additionalProperties":false},
                  "annotations":{"readOnlyHint":false,"destructiveHint":true,
                                 "idempotentHint":false,"openWorldHint":true}})"));
}

// A stale, incomplete or misescaped build-time entry would offer a tool other than it is, or fall
// back to building it. The entries are compared as the compiler read their literals.
TEST(ToolRegistryTest, BuildTimeEntriesMatchWhatTheToolsSerialiseToday) {
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
