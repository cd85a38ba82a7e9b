// The JSON value type and the few ways this program reads and writes JSON text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace orvo {

// Keys are kept sorted (std::map), which is the order every writer here needs.
using json = nlohmann::json;  // NOLINT(readability-identifier-naming): the library's own name

enum class JsonParseStatus { ok, invalid, tooDeep };

// json() is noexcept; nlohmann suppresses the same finding on it, whose throw is unreachable.
// NOLINTNEXTLINE(bugprone-exception-escape)
struct BoundedParse {
    JsonParseStatus status = JsonParseStatus::invalid;
    json value;  // the whole document when status is ok, null otherwise
    json::value_t topLevel = json::value_t::discarded;  // the document's type, even when too deep
    bool pruned = false;  // parseJsonPruned left out values past the kept depth
    // Top-level members holding a number that a double cannot hold as written (an integer beyond
    // 64 bits, say), so that writing it back would change it.
    std::vector<std::string> roundedMembers;
};

// Parses `text` as one JSON document. The depth of a document is 1 for a scalar or an empty
// container at the top, and one more than its deepest element otherwise. A document deeper than
// `maxDepth` is reported as tooDeep without building the deep part, so hostile nesting costs
// neither stack nor memory; syntax errors anywhere win over depth. The whole buffer is the
// document: a NUL byte anywhere makes it invalid.
BoundedParse parseJsonBounded(std::string_view text, int maxDepth);

// Parses and validates `text` of any depth like parseJsonBounded, but keeps only the values down
// to `keptDepth`: a value just below reads as null, deeper ones are not built at all.
BoundedParse parseJsonPruned(std::string_view text, int keptDepth);

// One line of compact JSON, slashes unescaped, invalid UTF-8 replaced rather than thrown.
std::string dumpCompact(const json& value);

// Two-space indented JSON with sorted keys, for text meant to be read.
std::string dumpPretty(const json& value);

// dumpPretty, or dumpCompact when indenting would multiply the text: many small values nested
// deep grow by two spaces per level each.
std::string dumpReadable(const json& value);

// Whether `value` can be written without loss: every number finite, every text and key valid
// UTF-8. The writers above put null or U+FFFD in their place.
bool isRepresentable(const json& value);
bool isRepresentable(const nlohmann::ordered_json& value);

// Member access for input JSON: never throws, absent when the member is missing or of another type.
const json* member(const json& object, std::string_view key);
std::optional<std::string_view> stringMember(const json& object, std::string_view key);
std::optional<bool> boolMember(const json& object, std::string_view key);
const json* objectMember(const json& object, std::string_view key);

// Strict UTF-8 check: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUTF8(std::string_view bytes);

}  // namespace orvo
