// The fixed words, programs and phrases of the held-action classifiers. Data only.
#pragma once

#include <span>
#include <string_view>

#include "protocol/ActionHoldCategory.h"

namespace orvo {

// A sorted list of words, searched by binary search.
using SortedWords = std::span<const std::string_view>;
bool containsWord(SortedWords words, std::string_view word);

// The two phrases of a held action as constant text.
struct PhraseText {
    std::string_view progressive;
    std::string_view base;
};

// Where the command that a launcher runs starts, after the launcher's own options.
enum class LaunchedCommand {
    nextWord,         // `sudo -u ci git push`
    afterDuration,    // one more word first: `timeout 30 git push`
    inputArguments,   // the next word, with more arguments read from input: `xargs rm -rf`
    commandTemplate,  // shell text up to ":::", run once per argument: `parallel rm {} ::: a b`
};

// A program that runs the command written after it: a wrapper such as `sudo`, or a two-word
// runner such as `pnpm dlx`.
struct CommandLauncher {
    std::string_view name;
    std::string_view subcommand;  // the second word of a two-word launcher; empty for one word
    SortedWords valueOptions;     // options that take the next word as their value
    SortedWords commandOptions;   // value options whose value is a command line to run
    LaunchedCommand command;
};

// A pair of leading words, such as `gh pr merge`, and the held action it names.
struct SubcommandAction {
    std::string_view first;
    std::string_view second;
    PhraseText phrase;
    ActionHoldCategory category;
};

// The rule a program name is read by.
enum class ProgramRule {
    git,
    github,
    packagePublishing,
    wrangler,
    make,
    shell,
    eval,
    ssh,
    python,
    rm,
    find,
    quarn,
    tmux,
    osascript,
    webRequest,
};

// An MCP server word and the name shown for it in phrases.
struct MCPProvider {
    std::string_view serverWord;
    std::string_view name;
};

struct ProgramRuleRow {
    std::string_view program;
    ProgramRule rule;
};

namespace ShellWords {

extern const std::span<const ProgramRuleRow> kProgramRules;  // sorted by program
extern const SortedWords kShellKeywords;
extern const SortedWords kShells;
extern const SortedWords kShellValueOptions;
extern const SortedWords kScriptExtensions;
extern const std::span<const CommandLauncher> kLaunchers;  // sorted by name, then subcommand
// Launcher options after which nothing runs: help, and a dry run that only prints the commands.
extern const SortedWords kLauncherPrintOnlyOptions;
extern const SortedWords kParallelArgumentSeparators;
extern const SortedWords kAssigningBuiltins;
extern const SortedWords kGitValueOptions;
extern const SortedWords kGitHubQuietValueOptions;
extern const SortedWords kGitHubAPIBodyOptions;
extern const std::span<const SubcommandAction> kGitHubActions;
extern const SortedWords kPackageManagerValueOptions;
extern const SortedWords kRunFormPackageManagers;
extern const SortedWords kMakeValueOptions;
extern const SortedWords kBuildDirectories;
extern const std::span<const std::string_view> kTemporaryLocations;  // prefixes
extern const SortedWords kFindCommandActions;
extern const SortedWords kWritingHTTPMethods;
extern const SortedWords kCurlBodyOptions;
extern const SortedWords kLocalHosts;
extern const std::string_view kSSHValueOptionLetters;
extern const std::span<const SubcommandAction> kQuarnActions;
extern const SortedWords kTmuxValueOptions;
// Options of the web-request programs that take a value, so that no value is read as a URL.
extern const std::string_view kCurlValueOptionLetters;
extern const SortedWords kCurlLongValueOptions;
extern const std::string_view kWgetValueOptionLetters;
extern const SortedWords kWgetLongValueOptions;
extern const SortedWords kHTTPieValueOptions;

}  // namespace ShellWords

namespace ShellPhrases {

extern const PhraseText kPush;
extern const PhraseText kForcePush;
extern const PhraseText kDeleteRemoteBranch;
extern const PhraseText kDiscardLocalChanges;
extern const PhraseText kDeleteUntrackedFiles;
extern const PhraseText kDeleteBranch;
extern const PhraseText kDiscardFileChanges;
extern const PhraseText kDropStash;
extern const PhraseText kDeleteWorktree;
extern const PhraseText kCallGitHubAPI;
extern const PhraseText kPublishPackage;
extern const PhraseText kUnpublishPackage;
extern const PhraseText kDeployToCloudflare;
extern const PhraseText kRunRelease;
extern const PhraseText kDeleteFiles;
extern const PhraseText kCloseTmuxSession;
extern const PhraseText kQuitApp;
extern const PhraseText kCloseWindow;
extern const PhraseText kSendWebRequest;

}  // namespace ShellPhrases

namespace MCPToolWords {

extern const std::span<const std::string_view> kReadingVerbs;  // in the order they are tried
extern const SortedWords kDeletingWords;
extern const SortedWords kSendingWords;
extern const SortedWords kMailWords;
extern const SortedWords kCalendarWritingWords;
extern const SortedWords kActingVerbs;
extern const std::span<const std::string_view> kDetailArgumentKeys;  // first present wins
extern const std::span<const MCPProvider> kProviders;
// Prefixes that hosts put before a server's own word.
extern const std::string_view kAssistantServerPrefix;
extern const std::string_view kPluginServerPrefix;

}  // namespace MCPToolWords

}  // namespace orvo
