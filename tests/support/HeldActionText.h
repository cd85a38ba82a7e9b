// Held actions as one line of text, so that tables of cases can state them exactly.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "protocol/ActionHoldClassifier.h"
#include "protocol/ActionHoldMatch.h"

namespace orvo {

// "category|Progressive|Base" for each match, joined by "; "; empty when nothing is held.
inline std::string heldActionText(const std::vector<ActionHoldMatch>& matches) {
    std::string text;
    for (const ActionHoldMatch& match : matches) {
        text += text.empty() ? "" : "; ";
        text += std::string(rawValue(match.category)) + "|" + match.phrase.progressive + "|" +
                match.phrase.base;
    }
    return text;
}

constexpr std::string_view kPush = "publishing|Pushing the branch|Push the branch";
constexpr std::string_view kForcePush = "publishing|Force-pushing the branch|Force-push the branch";
constexpr std::string_view kDeleteFiles = "deleting|Deleting files|Delete files";
constexpr std::string_view kDiscard = "deleting|Discarding local changes|Discard local changes";
constexpr std::string_view kPublish = "publishing|Publishing the package|Publish the package";
constexpr std::string_view kCloudflare = "publishing|Deploying to Cloudflare|Deploy to Cloudflare";

struct HeldCase {
    std::string_view command;
    std::string_view held;  // heldActionText of the result; empty when nothing is held
};

// Classifies each command as the hook would and compares what it holds.
inline void expectHeld(std::initializer_list<HeldCase> cases) {
    for (const HeldCase& c : cases) {
        SCOPED_TRACE(c.command);
        EXPECT_EQ(heldActionText(ActionHoldClassifier::classifyCommand(c.command)), c.held);
    }
}

}  // namespace orvo
