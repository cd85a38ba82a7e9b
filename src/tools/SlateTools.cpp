// What the user sees of the app, carried out by the app: personas and characters, the panel and
// its companion, augments, and the Slate canvas with its open file tabs.
#include "tools/ToolCatalog.h"
#include "tools/ToolSchema.h"

namespace orvo {
namespace {

// Where the card stack docks; the companion may also float in the middle of its display.
json dockSpots() {
    return {"top_left", "top_center", "top_right", "bottom_left", "bottom_center", "bottom_right"};
}

json companionPlaces() {
    json places = dockSpots();
    places.push_back("center");
    return places;
}

constexpr MCPToolMetadata kAugmentsChange{{MCPToolset::augments}, kIdempotentChange, false};
constexpr MCPToolMetadata kStateSlateReading{
    {MCPToolset::state, MCPToolset::slate}, kReading, true};
constexpr MCPToolMetadata kStateAugmentsReading{
    {MCPToolset::state, MCPToolset::augments}, kReading, true};
constexpr MCPToolMetadata kSettingsChange{{MCPToolset::settings}, kIdempotentChange, false};
constexpr MCPToolMetadata kStateReading{{MCPToolset::state}, kReading, true};
constexpr MCPToolMetadata kSettingsAugmentsDestructive{
    {MCPToolset::settings, MCPToolset::augments}, kDestructive, false};
constexpr MCPToolMetadata kSettingsAugmentsChange{
    {MCPToolset::settings, MCPToolset::augments}, kIdempotentChange, false};
constexpr MCPToolMetadata kSlateChange{{MCPToolset::slate}, kIdempotentChange, false};

constexpr ToolRow kRows[] = {
    {"activate_augment", kAugmentsChange,
     "Activate an augment (a short directive that shapes assistant behavior) by id or name from "
     "list_augments. exclusive: true turns every other augment off first. A full slot budget "
     "returns slot_budget_full with the loadout so you can suggest what to deactivate. `conflicts` "
     "names active augments of the same kind. Docs: augments.md",
     [] {
         return objectSchema(
             {
                 {"id", {{"type", "string"}, {"description", "Augment id or name."}}},
                 {"exclusive",
                  {{"type", "boolean"}, {"description", "Deactivate every other augment first."}}},
             },
             {"id"});
     }},
    {"deactivate_augment", kAugmentsChange,
     "Deactivate an augment by id or name, or every augment with id \"all\". Returns deactivated: "
     "false if none was active. Docs: augments.md",
     [] {
         return objectSchema(
             {{"id", {{"type", "string"}, {"description", "Augment id or name, or \"all\"."}}}},
             {"id"});
     }},
    {"get_slate", kStateSlateReading,
     "Read the Slate: window open, routing, the artifact as markdown with block-id markers, "
     "counts, and openFiles. Use it to bring the Slate's contents into your context. Docs: "
     "slate.md",
     nullptr, kRecordedRead},
    {"list_personas", kStateAugmentsReading,
     "List personas (built-in and user characters in ~/.config/orvo-agent/characters/) with id, "
     "display name, category, and the active persona slots. Docs: personas.md",
     nullptr},
    // Written in the order the agent should read them; the JSON object keeps keys sorted.
    {"panel", kSettingsChange,
     "Read or change the Orvo panel and its companion (the small face or card stack). \"state\" "
     "returns open, collapsed (only the face or card stack), or closed, plus view, pin, mute, "
     "speech volume, presence, sizes, its display, and every display's id and name. \"set\" "
     "changes any field and returns the new state. \"Make it the small version\" is state "
     "collapsed, which also brings back a hidden companion. muted sets repliesMuted, which "
     "persists across restarts; replies still show as text and speak returns queued=false, "
     "muted=true. Only when the user asks to unmute, call panel(action: \"set\", muted: false). "
     "speech_volume (0 to 100) is reply loudness, separate from the Mac's volume; above 0 it also "
     "unmutes. Mute is not \"be quiet\" (stop current speech) or \"stop listening\" "
     "(set_ambient_listening_level). Docs: panel.md",
     [] {
         return objectSchema(
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
     }},
    {"read_open_file", kStateReading,
     "Read a chunk of a read-only file tab the user opened on the Slate. path must be one of "
     "get_slate's openFiles; there is no general file read. File tabs are never in your turn "
     "context, so call get_slate first. Errors list openPaths for an unknown path, or say not "
     "loaded yet. Docs: slate.md",
     [] {
         return objectSchema(
             {
                 {"path",
                  {{"type", "string"}, {"description", "A path from get_slate's openFiles."}}},
                 {"offset", {{"type", "integer"}, {"description", "Character offset. Default 0."}}},
                 {"limit",
                  {{"type", "integer"}, {"description", "Max characters. Default 20000."}}},
             },
             {"path"});
     },
     recordedRead("path")},
    // A check without saving still needs the file and its name, so only validate_only may be
    // left out.
    {"save_character", kSettingsAugmentsDestructive,
     "Create or replace a user character file (~/.config/orvo-agent/characters/<id>.md) from full "
     "Markdown: frontmatter plus body. Runs the loader's safeguards first and saves nothing when "
     "any check fails; validate_only checks without writing. Built-in ids are refused. Docs: "
     "personas.md",
     [] {
         return objectSchema(
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
     }},
    // Nothing is required: mode "clear" needs no id.
    {"set_active_persona", kSettingsAugmentsChange,
     "Change active personas and characters by id or name (list_personas). mode replace (default) "
     "makes it the only one, add uses the next free slot, remove takes it out, clear turns all "
     "off. Only one character can be active. The result lists the loadout and any augments evicted "
     "to fit the slot budget (evictedAugments). Docs: personas.md",
     [] {
         return objectSchema({
             {"id",
              {{"type", "string"},
               {"description",
                R"(Persona ID or name (e.g. "pirate"). Required unless mode is "clear".)"}}},
             {"mode",
              {{"type", "string"},
               {"enum", {"replace", "add", "remove", "clear"}},
               {"description", "Default \"replace\"."}}},
         });
     }},
    {"slate_clear", kSlateChange,
     "Wipe the Slate's artifact and transcript. Cannot be undone. Docs: slate.md", nullptr},
    {"slate_close", kSlateChange,
     "Close the Slate window. Its artifact and transcript stay in memory until cleared or the app "
     "restarts. Docs: slate.md",
     nullptr},
    {"slate_open", kSlateChange,
     "Open the floating Slate window, a markdown canvas for assistant replies; needed before "
     "slate_save. Docs: slate.md",
     nullptr},
    {"slate_remove_frontmatter", kSlateChange,
     "Remove one frontmatter entry from the open Slate by key. An unknown key returns the live key "
     "list. Docs: slate.md",
     [] {
         return objectSchema({{"key", {{"type", "string"}}}}, {"key"});
     }},
    {"slate_save", kSlateChange,
     "Save the Slate artifact to the user's vault as markdown. Fails if the Slate is empty or "
     "closed. Returns {path, filename}. Docs: slate.md",
     [] {
         return objectSchema({
             {"name",
              {{"type", "string"},
               {"description", "Filename without extension. Default from the title."}}},
         });
     }},
    {"slate_set_frontmatter", kSlateChange,
     "Set or add one frontmatter entry (such as title, status, tags) on the open Slate instead of "
     "re-emitting the whole <slate> tag. Reserved keys (title, created, updated, tavi_blocks, "
     "source) are rejected. Docs: slate.md",
     [] {
         return objectSchema({{"key", {{"type", "string"}}}, {"value", {{"type", "string"}}}},
                             {"key", "value"});
     }},
    {"slate_set_routing", kSlateChange,
     "Turn assistant-to-Slate routing on or off. Does not open the window; pair with slate_open to "
     "use the Slate now. Applies to later turns while the window is open. Docs: slate.md",
     [] {
         return objectSchema({{"enabled", {{"type", "boolean"}}}}, {"enabled"});
     }},
};
static_assert(rowsAreSorted(kRows));

}  // namespace

std::span<const ToolRow> slateAndPersonaTools() {
    return kRows;
}

}  // namespace orvo
