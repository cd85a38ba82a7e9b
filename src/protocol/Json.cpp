// The JSON value type and the few ways this program reads and writes JSON text.
#include "protocol/Json.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvo {
namespace {

// A JSON number's exact value: its sign, its significant digits without leading or trailing
// zeros (none for zero), and the power of ten of the last one.
struct Decimal {
    bool negative = false;
    std::string digits;
    long long exponent = 0;

    bool operator==(const Decimal&) const = default;
};

Decimal decimalOf(std::string_view text) {
    Decimal decimal;
    std::size_t i = 0;
    if (i < text.size() && text[i] == '-') {
        decimal.negative = true;
        ++i;
    }
    long long fractionDigits = 0;
    bool inFraction = false;
    for (; i < text.size() && text[i] != 'e' && text[i] != 'E'; ++i) {
        if (text[i] == '.') {
            inFraction = true;
            continue;
        }
        if (!decimal.digits.empty() || text[i] != '0') {
            decimal.digits.push_back(text[i]);
        }
        fractionDigits += inFraction ? 1 : 0;
    }
    long long exponent = 0;
    bool negativeExponent = false;
    for (++i; i < text.size(); ++i) {
        if (text[i] == '-' || text[i] == '+') {
            negativeExponent = text[i] == '-';
        } else if (exponent < 1'000'000'000'000) {  // far beyond any double; saturates
            exponent = exponent * 10 + (text[i] - '0');
        }
    }
    decimal.exponent = (negativeExponent ? -exponent : exponent) - fractionDigits;
    while (!decimal.digits.empty() && decimal.digits.back() == '0') {
        decimal.digits.pop_back();
        ++decimal.exponent;
    }
    if (decimal.digits.empty()) {
        decimal.exponent = 0;
    }
    return decimal;
}

// Whether `value`, read from the JSON number `text`, is written back as the same number.
bool holdsExactly(double value, std::string_view text) {
    // Up to 15 significant digits always survive the trip through a double.
    if (text.size() <= 16 && text.find_first_of("eE") == std::string_view::npos) {
        return true;
    }
    const std::string written = dumpCompact(value);  // "null" when not finite
    return written != "null" && decimalOf(written) == decimalOf(text);
}

// Builds the document through nlohmann's iterative SAX parser while counting depth. Past the
// depth limit it stops building (but keeps validating): the whole document when the limit is
// strict, only the deeper part when it prunes.
class BoundedDomBuilder {
public:
    BoundedDomBuilder(json& root, int maxDepth, bool prune)
        : root_(root), maxDepth_(maxDepth), prune_(prune) {}

    bool tooDeep() const { return deepest_ > maxDepth_; }
    json::value_t topLevel() const { return topLevel_; }
    std::vector<std::string> roundedMembers() && { return std::move(roundedMembers_); }

    // NOLINTBEGIN(readability-identifier-naming, readability-convert-member-functions-to-static)
    // nlohmann's SAX parser calls these by its own names, on the builder it is given.
    bool null() { return scalar(nullptr); }
    bool boolean(bool value) { return scalar(value); }
    bool number_integer(json::number_integer_t value) { return scalar(value); }
    bool number_unsigned(json::number_unsigned_t value) { return scalar(value); }
    bool number_float(json::number_float_t value, const std::string& text) {
        if (topLevel_ == json::value_t::object && !holdsExactly(value, text)) {
            roundedMember_ = true;
        }
        return scalar(value);
    }
    bool string(std::string& value) { return scalar(std::move(value)); }
    bool binary(json::binary_t& /*value*/) { return false; }  // not produced by the text format

    bool start_object(std::size_t /*elements*/) { return open(json::value_t::object); }
    bool start_array(std::size_t /*elements*/) { return open(json::value_t::array); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }

    bool key(std::string& name) {
        if (openCount_ == 1) {
            noteRoundedMember();
            memberName_ = name;
        }
        // The slot starts as null, which is also what a pruned value reads as.
        if (building(openCount_)) {
            keySlot_ = &(*stack_.back())[name];
        }
        return true;
    }

    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) {
        return false;
    }
    // NOLINTEND(readability-identifier-naming, readability-convert-member-functions-to-static)

