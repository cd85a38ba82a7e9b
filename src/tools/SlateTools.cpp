// What the user sees of the app, carried out by the app: personas and characters, the panel and
// its companion, augments, and the Slate canvas with its open file tabs.
#include "tools/ForwardingTool.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"

namespace orvo {
namespace {

class ListPersonasTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "list_personas"; }
    std::string_view description() const override {
        return "List personas (built-in and user characters in ~/.config/orvo-agent/characters/) "
               "with id, display name, category, and the active persona slots. Docs: personas.md";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
};

class SetActivePersonaTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "set_active_persona"; }
    std::string_view description() const override {
        return "Change active personas and characters by id or name (list_personas). mode replace "
               "(default) makes it the only one, add uses the next free slot, remove takes it out, "
               "clear turns all off. Only one character can be active. The result lists the "
               "loadout and any augments evicted to fit the slot budget (evictedAugments). Docs: "
               "personas.md";
    }
    const json& inputSchema() const override {
        // Nothing is required: mode "clear" needs no id.
        static const json kSchema = objectSchema({
            {"id",
             {{"type", "string"},
              {"description",
               R"(Persona ID or name (e.g. "pirate"). Required unless mode is "clear".)"}}},
            {"mode",
             {{"type", "string"},
              {"enum", {"replace", "add", "remove", "clear"}},
              {"description", "Default \"replace\"."}}},
        });
        return kSchema;
    }
};

class SaveCharacterTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "save_character"; }
    std::string_view description() const override {
        return "Create or replace a user character file (~/.config/orvo-agent/characters/<id>.md) "
               "from full Markdown: frontmatter plus body. Runs the loader's safeguards first and "
               "saves nothing when any check fails; validate_only checks without writing. Built-in "
               "ids are refused. Docs: personas.md";
    }
    const json& inputSchema() const override {
        // A check without saving still needs the file and its name, so only validate_only may be
        // left out.
        static const json kSchema = objectSchema(
            {
                {"id",
                 {{"type", "string"},
                  {"description",
                   "File name stem: lowercase letters, digits, and hyphens (e.g. "
                   "\"ship-captain\")."}}},
                {"markdown",
                 {{"type", "string"},
                  {"description",
                   "The whole file: --- frontmatter ---, core section, then ## Examples last."}}},
                {"validate_only",
                 {{"type", "boolean"}, {"description", "Check without saving. Default false."}}},
            },
            {"id", "markdown"});
        return kSchema;
    }
};

// Where the card stack docks; the companion may also float in the middle of its display.
json dockSpots() {
    return {"top_left", "top_center", "top_right", "bottom_left", "bottom_center", "bottom_right"};
}

json companionPlaces() {
    json places = dockSpots();
    places.push_back("center");
    return places;
}

class PanelTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "panel"; }
    std::string_view description() const override {
        return "Read or change the Orvo panel and its companion (the small face or card stack). "
               "\"state\" returns open, collapsed (only the face or card stack), or closed, plus "
               "view, pin, mute, speech volume, presence, sizes, its display, and every display's "
               "id and name. \"set\" changes any field and returns the new state. \"Make it the "
               "small version\" is state collapsed, which also brings back a hidden companion. "
               "muted sets repliesMuted, which persists across restarts; replies still show as "
               "text and speak returns queued=false, muted=true. Only when the user asks to "
               "unmute, call panel(action: \"set\", muted: false). speech_volume (0 to 100) is "
               "reply loudness, separate from the Mac's volume; above 0 it also unmutes. Mute is "
               "not \"be quiet\" (stop current speech) or \"stop listening\" "
               "(set_ambient_listening_level). Docs: panel.md";
    }
    const json& inputSchema() const override {
        // Written in the order the agent should read them; the JSON object keeps keys sorted.
        static const json kSchema = objectSchema(
            {
                {"action", {{"type", "string"}, {"enum", {"state", "set"}}}},
                {"state", {{"type", "string"}, {"enum", {"open", "collapsed", "closed"}}}},
                {"view",
                 {{"type", "string"},
                  {"enum", {"assistant", "agents", "meetings", "history"}},
                  {"description", "Shows that view and opens the panel."}}},
                {"pinned",
                 {{"type", "boolean"},
                  {"description", "Keep the open panel above other windows."}}},
                {"muted",
                 {{"type", "boolean"},
                  {"description",
                   "Persist repliesMuted across restarts: true mutes spoken replies, false "
                   "unmutes; text still shows. Unmute only when requested."}}},
                {"speech_volume",
                 {{"type", "integer"},
                  {"minimum", 0},
                  {"maximum", 100},
                  {"description",
                   "Spoken reply volume in percent, saved across restarts. Above 0 it unmutes "
                   "unless muted is also sent."}}},
                {"presence_style",
                 {{"type", "string"},
                  {"enum", {"stack", "companion"}},
                  {"description", "Dock the card stack, or float the companion face."}}},
                {"spot",
                 {{"type", "string"},
                  {"enum", dockSpots()},
                  {"description", "Docks the card stack at this spot."}}},
                {"companion_at",
                 {{"type", "string"},
                  {"enum", companionPlaces()},
                  {"description", "Floats the companion at this place on its display."}}},
                {"side",
                 {{"type", "string"},
                  {"enum", {"left", "right"}},
                  {"description",
                   "Moves the presence to that half of its display; the panel opens on that "
                   "side."}}},
                {"display",
                 {{"type", "string"},
                  {"description", "A display id or name from state.displays."}}},
                {"text_size", {{"type", "string"}, {"enum", {"small", "regular", "large"}}}},
                {"face_size", {{"type", "integer"}, {"minimum", 56}, {"maximum", 224}}},
                {"face_when_idle",
                 {{"type", "boolean"}, {"description", "Show the face on an idle card stack."}}},
                {"idle_lane_expanded",
                 {{"type", "boolean"}, {"description", "Expand the Agents view's Idle lane."}}},
            },
            {"action"});
        return kSchema;
    }
};

class ActivateAugmentTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "activate_augment"; }
    std::string_view description() const override {
        return "Activate an augment (a short directive that shapes assistant behavior) by id or "
               "name from list_augments. exclusive: true turns every other augment off first. A "
               "full slot budget returns slot_budget_full with the loadout so you can suggest what "
               "to deactivate. `conflicts` names active augments of the same kind. Docs: "
               "augments.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema(
            {
                {"id", {{"type", "string"}, {"description", "Augment id or name."}}},
                {"exclusive",
                 {{"type", "boolean"}, {"description", "Deactivate every other augment first."}}},
            },
            {"id"});
        return kSchema;
    }
};

class DeactivateAugmentTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "deactivate_augment"; }
    std::string_view description() const override {
        return "Deactivate an augment by id or name, or every augment with id \"all\". Returns "
               "deactivated: false if none was active. Docs: augments.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema(
            {{"id", {{"type", "string"}, {"description", "Augment id or name, or \"all\"."}}}},
            {"id"});
        return kSchema;
    }
};

class SlateOpenTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "slate_open"; }
    std::string_view description() const override {
        return "Open the floating Slate window, a markdown canvas for assistant replies; needed "
               "before slate_save. Docs: slate.md";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
};

class SlateCloseTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "slate_close"; }
    std::string_view description() const override {
        return "Close the Slate window. Its artifact and transcript stay in memory until cleared "
               "or the app restarts. Docs: slate.md";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
};

class SlateClearTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "slate_clear"; }
    std::string_view description() const override {
        return "Wipe the Slate's artifact and transcript. Cannot be undone. Docs: slate.md";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
};

class SlateSaveTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "slate_save"; }
    std::string_view description() const override {
        return "Save the Slate artifact to the user's vault as markdown. Fails if the Slate is "
               "empty or closed. Returns {path, filename}. Docs: slate.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema({
            {"name",
             {{"type", "string"},
              {"description", "Filename without extension. Default from the title."}}},
        });
        return kSchema;
    }
};

class SlateSetRoutingTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "slate_set_routing"; }
    std::string_view description() const override {
        return "Turn assistant-to-Slate routing on or off. Does not open the window; pair with "
               "slate_open to use the Slate now. Applies to later turns while the window is open. "
               "Docs: slate.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema({{"enabled", {{"type", "boolean"}}}}, {"enabled"});
        return kSchema;
    }
};

class SlateSetFrontmatterTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "slate_set_frontmatter"; }
    std::string_view description() const override {
        return "Set or add one frontmatter entry (such as title, status, tags) on the open Slate "
               "instead of re-emitting the whole <slate> tag. Reserved keys (title, created, "
               "updated, tavi_blocks, source) are rejected. Docs: slate.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema(
            {{"key", {{"type", "string"}}}, {"value", {{"type", "string"}}}}, {"key", "value"});
        return kSchema;
    }
};

class SlateRemoveFrontmatterTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "slate_remove_frontmatter"; }
    std::string_view description() const override {
        return "Remove one frontmatter entry from the open Slate by key. An unknown key returns "
               "the live key list. Docs: slate.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema({{"key", {{"type", "string"}}}}, {"key"});
        return kSchema;
    }
};

class GetSlateTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "get_slate"; }
    std::string_view description() const override {
        return "Read the Slate: window open, routing, the artifact as markdown with block-id "
               "markers, counts, and openFiles. Use it to bring the Slate's contents into your "
               "context. Docs: slate.md";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
};

class ReadOpenFileTool final : public ForwardingTool {
public:
    std::string_view name() const override { return "read_open_file"; }
    std::string_view description() const override {
        return "Read a chunk of a read-only file tab the user opened on the Slate. path must be "
               "one of get_slate's openFiles; there is no general file read. File tabs are never "
               "in your turn context, so call get_slate first. Errors list openPaths for an "
               "unknown path, or say not loaded yet. Docs: slate.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = objectSchema(
            {
                {"path",
                 {{"type", "string"}, {"description", "A path from get_slate's openFiles."}}},
                {"offset", {{"type", "integer"}, {"description", "Character offset. Default 0."}}},
                {"limit", {{"type", "integer"}, {"description", "Max characters. Default 20000."}}},
            },
            {"path"});
        return kSchema;
    }
};

const ListPersonasTool kListPersonas;
const SetActivePersonaTool kSetActivePersona;
const SaveCharacterTool kSaveCharacter;
const PanelTool kPanel;
const ActivateAugmentTool kActivateAugment;
const DeactivateAugmentTool kDeactivateAugment;
const SlateOpenTool kSlateOpen;
const SlateCloseTool kSlateClose;
const SlateClearTool kSlateClear;
const SlateSaveTool kSlateSave;
const SlateSetRoutingTool kSlateSetRouting;
const SlateSetFrontmatterTool kSlateSetFrontmatter;
const SlateRemoveFrontmatterTool kSlateRemoveFrontmatter;
const GetSlateTool kGetSlate;
const ReadOpenFileTool kReadOpenFile;

const MCPTool* const kSlateAndPersonaTools[] = {&kListPersonas,
                                                &kSetActivePersona,
                                                &kSaveCharacter,
                                                &kPanel,
                                                &kActivateAugment,
                                                &kDeactivateAugment,
                                                &kSlateOpen,
                                                &kSlateClose,
                                                &kSlateClear,
                                                &kSlateSave,
                                                &kSlateSetRouting,
                                                &kSlateSetFrontmatter,
                                                &kSlateRemoveFrontmatter,
                                                &kGetSlate,
                                                &kReadOpenFile};

}  // namespace

std::span<const MCPTool* const> slateAndPersonaTools() {
    return kSlateAndPersonaTools;
}

}  // namespace orvo
