// Reads a shell command line for held actions: cuts it into commands, unwraps each to the program
// it runs, applies that program's rule, reads nested command text, and merges by category.
#include <algorithm>
#include <array>
#include <cctype>
#include <unordered_set>

#include "protocol/ActionHoldClassifier.h"
#include "protocol/ActionHoldWordTables.h"
#include "protocol/Graphemes.h"
#include "protocol/ShellProgramRules.h"
#include "protocol/ShellSegment.h"

namespace orvo::ActionHoldClassifier {
namespace {

using namespace ShellWords;

// NOLINTNEXTLINE(readability-identifier-naming): std::string_view::npos, under its own name
constexpr std::size_t npos = std::string_view::npos;

// Text nested deeper than this (a shell in a shell in a shell in a shell) is not read, which
// bounds the work on hostile input.
constexpr int kDeepestNestedText = 3;
constexpr std::size_t kDetailCharacters = 240;
constexpr std::string_view kDetailSeparator = " \xC2\xB7 ";  // U+00B7 MIDDLE DOT between spaces

std::string_view segmentDetail(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    text = text.substr(first, text.find_last_not_of(kSpace) - first + 1);
    return prefixGraphemes(text, kDetailCharacters);
}

// The launcher that `words[at]` starts, with the number of its own words (one or two).
std::pair<const CommandLauncher*, std::size_t> findLauncher(ShellArguments words, std::size_t at) {
    const std::string_view name = programName(words[at]);
    for (auto it = std::ranges::lower_bound(kLaunchers, name, {}, &CommandLauncher::name);
         it != kLaunchers.end() && it->name == name; ++it) {
        if (it->subcommand.empty()) {
            return {&*it, 1};
        }
        if (at + 1 < words.size() && words[at + 1] == it->subcommand) {
            return {&*it, 2};
        }
    }
    return {nullptr, 0};
}

// A command's words past assignments, keywords and launchers.
struct Unwrapped {
    std::size_t program = 0;          // the index of the program word; the word count when none
    bool argumentsFromInput = false;  // xargs adds arguments read from its input
    bool runsInput = false;           // the commands to run are read from input (`| parallel`)
    // Shell text given to a launcher to run (`env -S`, `parallel`); words after the program
    // index are its arguments.
    std::optional<std::string> commandLine;
};

// Skips a launcher's options, up to "--"; returns the index after them, or the word count when
// an option asks it to run nothing.
std::size_t skipOptions(ShellArguments words, std::size_t i, const CommandLauncher& launcher,
                        Unwrapped& unwrapped) {
    while (i < words.size() && words[i].starts_with('-')) {
        if (words[i] == "--") {
            return i + 1;
        }
        if (containsWord(kLauncherPrintOnlyOptions, words[i])) {
            return words.size();
        }
        if (containsWord(launcher.commandOptions, words[i]) && i + 1 < words.size()) {
            unwrapped.commandLine = words[i + 1];
        }
        i += containsWord(launcher.valueOptions, words[i]) ? 2 : 1;
    }
    return std::min(i, words.size());
}

bool isAssignment(std::string_view word) {
    const std::size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    return equals != npos && !name.empty() &&
           std::isdigit(static_cast<unsigned char>(name[0])) == 0 &&
           std::ranges::all_of(name, [](char c) {
               return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
           });
}

Unwrapped unwrap(ShellArguments words) {
    Unwrapped unwrapped;
    std::size_t& i = unwrapped.program;
    while (i < words.size()) {
        const std::string_view word = words[i];
        if (word.find('=') != npos || containsWord(kShellKeywords, word)) {
            ++i;
            continue;
        }
        const auto [launcher, ownWords] = findLauncher(words, i);
        if (launcher == nullptr) {
            break;
        }
        i = skipOptions(words, i + ownWords, *launcher, unwrapped);
        if (launcher->command == LaunchedCommand::afterDuration && i < words.size()) {
            ++i;
        } else if (launcher->command == LaunchedCommand::inputArguments) {
            unwrapped.argumentsFromInput = true;
        } else if (launcher->command == LaunchedCommand::commandTemplate && i < words.size()) {
            unwrapped.commandLine = parallelCommands(words.subspan(i));
            unwrapped.runsInput = !unwrapped.commandLine;
            i = words.size();
        } else if (launcher->command == LaunchedCommand::commandTemplate) {
            unwrapped.runsInput = true;
        }
    }
    return unwrapped;
}

std::optional<ProgramRule> ruleFor(std::string_view name) {
    const auto it = std::ranges::lower_bound(kProgramRules, name, {}, &ProgramRuleRow::program);
    if (it != kProgramRules.end() && it->program == name) {
        return it->rule;
    }
    // Versioned interpreters such as python3.12 are python too.
    if (name.starts_with("python") && name.size() > 6 &&
        name.find_first_not_of("0123456789.", 6) == std::string_view::npos) {
        return ProgramRule::python;
    }
    return std::nullopt;
}

bool isDryRun(ShellArguments arguments) {
    constexpr std::string_view kOption = "--dry-run";
    return std::ranges::any_of(arguments, [&](std::string_view argument) {
        if (argument == kOption) {
            return true;
        }
        if (!argument.starts_with(kOption) || argument[kOption.size()] != '=') {
            return false;
        }
        const std::string_view value = argument.substr(kOption.size() + 1);
        return value != "none" && value != "false";
    });
}

std::string joined(ShellArguments words) {
    std::string text;
    for (std::string_view word : words) {
        text += text.empty() ? "" : " ";
        text += word;
    }
    return text;
}

// Whether the words, run as a command, read further commands from their input, as a bare shell
// does: `ssh host`, `ssh host bash -s`.
bool runsItsInput(ShellArguments words) {
    const std::size_t at = unwrap(words).program;
    if (at >= words.size()) {
        return words.empty();
    }
    return containsWord(kShells, programName(words[at])) &&
           readShellInvocation(words.subspan(at + 1)).readsInput;
}

// printf's output, near enough to read as a command: %s and %b take the arguments in turn, and
// the common escapes are decoded.
std::string printfOutput(ShellArguments arguments) {
    const std::string_view format = arguments.front();
    std::size_t next = 1;
    std::string out;
    for (std::size_t i = 0; i < format.size(); ++i) {
        const char c = format[i];
        const char after = i + 1 < format.size() ? format[i + 1] : '\0';
        if (c == '%' && (after == 's' || after == 'b')) {
            out += next < arguments.size() ? std::string_view(arguments[next++]) : "";
            ++i;
        } else if (c == '\\' && (after == 'n' || after == 't' || after == '\\')) {
            out += after == 'n' ? '\n' : after == 't' ? '\t' : '\\';
            ++i;
        } else if (c == '%' && after == '%') {
            out += '%';
            ++i;
        } else {
            out += c;
        }
    }
    for (; next < arguments.size(); ++next) {
        out += ' ';
        out += arguments[next];
    }
    return out;
}

// What a command prints that a shell could be given to run: the words of echo, the output of
// printf, the here-document of a bare cat. None for anything else.
std::optional<std::string> printedText(const ShellSegment& segment) {
    const ShellArguments words = segment.words;
    const std::size_t at = unwrap(words).program;
    if (at >= words.size()) {
        return std::nullopt;
    }
    const std::string_view name = programName(words[at]);
    ShellArguments arguments = words.subspan(at + 1);
    if (name == "echo") {
        const auto isOption = [](std::string_view word) {  // -n, -e, -E and clusters of them
            return word.size() > 1 && word[0] == '-' && word.find_first_not_of("neE", 1) == npos;
        };
        while (!arguments.empty() && isOption(arguments.front())) {
            arguments = arguments.subspan(1);
        }
        return joined(arguments);
    }
    if (name == "printf" && !arguments.empty() && arguments.front() != "-v") {
        return printfOutput(arguments);
    }
    if (name == "cat" && arguments.empty() && !segment.inputs.empty()) {
        std::string text;
        for (const std::string& input : segment.inputs) {
            text += input;
            text += '\n';
        }
        return text;
    }
    return std::nullopt;
}

// The command run by a substitution in the program's place, with `arguments` after it:
// `$(which git) push` runs git, `$(echo git push)` runs the echoed words.
std::optional<std::string> substitutedCommand(std::string_view word, ShellArguments arguments) {
    std::string_view inside;
    if (word.size() > 3 && word.starts_with("$(") && word.ends_with(')')) {
        inside = word.substr(2, word.size() - 3);
    } else if (word.size() > 2 && word.starts_with('`') && word.ends_with('`')) {
        inside = word.substr(1, word.size() - 2);
    } else {
        return std::nullopt;
    }
    const std::vector<ShellSegment> segments = splitShellSegments(inside);
    if (segments.size() != 1) {
        return std::nullopt;
    }
    const std::vector<std::string>& words = segments[0].words;
    const bool locates = (words.size() == 2 && words[0] == "which") ||
                         (words.size() == 3 && (words[0] == "command" || words[0] == "type") &&
                          (words[1] == "-v" || words[1] == "-p" || words[1] == "-P"));
    std::optional<std::string> command =
        locates ? std::optional(words.back()) : printedText(segments[0]);
    if (command && !arguments.empty()) {
        *command += ' ';
        *command += joined(arguments);
    }
    return command;
}

// A shell variable set by an earlier command of the same list: `G=git; $G push`.
struct Assignment {
    std::string_view name;
    std::string_view value;
};

// The assignments that a command makes when it does nothing else: `G=git`, `export G=git`.
void recordAssignments(ShellArguments words, std::vector<Assignment>& assignments) {
    std::size_t i = 0;
    if (!words.empty() && containsWord(kAssigningBuiltins, words[0])) {
        for (i = 1; i < words.size() && words[i].starts_with('-');) {
            ++i;
        }
    }
    const ShellArguments rest = words.subspan(i);
    if (rest.empty() || !std::ranges::all_of(rest, isAssignment)) {
        return;
    }
    for (std::string_view word : rest) {
        const std::size_t equals = word.find('=');
        assignments.push_back({word.substr(0, equals), word.substr(equals + 1)});
    }
}

// The words with each one that is exactly $NAME or ${NAME} of a recorded assignment replaced by
// its value, split at blanks as the shell splits an unquoted expansion. A value that is itself a
// substitution stays one word, to be read as one. None when no word was replaced.
std::optional<std::vector<std::string>> substituteAssignments(
    ShellArguments words, const std::vector<Assignment>& assignments) {
    std::optional<std::vector<std::string>> result;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        std::string_view name;
        if (word.starts_with("${") && word.ends_with('}')) {
            name = word.substr(2, word.size() - 3);
        } else if (word.starts_with('$')) {
            name = word.substr(1);
        }
        const auto found =
            std::ranges::find(assignments.rbegin(), assignments.rend(), name, &Assignment::name);
        if (name.empty() || found == assignments.rend()) {
            if (result) {
                result->push_back(words[i]);
            }
            continue;
        }
        if (!result) {
            result.emplace(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(i));
        }
        const std::string_view value = found->value;
        if (value.starts_with("$(") || value.starts_with('`')) {
            result->emplace_back(value);
            continue;
        }
        constexpr std::string_view kBlanks = " \t\n";
        for (std::size_t at = value.find_first_not_of(kBlanks); at != npos;) {
            const std::size_t end = std::min(value.find_first_of(kBlanks, at), value.size());
            result->emplace_back(value.substr(at, end - at));
            at = value.find_first_not_of(kBlanks, end);
        }
    }
    return result;
}

// A match as found, before merging. It keeps the text of the outermost command that holds it,
// a view into the command line shared by every match of nested text; the detail is cut from it
// only when merging, once per command, and only for commands that hold something.
struct FoundAction {
    HeldAction action;
    std::string_view command;
};

// The text from the start of `first` to the end of `second`, views into the same command line.
std::string_view spanning(std::string_view first, std::string_view second) {
    const char* end = std::max(first.data() + first.size(), second.data() + second.size());
    return {first.data(), static_cast<std::size_t>(end - first.data())};
}

// One simple command, unwrapped, with the command before it for what it pipes in.
struct Command {
    std::string_view word;
    ShellArguments arguments;
    bool argumentsFromInput;
    const ShellSegment& segment;
    const ShellSegment* previous;
};

// Nested text is read by recursion, at most kDeepestNestedText levels deep.
// NOLINTBEGIN(misc-no-recursion)
class CommandReader {
public:
    std::vector<FoundAction> found;