    void finish() { noteRoundedMember(); }

private:
    void noteDepth(int depth) { deepest_ = std::max(deepest_, depth); }

    // Whether a value at `depth` becomes part of the document.
    bool building(int depth) const { return depth <= maxDepth_ && (prune_ || !tooDeep()); }

    // A top-level member whose value holds a number that reading rounded, such as an integer
    // beyond 64 bits, is named once.
    void noteRoundedMember() {
        if (roundedMember_) {
            roundedMembers_.push_back(memberName_);
            roundedMember_ = false;
        }
    }

    // A value just past the kept depth reads as null, so that arrays keep their length; a
    // member's slot is null already.
    void prune(int depth) {
        if (prune_ && depth == maxDepth_ + 1 && !stack_.empty() && stack_.back()->is_array()) {
            stack_.back()->emplace_back(nullptr);
        }
    }

    template <class V>
    json* place(V&& value) {
        if (stack_.empty()) {
            root_ = json(std::forward<V>(value));
            return &root_;
        }
        json& parent = *stack_.back();
        if (parent.is_array()) {
            parent.emplace_back(std::forward<V>(value));
            return &parent.back();
        }
        *keySlot_ = json(std::forward<V>(value));
        return keySlot_;
    }

    template <class V>
    bool scalar(V&& value) {
        if (openCount_ == 0) {
            topLevel_ = json(value).type();
        }
        noteDepth(openCount_ + 1);
        if (building(openCount_ + 1)) {
            place(std::forward<V>(value));
        } else {
            prune(openCount_ + 1);
        }
        return true;
    }

    bool open(json::value_t type) {
        if (openCount_ == 0) {
            topLevel_ = type;
        }
        ++openCount_;
        noteDepth(openCount_);
        if (building(openCount_)) {
            stack_.push_back(place(type));
        } else {
            prune(openCount_);
        }
        return true;
    }

    bool close() {
        // Containers opened past the limit were never pushed.
        if (static_cast<int>(stack_.size()) == openCount_) {
            stack_.pop_back();
        }
        --openCount_;
        return true;
    }

    json& root_;
    int maxDepth_;
    bool prune_;
    int openCount_ = 0;
    int deepest_ = 0;
    std::vector<json*> stack_;
    json* keySlot_ = nullptr;
    json::value_t topLevel_ = json::value_t::discarded;
    std::string memberName_;  // the top-level member being read, in an object
    bool roundedMember_ = false;
    std::vector<std::string> roundedMembers_;
};

template <class T>
std::optional<T> decodeAs(const json& value) {
    if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, std::string_view>) {
        return value.is_string() ? std::optional<T>(value.get_ref<const std::string&>())
                                 : std::nullopt;
    } else if constexpr (std::is_same_v<T, bool>) {
        return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
    } else if constexpr (std::is_same_v<T, double>) {
        return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
    } else if constexpr (std::is_same_v<T, JsonObject>) {
        return value.is_object() ? std::optional(JsonObject{&value}) : std::nullopt;
    } else if constexpr (std::is_same_v<T, JsonArray>) {
        return value.is_array() ? std::optional(JsonArray{&value}) : std::nullopt;
    } else {
        static_assert(std::is_integral_v<T> && std::is_signed_v<T>);
        using Limits = std::numeric_limits<T>;
        if (value.is_number_unsigned()) {
            const auto n = value.get<std::uint64_t>();
            return n <= static_cast<std::uint64_t>(Limits::max()) ? std::optional(static_cast<T>(n))
                                                                  : std::nullopt;
        }
        if (value.is_number_integer()) {
            const auto n = value.get<std::int64_t>();
            return n >= Limits::min() && n <= Limits::max() ? std::optional(static_cast<T>(n))
                                                            : std::nullopt;
        }
        if (value.is_number_float()) {
            // JSON writers may print a whole number as 60.0. -min is max + 1, exact as a double.
            const double n = value.get<double>();
            const auto low = static_cast<double>(Limits::min());
            if (std::trunc(n) == n && n >= low && n < -low) {
                return static_cast<T>(n);
            }
        }
        return std::nullopt;
    }
}

