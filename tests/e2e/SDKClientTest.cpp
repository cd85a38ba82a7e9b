// A whole session of the real binary driven by the official MCP TypeScript SDK client, which
// rejects any response that does not match its schemas.
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/ServerProcess.h"
#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

// The client's source is here; the SDK is installed under build/ (scripts/test.sh), and the
// client runs from there so that Node.js finds it.
const std::filesystem::path kClientSource =
    std::filesystem::path(ORVO_SOURCE_DIR) / "tests/interop/client.mjs";
const std::filesystem::path kInteropDirectory =
    std::filesystem::path(ORVO_SOURCE_DIR) / "build/interop";

std::optional<std::filesystem::path> findOnPath(std::string_view program) {
    const char* path = std::getenv("PATH");
    std::istringstream directories(path != nullptr ? path : "/usr/bin:/bin");
    for (std::string directory; std::getline(directories, directory, ':');) {
        const std::filesystem::path candidate = std::filesystem::path(directory) / program;
        if (!directory.empty() && ::access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return std::nullopt;
}

class SDKClientTest : public ThrowawayUserTest {
protected:
    void SetUp() override {
        ThrowawayUserTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        node_ = findOnPath("node");
        if (!node_) {
            GTEST_SKIP() << "Node.js is not installed (Debian package nodejs); scripts/test.sh "
                            "installs it";
        }
        if (!std::filesystem::exists(kInteropDirectory /
                                     "node_modules/@modelcontextprotocol/sdk/package.json")) {
            GTEST_SKIP() << "the MCP SDK is not installed in build/interop: scripts/test.sh "
                            "installs it from the npm registry";
        }
        std::filesystem::copy_file(kClientSource, kInteropDirectory / "client.mjs",
                                   std::filesystem::copy_options::overwrite_existing);
    }

    std::optional<std::filesystem::path> node_;
};

TEST_F(SDKClientTest, AcceptsEveryResponseOfAWholeSession) {
    ProcessOptions options = asUser();
    options.program = node_->string();
    options.arguments = {(kInteropDirectory / "client.mjs").string(), ORVO_BINARY_PATH};
    options.environment = {{"HOME", user_->home.string()}};
    ServerProcess client(options);
    const std::optional<std::string> line = client.readLine(std::chrono::seconds(60));
    EXPECT_EQ(client.waitForExit(), 0);
    // The server's own standard error is the client's: a session logs nothing.
    EXPECT_EQ(client.standardError(), "");
    ASSERT_TRUE(line);
    json session = json::parse(*line, nullptr, false);
    ASSERT_TRUE(session.is_object()) << *line;

    const json& version = session["version"];
    ASSERT_EQ(version["content"].size(), 1u) << version;
    EXPECT_EQ(session["serverInfo"],
              json({{"name", "orvo-agent"}, {"version", version["content"][0]["text"]}}));
    // The tools, capabilities and settings are ServerSessionTest's; what matters here is that
    // the SDK accepted every answer.
    ASSERT_EQ(session["prompts"].size(), 1u);
    EXPECT_EQ(session["prompts"][0]["name"], "speak_every_reply");
    EXPECT_EQ(
        session["prompt"]["messages"],
        json::parse(
            R"([{"role":"user","content":{"type":"text","text":"For this session, use the Orvo MCP `speak` tool on every assistant turn until I explicitly say “stop speaking.”"}}])"));

    // No app is running for the throwaway user.
    EXPECT_FALSE(session.contains("forwarded")) << session["forwarded"];
    EXPECT_EQ(session["forwardedError"],
              json({{"code", -32001},
                    {"message",
                     "MCP error -32001: Orvo app is not running \u2014 open the app and try "
                     "again."}}));
    EXPECT_EQ(session["ping"], json::object());
}

}  // namespace
}  // namespace orvo::test
