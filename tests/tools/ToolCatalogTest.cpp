#include "tools/ToolCatalog.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>
#include <string>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "tools/ToolRegistry.h"

namespace orvo {
namespace {

// The keywords a parameter schema may use; the object keywords describe nested objects only.
constexpr std::string_view kParameterKeywords[] = {
    "additionalProperties",
    "const",  // fixes a choice's "type" member
    "default",
    "deprecated",  // a legacy alias still accepted
    "description",
    "enum",
    "exclusiveMinimum",
    "format",
    "items",
    "maxItems",
    "maxLength",
    "maximum",
    "minItems",
    "minLength",
    "minProperties",
    "minimum",
    "oneOf",
    "pattern",
    "properties",
    "required",
    "type",
    "uniqueItems",
};
static_assert(std::ranges::is_sorted(kParameterKeywords));
const std::set<std::string> kTypes = {"string", "integer", "number", "boolean", "array", "object"};

bool fitsType(const json& value, std::string_view type) {
    return (type == "string" && value.is_string()) ||
           (type == "integer" && value.is_number_integer()) ||
           (type == "number" && value.is_number()) || (type == "boolean" && value.is_boolean()) ||
           (type == "array" && value.is_array()) || (type == "object" && value.is_object()) ||
           (type == "null" && value.is_null());
}

bool fitsAny(const json& value, const std::set<std::string>& types) {
    return std::ranges::any_of(types,
                               [&](const std::string& type) { return fitsType(value, type); });
}

bool isCount(const json& value) {
    return value.is_number_integer() && value.get<long long>() >= 0;
}

// Plain text: no stray blanks left over from joining literals.
void expectCleanText(const json& text) {
    ASSERT_TRUE(text.is_string());
    const std::string& s = text.get_ref<const std::string&>();
    ASSERT_FALSE(s.empty());
    EXPECT_FALSE(std::isspace(static_cast<unsigned char>(s.front()))) << s;
    EXPECT_FALSE(std::isspace(static_cast<unsigned char>(s.back()))) << s;
    EXPECT_EQ(s.find("  "), std::string::npos) << s;
}

std::set<std::string> declaredTypes(const json& schema) {
    std::set<std::string> types;
    const json* type = member(schema, "type");
    if (type == nullptr) {
        return types;
    }
    if (type->is_string()) {
        EXPECT_TRUE(kTypes.contains(type->get<std::string>())) << *type;
        types.insert(type->get<std::string>());
        return types;
    }
    EXPECT_TRUE(type->is_array() && type->size() >= 2) << *type;
    for (const json& each : *type) {
        if (!each.is_string()) {
            ADD_FAILURE() << "type " << each;
            continue;
        }
        EXPECT_TRUE(kTypes.contains(each.get<std::string>()) || each == "null") << each;
        EXPECT_TRUE(types.insert(each.get<std::string>()).second) << "repeated type " << each;
    }
    return types;
}

void checkObjectKeywords(const json& schema);

void checkParameterSchema(const json& schema) {
    ASSERT_TRUE(schema.is_object()) << schema;
    for (const auto& [keyword, value] : schema.items()) {
        EXPECT_TRUE(std::ranges::binary_search(kParameterKeywords, keyword))
            << "keyword " << keyword;
    }
    const std::set<std::string> types = declaredTypes(schema);
    EXPECT_TRUE(!types.empty() || schema.contains("oneOf")) << "no type: " << schema;
    auto expectFor = [&](std::string_view keyword, std::initializer_list<const char*> forTypes) {
        if (schema.contains(keyword)) {
            EXPECT_TRUE(
                std::ranges::any_of(forTypes, [&](const char* t) { return types.contains(t); }))
                << keyword << " on " << schema;
        }
    };
    if (const json* description = member(schema, "description")) {
        SCOPED_TRACE("description");
        expectCleanText(*description);
    }
    if (const json* values = member(schema, "enum")) {
        EXPECT_TRUE(values->is_array() && !values->empty()) << *values;
        std::set<json> distinct;
        for (const json& value : *values) {
            EXPECT_TRUE(fitsAny(value, types)) << "enum value " << value;
            EXPECT_TRUE(distinct.insert(value).second) << "repeated enum value " << value;
        }
    }
    if (const json* value = member(schema, "default")) {
        EXPECT_TRUE(fitsAny(*value, types)) << "default " << *value;
        if (const json* values = member(schema, "enum")) {
            EXPECT_NE(std::ranges::find(*values, *value), values->end()) << "default " << *value;
        }
    }
    for (const char* limit : {"minimum", "maximum", "exclusiveMinimum"}) {
        expectFor(limit, {"integer", "number"});
        if (const json* value = member(schema, limit)) {
            // An integer's limits are integers; "minimum": 1.0 would advertise a fraction.
            EXPECT_TRUE(types.contains("number") ? value->is_number() : value->is_number_integer())
                << limit << " " << *value;
        }
    }
    const json* minimum = member(schema, "minimum");
    const json* maximum = member(schema, "maximum");
    if (minimum && maximum && minimum->is_number() && maximum->is_number()) {
        EXPECT_LT(minimum->get<double>(), maximum->get<double>());
    }
    for (const char* length : {"minLength", "maxLength"}) {
        expectFor(length, {"string"});
        if (const json* value = member(schema, length)) {
            EXPECT_TRUE(isCount(*value)) << length << " " << *value;
        }
    }
    const json* minLength = member(schema, "minLength");
    const json* maxLength = member(schema, "maxLength");
    if (minLength && maxLength && isCount(*minLength) && isCount(*maxLength)) {
        EXPECT_LE(minLength->get<long long>(), maxLength->get<long long>());
    }
    expectFor("pattern", {"string"});
    if (const json* pattern = member(schema, "pattern")) {
        ASSERT_TRUE(pattern->is_string());
        EXPECT_NO_THROW(std::regex(pattern->get<std::string>(), std::regex::ECMAScript))
            << *pattern;
    }
    expectFor("format", {"string"});
    if (const json* format = member(schema, "format")) {
        EXPECT_TRUE(*format == "date" || *format == "date-time" || *format == "uuid") << *format;
    }
    for (const char* keyword : {"items", "minItems", "maxItems", "uniqueItems"}) {
        expectFor(keyword, {"array"});
    }
    if (const json* items = member(schema, "items")) {
        SCOPED_TRACE("items");
        checkParameterSchema(*items);
    }
    for (const char* count : {"minItems", "maxItems"}) {
        if (const json* value = member(schema, count)) {
            EXPECT_TRUE(isCount(*value)) << count << " " << *value;
        }
    }
    if (const json* unique = member(schema, "uniqueItems")) {
        EXPECT_TRUE(unique->is_boolean());
    }
    if (const json* choices = member(schema, "oneOf")) {
        ASSERT_TRUE(choices->is_array() && !choices->empty());
        for (const json& choice : *choices) {
            SCOPED_TRACE("oneOf");
            checkParameterSchema(choice);
        }
    }
    for (const char* keyword :
         {"properties", "required", "additionalProperties", "minProperties"}) {
        expectFor(keyword, {"object"});
    }
    // An object chosen among variants ("oneOf") is described by the variants themselves.
    if (types.contains("object") && !schema.contains("oneOf")) {
        checkObjectKeywords(schema);
    }
}

// Nested objects follow the shape of the top level: closed, with listed required names. The one
// exception is the Playbook document, an open object the app validates; it is counted here.
int gOpenObjects = 0;

void checkObjectKeywords(const json& schema) {
    if (schema.value("additionalProperties", json()) == true && !schema.contains("properties")) {
        ++gOpenObjects;
        return;
    }
    EXPECT_EQ(schema.value("additionalProperties", json()), false) << schema;
    const json* properties = member(schema, "properties");
    ASSERT_TRUE(properties != nullptr && properties->is_object()) << schema;
    for (const auto& [name, property] : properties->items()) {
        SCOPED_TRACE(name);
        checkParameterSchema(property);
    }
    if (const json* required = member(schema, "required")) {
        EXPECT_TRUE(required->is_array() && !required->empty()) << "empty required is left out";
        std::set<json> distinct;
        for (const json& name : *required) {
            EXPECT_TRUE(name.is_string() && properties->contains(name.get<std::string>()))
                << "required " << name << " is not a property";
            EXPECT_TRUE(distinct.insert(name).second) << "required twice: " << name;
        }
    }
    if (const json* count = member(schema, "minProperties")) {
        EXPECT_TRUE(isCount(*count));
    }
}

TEST(ToolCatalogTest, NamesAndDescriptionsAreWellFormed) {
    const std::regex snakeCase("[a-z]+(_[a-z0-9]+)*");
    std::set<std::string_view> names;
    for (const MCPTool* tool : registeredTools()) {
        SCOPED_TRACE(tool->name());
        EXPECT_TRUE(names.insert(tool->name()).second) << "registered twice";
        EXPECT_TRUE(std::regex_match(std::string(tool->name()), snakeCase));
        expectCleanText(tool->description());
    }
}

TEST(ToolCatalogTest, EverySchemaIsAClosedObjectOfAllowedKeywords) {
    for (const MCPTool* tool : registeredTools()) {
        SCOPED_TRACE(tool->name());
        const int openBefore = gOpenObjects;
        const json& schema = tool->inputSchema();
        ASSERT_TRUE(schema.is_object());
        std::set<std::string> keys;
        for (const auto& [key, value] : schema.items()) {
            keys.insert(key);
        }
        // No "title" at the top, and none below: it is not an allowed keyword.
        std::set<std::string> expected = {"type", "properties", "additionalProperties"};
        if (schema.contains("required")) {
            expected.insert("required");
        }
        EXPECT_EQ(keys, expected);
        EXPECT_EQ(schema.value("type", json()), "object");
        checkObjectKeywords(schema);
        if (gOpenObjects != openBefore) {
            EXPECT_TRUE(tool->name().starts_with("computer_playbook_")) << "an open object";
        }
    }
    EXPECT_GT(gOpenObjects, 0);  // the Playbook document stays open
}

TEST(ToolCatalogTest, TheCheckerCatchesBrokenSchemas) {
    // Each of these must fail the checks above, or the checks prove nothing.
    const char* broken[] = {
        R"({"type":"string","title":"x"})",
        R"({"type":"text"})",
        R"({"type":"integer","minimum":0.5})",
        R"({"type":"integer","minLength":1})",
        R"({"type":"string","enum":["a","a"]})",
        R"({"type":"integer","enum":[15,30],"default":20})",
        R"({"type":"string","description":"two  spaces"})",
        R"({"type":"string","pattern":"[a-"})",
        R"({"type":"object","properties":{},"required":["x"],"additionalProperties":false})",
        R"({"type":"object","properties":{}})",
        R"({"type":"array","items":{"type":"string","format":"uri"}})",
    };
    for (const char* text : broken) {
        SCOPED_TRACE(text);
        ::testing::TestPartResultArray failures;
        {
            ::testing::ScopedFakeTestPartResultReporter reporter(
                ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD,
                &failures);
            checkParameterSchema(json::parse(text));
        }
        EXPECT_GT(failures.size(), 0);
    }
}

}  // namespace
}  // namespace orvo
