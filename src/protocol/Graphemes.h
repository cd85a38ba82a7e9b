// User-perceived characters (extended grapheme clusters) of UTF-8 text, for every length rule.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <utf8proc.h>

namespace orvo {

// Calls `visit(offset, length, codepoint)` for each code point of `text` in order, until it
// returns false. An undecodable byte stands alone with codepoint -1, so that no text is ever
// dropped or merged.
template <class Visit>
void forEachCodePoint(std::string_view text, Visit visit) {
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto size = static_cast<utf8proc_ssize_t>(text.size());
    utf8proc_ssize_t offset = 0;
    while (offset < size) {
        utf8proc_int32_t codepoint = -1;
        utf8proc_ssize_t length = utf8proc_iterate(bytes + offset, size - offset, &codepoint);
        if (length <= 0) {
            length = 1;
            codepoint = -1;
        }
        if (!visit(static_cast<std::size_t>(offset), static_cast<std::size_t>(length),
                   static_cast<std::int32_t>(codepoint))) {
            return;
        }
        offset += length;
    }
}

// Number of grapheme clusters in `text`; invalid UTF-8 counts one per undecodable byte.
std::size_t countGraphemes(std::string_view text);

// Whether `text` has more than `limit` grapheme clusters; stops reading once it knows.
bool exceedsGraphemes(std::string_view text, std::size_t limit);

// The longest prefix of `text` holding at most `limit` whole grapheme clusters.
std::string_view prefixGraphemes(std::string_view text, std::size_t limit);

}  // namespace orvo
