#include "userfiles/SettingsSnapshot.h"

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

const json kDefaults = json::parse(R"({
    "assistantBackend": null, "assistantEnabled": false, "ambientListeningLevel": "off",
    "ambientLearnFromDictation": true, "ambientDucksReplies": false,
    "assistantTriggerWord": "computer", "assistantName": null, "userAddress": null,
    "userAddressDisabled": false, "aiCorrectionEnabled": false, "correctionEngine": "local",
    "writingEngine": "sameAsCorrection", "resolvedWritingEngine": "local",
    "aiWritingEnabled": true, "textProcessingReadiness": "notChecked",
    "dictationHotkey": "rightOption", "sttModel": null, "llmModel": null,
    "inputDeviceIndex": null, "repliesMuted": false, "speechVolumePercent": 60,
    "agentVoices": {}})");

json snapshotOf(std::string_view file) {
    return buildSettingsSnapshot(decodePersistedSettings(file), decodeHotkeyLabel(file));
}

TEST(SettingsSnapshotTest, DecodesTolerantlyAndFillsDefaults) {
    const struct {
        std::string file, changes;  // changes: the members that differ from the defaults
    } cases[] = {
        {R"({"assistantEnabled":tr)", "{}"},  // cut short by a concurrent write
        {std::string(R"({"repliesMuted":true,"x":)")
             .append(100000, '[')
             .append(100000, ']')
             .append("}"),
         R"({"repliesMuted":true})"},
        {R"({"assistantBackend":"claude","assistantEnabled":true,"ambientListeningLevel":"",
             "ambientLearnFromDictation":false,"ambientDucksReplies":true,"assistantTrigger":"",
             "assistantName":"Ada","userAddress":"Sir","userAddressDisabled":true,
             "inputDevice":2,"contextMode":true,"selectionEditEnabled":false,"llmModel":"l",
             "sttModel":"s","repliesMuted":true,"speechVolumePercent":80.0,"unknown":[1],
             "assistantAckMode":"x","dictationHotkey":{"name":"A","rawValue":"B","x":1}})",
         R"({"assistantBackend":"claude","assistantEnabled":true,"ambientListeningLevel":"",
             "ambientLearnFromDictation":false,"ambientDucksReplies":true,
             "assistantTriggerWord":"","assistantName":"Ada","userAddress":"Sir",
             "userAddressDisabled":true,"inputDeviceIndex":2,"aiCorrectionEnabled":true,
             "aiWritingEnabled":false,"llmModel":"l","sttModel":"s","repliesMuted":true,
             "speechVolumePercent":80,"dictationHotkey":"A"})"},
        // A hotkey the typed decode cannot read still gives its label.
        {R"({"dictationHotkey":"fn","assistantEnabled":true})", R"({"dictationHotkey":"fn"})"},
        {R"({"dictationHotkey":{"rawValue":"rightCommand"}})",
         R"({"dictationHotkey":"rightCommand"})"},
        // One mistyped member fails the whole typed decode; which types fit is the reader's.
        {R"({"speechVolumePercent":"60","repliesMuted":true})", "{}"},
        {R"({"agentVoices":{"claude":1},"repliesMuted":true})", "{}"},
        {R"({"agentVoices":{"claude":"heart2","codex":"x"}})",  // a retired voice is renamed
         R"({"agentVoices":{"claude":"tavi","codex":"x"}})"},
        {R"({"correctionEngine":"claudeHaiku"})",
         R"({"correctionEngine":"claudeHaiku","resolvedWritingEngine":"claudeHaiku"})"},
        {R"({"correctionEngine":"remote","writingEngine":"bogus"})", "{}"},
        {R"({"correctionEngine":"claude:claude-x","writingEngine":"claudeSonnet"})",
         R"({"correctionEngine":"claude:claude-x","writingEngine":"claudeSonnet",)"
         R"("resolvedWritingEngine":"claudeSonnet"})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        json expected = kDefaults;
        expected.update(json::parse(c.changes));
        EXPECT_EQ(snapshotOf(c.file), expected);
    }
}

// At most 167 characters; the plain "claude:claude-x" is a row of the decoding test.
TEST(SettingsSnapshotTest, RecognisesClaudeModelIdentifiers) {
    const std::string prefix = "claude:claude-";
    for (const std::string& text : {prefix + "opus-4.1[1m]", prefix + std::string(153, 'a')}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(isClaudeModelIdentifier(text));
    }
    for (const std::string& text :
         {prefix, prefix + "x-", prefix + "x..y", prefix + "x[1m]x", prefix + "x\n",
          " " + prefix + "x", prefix + std::string(154, 'a')}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(isClaudeModelIdentifier(text));
    }
}

TEST(SettingsSnapshotTest, ReadsTheFileUnderTheGivenHome) {
    test::TempDir home;
    const auto file = settingsFilePath(home.path());
    test::writeFile(file, R"({"repliesMuted":true,"dictationHotkey":{"name":"fn"}})");
    EXPECT_EQ(loadPersistedSettings(file).repliesMuted, true);
    EXPECT_EQ(readHotkeyLabel(file), "fn");
}

}  // namespace
}  // namespace orvo
