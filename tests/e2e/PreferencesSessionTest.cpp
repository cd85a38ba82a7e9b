// The preference tools through the real binary, run as a throwaway user: what the audit log
// records, what the cue does, and that no crash ever leaves a torn file.
#include <array>
#include <csignal>
#include <random>
#include <regex>
#include <set>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;

std::string readAll(const fs::path& path) {
    return readFile(path).value_or("");
}

std::string callLine(int id, std::string_view tool, const json& arguments = json::object()) {
    return dumpCompact(toolCall(id, tool, arguments));
}

// The tool's result object from a response line, or null.
json resultOf(const std::optional<std::string>& line) {
    const json response = json::parse(line.value_or(""), nullptr, false);
    const json* result = response.is_object() ? member(response, "result") : nullptr;
    if (result == nullptr) {
        return nullptr;
    }
    return json::parse((*result)["content"][0]["text"].get<std::string>(), nullptr, false);
}

bool isOk(const json& result) {
    return result.is_object() && result.value("ok", false);
}

// A note of the form "p<process>-n<number> xxx…", long enough that a torn write shows.
std::string noteText(int process, int number) {
    std::string text = "p";  // appended, not added: GCC 12 warns wrongly on "p" + to_string(…)
    text.append(std::to_string(process)).append("-n").append(std::to_string(number));
    return text.append(" ").append(100, 'x');
}

// Every line a whole note, and none twice.
std::vector<std::pair<int, int>> parseNotes(const std::string& text) {
    EXPECT_TRUE(text.empty() || text.back() == '\n') << "the file ends inside a line";
    const std::regex note(R"(- p(\d+)-n(\d+) x{100})");
    std::vector<std::pair<int, int>> notes;
    std::set<std::pair<int, int>> seen;
    for (const std::string& line : splitLines(text)) {
        std::smatch match;
        if (!std::regex_match(line, match, note)) {
            ADD_FAILURE() << "torn or foreign line: " << line.substr(0, 120);
            continue;
        }
        notes.emplace_back(std::stoi(match[1]), std::stoi(match[2]));
        EXPECT_TRUE(seen.insert(notes.back()).second) << "note appears twice";
    }
    return notes;
}

class PreferencesSessionTest : public UserAppTest {
protected:
    void SetUp() override {
        UserAppTest::SetUp();
        if (!IsSkipped()) {
            directory_ = user_->home / ".config" / "orvo-agent";
            notes_ = directory_ / "preferences.md";
        }
    }
    std::vector<fs::path> temporaries() const {
        std::vector<fs::path> found;
        std::error_code missing;
        for (const auto& entry : fs::directory_iterator(directory_, missing)) {
            if (entry.path().filename().string().starts_with(".preferences.md.tmp-")) {
                found.push_back(entry.path());
            }
        }
        return found;
    }
    std::vector<std::string> auditRecords() const {
        return splitLines(readAll(directory_ / "mcp-context-reads.jsonl"));
    }

    fs::path directory_;
    fs::path notes_;
};

TEST_F(PreferencesSessionTest, EveryCallAnsweredBeforeEndOfInputIsInTheAuditLog) {
    ServerProcess server(asUser());
    server.sendLine(callLine(1, "remember_preference", {{"note", "signs emails J"}}));
    for (int id = 2; id < 60; ++id) {
        server.sendLine(callLine(id, "read_preferences"));
    }
    server.closeInput();
    // Every answer is read, so that a full pipe cannot hold the server; records may still be
    // queued when the last one is written.
    for (int id = 1; id < 60; ++id) {
        EXPECT_TRUE(resultOf(server.readLine()).contains("char_count"));
    }
    ASSERT_EQ(server.waitForExit(), 0);
    EXPECT_EQ(server.standardError(), "");

    // What each record holds is the audit log's own test.
    EXPECT_EQ(auditRecords().size(), 59u);
}

