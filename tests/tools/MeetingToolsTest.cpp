// The meeting schemas that must agree with each other, and the one null the app gives meaning.
#include <gtest/gtest.h>

#include "support/FamilyTools.h"
#include "tools/ToolCatalog.h"

namespace orvo::test {
namespace {

const FamilyTools kTools(meetingTools());

TEST(MeetingToolsTest, AddOnSchemasAgreeWhereTheCallsDo) {
    EXPECT_EQ(kTools.property("set_meeting_notes_addons", "addonIds"),
              kTools.property("regenerate_meeting_notes", "addonIds"));
    // Null selects the Auto template, so the schema must admit it.
    EXPECT_EQ(kTools.property("regenerate_meeting_notes", "templateName").value("type", json()),
              json({"string", "null"}));
    // Editing takes every field of creating, plus the id.
    json edit = kTools.schema("edit_meeting_addon");
    json create = kTools.schema("create_meeting_addon");
    edit["properties"].erase("id");
    EXPECT_EQ(edit["properties"], create["properties"]);
    json required = create["required"];
    required.insert(required.begin(), "id");
    EXPECT_EQ(edit["required"], required);
}

}  // namespace
}  // namespace orvo::test
