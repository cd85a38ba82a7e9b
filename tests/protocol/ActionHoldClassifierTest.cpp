#include "protocol/ActionHoldClassifier.h"

#include <gtest/gtest.h>

#include "support/HeldActionText.h"

namespace orvo {
namespace {

TEST(ActionHoldClassifierTest, RoutesShellCallsAndOtherServersTools) {
    const struct {
        std::string_view tool;
        json input;
        std::string_view held;
    } cases[] = {
        {"Bash", {{"command", "git push"}}, "publishing|Pushing the branch|Push the branch"},
        {"Bash", {{"command", 5}}, ""},
        {"Bash", json::array(), ""},
        {"bash", {{"command", "git push"}}, ""},
        {"Read", {{"command", "git push"}, {"file_path", "/a"}}, ""},
        {"mcp__x__trash", {}, "deleting|Deleting something in X|Delete something in X"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        EXPECT_EQ(heldActionText(ActionHoldClassifier::classify(c.tool, c.input)), c.held);
    }
}

}  // namespace
}  // namespace orvo
