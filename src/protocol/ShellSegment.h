// A shell command line cut into simple commands and their words, read the way the shell reads it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvo {

// One simple command of a command line.
struct ShellSegment {
    // The command as written, up to the separator that ends it, or on to the end of the
    // here-documents it reads. Points into the text that was split.
    std::string_view text;
    // Its words with quotes and escapes removed; redirections and their targets are left out.
    std::vector<std::string> words;
    // What it reads as input: here-document bodies and here-string words.
    std::vector<std::string> inputs;
    // Command text that the shell runs before the command itself: the inside of $( ),
    // backquotes and <( ) >( ), and of $( ) in an unquoted here-document.
    std::vector<std::string_view> substitutions;
    // Whether its input is the output of the segment before it, through a pipe.
    bool pipedInput = false;
};

// The simple commands of `text` in order. Newlines, ";", "&", "|", "(" and ")" separate them
// unless quoted, escaped or inside a substitution; comments are dropped; an unterminated quote or
// substitution runs to the end. Takes time linear in the length of `text`, whatever its nesting.
std::vector<ShellSegment> splitShellSegments(std::string_view text);

}  // namespace orvo
