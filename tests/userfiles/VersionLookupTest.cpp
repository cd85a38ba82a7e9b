#include "userfiles/VersionLookup.h"

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

TEST(VersionLookupTest, FindsTheVersionFileBesideTheExecutable) {
    const struct {
        std::string name;
        std::vector<std::pair<std::string, std::string>> files;  // relative to the root
        std::string program;                                     // relative to the root
        std::string version;
    } cases[] = {
        {"installed layout", {{"A/Resources/VERSION", "1.4.2\n"}}, "A/B/program", "1.4.2"},
        {"whitespace-only resources file walks on",
         {{"A/Resources/VERSION", " \n\t"}, {"A/B/VERSION", "\n2.0\n"}},
         "A/B/program",
         "2.0"},
        {"walk finds a parent's file", {{"a/VERSION", "3.1"}}, "a/b/c/d/e/f/program", "3.1"},
        {"six directories counting its own",
         {{"a/VERSION", "3.1"}},
         "a/b/c/d/e/f/g/program",
         std::string(kFallbackVersion)},
        {"not UTF-8 counts as empty",
         {{"A/Resources/VERSION", "\xFF"}},
         "A/B/program",
         std::string(kFallbackVersion)},
        {"nothing anywhere", {}, "A/B/program", std::string(kFallbackVersion)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempDir root;
        for (const auto& [path, contents] : c.files) {
            test::writeFile(root.path() / path, contents);
        }
        test::writeFile(root.path() / c.program, "");
        EXPECT_EQ(lookupVersion((root.path() / c.program).string()), c.version);
    }
}

TEST(VersionLookupTest, ResolvesLinksAndRelativePaths) {
    test::TempDir root;
    test::writeFile(root.path() / "real/Resources/VERSION", "1.4.2\n");
    test::writeFile(root.path() / "real/bin/program", "");
    fs::create_directories(root.path() / "links/bin");
    fs::create_symlink(root.path() / "real/bin/program", root.path() / "links/bin/program");
    EXPECT_EQ(lookupVersion((root.path() / "links/bin/program").string()), "1.4.2");

    const fs::path previous = fs::current_path();
    fs::current_path(root.path() / "real");
    EXPECT_EQ(lookupVersion("bin/program"), "1.4.2");
    fs::current_path(previous);
}

}  // namespace
}  // namespace orvo
