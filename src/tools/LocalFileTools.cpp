// Tools answered from local files, without the app: settings, dictionary, augments, preference
// notes, version.
#include <cmath>

#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"
#include "userfiles/AugmentCatalog.h"
#include "userfiles/ContextAuditLog.h"
#include "userfiles/PreferenceNotes.h"
#include "userfiles/ReplacementsFile.h"
#include "userfiles/SettingsSnapshot.h"
#include "userfiles/VersionLookup.h"

namespace orvo {
namespace {

// For a tool that read the user's context: the cue first, then one audit record of its result.
void recordContextRead(const ToolContext& context, std::string_view tool, const json& result,
                       std::vector<std::pair<std::string, json>> extras = {}) {
    if (context.auditLog == nullptr) {
        return;
    }
    context.auditLog->activityCue();
    AuditRecord record{std::string(tool), "ok", {}, {}, {}, std::move(extras)};
    if (std::optional<std::string_view> error = stringMember(result, "error")) {
        record.result = "error: " + std::string(*error);
    }
    if (const json* count = member(result, "char_count");
        count != nullptr && count->is_number_integer()) {
        record.outputBytes = count->get<std::int64_t>();
    }
    context.auditLog->record(std::move(record));
}

class CurrentSettingsTool final : public MCPTool {
public:
    std::string_view name() const override { return "current_settings"; }
    std::string_view description() const override {
        return "Return an abridged snapshot of the user's Orvo setup: assistant backend, dictation "
               "hotkey, AI Correction, trigger word, input device, replies mute, speech volume, "
               "and `agentVoices`. Other persisted settings remain readable while the app is "
               "closed. Pass `agentVoices[<your CLI name>]` as `speak`'s `voice` so each agent "
               "sounds distinct.";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
    Result<ToolOutput> call(const json& /*arguments*/, const ToolContext& context) const override {
        // Read twice on purpose: the label read accepts a plain-string hotkey the typed one does
        // not.
        const auto file = settingsFilePath(context.home);
        return ToolOutput(
            buildSettingsSnapshot(loadPersistedSettings(file), readHotkeyLabel(file)));
    }
};

// An optional whole-number argument from `minimum` to `maximum`, left in `value` when absent; the
// error result when the argument is something else.
std::optional<json> integerArgument(const json& arguments, std::string_view key,
                                    std::int64_t minimum, std::int64_t maximum,
                                    std::int64_t& value) {
    const json* given = member(arguments, key);
    if (given == nullptr || given->is_null()) {
        return std::nullopt;
    }
    // 10.0 is a whole number as JSON writes it; 10.5 and "10" are not.
    const bool whole =
        given->is_number_integer() ||
        (given->is_number_float() && std::trunc(given->get<double>()) == given->get<double>());
    const double number = given->is_number() ? given->get<double>() : 0;
    if (!whole || number < static_cast<double>(minimum) || number > static_cast<double>(maximum)) {
        return json{{"error", std::string(key) + " must be a whole number from " +
                                  std::to_string(minimum) + " to " + std::to_string(maximum)}};
    }
    value = static_cast<std::int64_t>(number);
    return std::nullopt;
}

class ListReplacementsTool final : public MCPTool {
public:
    static constexpr std::int64_t kMaxLimit = 500;
    static constexpr std::int64_t kMaxOffset = 1000000;

