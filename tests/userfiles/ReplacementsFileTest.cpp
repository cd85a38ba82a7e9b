#include "userfiles/ReplacementsFile.h"

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

const std::string kMarker = "# VOICE_MODE_REPLACEMENT_ESCAPES_V1\n";

TEST(ReplacementsFileTest, ParsesEntriesAndSaysWhyALineCannotBeUsed) {
    using Entries = std::vector<std::tuple<std::size_t, std::string, std::string>>;
    using Invalid = std::vector<std::pair<std::size_t, std::string>>;
    const struct {
        std::string name;
        std::string file;
        bool escapes;
        Entries entries;
        Invalid invalid;
    } cases[] = {
        {"plain text keeps backslashes",
         "open ai\tOpenAI\npath\tC:\\temp\\n\n",
         false,
         {{1, "open ai", "OpenAI"}, {2, "path", "C:\\temp\\n"}},
         {}},
        {"plain text keeps further tabs in the replacement",
         "a\tb\tc",
         false,
         {{1, "a", "b\tc"}},
         {}},
        {"escapes",
         kMarker + "sig\tBest,\\nJ\n a\\tb \tx\\\\y\\r\n",
         true,
         {{2, "sig", "Best,\nJ"}, {3, "a\tb", "x\\y\r"}},
         {}},
        {"bad escapes",
         kMarker + "a\tb\\q\na\\\tb\nx\\\n" + "c\tb\tz\n",
         true,
         {},
         {{2, "unknown escape \\q"},
          {3, "ends inside an escape; write a backslash as \\\\"},  // a raw tab is never escaped
          {4, "no tab between the spoken phrase and its replacement"},
          {5, "more than one tab; write a tab inside a text as \\t"}}},
        {"an escape cut off at the end",
         kMarker + "a\tb\\",
         true,
         {},
         {{2, "ends inside an escape; write a backslash as \\\\"}}},
        {"comments, blank lines and line endings",
         "\xEF\xBB\xBF# VOICE_MODE_REPLACEMENT_ESCAPES_V1\r\n\n  # note\r\n \t "
         "\nk8s\tKubernetes\r\n",
         true,
         {{5, "k8s", "Kubernetes"}},
         {}},
        {"the marker counts only on the first line",
         "\n" + kMarker + "a\tb\\n",
         false,
         {{3, "a", "b\\n"}},
         {}},
        {"unusable lines do not hide the rest",
         "caf\xE9\tx\n \tnothing spoken\nno tab\num\t\n",
         false,
         {{4, "um", ""}},
         {{1, "not valid UTF-8"},
          {2, "empty spoken phrase"},
          {3, "no tab between the spoken phrase and its replacement"}}},
        {"the last line for a phrase wins, ignoring case",
         "\xC3\x89"
         "cole\tA\nx\ty\n\xC3\xA9"
         "cole\tB\n",
         false,
         {{2, "x", "y"},
          {3,
           "\xC3\xA9"
           "cole",
           "B"}},
         {{1, "replaced by line 3, which has the same spoken phrase"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ReplacementsFile parsed = parseReplacements(c.file);
        EXPECT_EQ(parsed.escapes, c.escapes);
        Entries entries;
        for (const Replacement& entry : parsed.entries) {
            entries.emplace_back(entry.line, entry.spoken, entry.written);
        }
        EXPECT_EQ(entries, c.entries);
        Invalid invalid;
        for (const InvalidLine& line : parsed.invalidLines) {
            invalid.emplace_back(line.line, line.reason);
        }
        EXPECT_EQ(invalid, c.invalid);
    }
}

TEST(ReplacementsFileTest, ListsAPageOfTheMatchingEntries) {
    test::TempDir home;
    const std::filesystem::path file = replacementsFilePath(home.path());
    EXPECT_EQ(listReplacements(file, {}), json::parse(R"({"file":
        "~/.config/orvo-agent/replacements.txt","escapes":false,"total":0,"offset":0,
        "entries":[],"invalidLines":[]})"));

    test::writeFile(file, kMarker + "open ai\tOpenAI\nlater\tL8R\nxai\tnothing\ngpt\tGPT\n");
    const struct {
        std::string text;  // empty: no filter
        std::int64_t limit;
        std::int64_t offset;
        std::vector<std::size_t> lines;
        std::int64_t total;
        std::optional<std::int64_t> nextOffset;
    } cases[] = {
        {"", 100, 0, {2, 3, 4, 5}, 4, std::nullopt},
        {"", 2, 0, {2, 3}, 4, 2},
        {"", 2, 2, {4, 5}, 4, std::nullopt},
        {"", 2, 9, {}, 4, std::nullopt},
        {"Ai", 1, 0, {2}, 2, 1},
        {"l8r", 100, 0, {3}, 1, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.lines));
        ReplacementsQuery query;
        if (!c.text.empty()) {
            query.text = c.text;
        }
        query.limit = c.limit;
        query.offset = c.offset;
        const json result = listReplacements(file, query);
        std::vector<std::size_t> lines;
        for (const json& entry : result["entries"]) {
            lines.push_back(entry["line"]);
        }
        EXPECT_EQ(lines, c.lines);
        EXPECT_EQ(result["total"], c.total);
        EXPECT_EQ(result["escapes"], true);
        EXPECT_EQ(result.contains("nextOffset") ? std::optional(result["nextOffset"].get<int>())
                                                : std::nullopt,
                  c.nextOffset);
    }
    EXPECT_EQ(listReplacements(file, {"gpt", 1, 0})["entries"],
              json::parse(R"([{"line":5,"spoken":"gpt","written":"GPT"}])"));

    std::string broken;
    for (int i = 0; i < 60; ++i) {
        broken += "no tab\n";
    }
    test::writeFile(file, broken);
    const json many = listReplacements(file, {});
    EXPECT_EQ(many["invalidLines"].size(), 50u);
    EXPECT_EQ(many["invalidLineCount"], 60);

    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(listReplacements(file, {}),
              json({{"error", "could not read dictionary"},
                    {"details", "not a regular file"},
                    {"fix",
                     "Ask the user to check ~/.config/orvo-agent/replacements.txt: it must be a "
                     "readable file of at most 1 MB. Entries can be edited in the Dashboard."}}));
}

}  // namespace
}  // namespace orvo
