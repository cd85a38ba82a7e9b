// One held action found by a classifier, and the forms in which it travels to the app.
#include "protocol/ActionHoldMatch.h"

namespace orvo {
namespace {

std::optional<ActionHoldCategory> categoryMember(const json& object) {
    std::optional<std::string_view> raw = stringMember(object, "category");
    return raw ? parseActionHoldCategory(*raw) : std::nullopt;
}

}  // namespace

json ActionHoldPhrase::encode() const {
    return {{"progressive", progressive}, {"base", base}};
}

std::optional<ActionHoldPhrase> ActionHoldPhrase::decode(const json& value) {
    std::optional<std::string_view> progressive = stringMember(value, "progressive");
    std::optional<std::string_view> base = stringMember(value, "base");
    if (!progressive || !base) {
        return std::nullopt;
    }
    return ActionHoldPhrase{std::string(*progressive), std::string(*base)};
}

json ActionHoldMatch::wireValue() const {
    return {{"category", rawValue(category)},
            {"progressive", phrase.progressive},
            {"base", phrase.base},
            {"detail", detail}};
}

std::optional<ActionHoldMatch> ActionHoldMatch::fromWireValue(const json& wire) {
    std::optional<ActionHoldCategory> category = categoryMember(wire);
    std::optional<ActionHoldPhrase> phrase = ActionHoldPhrase::decode(wire);
    if (!category || !phrase) {
        return std::nullopt;
    }
    return ActionHoldMatch{*category, std::move(*phrase),
                           std::string(stringMember(wire, "detail").value_or(""))};
}

json ActionHoldMatch::encode() const {
    return {{"category", rawValue(category)}, {"phrase", phrase.encode()}, {"detail", detail}};
}

std::optional<ActionHoldMatch> ActionHoldMatch::decode(const json& value) {
    std::optional<ActionHoldCategory> category = categoryMember(value);
    const json* phraseValue = objectMember(value, "phrase");
    std::optional<ActionHoldPhrase> phrase =
        phraseValue != nullptr ? ActionHoldPhrase::decode(*phraseValue) : std::nullopt;
    std::optional<std::string_view> detail = stringMember(value, "detail");
    if (!category || !phrase || !detail) {
        return std::nullopt;
    }
    return ActionHoldMatch{*category, std::move(*phrase), std::string(*detail)};
}

}  // namespace orvo