    // `outer` is the outermost command, for text nested in it.
    void readText(std::string_view text, int depth, std::optional<std::string_view> outer) {
        const std::vector<ShellSegment> segments = splitShellSegments(text);
        std::vector<Assignment> assignments;  // views into `segments`
        for (std::size_t i = 0; i < segments.size(); ++i) {
            const ShellSegment* previous = i > 0 ? &segments[i - 1] : nullptr;
            const std::optional<std::vector<std::string>> substituted =
                assignments.empty() ? std::nullopt
                                    : substituteAssignments(segments[i].words, assignments);
            readSegment(segments[i], substituted ? *substituted : segments[i].words, previous,
                        depth, outer.value_or(segments[i].text));
            recordAssignments(segments[i].words, assignments);
        }
    }

private:
    void readNested(std::string_view text, int depth, std::string_view outer) {
        if (!text.empty() && depth < kDeepestNestedText) {
            readText(text, depth + 1, outer);
        }
    }

    // What a command that runs its input is given: its here-documents, and what the command
    // before it prints into the pipe (`echo 'git push' | sh`).
    void readInputs(const ShellSegment& segment, const ShellSegment* previous, int depth,
                    std::string_view outer) {
        for (const std::string& input : segment.inputs) {
            readNested(input, depth, outer);
        }
        if (!segment.pipedInput || previous == nullptr) {
            return;
        }
        if (std::optional<std::string> printed = printedText(*previous)) {
            // On the command line itself the detail spans the pipe, so that the owner sees
            // what runs, not just "sh".
            readNested(*printed, depth, depth == 0 ? spanning(previous->text, outer) : outer);
        }
    }

