#include "userfiles/PreferenceNotes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

TEST(PreferenceNotesTest, NormalisesLineBreaksAndTrimsUnicodeWhitespace) {
    const struct {
        std::string note, normalized;
    } cases[] = {
        {"  likes tabs\r\nnot spaces \n", "likes tabs not spaces"},
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

std::ptrdiff_t entryCount(const fs::path& directory) {
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

// Appends `note` to notes holding `existing` (none: no file, no directory): the result, and the
// notes after. Nothing but the notes may be left behind.
std::pair<json, std::optional<std::string>> remember(const std::optional<std::string>& existing,
                                                     const std::optional<std::string>& note) {
    test::TempDir home;
    const fs::path file = preferencesFilePath(home.path());
    if (existing) {
        test::writeFile(file, *existing);
    }
    const json result = rememberPreference(file, note);
    EXPECT_EQ(entryCount(home.path()), 1);
    EXPECT_EQ(entryCount(file.parent_path()), 1) << "a temporary file is left beside the notes";
    return {result, test::readFile(file)};
}

TEST(PreferenceNotesTest, AppendsOneLineOrLeavesTheFileAsItWas) {
    const std::string full(32754, 'x');  // with LF, "- ", 10 bytes and LF, exactly 32768
    const std::string family =
        "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
    const std::string n1024(1024, 'n');
    const struct {
        std::optional<std::string> existing, note;
        std::string result;
        std::optional<std::string> after = std::nullopt;  // none: the notes as they were
    } cases[] = {
        {std::nullopt, "note", R"({"char_count":7,"ok":true})", "- note\n"},
        {"", "note", R"({"char_count":7,"ok":true})", "- note\n"},
        {"a", "b", R"({"char_count":6,"ok":true})", "a\n- b\n"},
        {"a\n", "b", R"({"char_count":6,"ok":true})", "a\n- b\n"},
        {family + "\n", "x", R"({"char_count":6,"ok":true})", family + "\n- x\n"},  // one character
        // 1024 bytes once trimmed, then 1025 bytes in fewer characters.
        {"", "  " + n1024 + "\r\n", R"({"char_count":1027,"ok":true})", "- " + n1024 + "\n"},
        {"keep\n", "\xE2\x82\xAC" + std::string(1022, 'e'),
         R"({"error":"note exceeds 1 KB limit"})"},
        {"keep\n", " \r\n\t\xE2\x80\x83 ", R"({"error":"note must be non-empty after trimming"})"},
        {"keep\n", std::nullopt, R"({"error":"note is required"})"},
        {full + "\n", "0123456789", R"({"char_count":32768,"ok":true})",
         full + "\n- 0123456789\n"},  // exactly the cap
        {full + "y", "0123456789",    // the added line feed tips it
         R"x({"error":"preferences file is full (32 KB cap)",)x"
         R"("fix":"Ask the user to prune preferences.md before remembering more."})"},
        {"caf\xE9\n", "note",
         R"({"error":"preferences file is not valid UTF-8","fix":"Open )"
         R"(~/.config/orvo-agent/preferences.md and re-save as UTF-8 before remembering more )"
         "\u2014 appending now would overwrite the file.\"}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.result);
        const auto [result, after] = remember(c.existing, c.note);
        EXPECT_EQ(dumpCompact(result), c.result);
        EXPECT_TRUE(after == (c.after ? c.after : c.existing)) << "the notes differ";
    }
}

TEST(PreferenceNotesTest, ReadsTheWholeTextOrSaysWhyNot) {
    test::TempDir home;
    const fs::path file = preferencesFilePath(home.path());
    EXPECT_EQ(readPreferences(file), json({{"content", ""}, {"char_count", 0}}));

    test::writeFile(file, "sign as \xE2\x80\x94 J\r\n");
    EXPECT_EQ(readPreferences(file),
              json({{"content", "sign as \xE2\x80\x94 J\r\n"}, {"char_count", 12}}));
    test::writeFile(file, "caf\xE9");
    EXPECT_EQ(readPreferences(file)["details"], "the file is not valid UTF-8");

    // A file that cannot be read is never replaced.
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);  // read at once, it would block
    EXPECT_EQ(readPreferences(file),
              json({{"error", "could not read preferences"}, {"details", "not a regular file"}}));
    EXPECT_EQ(dumpCompact(rememberPreference(file, "note")),
              R"({"details":"not a regular file","error":"could not read existing preferences",)"
              R"("fix":"Open ~/.config/orvo-agent/preferences.md, fix permissions or contents, )"
              R"(then retry."})");

    // A hand-edited file past the append cap is still read whole.
    fs::remove(file);
    const std::string large(1536 * 1024, 'x');
    test::writeFile(file, large);
    EXPECT_EQ(readPreferences(file), json({{"content", large}, {"char_count", large.size()}}));
    EXPECT_EQ(rememberPreference(file, "note")["error"], "preferences file is full (32 KB cap)");
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
    EXPECT_EQ(test::readFile(real), "a\n- b\n");
    EXPECT_EQ(fs::status(real).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_FALSE(fs::exists(stale));
    EXPECT_TRUE(fs::exists(fresh)) << "a young one may still be moved into place by its writer";
    EXPECT_TRUE(fs::exists(unrelated));
    EXPECT_EQ(readPreferences(file), json({{"content", "a\n- b\n"}, {"char_count", 6}}));

    // A dangling link, relative here, gets its file created where it points.
    fs::remove(file);
    fs::create_symlink("../../dotfiles/new.md", file);
    EXPECT_EQ(rememberPreference(file, "c"), json({{"ok", true}, {"char_count", 4}}));
    EXPECT_EQ(test::readFile(real.parent_path() / "new.md"), "- c\n");
}

}  // namespace
}  // namespace orvo
