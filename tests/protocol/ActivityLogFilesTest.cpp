#include "protocol/ActivityLogFiles.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

// The app finds these files at the same places, so a moved file is a lost log.
TEST(ActivityLogFilesTest, EveryLogLivesUnderTheGivenHome) {
    const std::filesystem::path home = "/home/someone";
    EXPECT_EQ(ActivityLogFiles::assistantHistory(home),
              home / ".config/orvo-agent/assistant-history.jsonl");
    EXPECT_EQ(ActivityLogFiles::assistantHistoryDatabase(home),
              home / "Library/Application Support/orvo-agent/assistant-history.db");
}

}  // namespace
}  // namespace orvo