    std::string_view name() const override { return "list_dictionary"; }
    std::string_view description() const override {
        return "List the user's dictation replacements (~/.config/orvo-agent/replacements.txt): "
               "each spoken phrase with the text Orvo writes in its place, and the line numbers "
               "and reasons of lines it cannot use. query filters, limit and offset page. "
               "Read-only: the user changes entries in the Dashboard. Docs: dictionary.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = {
            {"type", "object"},
            {"properties",
             {{"query",
               {{"type", "string"},
                {"description",
                 "Text to find in the spoken phrase or the replacement, ignoring case."}}},
              {"limit",
               {{"type", "integer"},
                {"minimum", 1},
                {"maximum", kMaxLimit},
                {"description", "Default 100."}}},
              {"offset",
               {{"type", "integer"},
                {"minimum", 0},
                {"maximum", kMaxOffset},
                {"description", "Pagination offset, from nextOffset. Default 0."}}}}},
            {"additionalProperties", false}};
        return kSchema;
    }
    Result<ToolOutput> call(const json& arguments, const ToolContext& context) const override {
        json result = list(arguments, context);
        const json* entries = member(result, "entries");
        recordContextRead(context, name(), result,
                          {{"entries", entries != nullptr ? entries->size() : 0}});
        return ToolOutput(std::move(result));
    }

private:
    static json list(const json& arguments, const ToolContext& context) {
        ReplacementsQuery query;
        if (const json* text = member(arguments, "query"); text != nullptr && !text->is_null()) {
            if (!text->is_string()) {
                return json{{"error", "query must be a string"}};
            }
            query.text = text->get<std::string>();
        }
        if (std::optional<json> error =
                integerArgument(arguments, "limit", 1, kMaxLimit, query.limit)) {
            return *error;
        }
        if (std::optional<json> error =
                integerArgument(arguments, "offset", 0, kMaxOffset, query.offset)) {
            return *error;
        }
        return listReplacements(replacementsFilePath(context.home), query);
    }
};

class ListAugmentsTool final : public MCPTool {
public:
    std::string_view name() const override { return "list_augments"; }
    std::string_view description() const override {
        return "List the augment catalog: built-in augments and the user's own "
               "(~/.config/orvo-agent/augments/<id>.md), each with id, name, source, and kind and "
               "description when set, plus invalid files and their reasons. Directives are "
               "omitted by default; includeDirectives adds them. Pass an id or name to "
               "activate_augment; augments of one kind conflict. Docs: augments.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = {
            {"type", "object"},
            {"properties",
             {{"includeDirectives",
               {{"type", "boolean"},
                {"description",
                 "Include each augment's directive text, at most 2000 UTF-8 bytes. Default "
                 "false."}}},
              {"kind", {{"type", "string"}, {"description", "Only augments of this kind."}}}}},
            {"additionalProperties", false}};
        return kSchema;
    }
    Result<ToolOutput> call(const json& arguments, const ToolContext& context) const override {
        bool includeDirectives = false;
        if (const json* given = member(arguments, "includeDirectives");
            given != nullptr && !given->is_null()) {
            if (!given->is_boolean()) {
                return ToolOutput(json{{"error", "includeDirectives must be true or false"}});
            }
            includeDirectives = given->get<bool>();
        }
        std::optional<std::string> kind;
        if (const json* given = member(arguments, "kind"); given != nullptr && !given->is_null()) {
            if (!given->is_string()) {
                return ToolOutput(json{{"error", "kind must be a string"}});
            }
            kind = given->get<std::string>();
        }
        std::optional<std::filesystem::path> resources =
            installedResourcesDirectory(context.programPath);
        if (resources) {
            *resources /= "augments";
        }
        const AugmentCatalog catalog =
            loadAugmentCatalog(resources, userAugmentsDirectory(context.home));
        return ToolOutput(listAugments(catalog, kind, includeDirectives));
    }
};

class OrvoVersionTool final : public MCPTool {
public:
    std::string_view name() const override { return "orvo_version"; }
    std::string_view description() const override { return "Return the running Orvo version."; }
    const json& inputSchema() const override { return emptyInputSchema(); }
    Result<ToolOutput> call(const json& /*arguments*/, const ToolContext& context) const override {
        return ToolOutput(PlainText{lookupVersion(context.programPath)});
    }
};

class ReadPreferencesTool final : public MCPTool {
public:
    std::string_view name() const override { return "read_preferences"; }
    std::string_view description() const override {
        return "Read the user's preference notes (~/.config/orvo-agent/preferences.md): how they "
               "sign emails, their team, naming conventions. Call it at the start of any turn "
               "where personalization matters. Empty content if the file is missing. Docs: "
               "preferences.md";
    }
    const json& inputSchema() const override { return emptyInputSchema(); }
    Result<ToolOutput> call(const json& /*arguments*/, const ToolContext& context) const override {
        json result = readPreferences(preferencesFilePath(context.home));
        recordContextRead(context, name(), result);
        return ToolOutput(std::move(result));
    }
};

class RememberPreferenceTool final : public MCPTool {
public:
    std::string_view name() const override { return "remember_preference"; }
    std::string_view description() const override {
        return "Append a one-line note (up to 1 KB) to the user's preferences file when they say "
               "\"remember that\u2026\" or \"from now on\u2026\", or for a stable preference worth "
               "keeping. The file caps at 32 KB; if full, ask the user to prune it via Dashboard "
               "\u2192 File \u2192 Open Preferences. Docs: preferences.md";
    }
    const json& inputSchema() const override {
        static const json kSchema = {
            {"type", "object"},
            {"properties",
             {{"note", {{"type", "string"}, {"description", "One line, up to 1 KB."}}}}},
            {"required", {"note"}},
            {"additionalProperties", false}};
        return kSchema;
    }
    Result<ToolOutput> call(const json& arguments, const ToolContext& context) const override {
        json result =
            rememberPreference(preferencesFilePath(context.home), stringMember(arguments, "note"));
        recordContextRead(context, name(), result);
        return ToolOutput(std::move(result));
    }
};

const CurrentSettingsTool kCurrentSettings;
const ListReplacementsTool kListReplacements;
const ListAugmentsTool kListAugments;
const OrvoVersionTool kOrvoVersion;
const ReadPreferencesTool kReadPreferences;
const RememberPreferenceTool kRememberPreference;

const MCPTool* const kLocalFileTools[] = {&kCurrentSettings, &kListReplacements,
                                          &kListAugments,    &kOrvoVersion,
                                          &kReadPreferences, &kRememberPreference};

}  // namespace

std::span<const MCPTool* const> localFileTools() {
    return kLocalFileTools;
}

}  // namespace orvo
