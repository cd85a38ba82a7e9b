// The rules that read one program's arguments for a held action, one function per program family.
#include "protocol/ShellProgramRules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

#include "protocol/ActionHoldWordTables.h"
#include "protocol/Graphemes.h"

namespace orvo {
namespace {

using namespace ShellWords;
using namespace ShellPhrases;
using enum ActionHoldCategory;

// NOLINTNEXTLINE(readability-identifier-naming): std::string_view::npos, under its own name
constexpr std::size_t npos = std::string_view::npos;

HeldAction held(const PhraseText& phrase, ActionHoldCategory category) {
    return {category, {std::string(phrase.progressive), std::string(phrase.base)}};
}

bool has(ShellArguments arguments, std::string_view word) {
    return std::ranges::find(arguments, word) != arguments.end();
}

bool isShortCluster(std::string_view argument) {
    return argument.starts_with('-') && !argument.starts_with("--");
}

// Whether a short option cluster such as "-fd" holds `letter`.
bool clusterHolds(ShellArguments arguments, char letter) {
    return std::ranges::any_of(arguments, [letter](std::string_view argument) {
        return isShortCluster(argument) && argument.find(letter, 1) != npos;
    });
}

bool anyPositional(ShellArguments arguments, auto predicate) {
    return std::ranges::any_of(arguments, [&](std::string_view argument) {
        return !argument.starts_with('-') && predicate(argument);
    });
}

std::string lowercased(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string uppercased(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

// The index of the first argument from `from` that is not an option, skipping the values of the
// options in `valueOptions`; the argument count when there is none.
std::size_t nextPositional(ShellArguments arguments, std::size_t from, SortedWords valueOptions) {
    std::size_t i = from;
    while (i < arguments.size() && arguments[i].starts_with('-')) {
        i += containsWord(valueOptions, arguments[i]) ? 2 : 1;
    }
    return std::min(i, arguments.size());
}

// ----- Release, deployment and publication by name (make targets, scripts, package scripts)

// Only the start is lowered: names can be long, and only their first word counts.
std::string lowercasedStart(std::string_view name) {
    return lowercased(name.substr(0, 7));
}

bool isPublishingName(std::string_view name) {
    const std::string lower = lowercasedStart(name);
    return lower.starts_with("release") || lower.starts_with("deploy") ||
           lower.starts_with("publish");
}

// What follows a verb-like name such as "deploy-staging" ("staging"), or "the project" when
// nothing separate follows it. Kept short: it is read in a sentence.
std::string nameObject(std::string_view rest) {
    constexpr std::size_t kMaxCharacters = 40;
    constexpr std::string_view kSeparators = "-_:./ ";
    if (rest.empty() || kSeparators.find(rest.front()) == npos) {
        return "the project";
    }
    std::string object;
    for (char c : rest) {
        const bool separator = kSeparators.find(c) != npos;
        if (!separator) {
            object.push_back(c);
        } else if (!object.empty() && object.back() != ' ') {
            object.push_back(' ');
        }
    }
    // Cut first, so that a cut just after a separator leaves no space at the end either.
    object.resize(prefixGraphemes(object, kMaxCharacters).size());
    while (!object.empty() && object.back() == ' ') {
        object.pop_back();
    }
    return object.empty() ? "the project" : object;
}

std::optional<HeldAction> publishingByName(std::string_view name) {
    const std::string lower = lowercasedStart(name);
    if (lower.starts_with("release")) {
        return held(kRunRelease, publishing);
    }
    const struct {
        std::string_view prefix;
        std::string_view progressive;
        std::string_view base;
    } kVerbs[] = {{"deploy", "Deploying ", "Deploy "}, {"publish", "Publishing ", "Publish "}};
    for (const auto& verb : kVerbs) {
        if (lower.starts_with(verb.prefix)) {
            const std::string object = nameObject(name.substr(verb.prefix.size()));
            return HeldAction{
                publishing,
                {std::string(verb.progressive) + object, std::string(verb.base) + object}};
        }
    }
    return std::nullopt;
}

// ----- gh api

// "mutation" as a word that no letter precedes: a GraphQL request that writes.
bool namesMutation(std::string_view text) {
    constexpr std::string_view kWord = "mutation";
    for (std::size_t at = text.find(kWord); at != npos; at = text.find(kWord, at + 1)) {
        const bool startsWord =
            at == 0 || std::isalpha(static_cast<unsigned char>(text[at - 1])) == 0;
        const std::size_t after = at + kWord.size();
        const bool endsWord =
            after == text.size() ||
            !(std::isalnum(static_cast<unsigned char>(text[after])) != 0 || text[after] == '_');
        if (startsWord && endsWord) {
            return true;
        }
    }
    return false;
}

bool isWritingMethod(std::string_view method) {
    return containsWord(kWritingHTTPMethods, uppercased(method));
}

bool isReadingMethod(std::string_view method) {
    const std::string upper = uppercased(method);
    return upper == "GET" || upper == "HEAD";
}

// The endpoint decides first: a GraphQL request writes only as a mutation, whatever its method.
// Elsewhere an explicit method decides, and without one a body makes it a POST.
std::optional<HeldAction> githubAPIAction(ShellArguments arguments) {
    std::optional<std::string_view> endpoint;
    std::optional<std::string_view> method;
    bool body = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const std::string_view name = argument.substr(0, argument.find('='));
        const bool inlineValue = name.size() < argument.size();
        if (argument == "-X" || argument == "--method") {
            if (i + 1 < arguments.size()) {
                method = arguments[++i];
            }
        } else if (name == "--method") {
            method = argument.substr(name.size() + 1);
        } else if (argument.starts_with("-X")) {
            method = argument.substr(2);
        } else if (containsWord(kGitHubAPIBodyOptions, name)) {
            body = true;
            i += inlineValue ? 0 : 1;
        } else if (isShortCluster(argument) && argument.size() > 2 &&
                   containsWord(kGitHubAPIBodyOptions, argument.substr(0, 2))) {
            body = true;  // -fkey=value
        } else if (containsWord(kGitHubQuietValueOptions, argument)) {
            ++i;
        } else if (!argument.starts_with('-') && !endpoint) {
            endpoint = argument;
        }
    }
    bool writes = false;
    if (endpoint && endpoint->substr(endpoint->starts_with('/') ? 1 : 0) == "graphql") {
        writes =
            std::ranges::any_of(arguments, [](std::string_view a) { return namesMutation(a); });
    } else if (method) {
        writes = isWritingMethod(*method);
    } else {
        writes = body;
    }
    return writes ? std::optional(held(kCallGitHubAPI, services)) : std::nullopt;
}

// ----- Web requests

enum class WebClient { curl, wget, httpie };

// "host" of "https://user@host:8080/path"; a URL that starts with ":" is httpie's short form
// for the local host.
std::string urlHost(std::string_view url) {
    if (url.starts_with(':')) {
        return "localhost";
    }
    if (const std::size_t scheme = url.find("://"); scheme != npos) {
        url.remove_prefix(scheme + 3);
    }
    url = url.substr(0, url.find_first_of("/?#"));
    if (const std::size_t at = url.rfind('@'); at != npos) {
        url.remove_prefix(at + 1);
    }
    if (url.starts_with('[')) {
        const std::size_t close = url.find(']');
        url = url.substr(0, close == npos ? npos : close + 1);
    } else {
        url = url.substr(0, url.find(':'));
    }
    return lowercased(url);
}

// An httpie request item that puts data in the body: name=value, name:=json or field@file
// (but not name==query or Header:value).
bool isHTTPieBodyItem(std::string_view item) {
    const std::size_t at = item.find_first_of(":=@");
    if (at == npos || at == 0) {
        return false;
    }
    const char next = at + 1 < item.size() ? item[at + 1] : '\0';
    switch (item[at]) {
        case '=':
            return next != '=';
        case ':':
            return next == '=';
        default:
            return true;
    }
}

struct WebRequest {
    bool readOnly = false;
    bool body = false;
    std::optional<std::string_view> method;
    std::vector<std::string_view> urls;
};

// A short option cluster of curl or wget: letters until one that takes a value, which is the
// rest of the cluster or else the next word, `following`. True when it took `following`.
bool readShortOptions(WebClient client, std::string_view cluster, std::string_view following,
                      WebRequest& request) {
    const std::string_view valueLetters =
        client == WebClient::curl ? kCurlValueOptionLetters : kWgetValueOptionLetters;
    for (std::size_t j = 1; j < cluster.size(); ++j) {
        const char letter = cluster[j];
        if (client == WebClient::curl && (letter == 'G' || letter == 'I')) {
            request.readOnly = true;
        }
        if (valueLetters.find(letter) == npos) {
            continue;
        }
        const bool valueFollows = j + 1 == cluster.size();
        const std::string_view value = valueFollows ? following : cluster.substr(j + 1);
        if (client == WebClient::curl && letter == 'X') {
            request.method = value;
        }
        if (client == WebClient::curl && containsWord(kCurlBodyOptions, std::string{'-', letter})) {
            request.body = true;
        }
        return valueFollows;
    }
    return false;
}

// A long option of curl, wget or HTTPie, as --name or --name=value. True when it took the next
// word, `following`, as its value.
bool readLongOption(WebClient client, std::string_view option, std::string_view following,
                    WebRequest& request) {
    const std::string_view name = option.substr(0, option.find('='));
    const bool inlineValue = name.size() < option.size();
    const std::string_view value = inlineValue ? option.substr(name.size() + 1) : following;
    if (name == "--get" || name == "--head") {
        request.readOnly = true;
        return false;
    }
    if (name == "--request" || name == "--method") {
        request.method = value;
        return !inlineValue;
    }
    if (name == "--url") {
        request.urls.push_back(value);
        return !inlineValue;
    }
    switch (client) {
        case WebClient::curl:
            request.body =
                request.body || containsWord(kCurlBodyOptions, name) || name.starts_with("--data");
            return !inlineValue && containsWord(kCurlLongValueOptions, name);
        case WebClient::wget:
            request.body = request.body || name == "--post-data" || name == "--post-file" ||
                           name == "--body-data" || name == "--body-file";
            return !inlineValue && containsWord(kWgetLongValueOptions, name);
        case WebClient::httpie:
            return !inlineValue && containsWord(kHTTPieValueOptions, name);
    }
    return false;
}

WebRequest readWebRequest(WebClient client, ShellArguments arguments) {
    WebRequest request;
    bool optionsEnded = false;
    const std::size_t count = arguments.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view argument = arguments[i];
        const std::string_view following =
            i + 1 < count ? std::string_view(arguments[i + 1]) : std::string_view();
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (optionsEnded || !argument.starts_with('-') || argument == "-") {
            // HTTPie takes an optional method before the URL and request items after it.
            if (client == WebClient::httpie && !request.urls.empty()) {
                request.body = request.body || isHTTPieBodyItem(argument);
            } else if (client == WebClient::httpie && !request.method &&
                       (isWritingMethod(argument) || isReadingMethod(argument))) {
                request.method = argument;
            } else {
                request.urls.push_back(argument);
            }
        } else if (argument.starts_with("--")) {
            i += readLongOption(client, argument, following, request) ? 1 : 0;
        } else if (client == WebClient::httpie) {
            i += containsWord(kHTTPieValueOptions, argument) ? 1 : 0;
        } else {
            i += readShortOptions(client, argument, following, request) ? 1 : 0;
        }
    }
    return request;
}

// The word as the shell would have to read it: as it is when nothing in it is special.
void appendQuoted(std::string& text, std::string_view word) {
    constexpr std::string_view kPlain = "%+-./:=@_";
    const bool plain =
        word == "{}" || (!word.empty() && std::ranges::all_of(word, [&](char c) {
            return std::isalnum(static_cast<unsigned char>(c)) != 0 || kPlain.find(c) != npos;
        }));
    if (plain) {
        text += word;
        return;
    }
    text += '\'';
    for (char c : word) {
        if (c == '\'') {
            text += "'\\''";
        } else {
            text += c;
        }
    }
    text += '\'';
}

}  // namespace

std::string_view programName(std::string_view word) {
    const std::size_t slash = word.rfind('/');
    std::string_view name = slash == npos ? word : word.substr(slash + 1);
    return name.substr(0, name.find('@'));
}

ShellInvocation readShellInvocation(ShellArguments arguments) {
    bool commandString = false;
    bool standardInput = false;
    std::size_t i = 0;
    while (i < arguments.size()) {
        const std::string_view argument = arguments[i];
        if (argument == "--" || argument == "-") {
            ++i;
            break;
        }
        if (containsWord(kShellValueOptions, argument)) {
            i += 2;
            continue;
        }
        const bool option = argument.size() > 1 && (argument[0] == '-' || argument[0] == '+');
        if (!option) {
            break;
        }
        if (argument[0] == '-' && argument[1] != '-') {
            commandString = commandString || argument.find('c') != npos;
            standardInput = standardInput || argument.find('s') != npos;
        }
        // A cluster such as -eo ends in the option letter whose value is the next word.
        const bool takesValue =
            argument[1] != '-' && (argument.back() == 'o' || argument.back() == 'O');
        i += takesValue ? 2 : 1;
    }
    ShellInvocation invocation;
    const std::optional<std::string_view> first =
        i < arguments.size() ? std::optional<std::string_view>(arguments[i]) : std::nullopt;
    if (commandString) {
        invocation.commandString = first;
    } else if (standardInput || !first) {
        invocation.readsInput = true;
    } else {
        invocation.script = first;
    }
    return invocation;
}

std::string quotedCommandLine(ShellArguments words) {
    std::string text;
    for (std::string_view word : words) {
        text += text.empty() ? "" : " ";
        appendQuoted(text, word);
    }
    return text;
}

std::string findCommands(ShellArguments arguments) {
    std::string text;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (!containsWord(kFindCommandActions, arguments[i])) {
            continue;
        }
        const std::size_t start = i + 1;
        std::size_t end = start;
        while (end < arguments.size() && arguments[end] != ";" && arguments[end] != "+") {
            ++end;
        }
        if (end > start && programName(arguments[start]) != "rm") {
            text += quotedCommandLine(arguments.subspan(start, end - start));
            text += '\n';
        }
        i = end;
    }
    return text;
}