template <class T>
constexpr std::string_view typeName() {
    if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, std::string_view>) {
        return "string";
    } else if constexpr (std::is_same_v<T, bool>) {
        return "boolean";
    } else if constexpr (std::is_same_v<T, double>) {
        return "number";
    } else if constexpr (std::is_same_v<T, JsonObject>) {
        return "object";
    } else if constexpr (std::is_same_v<T, JsonArray>) {
        return "array";
    } else {
        return "integer";
    }
}

// Indentation below this many bytes is never weighed against the text.
constexpr std::size_t kFreeIndentationBytes = 65536;
// Past the free allowance, indentation may make the text at most this many times larger.
constexpr std::size_t kMaxIndentationFactor = 8;

// The bytes that two-space indentation adds to the compact text: a line break and the indent
// before every element and each closing bracket, and a space after every key.
std::size_t indentationBytes(const json& value) {
    std::size_t total = 0;
    std::vector<std::pair<const json*, std::size_t>> pending{{&value, 0}};
    while (!pending.empty()) {
        const auto [node, level] = pending.back();
        pending.pop_back();
        if (!node->is_structured() || node->empty()) {
            continue;
        }
        const std::size_t elements = node->size();
        total += elements * (2 * (level + 1) + 1) + 2 * level + 1;
        total += node->is_object() ? elements : 0;
        for (const json& child : *node) {
            pending.emplace_back(&child, level + 1);
        }
    }
    return total;
}

template <class Value>
bool holdsOnlyRepresentable(const Value& value) {
    std::vector<const Value*> pending{&value};
    while (!pending.empty()) {
        const Value* node = pending.back();
        pending.pop_back();
        if (node->is_number_float() && !std::isfinite(node->template get<double>())) {
            return false;
        }
        if (node->is_string() && !isValidUTF8(node->template get_ref<const std::string&>())) {
            return false;
        }
        if (node->is_object()) {
            for (auto it = node->begin(); it != node->end(); ++it) {
                if (!isValidUTF8(it.key())) {
                    return false;
                }
                pending.push_back(&it.value());
            }
        } else if (node->is_array()) {
            for (const Value& child : *node) {
                pending.push_back(&child);
            }
        }
    }
    return true;
}

BoundedParse parseWithBuilder(std::string_view text, int maxDepth, bool prune) {
    BoundedParse result;
    // nlohmann's reader takes a NUL byte for the end of the input and would ignore what follows;
    // JSON text never holds one raw, so the whole buffer is refused instead.
    if (std::memchr(text.data(), '\0', text.size()) != nullptr) {
        result.value = nullptr;
        return result;
    }
    BoundedDomBuilder builder(result.value, maxDepth, prune);
    const bool parsed = json::sax_parse(text.begin(), text.end(), &builder);
    builder.finish();
    result.topLevel = parsed ? builder.topLevel() : json::value_t::discarded;
    if (!parsed) {
        result.value = nullptr;
        result.status = JsonParseStatus::invalid;
    } else if (builder.tooDeep() && !prune) {
        result.value = nullptr;
        result.status = JsonParseStatus::tooDeep;
    } else {
        result.status = JsonParseStatus::ok;
        result.pruned = builder.tooDeep();
        result.roundedMembers = std::move(builder).roundedMembers();
    }
    return result;
}

}  // namespace

BoundedParse parseJsonBounded(std::string_view text, int maxDepth) {
    return parseWithBuilder(text, maxDepth, /*prune=*/false);
}

BoundedParse parseJsonPruned(std::string_view text, int keptDepth) {
    return parseWithBuilder(text, keptDepth, /*prune=*/true);
}

