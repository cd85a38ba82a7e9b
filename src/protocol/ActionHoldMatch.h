// One held action found by a classifier, and the forms in which it travels to the app.
#pragma once

#include <optional>
#include <string>

#include "protocol/ActionHoldCategory.h"
#include "protocol/Json.h"

namespace orvo {

// How an action is told to the owner.
struct ActionHoldPhrase {
    std::string progressive;  // under way, capitalised: "Force-pushing the branch"
    std::string base;         // for a question or a button: "Force-push the branch"

    bool operator==(const ActionHoldPhrase&) const = default;

    json encode() const;
    static std::optional<ActionHoldPhrase> decode(const json& value);
};

struct ActionHoldMatch {
    ActionHoldCategory category = ActionHoldCategory::publishing;
    ActionHoldPhrase phrase;
    std::string detail;  // a fragment of the call shown beside the phrase; may be empty

    bool operator==(const ActionHoldMatch&) const = default;

    // The flat object of four strings sent in the hook's request: "category", "progressive",
    // "base" and "detail".
    json wireValue() const;
    // Reads a wireValue back; none without a known category and both phrase strings. A missing
    // or non-string detail reads as empty, and other keys are ignored.
    static std::optional<ActionHoldMatch> fromWireValue(const json& wire);

    // The nested form: "category", "phrase" {"progressive", "base"} and "detail".
    json encode() const;
    static std::optional<ActionHoldMatch> decode(const json& value);
};

}  // namespace orvo
