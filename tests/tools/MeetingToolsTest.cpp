#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "protocol/Json.h"
#include "tools/ForwardingTool.h"
#include "tools/MCPToolMetadata.h"
#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

// A copy, so that a missing tool or member reads as null instead of stopping the test.
json schemaOf(std::string_view name) {
    std::span<const MCPTool* const> tools = meetingTools();
    auto it = std::ranges::find(tools, name, &MCPTool::name);
    return it == tools.end() ? json() : (*it)->inputSchema();
}

TEST(MeetingToolsTest, EveryToolForwardsAndPointsAtTheMeetingDocs) {
    EXPECT_EQ(meetingTools().size(), 15u);
    for (const MCPTool* tool : meetingTools()) {
        SCOPED_TRACE(tool->name());
        EXPECT_NE(dynamic_cast<const ForwardingTool*>(tool), nullptr);
        const MCPToolMetadata* metadata = toolMetadata(tool->name());
        ASSERT_NE(metadata, nullptr);
        EXPECT_TRUE(metadata->toolsets.contains(MCPToolset::meetings));
        EXPECT_TRUE(tool->description().ends_with(" Docs: meetings.md"));
    }
}

TEST(MeetingToolsTest, AddOnSelectionAndTemplateShapes) {
    const std::string addonIds =
        R"({"description":"Ordered add-on ids. Empty removes all add-ons. Existing meeting )"
        R"(snapshots are preserved for matching ids.","items":{"minLength":1,"type":"string"},)"
        R"("maxItems":3,"type":"array","uniqueItems":true})";
    for (std::string_view tool : {"set_meeting_notes_addons", "regenerate_meeting_notes"}) {
        SCOPED_TRACE(tool);
        EXPECT_EQ(dumpCompact(schemaOf(tool)["properties"]["addonIds"]), addonIds);
    }
    EXPECT_EQ(schemaOf("set_meeting_notes_addons")["required"], json({"addonIds"}));
    // Null is a value here (it selects Auto), so the schema must admit it.
    EXPECT_EQ(dumpCompact(schemaOf("regenerate_meeting_notes")["properties"]["templateName"]),
              R"({"type":["string","null"]})");
}

TEST(MeetingToolsTest, EditingAnAddOnTakesEveryFieldOfCreatingOne) {
    json create = schemaOf("create_meeting_addon");
    json edit = schemaOf("edit_meeting_addon");
    json editFields = edit["properties"];
    EXPECT_EQ(editFields["id"], json::parse(R"({"type":"string","minLength":1})"));
    editFields.erase("id");
    EXPECT_EQ(editFields, create["properties"]);
    EXPECT_EQ(create["required"], json({"name", "description", "body"}));
    EXPECT_EQ(edit["required"], json({"id", "name", "description", "body"}));
}

}  // namespace
}  // namespace orvo