// Root ignores permissions, so only a process of the throwaway user meets these refusals.
TEST_F(PreferencesSessionTest, UnreadableOrUnwritablePlacesLeaveTheFileAsItWas) {
    const auto rootOwned = [](const fs::path& path, fs::perms mode) {
        ASSERT_EQ(::chown(path.c_str(), 0, 0), 0);
        fs::permissions(path, mode);
    };
    const struct {
        fs::path rootOwns;
        fs::perms mode;
        json read;
        json remember;
    } cases[] = {
        {notes_,
         fs::perms::owner_read | fs::perms::owner_write,
         {{"error", "could not read preferences"}, {"details", "Permission denied (errno 13)"}},
         {{"error", "could not read existing preferences"},
          {"details", "Permission denied (errno 13)"},
          {"fix",
           "Open ~/.config/orvo-agent/preferences.md, fix permissions or contents, then retry."}}},
        {directory_,
         fs::perms(0755),
         {{"content", "- kept\n"}, {"char_count", 7}},
         {{"error", "could not write preferences"},
          {"details",
           "creating a temporary file beside preferences.md: Permission denied (errno 13)"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rootOwns);
        user_->writeHomeFile(".config/orvo-agent/preferences.md", "- kept\n");
        rootOwned(c.rootOwns, c.mode);
        ServerProcess server(asUser());
        server.sendLine(callLine(1, "read_preferences"));
        EXPECT_EQ(resultOf(server.readLine()), c.read);
        server.sendLine(callLine(2, "remember_preference", {{"note", "new"}}));
        EXPECT_EQ(resultOf(server.readLine()), c.remember);
        server.closeInput();
        EXPECT_EQ(server.waitForExit(), 0);  // its last audit record written
        EXPECT_EQ(readAll(notes_), "- kept\n");
        EXPECT_TRUE(temporaries().empty());
        fs::remove_all(directory_);
    }
}

TEST_F(PreferencesSessionTest, KilledServersLeaveOneWholeVersionAndNoLastingLitter) {
    std::mt19937 random(20261121);
    std::uniform_int_distribution<int> delayMicroseconds(0, 5000);
    std::string expected;  // everything acknowledged so far
    for (int round = 0; round < 18; ++round) {
        // SIGTERM and SIGINT let the server finish: no litter, every answered call audited.
        const int signal = std::array{SIGKILL, SIGTERM, SIGINT}[round % 3];
        SCOPED_TRACE("round " + std::to_string(round) + ", signal " + std::to_string(signal));
        const std::size_t litterBefore = temporaries().size();
        const std::size_t recordsBefore = auditRecords().size();
        ServerProcess server(asUser());
        for (int n = 0; n < 8; ++n) {
            server.sendLine(callLine(n, "remember_preference", {{"note", noteText(round, n)}}));
        }
        // Once the first note is in, the kill lands somewhere among the other appends, however
        // slowly this build starts.
        ASSERT_TRUE(isOk(resultOf(server.readLine())));
        std::this_thread::sleep_for(std::chrono::microseconds(delayMicroseconds(random)));
        server.kill(signal);
        std::size_t acknowledged = 1;
        while (isOk(resultOf(server.readLine(std::chrono::milliseconds(50))))) {
            ++acknowledged;
        }
        if (signal != SIGKILL) {
            EXPECT_EQ(server.waitForExit(), 128 + signal);
            EXPECT_EQ(temporaries().size(), litterBefore);
            EXPECT_GE(auditRecords().size(), recordsBefore + acknowledged);
        }
        // The file is the one before this round plus this round's first k notes, in order, with
        // at least every acknowledged one: a version that one of its appends produced.
        const std::string text = readAll(notes_);
        ASSERT_TRUE(text.starts_with(expected)) << "an earlier version was lost or torn";
        const std::vector<std::pair<int, int>> added = parseNotes(text.substr(expected.size()));
        ASSERT_GE(added.size(), acknowledged);
        for (std::size_t i = 0; i < added.size(); ++i) {
            EXPECT_EQ(added[i], std::pair(round, static_cast<int>(i)));
        }
        expected = text;
    }
    // Litter from killed writes never shows in a read, and the next write clears what is stale.
    for (const fs::path& path : temporaries()) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::minutes(2));
    }
    ServerProcess server(asUser());
    server.sendLine(callLine(1, "read_preferences"));
    EXPECT_EQ(resultOf(server.readLine())["content"], expected);
    server.sendLine(callLine(2, "remember_preference", {{"note", noteText(99, 0)}}));
    EXPECT_TRUE(isOk(resultOf(server.readLine())));
    EXPECT_TRUE(temporaries().empty());
    EXPECT_EQ(readAll(notes_), expected + "- " + noteText(99, 0) + "\n");
}

}  // namespace
}  // namespace orvo::test
