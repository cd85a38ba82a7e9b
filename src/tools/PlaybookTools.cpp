// Playbook authoring, carried out by the app: the authoring guide, listing and reading, proposing,
// saving, editing, archiving, and the evidence trail.
#include "tools/ToolCatalog.h"
#include "tools/ToolSchema.h"

namespace orvo {
namespace {

// A Playbook document, surface or evidence record in the app's own format. The authoring guide
// defines its members, so it is the one schema that admits properties it does not list.
const json& playbookDocumentSchema() {
    static const json kSchema = {
        {"type", "object"},
        {"description",
         "Canonical schema-v2 object. Call computer_playbook_authoring_guide first."},
        {"additionalProperties", true}};
    return kSchema;
}

json lifecycleStateSchema() {
    return {{"type", "string"}, {"enum", {"ready", "disabled", "archived"}}};
}

// A Playbook is named by its surface and by its id within that surface.
const json& playbookIdentitySchema() {
    static const json kSchema = objectSchema(
        {
            {"surface_id", {{"type", "string"}, {"description", "Top-level app/site surface id."}}},
            {"id",
             {{"type", "string"},
              {"description", "Capability or workflow id within that surface."}}},
        },
        {"surface_id", "id"});
    return kSchema;
}

constexpr MCPToolMetadata kPlaybooksCreating{{MCPToolset::playbooks}, kCreating, false};
constexpr MCPToolMetadata kPlaybooksDestructive{{MCPToolset::playbooks}, kDestructive, false};
constexpr MCPToolMetadata kPlaybooksReading{{MCPToolset::playbooks}, kReading, true};
constexpr MCPToolMetadata kComputerActing{{MCPToolset::computer}, kComputerUse, false};

constexpr ToolRow kRows[] = {
    {"computer_playbook_add_evidence", kPlaybooksCreating,
     "Append one bounded, non-secret evidence record for a real observation or verified run. This "
     "never changes executable instructions, lifecycle state, or trust.",
     [] {
         return objectSchema(
             {
                 {"surface_id", {{"type", "string"}}},
                 {"id", {{"type", "string"}}},
                 {"evidence", playbookDocumentSchema()},
             },
             {"surface_id", "id", "evidence"});
     }},
    {"computer_playbook_archive", kPlaybooksDestructive,
     "Reversibly archive one Playbook. Its definition, versions, and separate evidence are "
     "retained, but it cannot run until update sets another state.",
     [] { return playbookIdentitySchema(); }},
    {"computer_playbook_authoring_guide", kPlaybooksReading,
     "Return the schema-v2 authoring contract, hierarchy, safety rules, and authoring-skill "
     "pointer. Call this before proposing a Playbook. Saved and built-in Playbooks share one store "
     "that only these tools may write.",
     nullptr},
    {"computer_playbook_get", kPlaybooksReading,
     "Get one saved Playbook by its surface-scoped identity. Returns canonical JSON and concise "
     "Markdown; evidence remains separate.",
     [] { return playbookIdentitySchema(); }},
    {"computer_playbook_list", kPlaybooksReading,
     "List every saved Playbook with its exact app/site match scope. Evidence and executable steps "
     "are not returned.",
     [] {
         return objectSchema({
             {"surface_id", {{"type", "string"}}},
             {"kind", {{"type", "string"}, {"enum", {"capability", "workflow"}}}},
             {"state", lifecycleStateSchema()},
             {"include_archived", {{"type", "boolean"}, {"description", "Default false."}}},
         });
     }},
    {"computer_playbook_propose", kPlaybooksReading,
     "Validate and normalize a proposed surface plus capability or workflow without writing "
     "anything.",
     [] {
         return objectSchema(
             {{"surface", playbookDocumentSchema()}, {"definition", playbookDocumentSchema()}},
             {"surface", "definition"});
     }},
    {"computer_playbook_run", kComputerActing},  // no tool: the app knows the name
    {"computer_playbook_save", kPlaybooksCreating,
     "Save one validated Playbook into the user store; a ready Playbook is usable at once. Call "
     "propose first. The surface manifest cannot inject definition references, and built_in "
     "sources are rejected.",
     [] {
         return objectSchema(
             {
                 {"surface", playbookDocumentSchema()},
                 {"definition", playbookDocumentSchema()},
                 {"markdown",
                  {{"type", "string"},
                   {"description", "Concise human/agent guide kept beside typed JSON."}}},
                 {"surface_markdown",
                  {{"type", "string"},
                   {"description", "Optional shared app/site conventions for a new surface."}}},
             },
             {"surface", "definition", "markdown"});
     }},
    // Only the identity is required: state alone is a whole lifecycle move.
    {"computer_playbook_update", kPlaybooksCreating,
     "Edit any Playbook, built-in or saved, and create a version snapshot. Pass a replacement "
     "definition, markdown, or both; pass state alone to move it between ready, disabled, and "
     "archived. Only ready Playbooks run. Identity, kind, source, and creation time cannot change.",
     [] {
         json state = lifecycleStateSchema();
         state["description"] = "Overrides the definition's state when both are given.";
         return objectSchema(
             {
                 {"surface_id", {{"type", "string"}}},
                 {"id", {{"type", "string"}}},
                 {"definition", playbookDocumentSchema()},
                 {"markdown", {{"type", "string"}}},
                 {"state", std::move(state)},
             },
             {"surface_id", "id"});
     }},
};
static_assert(rowsAreSorted(kRows));

}  // namespace

std::span<const ToolRow> playbookTools() {
    return kRows;
}

}  // namespace orvo
