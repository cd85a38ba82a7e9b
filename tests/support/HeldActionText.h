// Held actions as one line of text, so that tables of cases can state them exactly.
#pragma once

#include <string>
#include <vector>

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

}  // namespace orvo
