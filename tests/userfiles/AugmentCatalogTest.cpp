#include "userfiles/AugmentCatalog.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

TEST(AugmentCatalogTest, ParsesFrontmatterAndDirectiveOrSaysWhyNot) {
    const std::string d2000(2000, 'd');
    const std::string head = "---\nname: n\n";
    const struct {
        std::string text;
        std::string expected;  // the listing entry with its directive, or the reason
    } cases[] = {
        {"---\nname: Brief replies\nkind: length\ndescription: Two sentences.\n---\n\n" + d2000,
         R"({"description":"Two sentences.","directive":")" + d2000 +
             R"(","id":"brief","kind":"length","name":"Brief replies","source":"builtin"})"},
        // The byte-order mark, line endings, quotes, comments and unknown keys.
        {"\xEF\xBB\xBF---\r\n# shown in the Dashboard\r\nname: \"Pirate: arr\"\r\nicon: x\r\n\r\n"
         "kind: ''\r\n---\r\nTalk like a pirate.\r\n",
         R"({"directive":"Talk like a pirate.","id":"brief","name":"Pirate: arr",)"
         R"("source":"builtin"})"},
        {"name: n\nDo it.", "the file must start with a line --- that opens the frontmatter"},
        {head + "kind: tone\n", "the frontmatter is not closed by a line ---"},
        {head + "just words\n---\nDo it.", "line 3 is not \"key: value\""},
        {head + "name: b\n---\nDo it.", "the key name appears twice"},
        {"---\nname:\nkind: tone\n---\nDo it.", "no name in the frontmatter"},
        {"---\nname: " + std::string(81, 'n') + "\n---\nx", "the name is longer than 80 bytes"},
        {head + "kind: Tone\n---\nDo it.",
         "the kind must be lowercase letters, digits and hyphens, at most 32 bytes"},
        {head + "description: " + std::string(301, 'd') + "\n---\nx",
         "the description is longer than 300 bytes"},
        {head + "---\n \n\t\n", "no directive after the frontmatter"},
        {head + "---\n" + d2000 + "d", "the directive is longer than 2000 bytes"},
        {"---\nname: caf\xE9\n---\nx", "not valid UTF-8"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 60));
        std::variant<Augment, std::string> parsed = parseAugmentFile("brief", c.text);
        if (Augment* augment = std::get_if<Augment>(&parsed)) {
            const AugmentCatalog catalog{{*augment}, {}, false};
            EXPECT_EQ(dumpCompact(listAugments(catalog, std::nullopt, true)["augments"][0]),
                      c.expected);
        } else {
            EXPECT_EQ(std::get<std::string>(parsed), c.expected);
        }
    }
}

TEST(AugmentCatalogTest, ListsBothDirectoriesAndEveryFileItCannotUse) {
    test::TempDir root;
    const fs::path builtin = root.path() / "Resources" / "augments";
    const fs::path user = root.path() / "augments";
    EXPECT_EQ(
        dumpCompact(listAugments(loadAugmentCatalog(builtin, user), std::nullopt, false)),
        R"({"augments":[],"invalidFiles":[],"userDirectory":"~/.config/orvo-agent/augments"})");

    const auto augment = [](std::string name, std::string kind) {
        return "---\nname: " + name + "\nkind: " + kind + "\n---\nDo " + name + ".\n";
    };
    test::writeFile(builtin / "brief.md", augment("Brief", "length"));
    test::writeFile(builtin / "zeta.md", "no frontmatter");
    test::writeFile(user / "brief.md", augment("My brief", "length"));
    test::writeFile(user / "mine.md", augment("Mine", "tone"));
    test::writeFile(user / "Bad Name.md", augment("Bad", "tone"));
    test::writeFile(user / "notes.txt", "not an augment");
    test::writeFile(user / ".draft.md", "hidden");
    ASSERT_EQ(::mkfifo((user / "pipe.md").c_str(), 0600), 0);

    const AugmentCatalog catalog = loadAugmentCatalog(builtin, user);
    EXPECT_EQ(listAugments(catalog, std::nullopt, false), json::parse(R"({
        "augments": [
            {"id": "brief", "name": "Brief", "kind": "length", "source": "builtin"},
            {"id": "mine", "name": "Mine", "kind": "tone", "source": "user"}],
        "invalidFiles": [
            {"file": "zeta.md", "source": "builtin",
             "reason": "the file must start with a line --- that opens the frontmatter"},
            {"file": "Bad Name.md", "source": "user",
             "reason": "the file name must be lowercase letters, digits and hyphens, then .md"},
            {"file": "brief.md", "source": "user",
             "reason": "the id is taken by a built-in augment; rename the file"},
            {"file": "pipe.md", "source": "user", "reason": "not a regular file"}],
        "userDirectory": "~/.config/orvo-agent/augments"})"));
    EXPECT_EQ(listAugments(catalog, "tone", true)["augments"],
              json::parse(R"([{"id": "mine", "name": "Mine", "kind": "tone", "source": "user",
                               "directive": "Do Mine."}])"));

    for (int i = 0; i < 200; ++i) {
        test::writeFile(user / (std::to_string(1000 + i) + ".md"), augment("A", "tone"));
    }
    const AugmentCatalog crowded = loadAugmentCatalog(std::nullopt, user);
    EXPECT_EQ(crowded.augments.size() + crowded.invalidFiles.size(), kMaxAugmentFiles);
    EXPECT_EQ(listAugments(crowded, std::nullopt, false)["truncated"], true);
}

}  // namespace
}  // namespace orvo
