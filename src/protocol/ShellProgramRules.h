// The rules that read one program's arguments for a held action, one function per program family.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "protocol/ActionHoldMatch.h"

namespace orvo {

struct HeldAction {
    ActionHoldCategory category;
    ActionHoldPhrase phrase;
};

// The words after the program word, quotes removed.
using ShellArguments = std::span<const std::string>;

// The name a program word runs: its last path component, cut before an "@" version.
std::string_view programName(std::string_view word);

// What a shell was asked to run: a command string (-c), a script, or commands read from input.
struct ShellInvocation {
    std::optional<std::string_view> commandString;
    std::optional<std::string_view> script;
    bool readsInput = false;
};
ShellInvocation readShellInvocation(ShellArguments arguments);

// The words as shell text that reads back as the same words: `sh -c 'git push'`.
std::string quotedCommandLine(ShellArguments words);

// The commands that find runs for what it finds (-exec, -execdir, -ok, -okdir), as shell text, one
// a line. Those run by `rm` are left to findAction, which knows where find looks.
std::string findCommands(ShellArguments arguments);

// The commands that parallel runs, given the words after its options, as shell text, one a line;
// none when the commands themselves come from its input (`... | parallel`).
std::optional<std::string> parallelCommands(ShellArguments words);

// The remote command of an ssh invocation, after its options and destination.
ShellArguments sshRemoteCommand(ShellArguments arguments);

std::optional<HeldAction> gitAction(ShellArguments arguments);
std::optional<HeldAction> githubAction(ShellArguments arguments);
std::optional<HeldAction> packagePublishingAction(std::string_view program,
                                                  ShellArguments arguments);
std::optional<HeldAction> wranglerAction(ShellArguments arguments);
std::optional<HeldAction> makeAction(ShellArguments arguments);
std::optional<HeldAction> scriptNameAction(std::string_view scriptPath);
std::optional<HeldAction> pythonAction(ShellArguments arguments);
// The module and its arguments when python runs a module (`python3 -m twine upload`), else empty.
ShellArguments pythonModuleCommand(ShellArguments arguments);
// `moreTargetsFromInput`: xargs adds targets that cannot be seen here.
std::optional<HeldAction> rmAction(ShellArguments arguments, bool moreTargetsFromInput);
std::optional<HeldAction> findAction(ShellArguments arguments);
std::optional<HeldAction> quarnAction(ShellArguments arguments);
std::optional<HeldAction> tmuxAction(ShellArguments arguments);
std::optional<HeldAction> osascriptAction(ShellArguments arguments);
std::optional<HeldAction> webRequestAction(std::string_view program, ShellArguments arguments);

}  // namespace orvo
