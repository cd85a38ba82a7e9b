#include "protocol/ActionHoldMatch.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

const ActionHoldMatch kForcePush{ActionHoldCategory::publishing,
                                 {"Force-pushing the branch", "Force-push the branch"},
                                 "git push -f"};

// The wire value is four flat strings; the encoded form nests the phrase.
TEST(ActionHoldMatchTest, WireValueAndEncodedForm) {
    EXPECT_EQ(dumpCompact(kForcePush.wireValue()),
              R"({"base":"Force-push the branch","category":"publishing",)"
              R"("detail":"git push -f","progressive":"Force-pushing the branch"})");
    EXPECT_EQ(
        dumpCompact(kForcePush.encode()),
        R"({"category":"publishing","detail":"git push -f",)"
        R"("phrase":{"base":"Force-push the branch","progressive":"Force-pushing the branch"}})");
    // The flat wire form is not the encoded form.
    EXPECT_EQ(ActionHoldMatch::decode(kForcePush.wireValue()), std::nullopt);
}

TEST(ActionHoldMatchTest, EveryCategoryRoundTripsThroughTheWire) {
    for (ActionHoldCategory category : kAllActionHoldCategories) {
        SCOPED_TRACE(rawValue(category));
        for (std::string detail : {"", "rm -rf src · git push", "é🙂"}) {
            const ActionHoldMatch match{category, {"Doing it", "Do it"}, detail};
            EXPECT_EQ(ActionHoldMatch::fromWireValue(match.wireValue()), match);
            EXPECT_EQ(ActionHoldMatch::decode(match.encode()), match);
        }
    }
}

TEST(ActionHoldMatchTest, WireDecodingNeedsCategoryAndBothPhrases) {
    const json full = kForcePush.wireValue();
    auto without = [&](std::string_view key) {
        json wire = full;
        wire.erase(std::string(key));
        return wire;
    };
    auto with = [&](std::string_view key, json value) {
        json wire = full;
        wire[std::string(key)] = std::move(value);
        return wire;
    };
    const struct {
        std::string name;
        json wire;
        std::optional<std::string> detail;  // none: does not decode
    } cases[] = {
        {"not an object", json::array({"publishing"}), std::nullopt},
        {"no category", without("category"), std::nullopt},
        {"unknown category", with("category", "Publishing"), std::nullopt},
        {"progressive not a string", with("progressive", nullptr), std::nullopt},
        {"no base", without("base"), std::nullopt},
        {"no detail", without("detail"), ""},
        {"extra key", with("phrase", "ignored"), "git push -f"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::optional<ActionHoldMatch> decoded = ActionHoldMatch::fromWireValue(c.wire);
        ASSERT_EQ(decoded.has_value(), c.detail.has_value());
        if (decoded) {
            EXPECT_EQ(decoded->category, ActionHoldCategory::publishing);
            EXPECT_EQ(decoded->phrase, kForcePush.phrase);
            EXPECT_EQ(decoded->detail, *c.detail);
        }
    }
}

}  // namespace
}  // namespace orvo
