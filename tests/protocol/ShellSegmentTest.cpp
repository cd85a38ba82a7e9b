#include "protocol/ShellSegment.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

using Words = std::vector<std::string>;

// Each command's words, the first marked "|" when a pipe feeds the command.
std::vector<Words> wordsOf(std::string_view text) {
    std::vector<Words> out;
    for (const ShellSegment& segment : splitShellSegments(text)) {
        out.push_back(segment.pipedInput ? Words{"|"} : Words{});
        out.back().insert(out.back().end(), segment.words.begin(), segment.words.end());
    }
    return out;
}

// Separators cut only outside quotes and substitutions; redirections and their targets are not
// words, and words lose their quotes. What is left open runs to the end.
TEST(ShellSegmentTest, SplitsIntoCommandsOfWords) {
    const struct {
        std::string_view text;
        std::vector<Words> segments;
    } cases[] = {
        {"a 1 && b || c; d | e & f\ng |& h",
         {{"a", "1"}, {"b"}, {"c"}, {"d"}, {"|", "e"}, {"f"}, {"g"}, {"|", "h"}}},
        {"(cd x && git push)", {{"cd", "x"}, {"git", "push"}}},
        {"echo 'a;b' \"c|d\" e\\&f", {{"echo", "a;b", "c|d", "e&f"}}},
        {"x=$(a; b | c) y", {{"x=$(a; b | c)", "y"}}},
        {"echo $(a \"$(b ')')\" c); d", {{"echo", "$(a \"$(b ')')\" c)"}, {"d"}}},
        {"echo `a; b` c", {{"echo", "`a; b`", "c"}}},
        {"diff <(a; b) >(c)", {{"diff", "<(a; b)", ">(c)"}}},
        {"list=(a b; c) d", {{"list=(a b; c)", "d"}}},
        {"git \\\n  push", {{"git", "push"}}},
        {"ls # git push; rm -rf /\nwhoami", {{"ls"}, {"whoami"}}},
        {"echo a#b", {{"echo", "a#b"}}},
        {";; \n & ", {}},
        {"rm -rf build 2> err.log < in.txt", {{"rm", "-rf", "build"}}},
        {"make deploy &> log; ls", {{"make", "deploy"}, {"ls"}}},
        {"cmd >> out 1>&2 {fd}>x >| y <> z", {{"cmd"}}},
        {"echo a>b c", {{"echo", "a", "c"}}},
        {"echo \"2\">x", {{"echo", "2"}}},
        {"'git' \"push\" g\"i\"t'' \"\"", {{"git", "push", "git", ""}}},
        {"\"a b\" a\\ b", {{"a b", "a b"}}},
        {"\"\\$x \\\" \\n\"", {{"$x \" \\n"}}},
        {"$'a\\tb\\'c' $\"d\"", {{"a\tb'c", "d"}}},
        {"echo 'unterminated; rm", {{"echo", "unterminated; rm"}}},
        {"echo \"open $(git push", {{"echo", "open $(git push"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(wordsOf(c.text), c.segments);
    }
}

// Substitutions are recorded where the shell runs them; here-documents belong to the command
// that reads them.
TEST(ShellSegmentTest, RecordsSubstitutionsAndHereDocuments) {
    EXPECT_EQ(splitShellSegments("x=$(git push) \"$(rm -rf a)\" '$(not run)' `b` <(c) $((1+2))")[0]
                  .substitutions,
              (std::vector<std::string_view>{"git push", "rm -rf a", "b", "c", "(1+2)"}));

    const std::string_view text =
        "bash <<EOF\ngit push; rm -rf x\n$(y)\nEOF\nls <<-'END' | wc\n\tz\n\tEND\necho "
        "<<< \"git push\"";
    ASSERT_EQ(wordsOf(text), (std::vector<Words>{{"bash"}, {"ls"}, {"|", "wc"}, {"echo"}}));
    const std::vector<ShellSegment> segments = splitShellSegments(text);
    EXPECT_EQ(segments[0].inputs, Words{"git push; rm -rf x\n$(y)\n"});
    EXPECT_EQ(segments[0].text, "bash <<EOF\ngit push; rm -rf x\n$(y)\nEOF\n");
    EXPECT_EQ(segments[0].substitutions, std::vector<std::string_view>{"y"});
    EXPECT_EQ(segments[1].inputs, Words{"\tz\n"});  // quoted delimiter: no substitution
    EXPECT_TRUE(segments[1].substitutions.empty());
    EXPECT_EQ(segments[3].inputs, Words{"git push"});
    // An unterminated one runs to the end, so none of its lines is a command.
    const std::vector<ShellSegment> open = splitShellSegments("cat <<EOF\na; b\nc");
    ASSERT_EQ(open.size(), 1u);
    EXPECT_EQ(open[0].inputs, Words{"a; b\nc"});
}

}  // namespace
}  // namespace orvo
