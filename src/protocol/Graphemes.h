// User-perceived characters (extended grapheme clusters) of UTF-8 text, for every length rule.
#pragma once

#include <cstddef>
#include <string_view>

namespace orvo {

// Number of grapheme clusters in `text`; invalid UTF-8 counts one per undecodable byte.
std::size_t countGraphemes(std::string_view text);

// Whether `text` has more than `limit` grapheme clusters; stops reading once it knows.
bool exceedsGraphemes(std::string_view text, std::size_t limit);

// The longest prefix of `text` holding at most `limit` whole grapheme clusters.
std::string_view prefixGraphemes(std::string_view text, std::size_t limit);

}  // namespace orvo
