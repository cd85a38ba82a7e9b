// The panel's two placements, which must offer the same spots.
#include <gtest/gtest.h>

#include "support/FamilyTools.h"
#include "tools/ToolCatalog.h"

namespace orvo::test {
namespace {

const FamilyTools kTools(slateAndPersonaTools());

TEST(SlateToolsTest, TheCompanionGoesWhereThePanelDoesOrTheCenter) {
    json places = kTools.property("panel", "spot").value("enum", json::array());
    ASSERT_FALSE(places.empty());
    places.push_back("center");
    EXPECT_EQ(kTools.property("panel", "companion_at").value("enum", json()), places);
}

}  // namespace
}  // namespace orvo::test
