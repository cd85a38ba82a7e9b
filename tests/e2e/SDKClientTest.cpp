// A whole session of the real binary driven by the official MCP TypeScript SDK client, which
// rejects any response that does not match its schemas.
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

// The client's source is here; the SDK is installed under build/ (scripts/test.sh), and the
// client runs from there so that Node.js finds it.
const std::filesystem::path kClientSource =
    std::filesystem::path(ORVO_SOURCE_DIR) / "tests/interop/client.mjs";
const std::filesystem::path kInteropDirectory =
    std::filesystem::path(ORVO_SOURCE_DIR) / "build/interop";

using SDKClientTest = UserAppTest;

TEST_F(SDKClientTest, AcceptsEveryResponseOfAWholeSession) {
    if (!std::filesystem::exists(kInteropDirectory /
                                 "node_modules/@modelcontextprotocol/sdk/package.json")) {
        GTEST_SKIP() << "the MCP SDK is not installed in build/interop: scripts/test.sh "
                        "installs it from the npm registry";
    }
    app_.reset();  // no app is running for the user
    std::filesystem::copy_file(kClientSource, kInteropDirectory / "client.mjs",
                               std::filesystem::copy_options::overwrite_existing);
    // env finds Node.js on this run's PATH, and exits 127 when it is not there.
    const char* const path = std::getenv("PATH");
    ProcessOptions options = asUser({"PATH=" + std::string(path != nullptr ? path : ""), "node",
                                     (kInteropDirectory / "client.mjs").string(), ORVO_BINARY_PATH},
                                    {{"HOME", user_->home.string()}});
    options.program = "/usr/bin/env";
    ServerProcess client(options);
    const std::optional<std::string> line = client.readLine(std::chrono::seconds(60));
    const std::optional<int> status = client.waitForExit();
    if (status == 127) {
        GTEST_SKIP() << "Node.js is not installed (Debian package nodejs); scripts/test.sh "
                        "installs it";
    }
    EXPECT_EQ(status, 0);
    // The server's own standard error is the client's: a session logs nothing.
    EXPECT_EQ(client.standardError(), "");
    const json session = json::parse(line.value_or(""), nullptr, false);
    ASSERT_TRUE(session.is_object()) << line.value_or("no output");
    // What each answer holds is ServerSessionTest's; what matters here is what the SDK made of it.
    EXPECT_EQ(session["serverInfo"], json({{"name", "orvo-agent"},
                                           {"version", session["version"]["content"][0]["text"]}}));
    EXPECT_EQ(session["forwardedError"],
              json({{"code", -32001},
                    {"message",
                     "MCP error -32001: Orvo app is not running \u2014 open the app and try "
                     "again."}}));
    EXPECT_EQ(session["ping"], json::object());
}

}  // namespace
}  // namespace orvo::test
