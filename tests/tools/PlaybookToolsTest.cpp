// The Playbook schemas: one open document schema, the shared identity, and what each call needs.
#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/FamilyTools.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"

namespace orvo::test {
namespace {

const FamilyTools kTools(playbookTools());

// Every object schema under `schema` that admits unlisted members.
void collectOpenObjects(const json& schema, std::vector<json>& open) {
    if (schema.is_object() && schema.value("additionalProperties", false) == true) {
        open.push_back(schema);
    }
    if (schema.is_structured()) {
        for (const json& child : schema) {
            collectOpenObjects(child, open);
        }
    }
}

TEST(PlaybookToolsTest, OnlyThePlaybookDocumentsAdmitUnlistedMembers) {
    const json document = json::parse(R"({"type": "object", "additionalProperties": true,
        "description": "Canonical schema-v2 object. Call computer_playbook_authoring_guide first."})");
    const struct {
        std::string_view tool;
        std::string parameter;
    } documents[] = {
        {"computer_playbook_propose", "surface"},   {"computer_playbook_propose", "definition"},
        {"computer_playbook_save", "surface"},      {"computer_playbook_save", "definition"},
        {"computer_playbook_update", "definition"}, {"computer_playbook_add_evidence", "evidence"},
    };
    for (const auto& d : documents) {
        SCOPED_TRACE(std::string(d.tool) + " " + d.parameter);
        EXPECT_EQ(kTools.property(d.tool, d.parameter), document);
    }
    std::vector<json> open;
    for (const MCPTool* tool : playbookTools()) {
        collectOpenObjects(tool->inputSchema(), open);
    }
    EXPECT_EQ(open.size(), std::size(documents));
    EXPECT_TRUE(std::ranges::all_of(open, [&](const json& s) { return s == document; }));
}

TEST(PlaybookToolsTest, EachCallRequiresWhatIdentifiesAndCarriesIt) {
    using Names = std::vector<std::string>;
    const struct {
        std::string_view tool;
        Names required;
    } cases[] = {
        {"computer_playbook_get", {"surface_id", "id"}},
        {"computer_playbook_archive", {"surface_id", "id"}},
        {"computer_playbook_propose", {"surface", "definition"}},
        {"computer_playbook_save", {"surface", "definition", "markdown"}},
        {"computer_playbook_update", {"surface_id", "id"}},  // state alone moves the lifecycle
        {"computer_playbook_add_evidence", {"surface_id", "id", "evidence"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        EXPECT_EQ(kTools.schema(c.tool).value("required", json()), json(c.required));
    }
    EXPECT_EQ(kTools.schema("computer_playbook_get"), kTools.schema("computer_playbook_archive"));
    EXPECT_EQ(kTools.property("computer_playbook_get", "id").value("description", ""),
              "Capability or workflow id within that surface.");
}

TEST(PlaybookToolsTest, ReadOnlyKeepsTheReadersAndComputerUseOffersNone) {
    const auto offered = [](const ToolSelection& selection) {
        const ToolRegistry registry = ToolRegistry::assemble(playbookTools(), selection);
        std::set<std::string> names;
        for (const MCPTool* tool : registry.tools()) {
            names.emplace(tool->name());
        }
        return names;
    };
    EXPECT_EQ(offered({false, MCPToolsets::all(), true}),
              (std::set<std::string>{"computer_playbook_authoring_guide", "computer_playbook_get",
                                     "computer_playbook_list", "computer_playbook_propose"}));
    EXPECT_EQ(offered({false, MCPToolsets::all(), false}).size(), 8u);
    EXPECT_TRUE(offered({false, {MCPToolset::computer}, false}).empty());
}

}  // namespace
}  // namespace orvo::test
