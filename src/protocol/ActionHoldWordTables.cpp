// The fixed words, programs and phrases of the held-action classifiers. Data only.
#include "protocol/ActionHoldWordTables.h"

#include <algorithm>

namespace orvo {

bool containsWord(SortedWords words, std::string_view word) {
    return std::ranges::binary_search(words, word);
}

namespace ShellWords {
namespace {

using enum ProgramRule;

constexpr ProgramRuleRow kProgramRuleRows[] = {
    {"bash", shell},
    {"bun", packagePublishing},
    {"cargo", packagePublishing},
    {"curl", webRequest},
    {"eval", eval},
    {"find", find},
    {"gem", packagePublishing},
    {"gh", github},
    {"git", git},
    {"http", webRequest},
    {"https", webRequest},
    {"make", make},
    {"npm", packagePublishing},
    {"osascript", osascript},
    {"pnpm", packagePublishing},
    {"poetry", packagePublishing},
    {"python", python},
    {"python3", python},
    {"quarn", quarn},
    {"rm", rm},
    {"sh", shell},
    {"ssh", ssh},
    {"tmux", tmux},
    {"twine", packagePublishing},
    {"uv", packagePublishing},
    {"wget", webRequest},
    {"wrangler", wrangler},
    {"xh", webRequest},
    {"yarn", packagePublishing},
    {"zsh", shell},
};
static_assert(std::ranges::is_sorted(kProgramRuleRows, {}, &ProgramRuleRow::program));

constexpr std::string_view kShellKeywordWords[] = {"!",    "do",    "elif",  "else", "if",
                                                   "then", "until", "while", "{"};
static_assert(std::ranges::is_sorted(kShellKeywordWords));

constexpr std::string_view kShellWords[] = {"bash", "sh", "zsh"};
static_assert(std::ranges::is_sorted(kShellWords));

constexpr std::string_view kShellValueOptionWords[] = {"+O",       "+o", "--init-file",
                                                       "--rcfile", "-O", "-o"};
static_assert(std::ranges::is_sorted(kShellValueOptionWords));

constexpr std::string_view kScriptExtensionWords[] = {"", "py", "sh"};
static_assert(std::ranges::is_sorted(kScriptExtensionWords));

// Launchers and the options of each that take a value. The long forms of the sudo and env
// options are the same options spelled out.
constexpr std::string_view kArchOptions[] = {"-arch", "-d", "-e"};
static_assert(std::ranges::is_sorted(kArchOptions));
constexpr std::string_view kBunxOptions[] = {"--package", "-p"};
static_assert(std::ranges::is_sorted(kBunxOptions));
constexpr std::string_view kCaffeinateOptions[] = {"-t", "-w"};
static_assert(std::ranges::is_sorted(kCaffeinateOptions));
constexpr std::string_view kDoasOptions[] = {"-C", "-a", "-u"};
static_assert(std::ranges::is_sorted(kDoasOptions));
constexpr std::string_view kEnvOptions[] = {
    "--chdir", "--split-string", "--unset", "-C", "-P", "-S", "-u"};
static_assert(std::ranges::is_sorted(kEnvOptions));
constexpr std::string_view kExecOptions[] = {"-a"};
constexpr std::string_view kIoniceOptions[] = {"--class", "--classdata", "--pgid", "--pid", "--uid",
                                               "-P",      "-c",          "-n",     "-p",    "-u"};
static_assert(std::ranges::is_sorted(kIoniceOptions));
constexpr std::string_view kNiceOptions[] = {"--adjustment", "-n"};
static_assert(std::ranges::is_sorted(kNiceOptions));
constexpr std::string_view kNpxOptions[] = {"--call", "--package", "-c", "-p"};
static_assert(std::ranges::is_sorted(kNpxOptions));
constexpr std::string_view kPackageRunnerOptions[] = {
    "--call", "--filter", "--package", "--workspace", "-F", "-c", "-p", "-w"};
static_assert(std::ranges::is_sorted(kPackageRunnerOptions));
constexpr std::string_view kParallelOptions[] = {"--arg-file",
                                                 "--basefile",
                                                 "--colsep",
                                                 "--delay",
                                                 "--delimiter",
                                                 "--env",
                                                 "--halt",
                                                 "--joblog",
                                                 "--jobs",
                                                 "--load",
                                                 "--max-args",
                                                 "--max-lines",
                                                 "--max-procs",
                                                 "--memfree",
                                                 "--results",
                                                 "--retries",
                                                 "--return",
                                                 "--sshlogin",
                                                 "--sshloginfile",
                                                 "--tagstring",
                                                 "--timeout",
                                                 "--tmpdir",
                                                 "--workdir",
                                                 "-C",
                                                 "-E",
                                                 "-I",
                                                 "-L",
                                                 "-N",
                                                 "-P",
                                                 "-S",
                                                 "-a",
                                                 "-d",
                                                 "-j",
                                                 "-n"};
static_assert(std::ranges::is_sorted(kParallelOptions));
constexpr std::string_view kSandboxExecOptions[] = {"-D", "-f", "-n", "-p"};
static_assert(std::ranges::is_sorted(kSandboxExecOptions));
constexpr std::string_view kStdbufOptions[] = {"--error", "--input", "--output", "-e", "-i", "-o"};
static_assert(std::ranges::is_sorted(kStdbufOptions));
constexpr std::string_view kSudoOptions[] = {
    "--chdir", "--chroot", "--close-from", "--command-timeout",
    "--group", "--host",   "--other-user", "--prompt",
    "--role",  "--type",   "--user",       "-C",
    "-D",      "-R",       "-T",           "-U",
    "-g",      "-h",       "-p",           "-r",
    "-t",      "-u"};
static_assert(std::ranges::is_sorted(kSudoOptions));
constexpr std::string_view kTimeOptions[] = {"--format", "--output", "-f", "-o"};
static_assert(std::ranges::is_sorted(kTimeOptions));
constexpr std::string_view kTimeoutOptions[] = {"--kill-after", "--signal", "-k", "-s"};
static_assert(std::ranges::is_sorted(kTimeoutOptions));
constexpr std::string_view kUvRunOptions[] = {"--directory", "--env-file", "--extra",   "--group",
                                              "--index",     "--package",  "--project", "--python",
                                              "--with",      "-p",         "-w"};
static_assert(std::ranges::is_sorted(kUvRunOptions));
constexpr std::string_view kXargsOptions[] = {
    "--arg-file",  "--delimiter", "--eof", "--max-args", "--max-chars", "--max-lines",
    "--max-procs", "-E",          "-I",    "-J",         "-L",          "-P",
    "-R",          "-S",          "-a",    "-d",         "-n",          "-s"};
static_assert(std::ranges::is_sorted(kXargsOptions));

// `env -S 'git push'` and `npx -c 'wrangler deploy'` run the value as a command line.
constexpr std::string_view kEnvCommandOptions[] = {"--split-string", "-S"};
static_assert(std::ranges::is_sorted(kEnvCommandOptions));
constexpr std::string_view kCallOptions[] = {"--call", "-c"};
static_assert(std::ranges::is_sorted(kCallOptions));

using enum LaunchedCommand;

// Homebrew's GNU coreutils on a Mac carry a "g" in front: gtimeout, gstdbuf, gnice.
constexpr CommandLauncher kLauncherRows[] = {
    {"arch", "", kArchOptions, {}, nextWord},
    {"builtin", "", {}, {}, nextWord},
    {"bun", "x", kBunxOptions, {}, nextWord},
    {"bundle", "exec", {}, {}, nextWord},
    {"bunx", "", kBunxOptions, {}, nextWord},
    {"busybox", "", {}, {}, nextWord},
    {"caffeinate", "", kCaffeinateOptions, {}, nextWord},
    {"chronic", "", {}, {}, nextWord},
    {"command", "", {}, {}, nextWord},
    {"doas", "", kDoasOptions, {}, nextWord},
    {"env", "", kEnvOptions, kEnvCommandOptions, nextWord},
    {"exec", "", kExecOptions, {}, nextWord},
    {"gnice", "", kNiceOptions, {}, nextWord},
    {"gstdbuf", "", kStdbufOptions, {}, nextWord},
    {"gtimeout", "", kTimeoutOptions, {}, afterDuration},
    {"ionice", "", kIoniceOptions, {}, nextWord},
    {"nice", "", kNiceOptions, {}, nextWord},
    {"nohup", "", {}, {}, nextWord},
    {"npm", "exec", kPackageRunnerOptions, kCallOptions, nextWord},
    {"npx", "", kNpxOptions, kCallOptions, nextWord},
    {"parallel", "", kParallelOptions, {}, commandTemplate},
    {"pnpm", "dlx", kPackageRunnerOptions, kCallOptions, nextWord},
    {"pnpm", "exec", kPackageRunnerOptions, kCallOptions, nextWord},
    {"poetry", "run", {}, {}, nextWord},
    {"sandbox-exec", "", kSandboxExecOptions, {}, nextWord},
    {"stdbuf", "", kStdbufOptions, {}, nextWord},
    {"sudo", "", kSudoOptions, {}, nextWord},
    {"time", "", kTimeOptions, {}, nextWord},
    {"timeout", "", kTimeoutOptions, {}, afterDuration},
    {"unbuffer", "", {}, {}, nextWord},
    {"uv", "run", kUvRunOptions, {}, nextWord},
    {"xargs", "", kXargsOptions, {}, inputArguments},
    {"yarn", "dlx", kPackageRunnerOptions, {}, nextWord},
    {"yarn", "exec", kPackageRunnerOptions, {}, nextWord},
};
static_assert(std::ranges::is_sorted(kLauncherRows, [](const auto& a, const auto& b) {
    return a.name < b.name || (a.name == b.name && a.subcommand < b.subcommand);
}));

constexpr std::string_view kLauncherPrintOnlyOptionWords[] = {"--dry-run", "--dryrun", "--help"};
static_assert(std::ranges::is_sorted(kLauncherPrintOnlyOptionWords));

// ":::" gives the arguments on the command line, "::::" in files.
constexpr std::string_view kParallelArgumentSeparatorWords[] = {":::", ":::+", "::::", "::::+"};
static_assert(std::ranges::is_sorted(kParallelArgumentSeparatorWords));

// Builtins that assign the NAME=value words after their options, as a bare assignment does.
constexpr std::string_view kAssigningBuiltinWords[] = {"declare", "export", "local", "readonly",
                                                       "typeset"};
static_assert(std::ranges::is_sorted(kAssigningBuiltinWords));

constexpr std::string_view kGitValueOptionWords[] = {"--git-dir", "--namespace", "--work-tree",
                                                     "-C", "-c"};
static_assert(std::ranges::is_sorted(kGitValueOptionWords));

constexpr std::string_view kGitHubQuietValueOptionWords[] = {
    "--cache", "--header", "--hostname", "--jq", "--preview", "--template", "-H", "-p", "-q", "-t"};
static_assert(std::ranges::is_sorted(kGitHubQuietValueOptionWords));

constexpr std::string_view kGitHubAPIBodyOptionWords[] = {"--field", "--input", "--raw-field", "-F",
                                                          "-f"};
static_assert(std::ranges::is_sorted(kGitHubAPIBodyOptionWords));

using enum ActionHoldCategory;

constexpr PhraseText kGitHubComment{"Posting a GitHub comment", "Post a GitHub comment"};
constexpr PhraseText kChangeIssue{"Changing an issue", "Change an issue"};
constexpr PhraseText kStartWorkflow{"Starting a GitHub workflow", "Start a GitHub workflow"};
constexpr PhraseText kChangeSecret{"Changing a GitHub secret", "Change a GitHub secret"};

// `gh api` is read by its own rule.
constexpr SubcommandAction kGitHubActionRows[] = {
    {"pr", "create", {"Opening a pull request", "Open a pull request"}, publishing},
    {"pr", "merge", {"Merging the pull request", "Merge the pull request"}, publishing},
    {"pr", "close", {"Closing the pull request", "Close the pull request"}, publishing},
    {"pr", "ready", {"Marking the pull request ready", "Mark the pull request ready"}, publishing},
    {"pr", "comment", kGitHubComment, messages},
    {"pr", "review", kGitHubComment, messages},
    {"issue", "comment", kGitHubComment, messages},
    {"pr", "edit", {"Editing the pull request", "Edit the pull request"}, services},
    {"issue", "create", {"Opening an issue", "Open an issue"}, services},
    {"issue", "close", kChangeIssue, services},
    {"issue", "edit", kChangeIssue, services},
    {"issue", "delete", kChangeIssue, services},
    {"repo", "create", {"Creating a GitHub repo", "Create a GitHub repo"}, publishing},
    {"repo", "fork", {"Forking the repo", "Fork the repo"}, publishing},
    {"repo", "rename", {"Renaming the repo", "Rename the repo"}, publishing},
    {"repo", "archive", {"Archiving the repo", "Archive the repo"}, publishing},
    {"repo", "edit", {"Changing the repo settings", "Change the repo settings"}, publishing},
    {"repo", "delete", {"Deleting a GitHub repo", "Delete a GitHub repo"}, deleting},
    {"release", "create", {"Publishing a release", "Publish a release"}, publishing},
    {"release", "delete", {"Deleting a release", "Delete a release"}, deleting},
    {"gist", "create", {"Creating a gist", "Create a gist"}, publishing},
    {"workflow", "run", kStartWorkflow, services},
    {"run", "rerun", kStartWorkflow, services},
    {"run", "cancel", kStartWorkflow, services},
    {"secret", "set", kChangeSecret, services},
    {"secret", "delete", kChangeSecret, services},
    {"variable", "set", kChangeSecret, services},
    {"variable", "delete", kChangeSecret, services},
};

constexpr std::string_view kPackageManagerValueOptionWords[] = {
    "--cwd", "--dir", "--filter", "--prefix", "--workspace", "-C", "-F", "-w"};
static_assert(std::ranges::is_sorted(kPackageManagerValueOptionWords));

constexpr std::string_view kRunFormPackageManagerWords[] = {"bun", "npm", "pnpm", "yarn"};
static_assert(std::ranges::is_sorted(kRunFormPackageManagerWords));

constexpr std::string_view kMakeValueOptionWords[] = {
    "--assume-new", "--assume-old", "--directory", "--file",    "--include-dir",
    "--makefile",   "--new-file",   "--old-file",  "--what-if", "-C",
    "-I",           "-W",           "-f",          "-o"};
static_assert(std::ranges::is_sorted(kMakeValueOptionWords));

constexpr std::string_view kBuildDirectoryWords[] = {
    ".build", ".cache",   ".next", ".turbo",       "DerivedData", "__pycache__",
    "build",  "coverage", "dist",  "node_modules", "out",         "target"};
static_assert(std::ranges::is_sorted(kBuildDirectoryWords));

constexpr std::string_view kTemporaryLocationPrefixes[] = {
    "/tmp/", "/private/tmp/", "/var/folders/", "/private/var/folders/", "$TMPDIR", "${TMPDIR"};

constexpr std::string_view kFindCommandActionWords[] = {"-exec", "-execdir", "-ok", "-okdir"};
static_assert(std::ranges::is_sorted(kFindCommandActionWords));

constexpr std::string_view kWritingHTTPMethodWords[] = {"DELETE", "PATCH", "POST", "PUT",
                                                        "delete", "patch", "post", "put"};
static_assert(std::ranges::is_sorted(kWritingHTTPMethodWords));

constexpr std::string_view kCurlBodyOptionWords[] = {"--form", "--json", "--upload-file",
                                                     "-F",     "-T",     "-d"};
static_assert(std::ranges::is_sorted(kCurlBodyOptionWords));

constexpr std::string_view kLocalHostWords[] = {"0.0.0.0", "127.0.0.1", "[::1]", "localhost"};
static_assert(std::ranges::is_sorted(kLocalHostWords));

constexpr PhraseText kClosePane{"Closing a pane", "Close a pane"};
constexpr PhraseText kCloseWorkspace{"Closing a workspace", "Close a workspace"};
constexpr PhraseText kStopAgent{"Stopping an agent", "Stop an agent"};
constexpr PhraseText kInstructAgent{"Sending instructions to an agent",
                                    "Send instructions to an agent"};

constexpr SubcommandAction kQuarnActionRows[] = {
    {"pane", "close", kClosePane, closing},
    {"pane", "kill", kClosePane, closing},
    {"tab", "close", {"Closing a tab", "Close a tab"}, closing},
    {"workspace", "close", kCloseWorkspace, closing},
    {"workspace", "delete", kCloseWorkspace, closing},
    {"agent", "stop", kStopAgent, closing},
    {"agent", "kill", kStopAgent, closing},
    {"server", "stop", {"Stopping Quarn", "Stop Quarn"}, closing},
    {"agent", "prompt", kInstructAgent, agent_prompts},
    {"pane", "run", kInstructAgent, agent_prompts},
    {"pane", "send-keys", kInstructAgent, agent_prompts},
    {"pane", "send-text", kInstructAgent, agent_prompts},
};

constexpr std::string_view kTmuxValueOptionWords[] = {"-L", "-S", "-T", "-c", "-f"};
static_assert(std::ranges::is_sorted(kTmuxValueOptionWords));

constexpr std::string_view kCurlLongValueOptionWords[] = {
    "--cacert",      "--cert",        "--config",      "--connect-timeout",
    "--connect-to",  "--cookie",      "--cookie-jar",  "--data",
    "--data-ascii",  "--data-binary", "--data-raw",    "--data-urlencode",
    "--dump-header", "--form",        "--form-string", "--header",
    "--json",        "--key",         "--max-time",    "--oauth2-bearer",
    "--output",      "--output-dir",  "--proxy",       "--range",
    "--referer",     "--request",     "--resolve",     "--retry",
    "--unix-socket", "--upload-file", "--url",         "--user",
    "--user-agent",  "--write-out"};
static_assert(std::ranges::is_sorted(kCurlLongValueOptionWords));

constexpr std::string_view kWgetLongValueOptionWords[] = {
    "--body-data", "--body-file", "--header",    "--method", "--output-document", "--output-file",
    "--password",  "--post-data", "--post-file", "--user",   "--user-agent"};
static_assert(std::ranges::is_sorted(kWgetLongValueOptionWords));

constexpr std::string_view kHTTPieValueOptionWords[] = {"--auth",
                                                        "--auth-type",
                                                        "--cert",
                                                        "--cert-key",
                                                        "--format-options",
                                                        "--output",
                                                        "--pretty",
                                                        "--print",
                                                        "--proxy",
                                                        "--session",
                                                        "--session-read-only",
                                                        "--style",
                                                        "--timeout",
                                                        "--verify",
                                                        "-A",
                                                        "-a",
                                                        "-o",
                                                        "-p",
                                                        "-s"};
static_assert(std::ranges::is_sorted(kHTTPieValueOptionWords));

}  // namespace

const std::span<const ProgramRuleRow> kProgramRules = kProgramRuleRows;
const SortedWords kShellKeywords = kShellKeywordWords;
const SortedWords kShells = kShellWords;
const SortedWords kShellValueOptions = kShellValueOptionWords;
const SortedWords kScriptExtensions = kScriptExtensionWords;
const std::span<const CommandLauncher> kLaunchers = kLauncherRows;
const SortedWords kLauncherPrintOnlyOptions = kLauncherPrintOnlyOptionWords;
const SortedWords kParallelArgumentSeparators = kParallelArgumentSeparatorWords;
const SortedWords kAssigningBuiltins = kAssigningBuiltinWords;
const SortedWords kGitValueOptions = kGitValueOptionWords;
const SortedWords kGitHubQuietValueOptions = kGitHubQuietValueOptionWords;
const SortedWords kGitHubAPIBodyOptions = kGitHubAPIBodyOptionWords;
const std::span<const SubcommandAction> kGitHubActions = kGitHubActionRows;
const SortedWords kPackageManagerValueOptions = kPackageManagerValueOptionWords;
const SortedWords kRunFormPackageManagers = kRunFormPackageManagerWords;
const SortedWords kMakeValueOptions = kMakeValueOptionWords;
const SortedWords kBuildDirectories = kBuildDirectoryWords;
const std::span<const std::string_view> kTemporaryLocations = kTemporaryLocationPrefixes;
const SortedWords kFindCommandActions = kFindCommandActionWords;
const SortedWords kWritingHTTPMethods = kWritingHTTPMethodWords;
const SortedWords kCurlBodyOptions = kCurlBodyOptionWords;
const SortedWords kLocalHosts = kLocalHostWords;
const std::string_view kSSHValueOptionLetters = "BbcDEeFIiJLlmOoPpQRSWw";
const std::span<const SubcommandAction> kQuarnActions = kQuarnActionRows;
const SortedWords kTmuxValueOptions = kTmuxValueOptionWords;
const std::string_view kCurlValueOptionLetters = "AbCcDdEeFHKmoPQrTtUuwXxYyz";
const SortedWords kCurlLongValueOptions = kCurlLongValueOptionWords;
const std::string_view kWgetValueOptionLetters = "ABDIOPQRTUXaeilotw";
const SortedWords kWgetLongValueOptions = kWgetLongValueOptionWords;
const SortedWords kHTTPieValueOptions = kHTTPieValueOptionWords;

}  // namespace ShellWords

namespace ShellPhrases {

const PhraseText kPush{"Pushing the branch", "Push the branch"};
const PhraseText kForcePush{"Force-pushing the branch", "Force-push the branch"};
const PhraseText kDeleteRemoteBranch{"Deleting a remote branch", "Delete a remote branch"};
const PhraseText kDiscardLocalChanges{"Discarding local changes", "Discard local changes"};
const PhraseText kDeleteUntrackedFiles{"Deleting untracked files", "Delete untracked files"};
const PhraseText kDeleteBranch{"Deleting a branch", "Delete a branch"};
const PhraseText kDiscardFileChanges{"Discarding file changes", "Discard file changes"};
const PhraseText kDropStash{"Dropping a stash", "Drop a stash"};
const PhraseText kDeleteWorktree{"Deleting a worktree", "Delete a worktree"};
const PhraseText kCallGitHubAPI{"Calling the GitHub API", "Call the GitHub API"};
const PhraseText kPublishPackage{"Publishing the package", "Publish the package"};
const PhraseText kUnpublishPackage{"Unpublishing the package", "Unpublish the package"};
const PhraseText kDeployToCloudflare{"Deploying to Cloudflare", "Deploy to Cloudflare"};
const PhraseText kRunRelease{"Running the release", "Run the release"};
const PhraseText kDeleteFiles{"Deleting files", "Delete files"};
const PhraseText kCloseTmuxSession{"Closing a tmux session", "Close a tmux session"};
const PhraseText kQuitApp{"Quitting an app", "Quit an app"};
const PhraseText kCloseWindow{"Closing a window", "Close a window"};
const PhraseText kSendWebRequest{"Sending a web request", "Send a web request"};

}  // namespace ShellPhrases

namespace MCPToolWords {
namespace {

constexpr std::string_view kReadingVerbWords[] = {"get",
                                                  "list",
                                                  "search",
                                                  "read",
                                                  "fetch",
                                                  "lookup",
                                                  "query",
                                                  "describe",
                                                  "whoami",
                                                  "aggregate",
                                                  "analyze",
                                                  "check",
                                                  "view",
                                                  "find",
                                                  "count",
                                                  "export",
                                                  "download",
                                                  "authenticate",
                                                  "complete_authentication",
                                                  "guide",
                                                  "discover",
                                                  "load",
                                                  "show"};

constexpr std::string_view kDeletingWordList[] = {"delete", "destructive", "remove", "trash"};
static_assert(std::ranges::is_sorted(kDeletingWordList));

constexpr std::string_view kSendingWordList[] = {"forward", "post", "reply", "schedule", "send"};
static_assert(std::ranges::is_sorted(kSendingWordList));

constexpr std::string_view kMailWordList[] = {"email", "gmail", "mail"};
static_assert(std::ranges::is_sorted(kMailWordList));

constexpr std::string_view kCalendarWritingWordList[] = {"create", "update"};
static_assert(std::ranges::is_sorted(kCalendarWritingWordList));

constexpr std::string_view kActingVerbWords[] = {
    "add",     "append",  "apply",     "approve",    "archive", "assign",  "bulk",   "close",
    "comment", "create",  "duplicate", "edit",       "execute", "invite",  "link",   "merge",
    "move",    "publish", "push",      "reject",     "rename",  "restart", "revoke", "set",
    "share",   "submit",  "terminate", "transition", "trigger", "update",  "upload", "write"};
static_assert(std::ranges::is_sorted(kActingVerbWords));

constexpr std::string_view kDetailArgumentKeyWords[] = {"text", "message", "summary", "title",
                                                        "name", "subject", "query"};

constexpr MCPProvider kProviderRows[] = {
    {"slack", "Slack"},
    {"google", "Google"},
    {"gmail", "Gmail"},
    {"atlassian", "Atlassian"},
    {"launchdarkly", "LaunchDarkly"},
    {"github", "GitHub"},
    {"linear", "Linear"},
    {"notion", "Notion"},
    {"figma", "Figma"},
    {"datadog", "Datadog"},
    {"vercel", "Vercel"},
    {"cloudflare", "Cloudflare"},
    {"netlify", "Netlify"},
};

}  // namespace

const std::span<const std::string_view> kReadingVerbs = kReadingVerbWords;
const SortedWords kDeletingWords = kDeletingWordList;
const SortedWords kSendingWords = kSendingWordList;
const SortedWords kMailWords = kMailWordList;
const SortedWords kCalendarWritingWords = kCalendarWritingWordList;
const SortedWords kActingVerbs = kActingVerbWords;
const std::span<const std::string_view> kDetailArgumentKeys = kDetailArgumentKeyWords;
const std::span<const MCPProvider> kProviders = kProviderRows;
const std::string_view kAssistantServerPrefix = "claude_ai_";
const std::string_view kPluginServerPrefix = "plugin_";

}  // namespace MCPToolWords

}  // namespace orvo
