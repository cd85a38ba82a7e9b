// The follow-up, insights, ignored-speech and history schemas where a slip would mislead the agent.
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "support/FamilyTools.h"
#include "tools/ToolCatalog.h"

namespace orvo::test {
namespace {

const FamilyTools kTools(followUpAndHistoryTools());

TEST(FollowUpToolsTest, RequiredParametersAndLengthLimits) {
    using Names = std::vector<std::string>;
    const struct {
        std::string_view tool;
        std::optional<Names> required;  // absent: the schema has no "required" key at all
    } cases[] = {
        {"follow_up_create", Names{"pane_id", "condition", "owner_words", "created_by"}},
        {"follow_up_cancel", std::nullopt},  // the app refuses a call naming neither alternative
        {"session_search", Names{"query"}},
        {"session_read", Names{"task_id"}},
        {"get_recent_ignored_speech", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        const json& schema = kTools.schema(c.tool);
        if (c.required) {
            EXPECT_EQ(schema.value("required", json()), json(*c.required));
        } else {
            EXPECT_FALSE(schema.contains("required"));
        }
    }
    // Unlike a schedule's owner words, a watch's carry no minimum length.
    const json& ownerWords = kTools.property("follow_up_create", "owner_words");
    EXPECT_EQ(ownerWords.value("maxLength", 0), 8000);
    EXPECT_FALSE(ownerWords.contains("minLength"));
    EXPECT_EQ(kTools.property("session_search", "query").value("maxLength", 0), 4096);
}

TEST(FollowUpToolsTest, IgnoredSpeechWindowExcludesZero) {
    const json& since = kTools.property("get_recent_ignored_speech", "sinceSeconds");
    EXPECT_EQ(since.value("type", ""), "number");
    EXPECT_EQ(since.value("exclusiveMinimum", json()), 0);
    EXPECT_FALSE(since.contains("minimum"));
    EXPECT_EQ(since.value("maximum", json()), 90);
}

TEST(FollowUpToolsTest, DescriptionsOpenWithTheirLeadAndPointAtTheirDocs) {
    const struct {
        std::string_view tool;
        std::string_view lead;
        std::string_view docs;
    } cases[] = {
        {"follow_up_create", "Create a one-shot pinned Quarn watch. ", "Docs: follow-ups.md"},
        {"follow_up_list", "List follow-up watches", "Docs: follow-ups.md"},
        {"session_search", "Search Orvo-recorded", "Docs: history.md"},
        {"session_read", "Read an Orvo task locator", "Docs: history.md"},
        {"follow_up_cancel", "Use watch_id", "Docs: follow-ups.md"},
        {"get_insights", "Return the local Insights snapshot", "Docs: insights.md"},
        {"get_recent_ignored_speech",
         "Read what Ambient listening heard in about the last 90 seconds but did not send to "
         "you: owner speech that failed the voice check or was judged not for you, and other "
         "people's speech (nothing from Name only or asleep). ",
         "Docs: assistant.md"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        const std::string_view description = kTools.description(c.tool);
        EXPECT_TRUE(description.starts_with(c.lead)) << description;
        EXPECT_TRUE(description.ends_with(std::string(". ") + std::string(c.docs))) << description;
    }
}

}  // namespace
}  // namespace orvo::test
