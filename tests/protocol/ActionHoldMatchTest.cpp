#include "protocol/ActionHoldMatch.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

const ActionHoldMatch kForcePush{ActionHoldCategory::publishing,
                                 {"Force-pushing the branch", "Force-push the branch"},
                                 "git push -f"};

// The hook's request pins the flat wire value; the encoded form nests the phrase, and neither
// form reads as the other.
TEST(ActionHoldMatchTest, EveryCategoryRoundTripsThroughBothForms) {
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

TEST(ActionHoldMatchTest, WireDecodingNeedsCategoryAndBothPhrases) {
    const auto patched = [](const json& patch) {  // a null in the patch removes the key
        json wire = kForcePush.wireValue();
        wire.merge_patch(patch);
        return wire;
    };
    const struct {
        std::string name;
        json wire;
        std::optional<std::string> detail;  // none: does not decode
    } cases[] = {
        {"not an object", json::array({"publishing"}), std::nullopt},
        {"unknown category", patched({{"category", "Publishing"}}), std::nullopt},
        {"progressive not a string", patched({{"progressive", 5}}), std::nullopt},
        {"no base", patched({{"base", nullptr}}), std::nullopt},
        {"no detail", patched({{"detail", nullptr}}), ""},
        {"extra key", patched({{"phrase", "ignored"}}), "git push -f"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::optional<ActionHoldMatch> decoded = ActionHoldMatch::fromWireValue(c.wire);
        EXPECT_EQ(decoded ? std::optional(decoded->detail) : std::nullopt, c.detail);
    }
}

}  // namespace
}  // namespace orvo
