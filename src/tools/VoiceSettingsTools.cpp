// The voice, dictation and assistant-settings tools: speaking through the app, its voices, and the
// settings the app owns. The app refuses unknown names and values, with the valid list.
#include "tools/ToolCatalog.h"
#include "tools/ToolSchema.h"

namespace orvo {
namespace {

// The schema of the switches that take one required boolean.
const json& enabledSchema() {
    static const json kSchema = objectSchema({{"enabled", {{"type", "boolean"}}}}, {"enabled"});
    return kSchema;
}

constexpr MCPToolMetadata kStateReading{{MCPToolset::state}, kReading, true};
constexpr MCPToolMetadata kStateVoiceReading{
    {MCPToolset::state, MCPToolset::voice}, kReading, true};
constexpr MCPToolMetadata kSettingsChange{{MCPToolset::settings}, kIdempotentChange, false};
constexpr MCPToolMetadata kVoiceChange{{MCPToolset::voice}, kIdempotentChange, false};
constexpr MCPToolMetadata kVoiceCreating{{MCPToolset::voice}, kCreating, false};
constexpr MCPToolMetadata kStateChange{{MCPToolset::state}, kIdempotentChange, false};

constexpr ToolRow kRows[] = {
    {"list_input_devices", kStateReading,
     "List the audio input devices visible now, with the active selection. Docs: dictation.md",
     nullptr},
    {"list_tts_voices", kStateVoiceReading,
     "List voices for the current TTS backend. `active` is the Assistant's voice; `yourVoice` is "
     "the voice your spoken replies use and its source (global, session, agent, or default). "
     "Change it with set_tts_voice. Docs: voice-output.md",
     nullptr},
    {"set_ambient_ducks_replies", kSettingsChange,
     "Enable or disable lowering Ambient reply volume during overlapping speech, from the next "
     "overlap. Does not enable listening or unmute replies. Docs: assistant.md",
     [] { return enabledSchema(); }},
    {"set_ambient_learn_from_dictation", kSettingsChange,
     "Enable or disable owner-voice learning from hotkey dictation into an already enrolled voice "
     "profile. Disabling keeps the profile; enrolling or deleting stays in Settings → Listening. "
     "Does not enable listening. Docs: assistant.md",
     [] { return enabledSchema(); }},
    {"set_ambient_listening_level", kSettingsChange,
     "Set persistent listening to off, name_only, or ambient. Turn off, go dark, stop listening "
     "completely, and an unqualified stop listening all mean off; temporary pauses must be "
     "explicit and use name_only, which still hears the owner opening with the assistant's name. "
     "Off stops Ambient capture entirely and persists across restarts until Settings → Listening "
     "or an explicit Assistant hotkey request. Enabled levels need voice enrollment; ambient also "
     "needs Claude or Codex. Docs: assistant.md",
     [] {
         return objectSchema(
             {{"level", {{"type", "string"}, {"enum", {"off", "name_only", "ambient"}}}}},
             {"level"});
     }},
    {"set_assistant_ack_mode", kSettingsChange},  // no tool: the app knows the name
    {"set_assistant_backend", kSettingsChange,
     "Set the assistant backend that handles voice queries, such as claude, codex, cursor, "
     "opencode, or ollama. An unknown value returns the installed list; current_settings shows the "
     "active one. Docs: assistant.md",
     [] {
         return objectSchema({{"name", {{"type", "string"}, {"description", "Backend id."}}}},
                             {"name"});
     }},
    {"set_assistant_content_acknowledgments", kSettingsChange},  // no tool: the app knows the name
    {"set_assistant_trigger_word", kSettingsChange,
     "Set the non-empty wake phrase that routes a dictation to the assistant instead of typing it. "
     "Docs: assistant.md",
     [] {
         return objectSchema({{"phrase", {{"type", "string"}, {"description", "Wake phrase."}}}},
                             {"phrase"});
     }},
    {"set_input_device", kSettingsChange,
     "Pick the audio input device by name from list_input_devices. Unknown names return the "
     "visible list. Docs: dictation.md",
     [] {
         return objectSchema(
             {{"name",
               {{"type", "string"},
                {"description", "Device name; empty or \"default\" follows the system default."}}}},
             {"name"});
     }},
    {"set_selection_edit_enabled", kSettingsChange,
     "Enable or disable highlight-and-correct (highlight text in any app and dictate a "
     "correction). Docs: dictation.md",
     [] { return enabledSchema(); }},
    {"set_text_processing_engines", kSettingsChange,
     "Choose models for dictation correction and AI Writing independently. Local is the default; "
     "Claude choices send text to Anthropic through the user's Claude Code account, so choose them "
     "only when the user asks for hosted processing. Does not change Assistant, live "
     "transcription, or meeting models. Docs: dictation.md",
     [] {
         return objectSchema(
             {
                 {"correctionEngine",
                  {{"type", "string"},
                   {"description",
                    "local, claudeHaiku (recommended), claudeSonnet, or claude:<model ID> (stays "
                    "pinned)."}}},
                 {"writingEngine",
                  {{"type", "string"},
                   {"description",
                    "sameAsCorrection, local, claudeHaiku, claudeSonnet, or claude:<model ID> "
                    "(stays pinned)."}}},
             },
             {"correctionEngine", "writingEngine"});
     }},
    {"set_tts_voice", kVoiceChange,
     "Change the voice your spoken replies use, by id or name from list_tts_voices (case and "
     "spacing ignored). In the Orvo Assistant this saves the Assistant's voice. From other clients "
     "it sets only your speak voice for this session, and \"default\" returns to the Dashboard "
     "voice. Unknown names return the valid list. Docs: voice-output.md",
     [] {
         return objectSchema(
             {{"voice",
               {{"type", "string"},
                {"description", "Voice id or name, or \"default\" (other clients)."}}}},
             {"voice"});
     }},
    // Its presence turns on the voice offer of the server instructions and the speaking prompt.
    {"speak", kVoiceCreating,
     "Speak text out loud through Orvo's TTS. The user hears the audio.\n\nSTRICTLY USER-DIRECTED: "
     "only call this tool when the user has explicitly asked for spoken output, either in this "
     "turn or in a still-active instruction from an earlier turn of this session (such as \"reply "
     "by voice from now on\" or \"speak your responses\"). Never call it on your own initiative to "
     "flag events, narrate progress, or get attention. When unsure, default to text and ask. The "
     "user explicitly opts in.\n\nFORMAT: plain spoken prose with natural paragraph breaks. Put "
     "blank lines between distinct thoughts. Use no markdown, code fences, backticks, brackets, "
     "slashes, bullet points, or emoji. Spell out symbols and abbreviations: the text is read "
     "verbatim.\n\nLENGTH: use judgment. Be succinct by default (one or two short sentences for "
     "ordinary status); go longer when asked or when needed. Use one call per reply where "
     "possible; the hard cap is 20,000 characters. Over it, shorten or split only as much as "
     "necessary, and reuse one identifier for the reply.\n\nPAIRING: by default, also write your "
     "full response as text. The speak call accompanies the text; the text is the substance. "
     "Follow the user's explicit wish to only speak or only write.\n\nMUTED STATE: "
     "current_settings.repliesMuted reports the persisted panel mute. When replies are muted, this "
     "tool returns queued=false and muted=true with \"Replies are muted in the panel\" and plays "
     "nothing; do not retry. Only when the user asks to unmute, call panel(action: \"set\", muted: "
     "false). The mute persists across restarts.\n\nVOICE: the voice argument is optional. When it "
     "is omitted, the voice chosen with set_tts_voice in this session is used, otherwise the "
     "user's configured voice for this agent (set in Dashboard → Agents → Agent Tools). To sound "
     "different, call set_tts_voice once rather than passing voice on every call. Pass voice only "
     "for a one-off line. list_tts_voices lists the valid ids.\n\nIDENTIFIER: optional. A stable "
     "string, such as a conversation or turn id, groups a run of spoken lines as one session in "
     "Orvo's interface. Reuse it across the lines of one reply, and use a new one for a new reply. "
     "When it is omitted, lines are grouped by agent and voice. Docs: voice-output.md",
     [] {
         return objectSchema(
             {
                 {"text",
                  {{"type", "string"},
                   {"description",
                    "Text to speak. Up to 20000 chars. Preserve natural paragraph breaks with "
                    "blank lines."}}},
                 {"voice",
                  {{"type", "string"},
                   {"description",
                    "Optional voice ID or name for this call only (does not persist). Must be "
                    "valid for the active TTS backend."}}},
                 {"identifier",
                  {{"type", "string"},
                   {"description",
                    "Optional grouping key. Lines sharing an identifier are shown as one session; "
                    "a new identifier starts a new session."}}},
             },
             {"text"});
     }},
    {"tip_shown", kStateChange,
     "Record that you gave the user one of the onboarding tips listed in this turn's context, by "
     "its id, so it is not offered again. Call it once after using a tip. Available only to the "
     "in-app Assistant. Docs: augments.md",
     [] {
         return objectSchema({{"id", {{"type", "string"}, {"maxLength", 64}}}}, {"id"});
     }},
};
static_assert(rowsAreSorted(kRows));

}  // namespace

std::span<const ToolRow> voiceSettingsTools() {
    return kRows;
}

}  // namespace orvo