std::optional<std::string> parallelCommands(ShellArguments words) {
    // Each argument makes a command of its own; a few show what the whole run does.
    constexpr std::size_t kArgumentsRead = 16;
    const auto separator = std::ranges::find_if(words, [](std::string_view word) {
        return containsWord(kParallelArgumentSeparators, word);
    });
    const ShellArguments commandWords =
        words.first(static_cast<std::size_t>(separator - words.begin()));
    // Arguments put into a command many times over could make hostile text grow without end;
    // a few times the words is room enough for what parallel is given in earnest.
    std::size_t budget = 1024;
    for (std::string_view word : words) {
        budget += 4 * word.size();
    }
    // Arguments named on the command line, up to a "::::" that reads more from files.
    std::vector<std::string_view> arguments;
    bool moreArguments = separator == words.end();
    for (auto it = separator; it != words.end() && arguments.size() < kArgumentsRead; ++it) {
        if (it->starts_with("::::")) {
            moreArguments = true;
            break;
        }
        if (!containsWord(kParallelArgumentSeparators, *it)) {
            arguments.push_back(*it);
        }
    }
    std::string text;
    if (commandWords.empty()) {
        // With no command, each argument is a command line of its own.
        if (moreArguments && arguments.empty()) {
            return std::nullopt;
        }
        for (std::string_view argument : arguments) {
            text.append(argument).append("\n");
        }
        return text;
    }
    // The command is its words joined as shell text, or quoted word by word under -q; both are
    // read, since the options are behind us. An argument goes in quoted at "{}", or at the end
    // when the command names no place for it.
    std::string joinedCommand;
    for (std::string_view word : commandWords) {
        joinedCommand.append(joinedCommand.empty() ? "" : " ").append(word);
    }
    const std::string quotedCommand = quotedCommandLine(commandWords);
    for (const std::string* command :
         std::array<const std::string*, 2>{&joinedCommand, &quotedCommand}) {
        if (command == &quotedCommand && quotedCommand == joinedCommand) {
            break;
        }
        const bool placed = command->find('{') != npos;
        if (moreArguments) {
            text.append(*command).append(placed ? "\n" : " {}\n");
        }
        for (std::string_view argument : arguments) {
            std::string quoted;
            appendQuoted(quoted, argument);
            if (!placed) {
                text.append(*command).append(" ").append(quoted);
            }
            for (std::size_t from = 0; placed && text.size() <= budget;) {
                const std::size_t at = command->find("{}", from);
                text.append(*command, from, at == npos ? npos : at - from);
                if (at == npos) {
                    break;
                }
                text.append(quoted);
                from = at + 2;
            }
            text.append("\n");
            if (text.size() > budget) {
                return text;
            }
        }
    }
    return text;
}

