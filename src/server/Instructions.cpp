// What the server tells the agent at start: where the docs are, what not to touch, and the voice
// offer.
#include "server/Instructions.h"

#include <string_view>

namespace orvo {
namespace {

constexpr std::string_view kPromptName = "speak_every_reply";
constexpr std::string_view kPromptDescription =
    "Speak every assistant reply for this session until you say \u201Cstop speaking.\u201D";
constexpr std::string_view kSessionInstruction =
    "For this session, use the Orvo MCP `speak` tool on every assistant turn until I explicitly "
    "say \u201Cstop speaking.\u201D";

constexpr std::string_view kDocsLead =
    "ORVO TOOLS: most tools need Orvo running. Docs: <file> points into ";
constexpr std::string_view kDocsTail =
    "; start at INDEX.md. Do not edit Orvo configuration files directly: edits race the running "
    "app and corrupt state. Use supported mutation tools (save_character for characters, "
    "computer_playbook_* for Playbooks). For Dictionary entries or unsupported changes, ask the "
    "user to use the Dashboard. Meeting transcripts, notes, and Slates stay on this Mac and "
    "require one-time connected-agent consent.";

const std::string& sessionVoiceParagraph() {
    static const std::string kParagraph =
        std::string(
            "SESSION VOICE: when asked for spoken output, briefly suggest this optional session "
            "instruction once: ") +
        std::string(kSessionInstruction) +
        "\nThe speak_every_reply MCP prompt is also available. Suggesting or retrieving it does "
        "not activate speech. One-time requests cover one reply; ongoing speech requires the "
        "user's request or prompt selection. While active, call speak every turn until stopped "
        "or text only is requested; do not speak the stop acknowledgment. Keep text unless voice "
        "only is requested. This grants no settings changes, consent bypass, or unsolicited "
        "progress narration.";
    return kParagraph;
}

RPCError invalidParams(std::string message) {
    return RPCError{RPCCode::kInvalidParams, std::move(message), std::nullopt};
}

}  // namespace

std::string documentationDirectory(const std::filesystem::path& applicationSupport) {
    return (applicationSupport / "orvo-agent" / "docs").string() + "/";
}

std::string instructions(const std::filesystem::path& documentationDirectory, bool voiceOffer) {
    std::string text;
    text.append(kDocsLead).append(documentationDirectory.string()).append(kDocsTail);
    if (voiceOffer) {
        text.append("\n").append(sessionVoiceParagraph());
    }
    return text;
}

json listPrompts(bool voiceOffer) {
    json prompts = json::array();
    if (voiceOffer) {
        prompts.push_back(json{{"name", kPromptName},
                               {"description", kPromptDescription},
                               {"arguments", json::array()}});
    }
    return json{{"prompts", std::move(prompts)}};
}

Result<json> getPrompt(const json& params, bool voiceOffer) {
    std::optional<std::string_view> name = stringMember(params, "name");
    if (!name) {
        return invalidParams("Missing 'name' in prompts/get");
    }
    if (!voiceOffer || *name != kPromptName) {
        return invalidParams("Unknown prompt: " + std::string(*name));
    }
    if (const json* arguments = member(params, "arguments");
        arguments != nullptr && !(arguments->is_object() && arguments->empty())) {
        return invalidParams("speak_every_reply takes no arguments");
    }
    return json{
        {"description", kPromptDescription},
        {"messages",
         json::array({json{{"role", "user"},
                           {"content", json{{"type", "text"}, {"text", kSessionInstruction}}}}})}};
}

}  // namespace orvo
