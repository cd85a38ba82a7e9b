// The tools/list text: every offered tool's listing entry, serialised once.
#include "tools/ToolListing.h"

#include <algorithm>

namespace orvo {

std::string listingText(const ToolRegistry& registry,
                        std::span<const PrecomputedListingEntry> precomputed) {
    std::string text = R"({"tools":[)";
    bool first = true;
    for (const MCPTool* tool : registry.tools()) {
        if (!first) {
            text.push_back(',');
        }
        first = false;
        auto found =
            std::ranges::lower_bound(precomputed, tool->name(), {}, &PrecomputedListingEntry::name);
        if (found != precomputed.end() && found->name == tool->name()) {
            text.append(found->text);
        } else {
            text.append(dumpCompact(listingEntry(*tool)));
        }
    }
    text.append("]}");
    return text;
}

std::string cppStringLiteral(std::string_view text) {
    std::string literal = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            literal.push_back('\\');
            literal.push_back(c);
        } else if (byte < 0x20 || byte >= 0x7F || c == '?') {
            // Octal escapes end after three digits, so the next character cannot extend them.
            constexpr char kDigits[] = "01234567";
            literal.append({'\\', kDigits[byte >> 6], kDigits[(byte >> 3) & 7], kDigits[byte & 7]});
        } else {
            literal.push_back(c);
        }
    }
    literal.push_back('"');
    return literal;
}

}  // namespace orvo
