// The JSON value type and the few ways this program reads and writes JSON text.
#include "protocol/Json.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace orvo {
namespace {

// Builds the document through nlohmann's iterative SAX parser while counting depth, and stops
// building (but keeps validating) once the document is deeper than allowed.
class BoundedDomBuilder {
public:
    BoundedDomBuilder(json& root, int maxDepth) : root_(root), maxDepth_(maxDepth) {}

    bool tooDeep() const { return deepest_ > maxDepth_; }
    json::value_t topLevel() const { return topLevel_; }

    // NOLINTBEGIN(readability-identifier-naming, readability-convert-member-functions-to-static)
    // nlohmann's SAX parser calls these by its own names, on the builder it is given.
    bool null() { return scalar(nullptr); }
    bool boolean(bool value) { return scalar(value); }
    bool number_integer(json::number_integer_t value) { return scalar(value); }
    bool number_unsigned(json::number_unsigned_t value) { return scalar(value); }
    bool number_float(json::number_float_t value, const std::string& /*text*/) {
        return scalar(value);
    }
    bool string(std::string& value) { return scalar(std::move(value)); }
    bool binary(json::binary_t& /*value*/) { return false; }  // not produced by the text format

    bool start_object(std::size_t /*elements*/) { return open(json::value_t::object); }
    bool start_array(std::size_t /*elements*/) { return open(json::value_t::array); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }

    bool key(std::string& name) {
        if (!tooDeep()) {
            keySlot_ = &(*stack_.back())[name];
        }
        return true;
    }

    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) {
        return false;
    }
    // NOLINTEND(readability-identifier-naming, readability-convert-member-functions-to-static)

private:
    void noteDepth(int depth) { deepest_ = std::max(deepest_, depth); }

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
        if (!tooDeep()) {
            place(std::forward<V>(value));
        }
        return true;
    }

    bool open(json::value_t type) {
        if (openCount_ == 0) {
            topLevel_ = type;
        }
        ++openCount_;
        noteDepth(openCount_);
        if (!tooDeep()) {
            stack_.push_back(place(type));
        }
        return true;
    }

    bool close() {
        // Containers opened after the limit was crossed were never pushed.
        if (static_cast<int>(stack_.size()) == openCount_) {
            stack_.pop_back();
        }
        --openCount_;
        return true;
    }

    json& root_;
    int maxDepth_;
    int openCount_ = 0;
    int deepest_ = 0;
    std::vector<json*> stack_;
    json* keySlot_ = nullptr;
    json::value_t topLevel_ = json::value_t::discarded;
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

}  // namespace

BoundedParse parseJsonBounded(std::string_view text, int maxDepth) {
    BoundedParse result;
    BoundedDomBuilder builder(result.value, maxDepth);
    const bool parsed = json::sax_parse(text.begin(), text.end(), &builder);
    result.topLevel = parsed ? builder.topLevel() : json::value_t::discarded;
    if (!parsed) {
        result.value = nullptr;
        result.status = JsonParseStatus::invalid;
    } else if (builder.tooDeep()) {
        result.value = nullptr;
        result.status = JsonParseStatus::tooDeep;
    } else {
        result.status = JsonParseStatus::ok;
    }
    return result;
}

std::string dumpCompact(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string dumpPretty(const json& value) {
    return value.dump(2, ' ', false, json::error_handler_t::replace);
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