ShellArguments sshRemoteCommand(ShellArguments arguments) {
    std::size_t i = 0;
    while (i < arguments.size()) {
        const std::string_view argument = arguments[i];
        if (argument == "--") {
            ++i;
            break;
        }
        if (!argument.starts_with('-') || argument == "-") {
            break;
        }
        ++i;
        for (std::size_t j = 1; j < argument.size(); ++j) {
            if (kSSHValueOptionLetters.find(argument[j]) != npos) {
                // The value is the rest of the cluster, or else the next word.
                i += j + 1 == argument.size() ? 1 : 0;
                break;
            }
        }
    }
    const std::size_t remote = std::min(i + 1, arguments.size());  // after the destination
    return arguments.subspan(remote);
}

std::optional<HeldAction> gitAction(ShellArguments arguments) {
    const std::size_t at = nextPositional(arguments, 0, kGitValueOptions);
    if (at >= arguments.size()) {
        return std::nullopt;
    }
    const std::string_view subcommand = arguments[at];
    const ShellArguments rest = arguments.subspan(at + 1);
    const std::string_view next = rest.empty() ? std::string_view() : std::string_view(rest[0]);
    const bool force = has(rest, "--force") || clusterHolds(rest, 'f');
    if (subcommand == "push") {
        if (clusterHolds(rest, 'n')) {
            return std::nullopt;
        }
        if (has(rest, "--delete") || clusterHolds(rest, 'd') ||
            anyPositional(rest, [](std::string_view a) { return a.size() > 1 && a[0] == ':'; })) {
            return held(kDeleteRemoteBranch, deleting);
        }
        if (force ||
            std::ranges::any_of(
                rest, [](std::string_view a) { return a.starts_with("--force-with-lease"); }) ||
            anyPositional(rest, [](std::string_view a) { return a.starts_with('+'); })) {
            return held(kForcePush, publishing);
        }
        return held(kPush, publishing);
    }
    if (subcommand == "reset" && has(rest, "--hard")) {
        return held(kDiscardLocalChanges, deleting);
    }
    if (subcommand == "clean" && force && !clusterHolds(rest, 'n')) {
        return held(kDeleteUntrackedFiles, deleting);
    }
    if (subcommand == "branch") {
        // -D is -d with -f, in whichever spelling.
        const bool remove = has(rest, "--delete") || clusterHolds(rest, 'd');
        if (clusterHolds(rest, 'D') || (remove && force)) {
            return held(kDeleteBranch, deleting);
        }
        return std::nullopt;
    }
    if (subcommand == "switch" && (force || has(rest, "--discard-changes"))) {
        return held(kDiscardLocalChanges, deleting);
    }
    if (subcommand == "checkout") {
        if (force) {
            return held(kDiscardLocalChanges, deleting);
        }
        const auto separator = std::ranges::find(rest, std::string_view("--"));
        const bool pathsFollow = separator != rest.end() && separator + 1 != rest.end();
        if (pathsFollow || has(rest, ".")) {
            return held(kDiscardFileChanges, deleting);
        }
        return std::nullopt;
    }
    if (subcommand == "restore") {
        const bool stagedOnly = (has(rest, "--staged") || has(rest, "-S")) &&
                                !(has(rest, "--worktree") || has(rest, "-W"));
        if (!stagedOnly && anyPositional(rest, [](std::string_view) { return true; })) {
            return held(kDiscardFileChanges, deleting);
        }
        return std::nullopt;
    }
    if (subcommand == "stash" && (next == "drop" || next == "clear")) {
        return held(kDropStash, deleting);
    }
    if (subcommand == "worktree" && next == "remove") {
        return held(kDeleteWorktree, deleting);
    }
    return std::nullopt;
}

