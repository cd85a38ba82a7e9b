#include "tools/ToolRegistry.h"

#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include "tools/ToolCatalog.h"
#include "tools/ToolListing.h"

namespace orvo {
namespace {

class FakeTool final : public MCPTool {
public:
    explicit FakeTool(std::string name) : name_(std::move(name)) {}
    std::string_view name() const override { return name_; }
    std::string_view description() const override { return "fake"; }
    const json& inputSchema() const override { return emptyInputSchema(); }
    Result<ToolOutput> call(const json&, const ToolContext&) const override {
        return ToolOutput(json::object());
    }

private:
    std::string name_;
};

std::set<std::string> offeredNames(const ToolSelection& selection) {
    const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), selection);
    std::set<std::string> names;
    for (const MCPTool* tool : registry.tools()) {
        names.emplace(tool->name());
    }
    return names;
}

// What the metadata table says a selection offers: every row a tool implements, which is all
// but three.
std::set<std::string> namesFromTable(bool readOnly, MCPToolsets enabled, bool assistantOrigin) {
    const std::set<std::string_view> unimplemented = {
        "set_assistant_ack_mode", "set_assistant_content_acknowledgments", "computer_playbook_run"};
    std::set<std::string> names;
    for (const MCPToolMetadataRow& row : toolMetadataRows()) {
        if ((!readOnly || row.metadata.annotations.readOnlyHint) &&
            row.metadata.toolsets.intersects(enabled) &&
            !(assistantOrigin && row.name == "speak") && !unimplemented.contains(row.name)) {
            names.emplace(row.name);
        }
    }
    return names;
}

TEST(ToolRegistryTest, MetadataTableIsWellFormed) {
    std::set<std::string_view> names;
    for (const MCPToolMetadataRow& row : toolMetadataRows()) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(names.insert(row.name).second) << "duplicate row";
        EXPECT_TRUE(std::ranges::all_of(row.name, [](char c) { return c == '_' || islower(c); }));
        EXPECT_FALSE(row.metadata.toolsets.empty());
        if (row.metadata.annotations.readOnlyHint) {
            EXPECT_TRUE(row.metadata.permitsConcurrentRequests);
        }
    }
}

TEST(ToolRegistryTest, EveryImplementedToolHasMetadataAndFollowsRegistrationOrder) {
    std::span<const MCPTool* const> tools = registeredTools();
    ASSERT_FALSE(tools.empty());
    for (std::size_t i = 0; i < tools.size(); ++i) {
        SCOPED_TRACE(tools[i]->name());
        EXPECT_NE(toolMetadata(tools[i]->name()), nullptr);
        if (i > 0) {
            EXPECT_LT(registrationIndex(tools[i - 1]->name()), registrationIndex(tools[i]->name()));
        }
    }
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

TEST(ToolRegistryTest, SelectionOffersWhatTheTableSays) {
    using enum MCPToolset;
    std::vector<MCPToolsets> selections = {MCPToolsets::all(), {}, {computer, playbooks}};
    for (std::size_t i = 0; i < kToolsetRawValues.size(); ++i) {
        selections.push_back({static_cast<MCPToolset>(i)});  // each group alone
    }
    for (std::size_t i = 0; i < selections.size(); ++i) {
        for (bool readOnly : {false, true}) {
            for (bool origin : {false, true}) {
                SCOPED_TRACE(::testing::Message() << "selection " << i << " readOnly " << readOnly
                                                  << " origin " << origin);
                EXPECT_EQ(offeredNames({origin, selections[i], readOnly}),
                          namesFromTable(readOnly, selections[i], origin));
            }
        }
    }
}

TEST(ToolRegistryTest, ReadOnlyNeverOffersAComputerUseActionOrAnUnknownTool) {
    const std::set<std::string> readOnly = offeredNames({false, MCPToolsets::all(), true});
    EXPECT_FALSE(readOnly.empty());
    EXPECT_FALSE(std::ranges::any_of(readOnly, [](const std::string& name) {
        return name.starts_with("computer_") && !name.starts_with("computer_playbook_");
    }));
    const FakeTool unknown("not_in_the_table");
    const MCPTool* tools[] = {&unknown};
    EXPECT_TRUE(ToolRegistry::assemble(tools, {}).tools().empty());
}

TEST(ToolRegistryTest, ListingEntriesCarryAnnotationsAndNoTitle) {
    const FakeTool known("computer_click");
    const FakeTool unknown("not_in_the_table");
    EXPECT_EQ(listingEntry(known), json::parse(R"({"name":"computer_click","description":"fake",
                  "inputSchema":{"type":"object","properties":{},"additionalProperties":false},
                  "annotations":{"readOnlyHint":false,"destructiveHint":true,
                                 "idempotentHint":false,"openWorldHint":true}})"));
    EXPECT_EQ(listingEntry(unknown)["annotations"], json::object());
    const FakeTool b("schedule_list"), a("current_settings");
    const MCPTool* tools[] = {&b, &a};
    const json listing = json::parse(listingText(ToolRegistry::assemble(tools, {}), {}));
    EXPECT_EQ(listing["tools"][0]["name"], "current_settings");
    EXPECT_EQ(listing["tools"][1]["name"], "schedule_list");
}

TEST(ToolRegistryDeathTest, TwoToolsWithOneNameStopTheProcess) {
    const FakeTool first("speak"), second("speak");
    const MCPTool* tools[] = {&first, &second};
    EXPECT_DEATH((void)ToolRegistry::assemble(tools, {}), "Duplicate values for key: 'speak'");
}

}  // namespace
}  // namespace orvo
