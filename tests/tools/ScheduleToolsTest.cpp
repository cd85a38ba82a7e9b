// The schedule schemas: rule and end are objects told apart by a fixed "type", and creating and
// updating a job describe them, and the owner's words, alike.
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tools/ToolCatalog.h"

namespace orvo::test {
namespace {

json property(std::string_view tool, const std::string& parameter) {
    return toolRow(tool)->schema()["properties"].value(parameter, json());
}

TEST(ScheduleToolsTest, RuleAndEndVariantsRequireADistinctConstType) {
    for (const std::string parameter : {"rule", "end"}) {
        SCOPED_TRACE(parameter);
        const json schema = property("schedule_create", parameter);
        EXPECT_EQ(schema, property("schedule_update", parameter));
        const json variants = schema.value("oneOf", json::array());
        ASSERT_GE(variants.size(), 3u);
        std::set<json> types;
        for (const json& variant : variants) {
            SCOPED_TRACE(variant.dump());
            const json type = variant.value("properties", json::object()).value("type", json());
            EXPECT_EQ(type, json({{"type", "string"}, {"const", type.value("const", "")}}));
            EXPECT_TRUE(types.insert(type.value("const", "")).second);
            const json required = variant.value("required", json::array());
            EXPECT_TRUE(!required.empty() && required[0] == "type");
        }
    }
    EXPECT_EQ(property("schedule_create", "owner_words"),
              property("schedule_update", "owner_words"));
}

}  // namespace
}  // namespace orvo::test
