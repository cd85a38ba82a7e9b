#include "userfiles/ReplacementsFile.h"

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

const std::string kMarker = "# VOICE_MODE_REPLACEMENT_ESCAPES_V1\n";

// One line per entry ("3 spoken => written") and per unusable line ("3 ! reason"), after
// "escapes" when the file uses them.
std::string described(const ReplacementsFile& parsed) {
    std::string text = parsed.escapes ? "escapes\n" : "";
    for (const Replacement& entry : parsed.entries) {
        text += std::to_string(entry.line) + " " + entry.spoken + " => " + entry.written + "\n";
    }
    for (const InvalidLine& line : parsed.invalidLines) {
        text += std::to_string(line.line) + " ! " + line.reason + "\n";
    }
    return text;
}

TEST(ReplacementsFileTest, ParsesEntriesAndSaysWhyALineCannotBeUsed) {
    const struct {
        std::string file, parsed;
    } cases[] = {
        // Plain text keeps backslashes, and further tabs belong to the replacement.
        {"open ai\tOpenAI\npath\tC:\\temp\\n\na\tb\tc",
         "1 open ai => OpenAI\n2 path => C:\\temp\\n\n3 a => b\tc\n"},
        {kMarker + "sig\tBest,\\nJ\n a\\tb \tx\\\\y\\r\n",
         "escapes\n2 sig => Best,\nJ\n3 a\tb => x\\y\r\n"},
        {kMarker + "a\tb\\q\na\\\tb\nx\\\n" + "c\tb\tz\n",
         "escapes\n2 ! unknown escape \\q\n"
         "3 ! ends inside an escape; write a backslash as \\\\\n"  // a raw tab is never escaped
         "4 ! no tab between the spoken phrase and its replacement\n"
         "5 ! more than one tab; write a tab inside a text as \\t\n"},
        {kMarker + "a\tb\\", "escapes\n2 ! ends inside an escape; write a backslash as \\\\\n"},
        // Comments, blank lines and line endings.
        {"\xEF\xBB\xBF# VOICE_MODE_REPLACEMENT_ESCAPES_V1\r\n\n  # note\r\n \t "
         "\nk8s\tKubernetes\r\n",
         "escapes\n5 k8s => Kubernetes\n"},
        {"\n" + kMarker + "a\tb\\n", "3 a => b\\n\n"},  // the marker counts only on line 1
        // Unusable lines do not hide the rest.
        {"caf\xE9\tx\n \tnothing spoken\nno tab\num\t\n",
         "4 um => \n1 ! not valid UTF-8\n2 ! empty spoken phrase\n"
         "3 ! no tab between the spoken phrase and its replacement\n"},
        // The last line for a phrase wins, ignoring case.
        {"\xC3\x89"
         "cole\tA\nx\ty\n\xC3\xA9"
         "cole\tB\n",
         "2 x => y\n3 \xC3\xA9"
         "cole => B\n1 ! replaced by line 3, which has the same spoken phrase\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        EXPECT_EQ(described(parseReplacements(c.file)), c.parsed);
    }
}

TEST(ReplacementsFileTest, ListsAPageOfTheMatchingEntries) {
    test::TempDir home;
    const std::filesystem::path file = replacementsFilePath(home.path());
    EXPECT_EQ(listReplacements(file, {}), json::parse(R"({"file":
        "~/.config/orvo-agent/replacements.txt","escapes":false,"total":0,"offset":0,
        "entries":[],"invalidLines":[]})"));

    test::writeFile(file, kMarker + "open ai\tOpenAI\nlater\tL8R\nxai\tnothing\ngpt\tGPT\n");
    // The lines of a page's entries, the total matched and the next page's offset.
    const struct {
        std::string text;  // empty: every entry
        std::int64_t limit, offset;
        std::string page;
    } cases[] = {
        {"", 100, 0, "2 3 4 5 of 4"}, {"", 2, 0, "2 3 of 4, next 2"}, {"", 2, 2, "4 5 of 4"},
        {"", 2, 9, "of 4"},           {"Ai", 1, 0, "2 of 2, next 1"}, {"l8r", 100, 0, "3 of 1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.page);
        const std::optional<std::string> text =
            c.text.empty() ? std::nullopt : std::optional<std::string>(c.text);
        const json result = listReplacements(file, {text, c.limit, c.offset});
        std::string page;
        for (const json& entry : result["entries"]) {
            page += entry["line"].dump() + " ";
        }
        page += "of " + result["total"].dump();
        if (result.contains("nextOffset")) {
            page += ", next " + result["nextOffset"].dump();
        }
        EXPECT_EQ(page, c.page);
    }
    EXPECT_EQ(listReplacements(file, {"gpt", 1, 0}), json::parse(R"({"file":
        "~/.config/orvo-agent/replacements.txt","escapes":true,"total":1,"offset":0,
        "entries":[{"line":5,"spoken":"gpt","written":"GPT"}],"invalidLines":[]})"));

    std::string broken;
    for (int i = 0; i < 60; ++i) {
        broken += "no tab\n";
    }
    test::writeFile(file, broken);
    const json many = listReplacements(file, {});
    EXPECT_EQ(many["invalidLines"].size(), 50u);
    EXPECT_EQ(many["invalidLineCount"], 60);
}

}  // namespace
}  // namespace orvo