std::optional<HeldAction> githubAction(ShellArguments arguments) {
    if (arguments.empty()) {
        return std::nullopt;
    }
    const std::string_view first = arguments[0];
    const std::string_view second = arguments.size() > 1 ? std::string_view(arguments[1]) : "";
    if (first == "api") {
        return githubAPIAction(arguments.subspan(1));
    }
    for (const SubcommandAction& action : kGitHubActions) {
        if (action.first == first && action.second == second) {
            return held(action.phrase, action.category);
        }
    }
    return std::nullopt;
}

std::optional<HeldAction> packagePublishingAction(std::string_view program,
                                                  ShellArguments arguments) {
    const std::size_t at = nextPositional(arguments, 0, kPackageManagerValueOptions);
    if (at >= arguments.size()) {
        return std::nullopt;
    }
    const std::string_view subcommand = arguments[at];
    const std::size_t after = nextPositional(arguments, at + 1, kPackageManagerValueOptions);
    const std::string_view next =
        after < arguments.size() ? std::string_view(arguments[after]) : "";
    // Taking a published version back is publishing too: those who depend on it see it go.
    if (subcommand == "unpublish" ||
        (program == "yarn" && subcommand == "npm" && next == "unpublish") ||
        ((program == "cargo" || program == "gem") && subcommand == "yank")) {
        return held(kUnpublishPackage, publishing);
    }
    bool publishes = subcommand == "publish" || (program == "twine" && subcommand == "upload") ||
                     (program == "gem" && subcommand == "push") ||
                     (program == "yarn" && subcommand == "npm" && next == "publish");
    if (!publishes && containsWord(kRunFormPackageManagers, program)) {
        if (subcommand == "run" || subcommand == "run-script") {
            publishes = isPublishingName(next);
        } else {
            // yarn, pnpm and bun also run a script named in place of the subcommand.
            publishes = program != "npm" && isPublishingName(subcommand);
        }
    }
    return publishes ? std::optional(held(kPublishPackage, publishing)) : std::nullopt;
}

