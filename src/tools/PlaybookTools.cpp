// Playbook authoring, carried out by the app: the authoring guide, listing and reading, proposing,
// saving, editing, archiving, and the evidence trail.
#include "tools/ForwardingTool.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"

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

class ComputerPlaybookAuthoringGuideTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_authoring_guide"; }
    std::string_view description() const override {
        return "Return the schema-v2 authoring contract, hierarchy, safety rules, and "
               "authoring-skill pointer. Call this before proposing a Playbook. Saved and built-in "
               "Playbooks share one store that only these tools may write.";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
};

class ComputerPlaybookListTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_list"; }
    std::string_view description() const override {
        return "List every saved Playbook with its exact app/site match scope. Evidence and "
               "executable steps are not returned.";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema({
            {"surface_id", {{"type", "string"}}},
            {"kind", {{"type", "string"}, {"enum", {"capability", "workflow"}}}},
            {"state", lifecycleStateSchema()},
            {"include_archived", {{"type", "boolean"}, {"description", "Default false."}}},
        });
        return kSchema;
    }
};

class ComputerPlaybookGetTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_get"; }
    std::string_view description() const override {
        return "Get one saved Playbook by its surface-scoped identity. Returns canonical JSON and "
               "concise Markdown; evidence remains separate.";
    }
    const json& inputSchema() const override { return playbookIdentitySchema(); }
};

class ComputerPlaybookProposeTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_propose"; }
    std::string_view description() const override {
        return "Validate and normalize a proposed surface plus capability or workflow without "
               "writing anything.";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema(
            {{"surface", playbookDocumentSchema()}, {"definition", playbookDocumentSchema()}},
            {"surface", "definition"});
        return kSchema;
    }
};

class ComputerPlaybookSaveTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_save"; }
    std::string_view description() const override {
        return "Save one validated Playbook into the user store; a ready Playbook is usable at "
               "once. Call propose first. The surface manifest cannot inject definition "
               "references, and built_in sources are rejected.";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema(
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
        return kSchema;
    }
};

class ComputerPlaybookUpdateTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_update"; }
    std::string_view description() const override {
        return "Edit any Playbook, built-in or saved, and create a version snapshot. Pass a "
               "replacement definition, markdown, or both; pass state alone to move it between "
               "ready, disabled, and archived. Only ready Playbooks run. Identity, kind, source, "
               "and creation time cannot change.";
    }
    const json& inputSchema() const override {
        // Only the identity is required: state alone is a whole lifecycle move.
        static const json kSchema = [] {
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
        }();
        return kSchema;
    }
};

class ComputerPlaybookArchiveTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_archive"; }
    std::string_view description() const override {
        return "Reversibly archive one Playbook. Its definition, versions, and separate evidence "
               "are retained, but it cannot run until update sets another state.";
    }
    const json& inputSchema() const override { return playbookIdentitySchema(); }
};

class ComputerPlaybookAddEvidenceTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "computer_playbook_add_evidence"; }
    std::string_view description() const override {
        return "Append one bounded, non-secret evidence record for a real observation or verified "
               "run. This never changes executable instructions, lifecycle state, or trust.";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema(
            {
                {"surface_id", {{"type", "string"}}},
                {"id", {{"type", "string"}}},
                {"evidence", playbookDocumentSchema()},
            },
            {"surface_id", "id", "evidence"});
        return kSchema;
    }
};

const ComputerPlaybookAuthoringGuideTool kAuthoringGuide;
const ComputerPlaybookListTool kList;
const ComputerPlaybookGetTool kGet;
const ComputerPlaybookProposeTool kPropose;
const ComputerPlaybookSaveTool kSave;
const ComputerPlaybookUpdateTool kUpdate;
const ComputerPlaybookArchiveTool kArchive;
const ComputerPlaybookAddEvidenceTool kAddEvidence;

// No tool runs a Playbook: computer_playbook_run keeps its metadata row and is never offered.
const MCPTool* const kPlaybookTools[] = {&kAuthoringGuide, &kList,   &kGet,     &kPropose,
                                         &kSave,           &kUpdate, &kArchive, &kAddEvidence};

}  // namespace

std::span<const MCPTool* const> playbookTools() {
    return kPlaybookTools;
}

}  // namespace orvo
