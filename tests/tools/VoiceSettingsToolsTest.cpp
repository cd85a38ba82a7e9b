#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "protocol/Json.h"
#include "tools/ForwardingTool.h"
#include "tools/MCPToolMetadata.h"
#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

const MCPTool* findTool(std::string_view name) {
    std::span<const MCPTool* const> tools = voiceSettingsTools();
    auto it = std::ranges::find(tools, name, &MCPTool::name);
    return it == tools.end() ? nullptr : *it;
}

std::vector<std::string> paragraphs(std::string_view text) {
    std::vector<std::string> parts;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find("\n\n", start);
        parts.emplace_back(text.substr(start, end - start));
        if (end == std::string_view::npos) {
            return parts;
        }
        start = end + 2;
    }
}

TEST(VoiceSettingsToolsTest, EveryToolForwards) {
    EXPECT_EQ(voiceSettingsTools().size(), 13u);
    for (const MCPTool* tool : voiceSettingsTools()) {
        SCOPED_TRACE(tool->name());
        EXPECT_NE(dynamic_cast<const ForwardingTool*>(tool), nullptr);
        EXPECT_NE(toolMetadata(tool->name()), nullptr);
    }
}

TEST(VoiceSettingsToolsTest, SpeakDescriptionIsEightLabelledParagraphsInOrder) {
    const MCPTool* speak = findTool("speak");
    ASSERT_NE(speak, nullptr);
    const std::vector<std::string> parts = paragraphs(speak->description());
    ASSERT_EQ(parts.size(), 8u);
    EXPECT_EQ(parts[0], "Speak text out loud through Orvo's TTS. The user hears the audio.");
    const struct {
        std::size_t paragraph;
        std::string_view opening;
        std::string_view within;
    } cases[] = {
        {1,
         "STRICTLY USER-DIRECTED: only call this tool when the user has explicitly asked for "
         "spoken output",
         " The user explicitly opts in."},
        {2, "FORMAT: plain spoken prose with natural paragraph breaks. ", "read verbatim"},
        {3, "LENGTH: use judgment. ", "the hard cap is 20,000 characters"},
        {4, "PAIRING: by default, also write your full response as text. ", "only write"},
        {5, "MUTED STATE: current_settings.repliesMuted reports the persisted panel mute. ",
         "\"Replies are muted in the panel\""},
        {6, "VOICE: the voice argument is optional. ",
         "Dashboard \u2192 Agents \u2192 Agent Tools"},
        {7, "IDENTIFIER: optional. ", "grouped by agent and voice."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.opening);
        const std::string& part = parts[c.paragraph];
        EXPECT_TRUE(part.starts_with(c.opening)) << part;
        EXPECT_NE(part.find(c.within), std::string::npos) << part;
        EXPECT_EQ(part.find('\n'), std::string::npos) << part;
    }
    EXPECT_TRUE(parts[7].ends_with(" Docs: voice-output.md"));
}

TEST(VoiceSettingsToolsTest, TextsWithArrowsBackticksAndQuotesAreExact) {
    const MCPTool* level = findTool("set_ambient_listening_level");
    const MCPTool* voices = findTool("list_tts_voices");
    const MCPTool* setVoice = findTool("set_tts_voice");
    ASSERT_TRUE(level && voices && setVoice);
    EXPECT_EQ(level->description(),
              "Set persistent listening to off, name_only, or ambient. Turn off, go dark, stop "
              "listening completely, and an unqualified stop listening all mean off; temporary "
              "pauses must be explicit and use name_only, which still hears the owner opening "
              "with the assistant's name. Off stops Ambient capture entirely and persists across "
              "restarts until Settings \u2192 Listening or an explicit Assistant hotkey request. "
              "Enabled levels need voice enrollment; ambient also needs Claude or Codex. Docs: "
              "assistant.md");
    EXPECT_EQ(voices->description(),
              "List voices for the current TTS backend. `active` is the Assistant's voice; "
              "`yourVoice` is the voice your spoken replies use and its source (global, session, "
              "agent, or default). Change it with set_tts_voice. Docs: voice-output.md");
    json setVoiceSchema = setVoice->inputSchema();  // a copy: a missing member reads as null
    EXPECT_EQ(setVoiceSchema["properties"]["voice"]["description"],
              "Voice id or name, or \"default\" (other clients).");
}

TEST(VoiceSettingsToolsTest, SwitchesTakeOneRequiredBoolean) {
    for (std::string_view name : {"set_ambient_learn_from_dictation", "set_ambient_ducks_replies",
                                  "set_selection_edit_enabled"}) {
        SCOPED_TRACE(name);
        const MCPTool* tool = findTool(name);
        ASSERT_NE(tool, nullptr);
        EXPECT_EQ(dumpCompact(tool->inputSchema()),
                  R"({"additionalProperties":false,"properties":{"enabled":{"type":"boolean"}},)"
                  R"("required":["enabled"],"type":"object"})");
    }
}

}  // namespace
}  // namespace orvo