std::optional<HeldAction> wranglerAction(ShellArguments arguments) {
    const bool secret = arguments.size() > 1 && arguments[0] == "secret" &&
                        (arguments[1] == "put" || arguments[1] == "delete");
    if (secret || has(arguments, "deploy")) {
        return held(kDeployToCloudflare, publishing);
    }
    return std::nullopt;
}

std::optional<HeldAction> makeAction(ShellArguments arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (containsWord(kMakeValueOptions, argument)) {
            ++i;
        } else if (!argument.starts_with('-') && argument.find('=') == npos &&
                   isPublishingName(argument)) {
            return publishingByName(argument);
        }
    }
    return std::nullopt;
}

std::optional<HeldAction> scriptNameAction(std::string_view scriptPath) {
    std::string_view name = programName(scriptPath);
    if (const std::size_t dot = name.rfind('.'); dot != npos && dot > 0) {
        name = name.substr(0, dot);
    }
    return publishingByName(name);
}

std::optional<HeldAction> pythonAction(ShellArguments arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "-W" || argument == "-X") {
            ++i;
            continue;
        }
        if (argument == "-") {
            return std::nullopt;  // the program comes from standard input
        }
        if (isShortCluster(argument) && argument.find_first_of("cm", 1) != npos &&
            argument.find_first_of("WX", 1) == npos) {
            return std::nullopt;  // -c and -m: a command or module, not a script
        }
        if (!argument.starts_with('-')) {
            return scriptNameAction(argument);
        }
    }
    return std::nullopt;
}

