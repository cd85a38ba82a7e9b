// The unit-test binary's entry point: it runs as the test host, whose activity logs stay out of
// every home.
#include <filesystem>
#include <system_error>

#include <gtest/gtest.h>

#include "protocol/ActivityLogFiles.h"

int main(int argc, char** argv) {
    orvo::ActivityLogFiles::enterTestHost();
    ::testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
    std::error_code ignored;
    std::filesystem::remove_all(orvo::ActivityLogFiles::testDirectory(), ignored);
    return status;
}