    void hold(std::optional<HeldAction> action, std::string_view outer) {
        if (action) {
            found.push_back({std::move(*action), outer});
        }
    }

    void readSegment(const ShellSegment& segment, ShellArguments words,
                     const ShellSegment* previous, int depth, std::string_view outer) {
        const Unwrapped unwrapped = unwrap(words);
        if (unwrapped.runsInput) {
            readInputs(segment, previous, depth, outer);
        } else if (unwrapped.commandLine) {
            // The words after the command line are its arguments.
            std::string text(*unwrapped.commandLine);
            for (std::string_view word : words.subspan(unwrapped.program)) {
                text += ' ';
                text += word;
            }
            readNested(text, depth, outer);
        } else if (unwrapped.program < words.size()) {
            const Command command{words[unwrapped.program], words.subspan(unwrapped.program + 1),
                                  unwrapped.argumentsFromInput, segment, previous};
            if (std::optional<std::string> text =
                    substitutedCommand(command.word, command.arguments)) {
                readNested(*text, depth, outer);
            } else {
                readCommand(command, depth, outer);
            }
        }
        // The shell runs substitutions whatever the command is, even one asked for help.
        for (std::string_view substitution : segment.substitutions) {
            readNested(substitution, depth, outer);
        }
    }

    void readCommand(const Command& command, int depth, std::string_view outer) {
        const std::string_view word = command.word;
        const ShellArguments arguments = command.arguments;
        if (std::ranges::find(arguments, "--help") != arguments.end() ||
            std::ranges::find(arguments, "-h") != arguments.end() || isDryRun(arguments)) {
            return;
        }
        const std::string_view name = programName(word);
        const std::optional<ProgramRule> rule = ruleFor(name);
        if (!rule) {
            const std::size_t dot = name.rfind('.');
            const std::string_view extension =
                dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
            if (word.find('/') != std::string_view::npos ||
                containsWord(kScriptExtensions, extension)) {
                hold(scriptNameAction(word), outer);
            }
            return;
        }
        switch (*rule) {
            case ProgramRule::git:
                return hold(gitAction(arguments), outer);
            case ProgramRule::github:
                return hold(githubAction(arguments), outer);
            case ProgramRule::packagePublishing:
                return hold(packagePublishingAction(name, arguments), outer);
            case ProgramRule::wrangler:
                return hold(wranglerAction(arguments), outer);
            case ProgramRule::make:
                return hold(makeAction(arguments), outer);
            case ProgramRule::shell: {
                const ShellInvocation invocation = readShellInvocation(arguments);
                if (invocation.commandString) {
                    readNested(*invocation.commandString, depth, outer);
                } else if (invocation.script) {
                    hold(scriptNameAction(*invocation.script), outer);
                } else {
                    readInputs(command.segment, command.previous, depth, outer);
                }
                return;
            }
            case ProgramRule::eval:
                return readNested(joined(arguments), depth, outer);
            case ProgramRule::ssh: {
                const ShellArguments remote = sshRemoteCommand(arguments);
                readNested(joined(remote), depth, outer);
                if (runsItsInput(remote)) {
                    readInputs(command.segment, command.previous, depth, outer);
                }
                return;
            }
            case ProgramRule::python:
                // A module runs like the program of that name: `python3 -m twine upload`.
                readNested(joined(pythonModuleCommand(arguments)), depth, outer);
                return hold(pythonAction(arguments), outer);
            case ProgramRule::rm:
                return hold(rmAction(arguments, command.argumentsFromInput), outer);
            case ProgramRule::find:
                hold(findAction(arguments), outer);
                return readNested(findCommands(arguments), depth, outer);
            case ProgramRule::quarn:
                return hold(quarnAction(arguments), outer);
            case ProgramRule::tmux:
                return hold(tmuxAction(arguments), outer);
            case ProgramRule::osascript:
                return hold(osascriptAction(arguments), outer);
            case ProgramRule::webRequest:
                return hold(webRequestAction(name, arguments), outer);
        }
    }
};
// NOLINTEND(misc-no-recursion)

bool isForcePush(const ActionHoldPhrase& phrase) {
    return phrase.progressive == ShellPhrases::kForcePush.progressive &&
           phrase.base == ShellPhrases::kForcePush.base;
}

// One match per category in order of first appearance. A force push anywhere in a category
// names it, so that it is not hidden behind an ordinary push; details are kept once each.
std::vector<ActionHoldMatch> mergeByCategory(const std::vector<FoundAction>& found) {
    std::vector<ActionHoldCategory> order;
    std::array<std::vector<const FoundAction*>, kAllActionHoldCategories.size()> groups;
    for (const FoundAction& match : found) {
        auto& group = groups[static_cast<std::size_t>(match.action.category)];
        if (group.empty()) {
            order.push_back(match.action.category);
        }
        group.push_back(&match);
    }
    std::vector<ActionHoldMatch> merged;
    for (ActionHoldCategory category : order) {
        const auto& group = groups[static_cast<std::size_t>(category)];
        const auto forced = std::ranges::find_if(
            group, [](const FoundAction* match) { return isForcePush(match->action.phrase); });
        ActionHoldMatch result{
            category, (forced != group.end() ? *forced : group.front())->action.phrase, ""};
        std::unordered_set<std::string_view> seen;
        std::string_view previous;
        for (const FoundAction* match : group) {
            // Matches of one command sit together and share its text by identity, so each
            // command's detail is cut and compared once, however many matches it holds.
            const bool sameAsPrevious = match->command.data() == previous.data() &&
                                        match->command.size() == previous.size() &&
                                        match != group.front();
            previous = match->command;
            const std::string_view detail = sameAsPrevious ? "" : segmentDetail(match->command);
            if (!sameAsPrevious && seen.insert(detail).second) {
                result.detail += seen.size() > 1 ? kDetailSeparator : "";
                result.detail += detail;
            }
        }
        merged.push_back(std::move(result));
    }
    return merged;
}

}  // namespace

std::vector<ActionHoldMatch> classifyCommand(std::string_view command) {
    CommandReader reader;
    reader.readText(command, 0, std::nullopt);
    return mergeByCategory(reader.found);
}

}  // namespace orvo::ActionHoldClassifier
