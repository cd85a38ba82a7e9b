// Tools answered from local files, without the app: settings, preference notes, version.
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"
#include "userfiles/ContextAuditLog.h"
#include "userfiles/PreferenceNotes.h"
#include "userfiles/SettingsSnapshot.h"
#include "userfiles/VersionLookup.h"

namespace orvo {
namespace {

// For a tool that read the user's context: the cue first, then one audit record of its result.
void recordContextRead(const ToolContext& context, std::string_view tool, const json& result) {
    if (context.auditLog == nullptr) {
        return;
    }
    context.auditLog->activityCue();
    AuditRecord record{std::string(tool), "ok", {}, {}, {}, {}};
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
    Result<ToolOutput> call(const json&, const ToolContext& context) const override {
        // Read twice on purpose: the label read accepts a plain-string hotkey the typed one does
        // not.
        const auto file = settingsFilePath(context.home);
        return ToolOutput(
            buildSettingsSnapshot(loadPersistedSettings(file), readHotkeyLabel(file)));
    }
};

class OrvoVersionTool final : public MCPTool {
public:
    std::string_view name() const override { return "orvo_version"; }
    std::string_view description() const override { return "Return the running Orvo version."; }
    const json& inputSchema() const override { return emptyInputSchema(); }
    Result<ToolOutput> call(const json&, const ToolContext& context) const override {
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
    Result<ToolOutput> call(const json&, const ToolContext& context) const override {
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
const OrvoVersionTool kOrvoVersion;
const ReadPreferencesTool kReadPreferences;
const RememberPreferenceTool kRememberPreference;

const MCPTool* const kLocalFileTools[] = {&kCurrentSettings, &kOrvoVersion, &kReadPreferences,
                                          &kRememberPreference};

}  // namespace

std::span<const MCPTool* const> localFileTools() {
    return kLocalFileTools;
}

}  // namespace orvo
