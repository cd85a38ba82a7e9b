#include "tools/ToolRegistry.h"

#include <algorithm>
#include <deque>
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

// One fake per metadata row, plus one name the table does not know.
struct FakeCatalog {
    FakeCatalog() {
        for (const MCPToolMetadataRow& row : toolMetadataRows()) {
            tools.emplace_back(std::string(row.name));
        }
        tools.emplace_back("not_in_the_table");
        for (const FakeTool& tool : tools) {
            pointers.push_back(&tool);
        }
    }
    std::deque<FakeTool> tools;
    std::vector<const MCPTool*> pointers;
};

std::set<std::string> offeredNames(const ToolSelection& selection) {
    static const FakeCatalog catalog;
    std::set<std::string> names;
    const ToolRegistry registry = ToolRegistry::assemble(catalog.pointers, selection);
    for (const MCPTool* tool : registry.tools()) {
        names.emplace(tool->name());
    }
    return names;
}

// What the metadata table says a selection offers.
std::set<std::string> namesFromTable(bool readOnly, MCPToolsets enabled, bool assistantOrigin) {
    std::set<std::string> names;
    for (const MCPToolMetadataRow& row : toolMetadataRows()) {
        if ((!readOnly || row.metadata.annotations.readOnlyHint) &&
            row.metadata.toolsets.intersects(enabled) &&
            !(assistantOrigin && row.name == "speak")) {
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
    const MCPToolsets selections[] = {MCPToolsets::all(),
                                      MCPToolsets{},
                                      MCPToolsets{voice},
                                      MCPToolsets{augments},
                                      MCPToolsets{computer, playbooks},
                                      MCPToolsets{state, slate}};
    for (MCPToolsets enabled : selections) {
        for (bool readOnly : {false, true}) {
            for (bool origin : {false, true}) {
                SCOPED_TRACE(::testing::Message()
                             << "readOnly " << readOnly << " origin " << origin);
                EXPECT_EQ(offeredNames({origin, enabled, readOnly}),
                          namesFromTable(readOnly, enabled, origin));
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
    EXPECT_FALSE(offeredNames({}).contains("not_in_the_table"));
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

// The whole catalogue: each group alone offers exactly its rows of the table, every one of which
// has a tool, except the three names no tool implements.
TEST(ToolRegistryTest, EachGroupAloneOffersExactlyItsImplementedRows) {
    const std::set<std::string_view> unimplemented = {
        "set_assistant_ack_mode", "set_assistant_content_acknowledgments", "computer_playbook_run"};
    for (std::size_t i = 0; i < kToolsetRawValues.size(); ++i) {
        const auto toolset = static_cast<MCPToolset>(i);
        SCOPED_TRACE(kToolsetRawValues[i]);
        std::set<std::string> expected;
        for (const MCPToolMetadataRow& row : toolMetadataRows()) {
            if (row.metadata.toolsets.contains(toolset) && !unimplemented.contains(row.name)) {
                expected.emplace(row.name);
            }
        }
        const ToolRegistry registry =
            ToolRegistry::assemble(registeredTools(), {false, {toolset}, false});
        std::set<std::string> offered;
        for (const MCPTool* tool : registry.tools()) {
            offered.emplace(tool->name());
        }
        EXPECT_EQ(offered, expected);
    }
}

}  // namespace
}  // namespace orvo