ShellArguments pythonModuleCommand(ShellArguments arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "-W" || argument == "-X") {
            ++i;
        } else if (argument == "-m") {
            return arguments.subspan(i + 1);
        } else if (!argument.starts_with('-') ||
                   (isShortCluster(argument) && argument.find('c', 1) != npos &&
                    argument.find_first_of("WX", 1) == npos)) {
            break;  // a script or a -c command: no module
        }
    }
    return {};
}

std::optional<HeldAction> rmAction(ShellArguments arguments, bool moreTargetsFromInput) {
    bool recursive = false;
    bool optionsEnded = false;
    std::vector<std::string_view> targets;
    for (std::string_view argument : arguments) {
        if (!optionsEnded && argument.starts_with('-')) {
            optionsEnded = argument == "--";
            recursive = recursive || argument == "--recursive" ||
                        (isShortCluster(argument) && argument.find_first_of("rR", 1) != npos);
        } else {
            targets.push_back(argument);
        }
    }
    const auto safe = [](std::string_view target) {
        // ".." could climb out of a safe place, even out of a temporary one.
        if (target.find("..") != npos) {
            return false;
        }
        if (std::ranges::any_of(kTemporaryLocations, [&](std::string_view place) {
                return target.starts_with(place);
            })) {
            return true;
        }
        for (std::size_t start = 0; start <= target.size();) {
            const std::size_t end = std::min(target.find('/', start), target.size());
            if (containsWord(kBuildDirectories, target.substr(start, end - start))) {
                return true;
            }
            start = end + 1;
        }
        return false;
    };
    if (recursive && (moreTargetsFromInput || !std::ranges::all_of(targets, safe))) {
        return held(kDeleteFiles, deleting);
    }
    return std::nullopt;
}

