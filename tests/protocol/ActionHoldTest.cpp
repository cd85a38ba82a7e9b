// The held-action types on the wire, and which tool calls reach which classifier.
#include <string>

#include <gtest/gtest.h>

#include "protocol/ActionHoldCategory.h"
#include "protocol/ActionHoldClassifier.h"
#include "protocol/ActionHoldMatch.h"
#include "support/HeldActionText.h"

namespace orvo {
namespace {

const ActionHoldMatch kForcePush{ActionHoldCategory::publishing,
                                 {"Force-pushing the branch", "Force-push the branch"},
                                 "git push -f"};

// The hook's request pins the flat wire value; the encoded form nests the phrase, and neither
// form reads as the other.
TEST(ActionHoldTest, EveryCategoryRoundTripsThroughBothForms) {
    EXPECT_EQ(
        dumpCompact(kForcePush.encode()),
        R"({"category":"publishing","detail":"git push -f",)"
        R"("phrase":{"base":"Force-push the branch","progressive":"Force-pushing the branch"}})");
    EXPECT_EQ(ActionHoldMatch::decode(kForcePush.wireValue()), std::nullopt);
    for (ActionHoldCategory category : kAllActionHoldCategories) {
        SCOPED_TRACE(rawValue(category));
        const ActionHoldMatch match{category, {"Doing it", "Do it"}, "rm -rf src · é🙂"};
        EXPECT_EQ(ActionHoldMatch::fromWireValue(match.wireValue()), match);
        EXPECT_EQ(ActionHoldMatch::decode(match.encode()), match);
    }
}

TEST(ActionHoldTest, RoutesShellCallsAndOtherServersTools) {
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
