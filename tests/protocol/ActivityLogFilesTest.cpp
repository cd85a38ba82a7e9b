#include "protocol/ActivityLogFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace orvo {
namespace {

TEST(ActivityLogFilesTest, TheTestHostKeepsEveryLogInItsOwnDirectory) {
    ASSERT_TRUE(ActivityLogFiles::insideTestHost());
    const std::filesystem::path directory =
        std::filesystem::temp_directory_path() / ("orvo-agent-tests-" + std::to_string(::getpid()));
    EXPECT_EQ(ActivityLogFiles::testDirectory(), directory);
    for (const std::filesystem::path home : {"/home/someone", ""}) {
        SCOPED_TRACE(home);
        EXPECT_EQ(ActivityLogFiles::contextReads(home), directory / "mcp-context-reads.jsonl");
        EXPECT_EQ(ActivityLogFiles::assistantHistory(home), directory / "assistant-history.jsonl");
        EXPECT_EQ(ActivityLogFiles::assistantHistoryDatabase(home),
                  directory / "assistant-history.db");
    }
}

}  // namespace
}  // namespace orvo
