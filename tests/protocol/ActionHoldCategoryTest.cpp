#include "protocol/ActionHoldCategory.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(ActionHoldCategoryTest, RawValuesReadBackOnlyWhenSpelledExactly) {
    const std::string_view expected[] = {"publishing", "messages",  "deleting",     "closing",
                                         "services",   "on_screen", "agent_prompts"};
    ASSERT_EQ(std::size(expected), kAllActionHoldCategories.size());
    for (std::size_t i = 0; i < kAllActionHoldCategories.size(); ++i) {
        SCOPED_TRACE(expected[i]);
        EXPECT_EQ(rawValue(kAllActionHoldCategories[i]), expected[i]);
        EXPECT_EQ(parseActionHoldCategory(expected[i]), kAllActionHoldCategories[i]);
    }
    for (std::string_view other : {"On_Screen", "on-screen", "onScreen", "", " deleting",
                                   "deleting ", "PUBLISHING", "agent_prompt"}) {
        SCOPED_TRACE(other);
        EXPECT_EQ(parseActionHoldCategory(other), std::nullopt);
    }
}

TEST(ActionHoldCategoryTest, DefaultEnabledIsEveryCaseButAgentPromptsInOrder) {
    const std::vector<ActionHoldCategory> enabled(defaultEnabledActionHoldCategories().begin(),
                                                  defaultEnabledActionHoldCategories().end());
    const std::vector<ActionHoldCategory> expected(kAllActionHoldCategories.begin(),
                                                   kAllActionHoldCategories.end() - 1);
    EXPECT_EQ(enabled, expected);
    EXPECT_EQ(std::ranges::count(enabled, ActionHoldCategory::agent_prompts), 0);
}

}  // namespace
}  // namespace orvo
