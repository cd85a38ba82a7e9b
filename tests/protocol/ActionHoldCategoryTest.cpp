#include "protocol/ActionHoldCategory.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(ActionHoldCategoryTest, RawValuesReadBackOnlyWhenSpelledExactly) {
    for (ActionHoldCategory category : kAllActionHoldCategories) {
        EXPECT_EQ(parseActionHoldCategory(rawValue(category)), category);
    }
    EXPECT_EQ(rawValue(ActionHoldCategory::on_screen), "on_screen");
    for (std::string_view other : {"On_Screen", "on-screen", "", " deleting", "agent_prompt"}) {
        SCOPED_TRACE(other);
        EXPECT_EQ(parseActionHoldCategory(other), std::nullopt);
    }
}

TEST(ActionHoldCategoryTest, DefaultEnabledIsEveryCaseButAgentPromptsInOrder) {
    std::vector<ActionHoldCategory> expected(kAllActionHoldCategories.begin(),
                                             kAllActionHoldCategories.end());
    std::erase(expected, ActionHoldCategory::agent_prompts);
    EXPECT_EQ(std::vector<ActionHoldCategory>(defaultEnabledActionHoldCategories().begin(),
                                              defaultEnabledActionHoldCategories().end()),
              expected);
}

}  // namespace
}  // namespace orvo
