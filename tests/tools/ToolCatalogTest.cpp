// The rules every advertised tool keeps that JSON Schema itself does not check (the meta-schema
// check is check_tool_schemas.py): our keyword set, closed objects, values that fit their types.
#include "tools/ToolCatalog.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>
#include <string>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace orvo {
namespace {

// The keywords a parameter schema may use; the object keywords describe nested objects only.
constexpr std::string_view kParameterKeywords[] = {"additionalProperties",
                                                   "const",
                                                   "default",
                                                   "deprecated",
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
                                                   "uniqueItems"};
static_assert(std::ranges::is_sorted(kParameterKeywords));

bool fitsAny(const json& value, const std::set<std::string>& types) {
    return std::ranges::any_of(types, [&](const std::string& type) {
        return (type == "string" && value.is_string()) ||
               (type == "integer" && value.is_number_integer()) ||
               (type == "number" && value.is_number()) ||
               (type == "boolean" && value.is_boolean()) || (type == "array" && value.is_array()) ||
               (type == "object" && value.is_object()) || (type == "null" && value.is_null());
    });
}

// Plain text: no stray blanks left over from joining literals.
void expectCleanText(std::string_view text) {
    ASSERT_FALSE(text.empty());
    EXPECT_FALSE(std::isspace(static_cast<unsigned char>(text.front()))) << text;
    EXPECT_FALSE(std::isspace(static_cast<unsigned char>(text.back()))) << text;
    EXPECT_EQ(text.find("  "), std::string::npos) << text;
}

std::set<std::string> declaredTypes(const json& schema) {
    const json type = schema.value("type", json());
    if (type.is_string()) {
        return {type.get<std::string>()};
    }
    std::set<std::string> types;
    for (const json& each : type.is_array() ? type : json::array()) {
        types.insert(each.is_string() ? each.get<std::string>() : each.dump());
    }
    return types;
}

void checkObjectKeywords(const json& schema);

void checkParameterSchema(const json& schema) {
    ASSERT_TRUE(schema.is_object()) << schema;
    for (const auto& [keyword, value] : schema.items()) {
        EXPECT_TRUE(std::ranges::binary_search(kParameterKeywords, keyword)) << keyword;
    }
    const std::set<std::string> types = declaredTypes(schema);
    EXPECT_TRUE(!types.empty() || schema.contains("oneOf")) << "no type: " << schema;
    const auto expectFor = [&](std::initializer_list<const char*> keywords,
                               std::initializer_list<const char*> forTypes) {
        for (const char* keyword : keywords) {
            EXPECT_TRUE(!schema.contains(keyword) ||
                        std::ranges::any_of(forTypes, [&](auto t) { return types.contains(t); }))
                << keyword << " on " << schema;
        }
    };
    expectFor({"minimum", "maximum", "exclusiveMinimum"}, {"integer", "number"});
    expectFor({"minLength", "maxLength", "pattern", "format"}, {"string"});
    expectFor({"items", "minItems", "maxItems", "uniqueItems"}, {"array"});
    expectFor({"properties", "required", "additionalProperties", "minProperties"}, {"object"});
    if (const json* description = member(schema, "description")) {
        ASSERT_TRUE(description->is_string());
        expectCleanText(description->get<std::string>());
    }
    const json values = schema.value("enum", json::array());
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_TRUE(fitsAny(values[i], types)) << "enum value " << values[i];
        EXPECT_EQ(std::find(values.begin(), values.begin() + static_cast<long>(i), values[i]),
                  values.begin() + static_cast<long>(i))
            << "repeated enum value " << values[i];
    }
    if (const json* value = member(schema, "default")) {
        EXPECT_TRUE(fitsAny(*value, types)) << "default " << *value;
        EXPECT_TRUE(values.empty() || std::ranges::find(values, *value) != values.end())
            << "default " << *value;
    }
    for (const char* limit : {"minimum", "maximum", "exclusiveMinimum"}) {
        // An integer's limits are integers; "minimum": 1.0 would advertise a fraction.
        const json value = schema.value(limit, json(0));
        EXPECT_TRUE(types.contains("number") ? value.is_number() : value.is_number_integer())
            << limit << " " << value;
    }
    if (schema.contains("minimum") && schema.contains("maximum")) {
        EXPECT_LT(schema["minimum"].get<double>(), schema["maximum"].get<double>());
    }
    const std::string format = schema.value("format", "date");
    EXPECT_TRUE(format == "date" || format == "date-time" || format == "uuid") << format;
    if (const json* items = member(schema, "items")) {
        SCOPED_TRACE("items");
        checkParameterSchema(*items);
    }
    for (const json& choice : schema.value("oneOf", json::array())) {
        SCOPED_TRACE("oneOf");
        checkParameterSchema(choice);
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
        EXPECT_FALSE(required->empty()) << "an empty required is left out";
        for (const json& name : *required) {
            EXPECT_TRUE(properties->contains(name.get<std::string>())) << name;
        }
    }
}

TEST(ToolCatalogTest, NamesAndDescriptionsAreWellFormed) {
    const std::regex snakeCase("[a-z]+(_[a-z0-9]+)*");
    const std::regex page("Docs: [a-z-]+\\.md");
    std::set<std::string_view> names;
    for (const MCPTool* tool : registeredTools()) {
        SCOPED_TRACE(tool->name());
        EXPECT_TRUE(names.insert(tool->name()).second) << "registered twice";
        EXPECT_TRUE(std::regex_match(std::string(tool->name()), snakeCase));
        const std::string_view text = tool->description();
        expectCleanText(text);
        // A description that names its page of the bundled docs does so last, by file name.
        const std::size_t docs = text.find("Docs:");
        EXPECT_TRUE(docs == std::string_view::npos ||
                    std::regex_match(std::string(text.substr(docs)), page))
            << text;
    }
}

TEST(ToolCatalogTest, EverySchemaIsAClosedObjectOfAllowedKeywords) {
    for (const MCPTool* tool : registeredTools()) {
        SCOPED_TRACE(tool->name());
        const int openBefore = gOpenObjects;
        const json& schema = tool->inputSchema();
        ASSERT_TRUE(schema.is_object());
        // No "title" at the top, and none below: it is not an allowed keyword.
        for (const auto& [key, value] : schema.items()) {
            EXPECT_TRUE(key == "type" || key == "properties" || key == "additionalProperties" ||
                        key == "required")
                << key;
        }
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
        R"({"type":"integer","minimum":0.5})",
        R"({"type":"integer","minLength":1})",
        R"({"type":"string","enum":["a","a"]})",
        R"({"type":"integer","enum":[15,30],"default":20})",
        R"({"type":"string","description":"two  spaces"})",
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
