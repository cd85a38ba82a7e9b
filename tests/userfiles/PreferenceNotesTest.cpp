#include "userfiles/PreferenceNotes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

TEST(PreferenceNotesTest, NormalisesLineBreaksAndTrimsUnicodeWhitespace) {
    const struct {
        std::string note;
        std::string normalized;
    } cases[] = {
        {"  likes tabs\r\nnot spaces \n", "likes tabs not spaces"},
        {"a\rb", "a\rb"},
        {"\ra\r", "a"},
        {"a\r\r\nb", "a\r b"},
        {"a\n\nb", "a  b"},
        {"\xC2\xA0\xE2\x80\x83note\xE2\x80\xA8\xE3\x80\x80\xC2\x85\t\v\f", "note"},
        {"\xE2\x80\x8Bnote", "\xE2\x80\x8Bnote"},  // a zero-width space is not white space
        {"x\xFF ", "x\xFF"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.note));
        EXPECT_EQ(normalizePreferenceNote(c.note), c.normalized);
    }
}

TEST(PreferenceNotesTest, AppendsOneLineOrRefusesAndLeavesTheFileAsItWas) {
    const std::string full(32754, 'x');  // with LF, "- ", 10 bytes and LF, exactly 32768
    const struct {
        std::string name;
        std::optional<std::string> existing;  // absent: no file, and no directory either
        std::optional<std::string> note;
        json result;
        std::optional<std::string> after;  // absent: the file is unchanged
    } cases[] = {
        {"missing directory is created",
         std::nullopt,
         "note",
         {{"ok", true}, {"char_count", 7}},
         "- note\n"},
        {"empty file", "", "note", {{"ok", true}, {"char_count", 7}}, "- note\n"},
        {"no final line feed",
         "a",
         "  likes tabs\r\nnot spaces \n",
         {{"ok", true}, {"char_count", 26}},
         "a\n- likes tabs not spaces\n"},
        {"final line feed kept", "a\n", "b", {{"ok", true}, {"char_count", 6}}, "a\n- b\n"},
        {"one emoji of several code points is one character",
         "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7\n",
         "x",
         {{"ok", true}, {"char_count", 6}},
         "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7\n- x\n"},
        {"exactly 1024 bytes after trimming",
         "",
         "  " + std::string(1024, 'n') + "\r\n",
         {{"ok", true}, {"char_count", 1027}},
         "- " + std::string(1024, 'n') + "\n"},
        {"1026 bytes",
         "keep\n",
         [] {
             std::string note;
             for (int i = 0; i < 342; ++i) {
                 note += "\xE2\x82\xAC";
             }
             return note;
         }(),
         {{"error", "note exceeds 1 KB limit"}},
         std::nullopt},
        {"white space only",
         "keep\n",
         " \r\n\t\xE2\x80\x83 ",
         {{"error", "note must be non-empty after trimming"}},
         std::nullopt},
        {"no note", "keep\n", std::nullopt, {{"error", "note is required"}}, std::nullopt},
        {"exactly the cap after the append",
         full + "\n",
         "0123456789",
         {{"ok", true}, {"char_count", 32768}},
         full + "\n- 0123456789\n"},
        {"the added line feed pushes it over",
         full + "y",
         "0123456789",
         {{"error", "preferences file is full (32 KB cap)"},
          {"fix", "Ask the user to prune preferences.md before remembering more."}},
         std::nullopt},
        {"Latin-1 file",
         "caf\xE9\n",
         "note",
         {{"error", "preferences file is not valid UTF-8"},
          {"fix",
           "Open ~/.config/orvo-agent/preferences.md and re-save as UTF-8 before remembering "
           "more \u2014 appending now would overwrite the file."}},
         std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempDir home;
        const fs::path file = preferencesFilePath(home.path());
        if (c.existing) {
            test::writeFile(file, *c.existing);
        }
        EXPECT_EQ(rememberPreference(file, c.note), c.result);
        const std::optional<std::string> expected = c.after ? c.after : c.existing;
        const std::optional<std::string> actual = test::readFile(file);
        if (actual && expected && actual->size() > 200) {
            EXPECT_TRUE(actual == expected) << "a long file differs from the expected one";
        } else {
            EXPECT_EQ(actual, expected);
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(home.path()), fs::directory_iterator()), 1)
            << "nothing but .config is left in the home";
        if (c.after || c.existing) {
            EXPECT_EQ(
                std::distance(fs::directory_iterator(file.parent_path()), fs::directory_iterator()),
                1)
                << "no temporary file is left beside the notes";
        }
    }
}

