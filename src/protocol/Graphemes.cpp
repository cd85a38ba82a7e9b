// User-perceived characters (extended grapheme clusters) of UTF-8 text, for every length rule.
#include "protocol/Graphemes.h"

#include <utf8proc.h>

namespace orvo {
namespace {

// Walks cluster boundaries; `visit(offset)` is called at the start of every cluster after the
// first and may return false to stop. Returns the number of clusters seen.
template <class Visit>
std::size_t walkClusters(std::string_view text, Visit visit) {
    utf8proc_int32_t previous = -1;
    utf8proc_int32_t state = 0;
    std::size_t clusters = 0;
    forEachCodePoint(text, [&](std::size_t offset, std::size_t /*length*/, std::int32_t codepoint) {
        const bool boundary = previous < 0 || codepoint < 0 ||
                              utf8proc_grapheme_break_stateful(previous, codepoint, &state);
        if (boundary) {
            if (clusters > 0 && !visit(offset)) {
                return false;
            }
            ++clusters;
        }
        if (codepoint < 0) {
            state = 0;
        }
        previous = codepoint;
        return true;
    });
    return clusters;
}

}  // namespace

std::size_t countGraphemes(std::string_view text) {
    return walkClusters(text, [](std::size_t) { return true; });
}

bool exceedsGraphemes(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) {
        return false;  // every cluster is at least one byte
    }
    if (limit == 0) {
        return true;
    }
    std::size_t started = 1;
    bool exceeded = false;
    walkClusters(text, [&](std::size_t) {
        exceeded = ++started > limit;
        return !exceeded;
    });
    return exceeded;
}

std::string_view prefixGraphemes(std::string_view text, std::size_t limit) {
    if (limit == 0) {
        return text.substr(0, 0);
    }
    std::size_t end = text.size();
    std::size_t started = 1;
    walkClusters(text, [&](std::size_t offset) {
        if (started == limit) {
            end = offset;
            return false;
        }
        ++started;
        return true;
    });
    return text.substr(0, end);
}

}  // namespace orvo
