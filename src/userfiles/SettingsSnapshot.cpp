// A read-only, tolerant view of the app's settings file and the abridged snapshot agents see.
#include "userfiles/SettingsSnapshot.h"

#include <algorithm>

#include "protocol/Graphemes.h"
#include "userfiles/FileText.h"

namespace orvo {
namespace {

// Deeper than any setting the snapshot reads; what lies below reads as null, like an absent one.
constexpr int kSettingsKeptDepth = 16;

// The app writes a few kilobytes; a larger file is not its settings file.
constexpr std::size_t kMaxSettingsBytes = std::size_t{8} * 1024 * 1024;
constexpr std::size_t kMaxModelIdentifierLength = 167;

constexpr std::string_view kCorrectionEngines[] = {"local", "claudeHaiku", "claudeSonnet"};
constexpr std::string_view kWritingEngines[] = {"sameAsCorrection", "local", "claudeHaiku",
                                                "claudeSonnet"};

// A field that is present with another type spoils the whole file, as the app's own decoder
// would; absent and null fields stay unset.
template <class T>
bool decodeField(const json& object, std::string_view key, std::optional<T>& field) {
    Result<std::optional<T>> value = read<T>(object, key, key);
    if (!value) {
        return false;
    }
    field = std::move(*value);
    return true;
}

bool decodeField(const json& object, std::string_view key, std::optional<HotkeyBinding>& field) {
    Result<std::optional<JsonObject>> value = read<JsonObject>(object, key, key);
    if (!value || !*value) {
        return value.has_value();
    }
    Result<std::optional<std::string>> name = read<std::string>(*(*value)->value, "name", "name");
    if (!name) {
        return false;
    }
    field = HotkeyBinding{std::move(*name)};
    return true;
}

bool decodeField(const json& object, std::string_view key,
                 std::optional<std::map<std::string, std::string>>& field) {
    Result<std::optional<JsonObject>> value = read<JsonObject>(object, key, key);
    if (!value || !*value) {
        return value.has_value();
    }
    std::map<std::string, std::string> decoded;
    for (const auto& [entry, voice] : (*value)->value->items()) {
        if (!voice.is_string()) {
            return false;
        }
        decoded.emplace(entry, voice.get<std::string>());
    }
    field = std::move(decoded);
    return true;
}

std::optional<json> parseSettingsObject(std::string_view bytes) {
    // The settings nest a few levels; deeper contents are checked but never built.
    BoundedParse parsed = parseJsonPruned(bytes, kSettingsKeptDepth);
    if (parsed.status != JsonParseStatus::ok || !parsed.value.is_object()) {
        return std::nullopt;
    }
    return std::move(parsed.value);
}

bool isLowerAlnum(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

bool contains(std::span<const std::string_view> list, std::string_view value) {
    return std::ranges::find(list, value) != list.end();
}

std::string resolveEngine(const std::optional<std::string>& engine,
                          std::span<const std::string_view> known, std::string_view fallback) {
    std::string value = engine.value_or("");
    if (isClaudeModelIdentifier(value) || contains(known, value)) {
        return value;
    }
    return std::string(fallback);
}

template <class T>
json orNull(const std::optional<T>& value) {
    return value ? json(*value) : json(nullptr);
}

}  // namespace

std::filesystem::path settingsFilePath(const std::filesystem::path& home) {
    return home / ".config" / "orvo-agent" / "settings.json";
}

PersistedSettings decodePersistedSettings(std::string_view bytes) {
    std::optional<json> object = parseSettingsObject(bytes);
    if (!object) {
        return {};
    }
    PersistedSettings s;
    const bool decoded =
        decodeField(*object, "assistantBackend", s.assistantBackend) &&
        decodeField(*object, "assistantEnabled", s.assistantEnabled) &&
        decodeField(*object, "ambientListeningLevel", s.ambientListeningLevel) &&
        decodeField(*object, "ambientLearnFromDictation", s.ambientLearnFromDictation) &&
        decodeField(*object, "ambientDucksReplies", s.ambientDucksReplies) &&
        decodeField(*object, "assistantAckMode", s.assistantAckMode) &&
        decodeField(*object, "assistantContentAcknowledgments",
                    s.assistantContentAcknowledgments) &&
        decodeField(*object, "assistantTrigger", s.assistantTrigger) &&
        decodeField(*object, "assistantName", s.assistantName) &&
        decodeField(*object, "userAddress", s.userAddress) &&
        decodeField(*object, "userAddressDisabled", s.userAddressDisabled) &&
        decodeField(*object, "dictationHotkey", s.dictationHotkey) &&
        decodeField(*object, "inputDevice", s.inputDevice) &&
        decodeField(*object, "contextMode", s.contextMode) &&
        decodeField(*object, "correctionEngine", s.correctionEngine) &&
        decodeField(*object, "writingEngine", s.writingEngine) &&
        decodeField(*object, "selectionEditEnabled", s.selectionEditEnabled) &&
        decodeField(*object, "llmModel", s.llmModel) &&
        decodeField(*object, "sttModel", s.sttModel) &&
        decodeField(*object, "repliesMuted", s.repliesMuted) &&
        decodeField(*object, "speechVolumePercent", s.speechVolumePercent) &&
        decodeField(*object, "agentVoices", s.agentVoices);
    return decoded ? s : PersistedSettings{};
}

PersistedSettings loadPersistedSettings(const std::filesystem::path& settingsFile) {
    std::optional<std::string> bytes = readRegularFile(settingsFile, kMaxSettingsBytes);
    return bytes ? decodePersistedSettings(*bytes) : PersistedSettings{};
}

std::optional<std::string> decodeHotkeyLabel(std::string_view bytes) {
    std::optional<json> object = parseSettingsObject(bytes);
    if (!object) {
        return std::nullopt;
    }
    const json* hotkey = member(*object, "dictationHotkey");
    if (hotkey == nullptr) {
        return std::nullopt;
    }
    if (hotkey->is_string()) {
        return hotkey->get<std::string>();
    }
    if (auto name = stringMember(*hotkey, "name")) {
        return std::string(*name);
    }
    if (auto rawValue = stringMember(*hotkey, "rawValue")) {
        return std::string(*rawValue);
    }
    return std::nullopt;
}

std::optional<std::string> readHotkeyLabel(const std::filesystem::path& settingsFile) {
    std::optional<std::string> bytes = readRegularFile(settingsFile, kMaxSettingsBytes);
    return bytes ? decodeHotkeyLabel(*bytes) : std::nullopt;
}

// claude:claude-<word>([.-]<word>)*, optionally followed by "[1m]", where a word is one or more
// of a-z and 0-9, and nothing else before or after.
bool isClaudeModelIdentifier(std::string_view text) {
    if (exceedsGraphemes(text, kMaxModelIdentifierLength)) {
        return false;
    }
    constexpr std::string_view kPrefix = "claude:claude-";
    constexpr std::string_view kLongContextSuffix = "[1m]";
    if (!text.starts_with(kPrefix)) {
        return false;
    }
    std::string_view rest = text.substr(kPrefix.size());
    if (rest.ends_with(kLongContextSuffix)) {
        rest.remove_suffix(kLongContextSuffix.size());
    }
    bool wordStarted = false;
    for (char c : rest) {
        if (isLowerAlnum(c)) {
            wordStarted = true;
        } else if ((c == '.' || c == '-') && wordStarted) {
            wordStarted = false;
        } else {
            return false;
        }
    }
    return wordStarted;
}

json buildSettingsSnapshot(const PersistedSettings& s,
                           const std::optional<std::string>& hotkeyLabel) {
    const std::string correction = resolveEngine(s.correctionEngine, kCorrectionEngines, "local");
    const std::string writing = resolveEngine(s.writingEngine, kWritingEngines, "sameAsCorrection");
    json voices = json::object();
    for (const auto& [agent, voice] :
         s.agentVoices.value_or(std::map<std::string, std::string>{})) {
        // "heart2" was retired; "tavi" is its successor.
        voices[agent] = voice == "heart2" ? "tavi" : voice;
    }
    const bool hasBackend = s.assistantBackend && !s.assistantBackend->empty();
    return json{
        {"assistantBackend", hasBackend ? json(*s.assistantBackend) : json(nullptr)},
        {"assistantEnabled", s.assistantEnabled.value_or(false)},
        {"ambientListeningLevel", s.ambientListeningLevel.value_or("off")},
        {"ambientLearnFromDictation", s.ambientLearnFromDictation.value_or(true)},
        {"ambientDucksReplies", s.ambientDucksReplies.value_or(false)},
        {"assistantTriggerWord", s.assistantTrigger.value_or("computer")},
        {"assistantName", orNull(s.assistantName)},
        {"userAddress", orNull(s.userAddress)},
        {"userAddressDisabled", s.userAddressDisabled.value_or(false)},
        {"aiCorrectionEnabled", s.contextMode.value_or(false)},
        {"correctionEngine", correction},
        {"writingEngine", writing},
        {"resolvedWritingEngine", writing == "sameAsCorrection" ? correction : writing},
        {"aiWritingEnabled", s.selectionEditEnabled.value_or(true)},
        {"textProcessingReadiness", "notChecked"},
        {"dictationHotkey", hotkeyLabel.value_or("rightOption")},
        {"sttModel", orNull(s.sttModel)},
        {"llmModel", orNull(s.llmModel)},
        {"inputDeviceIndex", orNull(s.inputDevice)},
        {"repliesMuted", s.repliesMuted.value_or(false)},
        {"speechVolumePercent", s.speechVolumePercent.value_or(60)},
        {"agentVoices", std::move(voices)},
    };
}

}  // namespace orvo
