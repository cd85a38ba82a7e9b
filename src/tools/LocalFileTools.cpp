// Tools answered from local files, without the app: settings, dictionary, augments, preference
// notes, version.
#include <utility>

#include "tools/ToolCatalog.h"
#include "tools/ToolSchema.h"
#include "userfiles/AugmentCatalog.h"
#include "userfiles/PreferenceNotes.h"
#include "userfiles/ReplacementsFile.h"
#include "userfiles/SettingsSnapshot.h"
#include "userfiles/VersionLookup.h"

namespace orvo {
namespace {

constexpr std::int64_t kMaxReplacementsLimit = 500;
constexpr std::int64_t kMaxReplacementsOffset = 1000000;

Result<ToolOutput> currentSettings(const json& /*arguments*/, const ToolContext& context) {
    // Read twice on purpose: the label read accepts a plain-string hotkey the typed one does not.
    const auto file = settingsFilePath(context.home);
    return ToolOutput(buildSettingsSnapshot(loadPersistedSettings(file), readHotkeyLabel(file)));
}

// The local tools answer bad input inside their result rather than as a protocol error, so a
// member of another type gives `message` there.
template <class T>
std::optional<json> optionalArgument(const json& arguments, std::string_view key,
                                     std::string_view message, std::optional<T>& value) {
    Result<std::optional<T>> given = read<T>(arguments, key, key);
    if (!given) {
        return json{{"error", std::string(message)}};
    }
    value = std::move(*given);
    return std::nullopt;
}

// An optional whole-number argument from `minimum` to `maximum`, left in `value` when absent.
std::optional<json> integerArgument(const json& arguments, std::string_view key,
                                    std::int64_t minimum, std::int64_t maximum,
                                    std::int64_t& value) {
    const Result<std::optional<std::int64_t>> given = read<std::int64_t>(arguments, key, key);
    if (given && (!*given || (**given >= minimum && **given <= maximum))) {
        value = given->value_or(value);
        return std::nullopt;
    }
    return json{{"error", std::string(key) + " must be a whole number from " +
                              std::to_string(minimum) + " to " + std::to_string(maximum)}};
}

Result<ToolOutput> listDictionary(const json& arguments, const ToolContext& context) {
    ReplacementsQuery query;
    if (std::optional<json> error =
            optionalArgument(arguments, "query", "query must be a string", query.text)) {
        return ToolOutput(*error);
    }
    if (std::optional<json> error =
            integerArgument(arguments, "limit", 1, kMaxReplacementsLimit, query.limit)) {
        return ToolOutput(*error);
    }
    if (std::optional<json> error =
            integerArgument(arguments, "offset", 0, kMaxReplacementsOffset, query.offset)) {
        return ToolOutput(*error);
    }
    return ToolOutput(listReplacements(replacementsFilePath(context.home), query));
}

Result<ToolOutput> listAugmentCatalog(const json& arguments, const ToolContext& context) {
    std::optional<bool> includeDirectives;
    if (std::optional<json> error =
            optionalArgument(arguments, "includeDirectives",
                             "includeDirectives must be true or false", includeDirectives)) {
        return ToolOutput(*error);
    }
    std::optional<std::string> kind;
    if (std::optional<json> error =
            optionalArgument(arguments, "kind", "kind must be a string", kind)) {
        return ToolOutput(*error);
    }
    std::optional<std::filesystem::path> resources =
        installedResourcesDirectory(context.programPath);
    if (resources) {
        *resources /= "augments";
    }
    const AugmentCatalog catalog =
        loadAugmentCatalog(resources, userAugmentsDirectory(context.home));
    return ToolOutput(listAugments(catalog, kind, includeDirectives.value_or(false)));
}

Result<ToolOutput> orvoVersion(const json& /*arguments*/, const ToolContext& context) {
    return ToolOutput(PlainText{lookupVersion(context.programPath)});
}

Result<ToolOutput> readPreferenceNotes(const json& /*arguments*/, const ToolContext& context) {
    return ToolOutput(readPreferences(preferencesFilePath(context.home)));
}

Result<ToolOutput> rememberPreferenceNote(const json& arguments, const ToolContext& context) {
    return ToolOutput(
        rememberPreference(preferencesFilePath(context.home), stringMember(arguments, "note")));
}

constexpr MCPToolMetadata kStateReading{{MCPToolset::state}, kReading, true};
constexpr MCPToolMetadata kStateAugmentsReading{
    {MCPToolset::state, MCPToolset::augments}, kReading, true};
constexpr MCPToolMetadata kSettingsChange{{MCPToolset::settings}, kIdempotentChange, false};

constexpr ContextRead kCountedEntries{true, {}, false, "entries"};

constexpr ToolRow kRows[] = {
    {"current_settings",
     kStateReading,
     "Return an abridged snapshot of the user's Orvo setup: assistant backend, dictation hotkey, "
     "AI Correction, trigger word, input device, replies mute, speech volume, and `agentVoices`. "
     "Other persisted settings remain readable while the app is closed. Pass "
     "`agentVoices[<your CLI name>]` as `speak`'s `voice` so each agent sounds distinct.",
     nullptr,
     {},
     currentSettings},
    {"list_augments",
     kStateAugmentsReading,
     "List the augment catalog: built-in augments and the user's own "
     "(~/.config/orvo-agent/augments/<id>.md), each with id, name, source, and kind and "
     "description when set, plus invalid files and their reasons. Directives are omitted by "
     "default; includeDirectives adds them. Pass an id or name to activate_augment; augments of "
     "one kind conflict. Docs: augments.md",
     [] {
         return objectSchema({
             {"includeDirectives",
              {{"type", "boolean"},
               {"description",
                "Include each augment's directive text, at most 2000 UTF-8 bytes. Default "
                "false."}}},
             {"kind", {{"type", "string"}, {"description", "Only augments of this kind."}}},
         });
     },
     {},
     listAugmentCatalog},
    {"list_dictionary", kStateReading,
     "List the user's dictation replacements (~/.config/orvo-agent/replacements.txt): each spoken "
     "phrase with the text Orvo writes in its place, and the line numbers and reasons of lines it "
     "cannot use. query filters, limit and offset page. Read-only: the user changes entries in "
     "the Dashboard. Docs: dictionary.md",
     [] {
         return objectSchema({
             {"query",
              {{"type", "string"},
               {"description",
                "Text to find in the spoken phrase or the replacement, ignoring case."}}},
             {"limit",
              {{"type", "integer"},
               {"minimum", 1},
               {"maximum", kMaxReplacementsLimit},
               {"description", "Default 100."}}},
             {"offset",
              {{"type", "integer"},
               {"minimum", 0},
               {"maximum", kMaxReplacementsOffset},
               {"description", "Pagination offset, from nextOffset. Default 0."}}},
         });
     },
     kCountedEntries, listDictionary},
    {"orvo_version", kStateReading, "Return the running Orvo version.", nullptr, {}, orvoVersion},
    {"read_preferences", kStateReading,
     "Read the user's preference notes (~/.config/orvo-agent/preferences.md): how they sign "
     "emails, their team, naming conventions. Call it at the start of any turn where "
     "personalization matters. Empty content if the file is missing. Docs: preferences.md",
     nullptr, kRecordedRead, readPreferenceNotes},
    {"remember_preference", kSettingsChange,
     "Append a one-line note (up to 1 KB) to the user's preferences file when they say "
     "\"remember that\u2026\" or \"from now on\u2026\", or for a stable preference worth keeping. "
     "The file caps at 32 KB; if full, ask the user to prune it via Dashboard \u2192 File \u2192 "
     "Open Preferences. Docs: preferences.md",
     [] {
         return objectSchema(
             {{"note", {{"type", "string"}, {"description", "One line, up to 1 KB."}}}}, {"note"});
     },
     kRecordedRead, rememberPreferenceNote},
};
static_assert(rowsAreSorted(kRows));

}  // namespace

std::span<const ToolRow> localFileTools() {
    return kRows;
}

}  // namespace orvo
