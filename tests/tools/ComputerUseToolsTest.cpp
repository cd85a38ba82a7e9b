#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "protocol/Json.h"
#include "tools/ForwardingTool.h"
#include "tools/MCPToolMetadata.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"

namespace orvo {
namespace {

const MCPTool* findTool(std::string_view name) {
    std::span<const MCPTool* const> tools = computerUseTools();
    auto it = std::ranges::find(tools, name, &MCPTool::name);
    return it == tools.end() ? nullptr : *it;
}

// One parameter's schema without its description, for comparing limits and shapes.
json parameterShape(std::string_view tool, std::string_view parameter) {
    const MCPTool* found = findTool(tool);
    if (found == nullptr) {
        return nullptr;
    }
    json shape = found->inputSchema()["properties"].value(std::string(parameter), json());
    if (shape.is_object()) {
        shape.erase("description");
    }
    return shape;
}

TEST(ComputerUseToolsTest, EveryToolForwardsUnderAComputerName) {
    EXPECT_EQ(computerUseTools().size(), 19u);
    for (const MCPTool* tool : computerUseTools()) {
        SCOPED_TRACE(tool->name());
        EXPECT_NE(dynamic_cast<const ForwardingTool*>(tool), nullptr);
        EXPECT_TRUE(tool->name().starts_with("computer_"));
        const MCPToolMetadata* metadata = toolMetadata(tool->name());
        ASSERT_NE(metadata, nullptr);
        EXPECT_TRUE(metadata->toolsets.contains(MCPToolset::computer));
    }
}

TEST(ComputerUseToolsTest, DescriptionsPointAtTheirOwnDocs) {
    for (const MCPTool* tool : computerUseTools()) {
        SCOPED_TRACE(tool->name());
        std::string docs = "computer-use-permissions.md";
        if (tool->name() != "computer_delegation") {
            docs = tool->name();
            std::ranges::replace(docs, '_', '-');
            docs += ".md";
        }
        EXPECT_TRUE(tool->description().ends_with("Docs: " + docs)) << tool->description();
    }
}

TEST(ComputerUseToolsTest, NestedShapesAndLimitsKeepTheirJSONTypes) {
    const struct {
        std::string_view tool;
        std::string_view parameter;
        std::string_view shape;
    } cases[] = {
        {"computer_pinch", "scale", R"({"maximum":4,"minimum":0.25,"type":"number"})"},
        {"computer_drag", "delta_x", R"({"maximum":4096,"minimum":-4096,"type":"integer"})"},
        {"computer_delegation", "duration_minutes",
         R"({"default":30,"enum":[15,30,60],"type":"integer"})"},
        {"computer_deliver_grid", "start_cell",
         R"({"pattern":"^[A-Za-z]{1,3}[1-9][0-9]{0,6}$","type":"string"})"},
        {"computer_drag", "modifiers",
         R"({"items":{"enum":["command","shift","option","control","function"],"type":"string"},)"
         R"("type":"array","uniqueItems":true})"},
        {"computer_click", "position",
         R"({"additionalProperties":false,"minProperties":1,"properties":{)"
         R"("x":{"maximum":1,"minimum":0,"type":"number"},)"
         R"("y":{"maximum":1,"minimum":0,"type":"number"}},"type":"object"})"},
        {"computer_arrange_window", "frame",
         R"({"additionalProperties":false,"properties":{"height":{"minimum":1,"type":"number"},)"
         R"("width":{"minimum":1,"type":"number"},"x":{"type":"number"},"y":{"type":"number"}},)"
         R"("required":["x","y","width","height"],"type":"object"})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.tool) + " " + std::string(c.parameter));
        EXPECT_EQ(dumpCompact(parameterShape(c.tool, c.parameter)), c.shape);
    }
}

TEST(ComputerUseToolsTest, TextsWithUnusualCharactersAreExact) {
    const MCPTool* pressKey = findTool("computer_press_key");
    ASSERT_NE(pressKey, nullptr);
    json pressKeySchema = pressKey->inputSchema();  // a copy: a missing member reads as null
    EXPECT_EQ(pressKeySchema["properties"]["key"]["description"],
              "return/enter, tab, escape, space, delete, forward_delete, up, down, left, right, "
              "home, end, page_up, page_down, f1\u2013f12, a\u2013z, 0\u20139, or US punctuation "
              "= - [ ] ; ' , . / \\ ` (also by name, such as minus, slash, grave); plus is "
              "Shift+=.");
    const MCPTool* listDisplays = findTool("computer_list_displays");
    ASSERT_NE(listDisplays, nullptr);
    EXPECT_EQ(dumpCompact(listDisplays->inputSchema()),
              R"({"additionalProperties":false,"properties":{},"type":"object"})");
}

}  // namespace
}  // namespace orvo
