// The preference tools through the real binary, run as a throwaway user: the refusal only a user
// without root meets, and that no killed server ever leaves a torn file.
#include <array>
#include <csignal>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;

// A note of the form "p<process>-n<number> xxx…", long enough that a torn write shows.
std::string noteText(int process, int number) {
    std::string text = "p";  // appended, not added: GCC 12 warns wrongly on "p" + to_string(…)
    text.append(std::to_string(process)).append("-n").append(std::to_string(number));
    return text.append(" ").append(100, 'x');
}

class PreferencesSessionTest : public UserAppTest {
protected:
    fs::path directory() const { return user_->home / ".config/orvo-agent"; }
    std::string notes() const { return readFile(directory() / "preferences.md").value_or(""); }
    std::size_t temporaries() const {
        std::size_t found = 0;
        std::error_code missing;
        for (const auto& entry : fs::directory_iterator(directory(), missing)) {
            found += entry.path().filename().string().starts_with(".preferences.md.tmp-") ? 1 : 0;
        }
        return found;
    }
    std::size_t auditRecords() const {
        return splitLines(readFile(directory() / "mcp-context-reads.jsonl").value_or("")).size();
    }
};

// Root ignores permissions, so only a process of the throwaway user meets this refusal.
TEST_F(PreferencesSessionTest, AnUnwritableDirectoryLeavesTheFileAsItWas) {
    writeFile(directory() / "preferences.md", "- kept\n");  // as root, with its directory
    fs::permissions(directory(), fs::perms(0755));
    ServerProcess server(asUser());
    EXPECT_EQ(server.callTool(1, "remember_preference", {{"note", "new"}}),
              json({{"error", "could not write preferences"},
                    {"details",
                     "creating a temporary file beside preferences.md: Permission denied (errno "
                     "13)"}}));
    EXPECT_EQ(notes(), "- kept\n");
}

TEST_F(PreferencesSessionTest, KilledServersLeaveOneWholeVersionAndNoLastingLitter) {
    std::mt19937 random(20261121);
    std::uniform_int_distribution<int> delayMicroseconds(0, 5000);
    std::string expected;  // everything acknowledged so far
    for (int round = 0; round < 18; ++round) {
        // SIGTERM and SIGINT let the server finish: no litter, every answered call audited.
        const int signal = std::array{SIGKILL, SIGTERM, SIGINT}[round % 3];
        SCOPED_TRACE("round " + std::to_string(round) + ", signal " + std::to_string(signal));
        const std::size_t litterBefore = temporaries();
        const std::size_t recordsBefore = auditRecords();
        ServerProcess server(asUser());
        for (int n = 0; n < 8; ++n) {
            server.sendLine(
                dumpCompact(toolCall(n, "remember_preference", {{"note", noteText(round, n)}})));
        }
        // Once the first note is in, the kill lands somewhere among the other appends, however
        // slowly this build starts.
        ASSERT_TRUE(server.readLine());
        std::this_thread::sleep_for(std::chrono::microseconds(delayMicroseconds(random)));
        server.kill(signal);
        std::size_t acknowledged = 1;
        while (server.readLine(std::chrono::milliseconds(50))) {
            ++acknowledged;
        }
        if (signal != SIGKILL) {
            EXPECT_EQ(server.waitForExit(), 128 + signal);
            EXPECT_EQ(temporaries(), litterBefore);
            EXPECT_GE(auditRecords(), recordsBefore + acknowledged);
        }
        // The file is the one before this round plus this round's first k notes, with at least
        // every acknowledged one: a version that one of its appends produced.
        const std::string text = notes();
        int added = 0;
        while (text != expected && added < 8) {
            expected += "- " + noteText(round, added++) + "\n";
        }
        ASSERT_TRUE(text == expected) << "not a version an append produced";
        EXPECT_GE(static_cast<std::size_t>(added), acknowledged);
    }
    // The next write clears what killed writes left once it is stale.
    for (const auto& entry : fs::directory_iterator(directory())) {
        fs::last_write_time(entry.path(),
                            fs::file_time_type::clock::now() - std::chrono::minutes(2));
    }
    ServerProcess server(asUser());
    EXPECT_EQ(server.callTool(1, "remember_preference", {{"note", noteText(99, 0)}})["ok"], true);
    EXPECT_EQ(temporaries(), 0u);
    EXPECT_EQ(notes(), expected + "- " + noteText(99, 0) + "\n");
}

}  // namespace
}  // namespace orvo::test
