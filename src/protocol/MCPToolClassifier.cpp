// Reads a call of another MCP server's tool for a held action, by the words of the tool's name.
#include <algorithm>
#include <cctype>
#include <vector>

#include "protocol/ActionHoldClassifier.h"
#include "protocol/ActionHoldWordTables.h"
#include "protocol/Graphemes.h"

namespace orvo::ActionHoldClassifier {
namespace {

using namespace MCPToolWords;

constexpr std::string_view kOwnServer = "orvo-agent";
constexpr std::size_t kDetailValueCharacters = 120;

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}

// "sendSlackMessage", "send-slack_message" and "SendHTTPRequest" become "send_slack_message" and
// "send_http_request": a word starts at an upper-case letter that follows a lower-case letter
// or digit, or that ends a run of capitals before a lower-case letter. Hyphens, dots and
// spaces separate words like underscores.
std::string normalisedToolName(std::string_view name) {
    std::string out;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        if (c == '_' || c == '-' || c == '.' || c == ' ') {
            if (!out.empty() && out.back() != '_') {
                out.push_back('_');
            }
            continue;
        }
        if (isUpper(c) && i > 0 && !out.empty() && out.back() != '_') {
            const char before = name[i - 1];
            const bool afterLower =
                isLower(before) || std::isdigit(static_cast<unsigned char>(before)) != 0;
            const bool endsCapitals =
                isUpper(before) && i + 1 < name.size() && isLower(name[i + 1]);
            if (afterLower || endsCapitals) {
                out.push_back('_');
            }
        }
        out.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    }
    while (!out.empty() && out.back() == '_') {
        out.pop_back();
    }
    return out;
}

std::vector<std::string_view> splitWords(std::string_view name) {
    std::vector<std::string_view> words;
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find('_', start), name.size());
        if (end > start) {
            words.push_back(name.substr(start, end - start));
        }
        start = end + 1;
    }
    return words;
}

std::vector<std::string_view> splitParts(std::string_view name) {
    constexpr std::string_view kSeparator = "__";
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t at = name.find(kSeparator); at != std::string_view::npos;
         at = name.find(kSeparator, start)) {
        parts.push_back(name.substr(start, at - start));
        start = at + kSeparator.size();
    }
    parts.push_back(name.substr(start));
    return parts;
}

std::string lowercased(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

// Reading verbs count as whole words, so that "listen_and_send" or "checkout_cart" are not
// taken for reading.
bool startsWithReadingVerb(std::string_view name) {
    return std::ranges::any_of(kReadingVerbs, [&](std::string_view verb) {
        return name.starts_with(verb) && (name.size() == verb.size() || name[verb.size()] == '_');
    });
}

// The name shown for a server: the provider's own spelling when known, else the server's word
// as the agent spelled it, capitalised.
std::string providerName(std::string_view server) {
    const std::string lower = lowercased(server);
    std::size_t start = 0;
    if (lower.starts_with(kAssistantServerPrefix)) {
        start = kAssistantServerPrefix.size();
    } else if (lower.starts_with(kPluginServerPrefix)) {
        // plugin_<plugin>_<server>
        const std::size_t next = lower.find('_', kPluginServerPrefix.size());
        start = next == std::string::npos ? kPluginServerPrefix.size() : next + 1;
    }
    const std::string_view word = std::string_view(lower).substr(start);
    for (const MCPProvider& provider : kProviders) {
        if (provider.serverWord == word) {
            return std::string(provider.name);
        }
    }
    std::string shown(server.substr(start));
    if (!shown.empty()) {
        shown[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(shown[0])));
    }
    return shown;
}

std::string toolDetail(std::string_view toolName, const json& input) {
    constexpr std::string_view kSpace = " \t\r\n\v\f";
    for (std::string_view key : kDetailArgumentKeys) {
        std::string_view value = stringMember(input, key).value_or("");
        const std::size_t first = value.find_first_not_of(kSpace);
        if (first == std::string_view::npos) {
            continue;
        }
        value = value.substr(first, value.find_last_not_of(kSpace) - first + 1);
        return std::string(toolName) + ": " +
               std::string(prefixGraphemes(value, kDetailValueCharacters));
    }
    return std::string(toolName);
}

ActionHoldMatch match(ActionHoldCategory category, std::string_view progressive,
                      std::string_view base, std::string_view object, std::string detail) {
    return {
        category,
        {std::string(progressive) + std::string(object), std::string(base) + std::string(object)},
        std::move(detail)};
}

}  // namespace

std::optional<ActionHoldMatch> classifyMCPTool(std::string_view toolName, const json& input) {
    const std::vector<std::string_view> parts = splitParts(toolName);
    if (parts.size() < 3 || lowercased(parts[1]) == kOwnServer) {
        return std::nullopt;
    }
    std::string tool(parts[2]);
    for (std::size_t i = 3; i < parts.size(); ++i) {
        tool += "_";
        tool += parts[i];
    }
    const std::string normalised = normalisedToolName(tool);
    const std::vector<std::string_view> words = splitWords(normalised);
    const auto hasWord = [&](std::string_view word) {
        return std::ranges::find(words, word) != words.end();
    };
    const auto hasAny = [&](SortedWords table) {
        return std::ranges::any_of(words,
                                   [&](std::string_view w) { return containsWord(table, w); });
    };
    if (startsWithReadingVerb(normalised) || hasWord("draft") || hasWord("read")) {
        return std::nullopt;
    }
    const std::string provider = providerName(parts[1]);
    std::string detail = toolDetail(normalised, input);
    using enum ActionHoldCategory;
    if (hasAny(kDeletingWords)) {
        return match(deleting, "Deleting something in ", "Delete something in ", provider,
                     std::move(detail));
    }
    const bool sends = hasAny(kSendingWords);
    if (hasWord("calendar") && hasAny(kCalendarWritingWords)) {
        return match(messages, "Sending a calendar invite", "Send a calendar invite", "",
                     std::move(detail));
    }
    if (sends && hasAny(kMailWords)) {
        return match(messages, "Sending an email", "Send an email", "", std::move(detail));
    }
    if (sends && (provider == "Slack" || hasWord("slack"))) {
        return match(messages, "Sending a Slack message", "Send a Slack message", "",
                     std::move(detail));
    }
    if (sends) {
        return match(messages, "Sending something in ", "Send something in ", provider,
                     std::move(detail));
    }
    if (hasWord("deploy")) {
        return match(publishing, "Deploying to ", "Deploy to ", provider, std::move(detail));
    }
    const bool resolves =
        hasWord("resolve") && !normalised.ends_with("_id") && !normalised.ends_with("_ids");
    if (hasAny(kActingVerbs) || resolves) {
        return match(services, "Changing something in ", "Change something in ", provider,
                     std::move(detail));
    }
    return std::nullopt;
}

}  // namespace orvo::ActionHoldClassifier
