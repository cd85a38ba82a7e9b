// Tools answered from local files, without the app: settings, version.
#include "tools/ToolCatalog.h"
#include "tools/ToolRegistry.h"
#include "userfiles/SettingsSnapshot.h"
#include "userfiles/VersionLookup.h"

namespace orvo {
namespace {

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

const CurrentSettingsTool kCurrentSettings;
const OrvoVersionTool kOrvoVersion;

const MCPTool* const kLocalFileTools[] = {&kCurrentSettings, &kOrvoVersion};

}  // namespace

std::span<const MCPTool* const> localFileTools() {
    return kLocalFileTools;
}

}  // namespace orvo
