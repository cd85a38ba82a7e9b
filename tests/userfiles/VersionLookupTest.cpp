#include "userfiles/VersionLookup.h"

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

TEST(VersionLookupTest, FindsTheVersionFileBesideTheExecutableOrItsLink) {
    const std::string none(kFallbackVersion);
    const struct {
        std::vector<std::pair<std::string, std::string>> files;  // paths relative to the root
        std::string program, version;
    } cases[] = {
        {{{"A/Resources/VERSION", "1.4.2\n"}}, "A/B/program", "1.4.2"},  // installed layout
        {{{"A/Resources/VERSION", " \n\t"}, {"A/B/VERSION", "\n2.0\n"}}, "A/B/program", "2.0"},
        {{{"a/VERSION", "3.1"}}, "a/b/c/d/e/f/program", "3.1"},
        {{{"a/VERSION", "3.1"}}, "a/b/c/d/e/f/g/program", none},  // six directories up, no more
        {{{"A/Resources/VERSION", "\xFF"}}, "A/B/program", none},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.program);
        test::TempDir root;
        for (const auto& [path, contents] : c.files) {
            test::writeFile(root.path() / path, contents);
        }
        const fs::path program = root.path() / c.program;
        test::writeFile(program, "");
        EXPECT_EQ(lookupVersion(program.string()), c.version);
        // Started through a link, it looks beside the program the link points to.
        fs::create_directory_symlink(program.parent_path(), root.path() / "link");
        EXPECT_EQ(lookupVersion((root.path() / "link" / "program").string()), c.version);
    }
}

}  // namespace
}  // namespace orvo