std::optional<HeldAction> findAction(ShellArguments arguments) {
    constexpr std::string_view kLeadingOptions[] = {"-E", "-H", "-L", "-P", "-X", "-d", "-s", "-x"};
    std::size_t i = 0;
    while (i < arguments.size() &&
           std::ranges::find(kLeadingOptions, arguments[i]) != std::end(kLeadingOptions)) {
        ++i;
    }
    std::vector<std::string_view> startPaths;
    for (; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument.starts_with('-') || argument == "(" || argument == "!") {
            break;
        }
        startPaths.push_back(argument);
    }
    bool deletes = false;
    for (; i < arguments.size() && !deletes; ++i) {
        deletes = arguments[i] == "-delete" ||
                  (containsWord(kFindCommandActions, arguments[i]) && i + 1 < arguments.size() &&
                   programName(arguments[i + 1]) == "rm");
    }
    const auto temporary = [](std::string_view path) {
        return path.find("..") == npos &&
               std::ranges::any_of(kTemporaryLocations,
                                   [&](std::string_view place) { return path.starts_with(place); });
    };
    // With no start path find searches the working directory, which is never temporary.
    if (!deletes || (!startPaths.empty() && std::ranges::all_of(startPaths, temporary))) {
        return std::nullopt;
    }
    return held(kDeleteFiles, deleting);
}

std::optional<HeldAction> quarnAction(ShellArguments arguments) {
    if (arguments.size() < 2) {
        return std::nullopt;
    }
    for (const SubcommandAction& action : kQuarnActions) {
        if (action.first == arguments[0] && action.second == arguments[1]) {
            return held(action.phrase, action.category);
        }
    }
    return std::nullopt;
}

std::optional<HeldAction> tmuxAction(ShellArguments arguments) {
    const std::size_t at = nextPositional(arguments, 0, kTmuxValueOptions);
    if (at < arguments.size() && arguments[at].starts_with("kill-")) {
        return held(kCloseTmuxSession, closing);
    }
    return std::nullopt;
}

std::optional<HeldAction> osascriptAction(ShellArguments arguments) {
    std::string script;
    for (std::string_view argument : arguments) {
        script += script.empty() ? "" : " ";
        script += argument;
    }
    script = lowercased(script);
    const auto contains = [&](std::string_view part) { return script.find(part) != npos; };
    if (contains(" to quit") || contains("quit app")) {
        return held(kQuitApp, closing);
    }
    if (contains("close window") || contains("close every window") || contains("close tab")) {
        return held(kCloseWindow, closing);
    }
    return std::nullopt;
}

std::optional<HeldAction> webRequestAction(std::string_view program, ShellArguments arguments) {
    const WebClient client = program == "curl"   ? WebClient::curl
                             : program == "wget" ? WebClient::wget
                                                 : WebClient::httpie;
    const WebRequest request = readWebRequest(client, arguments);
    if (request.readOnly || (request.method && isReadingMethod(*request.method))) {
        return std::nullopt;
    }
    const bool writes = request.body || (request.method && isWritingMethod(*request.method));
    const bool local =
        !request.urls.empty() && std::ranges::all_of(request.urls, [](std::string_view url) {
            return containsWord(kLocalHosts, urlHost(url));
        });
    if (!writes || local) {
        return std::nullopt;
    }
    return held(kSendWebRequest, services);
}

}  // namespace orvo