std::string dumpCompact(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string dumpPretty(const json& value) {
    return value.dump(2, ' ', false, json::error_handler_t::replace);
}

std::string dumpReadable(const json& value) {
    const std::size_t indentation = indentationBytes(value);
    if (indentation <= kFreeIndentationBytes) {
        return dumpPretty(value);
    }
    std::string compact = dumpCompact(value);
    if (indentation <= kMaxIndentationFactor * compact.size()) {
        return dumpPretty(value);
    }
    return compact;
}

bool isRepresentable(const json& value) {
    return holdsOnlyRepresentable(value);
}

bool isRepresentable(const nlohmann::ordered_json& value) {
    return holdsOnlyRepresentable(value);
}

const json* member(const json& object, std::string_view key) {
    if (!object.is_object()) {
        return nullptr;
    }
    auto it = object.find(key);
    return it == object.end() ? nullptr : &*it;
}

template <class T>
Result<std::optional<T>> read(const json& object, std::string_view key, std::string_view path) {
    const json* value = member(object, key);
    if (value == nullptr || value->is_null()) {
        return std::optional<T>();
    }
    std::optional<T> decoded = decodeAs<T>(*value);
    if (!decoded) {
        return RPCError{RPCCode::kInvalidParams,
                        std::string(path) + ": expected " + std::string(typeName<T>()),
                        std::nullopt};
    }
    return decoded;
}

template Result<std::optional<std::string>> read<std::string>(const json&, std::string_view,
                                                              std::string_view);
template Result<std::optional<std::string_view>> read<std::string_view>(const json&,
                                                                        std::string_view,
                                                                        std::string_view);
template Result<std::optional<bool>> read<bool>(const json&, std::string_view, std::string_view);
template Result<std::optional<double>> read<double>(const json&, std::string_view,
                                                    std::string_view);
template Result<std::optional<std::int32_t>> read<std::int32_t>(const json&, std::string_view,
                                                                std::string_view);
template Result<std::optional<std::int64_t>> read<std::int64_t>(const json&, std::string_view,
                                                                std::string_view);
template Result<std::optional<JsonObject>> read<JsonObject>(const json&, std::string_view,
                                                            std::string_view);
template Result<std::optional<JsonArray>> read<JsonArray>(const json&, std::string_view,
                                                          std::string_view);

std::optional<std::string_view> stringMember(const json& object, std::string_view key) {
    return readTolerantly<std::string_view>(object, key);
}

std::optional<bool> boolMember(const json& object, std::string_view key) {
    return readTolerantly<bool>(object, key);
}

const json* objectMember(const json& object, std::string_view key) {
    std::optional<JsonObject> value = readTolerantly<JsonObject>(object, key);
    return value ? value->value : nullptr;
}

bool isValidUTF8(std::string_view bytes) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* end = p + bytes.size();
    while (p < end) {
        // Lines are mostly ASCII: skip eight bytes at a time while no high bit is set.
        while (end - p >= 8) {
            std::uint64_t chunk;
            std::memcpy(&chunk, p, 8);
            if ((chunk & 0x8080808080808080ULL) != 0) {
                break;
            }
            p += 8;
        }
        if (p == end) {
            break;
        }
        const unsigned char lead = *p;
        if (lead < 0x80) {
            ++p;
            continue;
        }
        int length = 0;
        unsigned char low = 0x80;
        unsigned char high = 0xBF;
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            if (lead == 0xE0) {
                low = 0xA0;  // overlong
            } else if (lead == 0xED) {
                high = 0x9F;  // surrogates
            }
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            if (lead == 0xF0) {
                low = 0x90;  // overlong
            } else if (lead == 0xF4) {
                high = 0x8F;  // above U+10FFFF
            }
        } else {
            return false;
        }
        if (end - p < length) {
            return false;
        }
        if (p[1] < low || p[1] > high) {
            return false;
        }
        for (int i = 2; i < length; ++i) {
            if (p[i] < 0x80 || p[i] > 0xBF) {
                return false;
            }
        }
        p += length;
    }
    return true;
}

}  // namespace orvo
