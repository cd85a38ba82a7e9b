// A read-only, tolerant view of the app's settings file and the abridged snapshot agents see.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "protocol/Json.h"

namespace orvo {

struct HotkeyBinding {
    std::optional<std::string> name;
};

// One field per recognised top-level key; absent when the file does not carry it. Not packed
// for size: a call holds one of these at a time.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct PersistedSettings {
    std::optional<std::string> assistantBackend;
    std::optional<bool> assistantEnabled;
    std::optional<std::string> ambientListeningLevel;
    std::optional<bool> ambientLearnFromDictation;
    std::optional<bool> ambientDucksReplies;
    std::optional<std::string> assistantAckMode;
    std::optional<bool> assistantContentAcknowledgments;
    std::optional<std::string> assistantTrigger;
    std::optional<std::string> assistantName;
    std::optional<std::string> userAddress;
    std::optional<bool> userAddressDisabled;
    std::optional<HotkeyBinding> dictationHotkey;
    std::optional<std::int64_t> inputDevice;
    std::optional<bool> contextMode;
    std::optional<std::string> correctionEngine;
    std::optional<std::string> writingEngine;
    std::optional<bool> selectionEditEnabled;
    std::optional<std::string> llmModel;
    std::optional<std::string> sttModel;
    std::optional<bool> repliesMuted;
    std::optional<std::int64_t> speechVolumePercent;
    std::optional<std::map<std::string, std::string>> agentVoices;
};

// `home`/.config/orvo-agent/settings.json
std::filesystem::path settingsFilePath(const std::filesystem::path& home);

// Typed decode: a present key of the wrong type fails the whole decode, which gives every field
// absent. JSON null counts as absent.
PersistedSettings decodePersistedSettings(std::string_view bytes);
PersistedSettings loadPersistedSettings(const std::filesystem::path& settingsFile);

// The dictation hotkey's label from the raw JSON, which also accepts a plain string.
std::optional<std::string> decodeHotkeyLabel(std::string_view bytes);
std::optional<std::string> readHotkeyLabel(const std::filesystem::path& settingsFile);

bool isClaudeModelIdentifier(std::string_view text);

json buildSettingsSnapshot(const PersistedSettings& settings,
                           const std::optional<std::string>& hotkeyLabel);

}  // namespace orvo