TEST(PreferenceNotesTest, ReadsTheWholeTextOrSaysWhyNot) {
    test::TempDir home;
    const fs::path file = preferencesFilePath(home.path());
    EXPECT_EQ(readPreferences(file), json({{"content", ""}, {"char_count", 0}}));
    test::writeFile(home.path() / ".config", "a file where the directory should be");
    EXPECT_EQ(readPreferences(file), json({{"content", ""}, {"char_count", 0}}));
    const json refused = rememberPreference(file, "note");
    EXPECT_EQ(refused["error"], "could not write preferences");
    EXPECT_EQ(refused["details"],
              "creating " + file.parent_path().string() + ": Not a directory (errno 20)");
    fs::remove(home.path() / ".config");

    test::writeFile(file, "sign as \xE2\x80\x94 J\r\n");
    EXPECT_EQ(readPreferences(file),
              json({{"content", "sign as \xE2\x80\x94 J\r\n"}, {"char_count", 12}}));

    const struct {
        std::string name;
        std::function<void()> plant;
        std::string details;
    } cases[] = {
        {"not UTF-8", [&] { test::writeFile(file, "caf\xE9"); }, "the file is not valid UTF-8"},
        {"a FIFO does not block",
         [&] {
             fs::remove(file);
             ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
         },
         "not a regular file"},
        {"over a megabyte",
         [&] {
             fs::remove(file);
             test::writeFile(file, std::string(1048577, 'x'));
         },
         "the file is larger than 1048576 bytes"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        c.plant();
        EXPECT_EQ(readPreferences(file),
                  json({{"error", "could not read preferences"}, {"details", c.details}}));
        if (c.details != "the file is not valid UTF-8") {
            EXPECT_EQ(rememberPreference(file, "note"),
                      json({{"error", "could not read existing preferences"},
                            {"details", c.details},
                            {"fix",
                             "Open ~/.config/orvo-agent/preferences.md, fix permissions or "
                             "contents, then retry."}}));
        }
    }
}

TEST(PreferenceNotesTest, RewriteKeepsLinksAndPermissionsAndClearsStaleTemporaries) {
    test::TempDir home;
    const fs::path file = preferencesFilePath(home.path());
    const fs::path real = home.path() / "dotfiles" / "preferences.md";
    test::writeFile(real, "a\n");
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_directories(file.parent_path());
    fs::create_symlink(real, file);

    // Temporary files are made beside the file the link points to.
    const fs::path stale = real.parent_path() / ".preferences.md.tmp-99999-0";
    const fs::path fresh = real.parent_path() / ".preferences.md.tmp-99999-1";
    const fs::path unrelated = real.parent_path() / ".settings.json.tmp-1";
    for (const fs::path& path : {stale, fresh, unrelated}) {
        test::writeFile(path, "- half a li");
    }
    for (const fs::path& path : {stale, unrelated}) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::minutes(2));
    }

    EXPECT_EQ(rememberPreference(file, "b"), json({{"ok", true}, {"char_count", 6}}));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(test::readFile(real), "a\n- b\n");
    EXPECT_EQ(fs::status(real).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_FALSE(fs::exists(stale));
    EXPECT_TRUE(fs::exists(fresh)) << "a young one may still be moved into place by its writer";
    EXPECT_TRUE(fs::exists(unrelated));
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), fs::directory_iterator()),
              1);
    EXPECT_EQ(readPreferences(file), json({{"content", "a\n- b\n"}, {"char_count", 6}}));
}

}  // namespace
}  // namespace orvo
