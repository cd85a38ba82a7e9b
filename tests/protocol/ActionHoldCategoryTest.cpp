#include "protocol/ActionHoldCategory.h"

#include <string>

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(ActionHoldCategoryTest, RawValuesReadOnlyWhenSpelledExactly) {
    for (std::string_view other : {"On_Screen", "on-screen", "", " deleting", "agent_prompt"}) {
        SCOPED_TRACE(other);
        EXPECT_EQ(parseActionHoldCategory(other), std::nullopt);
    }
}

// The app lists these in this order; prompts typed into other agents start switched off.
TEST(ActionHoldCategoryTest, DefaultEnabledIsTheFirstSixCasesInOrder) {
    std::string enabled;
    for (ActionHoldCategory category : defaultEnabledActionHoldCategories()) {
        enabled.append(enabled.empty() ? "" : ",").append(rawValue(category));
    }
    EXPECT_EQ(enabled, "publishing,messages,deleting,closing,services,on_screen");
}

}  // namespace
}  // namespace orvo
