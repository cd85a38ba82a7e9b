#include "userfiles/ContextAuditLog.h"

#include <atomic>

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;
using std::chrono::system_clock;

std::vector<std::string> fileLines(const std::filesystem::path& path) {
    return test::splitLines(test::readFile(path).value_or(""));
}

TEST(ContextAuditLogTest, TimestampsAreUTCWithMilliseconds) {
    const struct {
        system_clock::time_point time;
        std::string text;
    } cases[] = {
        {system_clock::time_point{1795256841123ms}, "2026-11-21T10:27:21.123Z"},
        {system_clock::time_point{1709251199999ms + 999us}, "2024-02-29T23:59:59.999Z"},
        {system_clock::time_point{-1ms}, "1969-12-31T23:59:59.999Z"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(auditTimestamp(c.time), c.text);
    }
}

TEST(ContextAuditLogTest, LinesCarryOnlyThePresentFieldsThenTheExtras) {
    const std::string ts = R"({"ts":"2026-11-21T10:27:21.123Z",)";
    const struct {
        std::string name;
        AuditRecord record;
        std::string line;
    } cases[] = {
        {"bare", {"read", "ok", {}, {}, {}, {}}, ts + R"("tool":"read","result":"ok"})"},
        {"every field",
         {"t", "error: x", "Mail", "com.example.mail", 0, {{"count", 2}, {"path", "/a/b"}}},
         ts + R"("tool":"t","result":"error: x","app":"Mail","bundle_id":"com.example.mail",)"
              R"("output_bytes":0,"count":2,"path":"/a/b"})"},
        {"an extra replaces an earlier key in place",
         {"t", "ok", {}, {}, 5, {{"result", nullptr}, {"n", 1}, {"n", 2}}},
         ts + R"("tool":"t","result":null,"output_bytes":5,"n":2})"},
        {"undecodable text is replaced, not dropped",
         {"t\xFF", "ok", {}, {}, {}, {}},
         ts + "\"tool\":\"t\xEF\xBF\xBD\",\"result\":\"ok\"}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(auditLine(c.record, system_clock::time_point{1795256841123ms}), c.line);
    }
}

TEST(ContextAuditLogTest, WritesRecordsInPostedOrderAndCreatesTheDirectory) {
    test::TempDir dir;
    const std::filesystem::path file = dir.path() / "missing" / "deeper" / "reads.jsonl";
    const system_clock::time_point before = system_clock::now();
    {
        ContextAuditLog log(ContextAuditLogOptions{file});
        for (int i = 0; i < 200; ++i) {
            log.record({"tool" + std::to_string(i), "ok", {}, {}, {}, {}});
        }
        ASSERT_TRUE(log.drain(10s));
    }
    const std::vector<std::string> lines = fileLines(file);
    ASSERT_EQ(lines.size(), 200u);
    std::string previous = auditTimestamp(before);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const json line = json::parse(lines[i]);
        EXPECT_EQ(line["tool"], "tool" + std::to_string(i));
        EXPECT_GE(line["ts"].get<std::string>(), previous);
        previous = line["ts"];
    }
    EXPECT_LE(previous, auditTimestamp(system_clock::now()));
}

TEST(ContextAuditLogTest, FailuresGoToStandardErrorOnly) {
    const auto diagnostic = [](const std::filesystem::path& file) {
        ContextAuditLog log(ContextAuditLogOptions{file});
        ::testing::internal::CaptureStderr();
        log.record({"t", "ok", {}, {}, {}, {}});
        EXPECT_TRUE(log.drain(10s));
        return ::testing::internal::GetCapturedStderr();
    };
    test::TempDir dir;
    test::writeFile(dir.path() / "file", "");
    EXPECT_EQ(diagnostic(dir.path() / "file/reads.jsonl"),
              "orvo-agent-mcp: ContextAuditLog: open for write failed: " + dir.path().string() +
                  "/file/reads.jsonl: Not a directory (errno 20)\n");
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_EQ(diagnostic("/dev/full"),
                  "orvo-agent-mcp: ContextAuditLog: write failed: No space left on device (errno "
                  "28)\n");
    }
}

TEST(ContextAuditLogTest, SendsAtMostOneCuePerTwoSecondsAndNoneWhenSilenced) {
    test::TempDir home;
    std::atomic<std::size_t> cues{0};
    std::atomic<std::chrono::steady_clock::duration> now{std::chrono::hours(1)};
    // A log whose clock the test moves, counting the cues it sends.
    const auto makeLog = [&](bool audible) {
        return ContextAuditLog(ContextAuditLogOptions{
            home.path() / "reads.jsonl", [&] { ++cues; }, audible,
            [&] { return std::chrono::steady_clock::time_point{now.load()}; }});
    };
    // Cues sent, after a pause long enough for a stray one to show up.
    const auto cuesAfterSettling = [&](std::size_t expected) {
        for (int i = 0; i < 500 && cues.load() < expected; ++i) {
            std::this_thread::sleep_for(10ms);
        }
        std::this_thread::sleep_for(100ms);
        return cues.load();
    };
    ContextAuditLog log = makeLog(true);
    const std::chrono::steady_clock::duration start = now.load();
    for (auto offset : {0ms, 500ms, 1999ms, 2000ms, 2500ms, 3999ms, 10000ms}) {
        now = start + offset;
        log.activityCue();
    }
    EXPECT_EQ(cuesAfterSettling(3), 3u);  // at 0, 2.0 and 10 seconds

    now = start + 20s;
    std::vector<std::thread> burst;
    for (int i = 0; i < 8; ++i) {
        burst.emplace_back([&log] { log.activityCue(); });
    }
    for (std::thread& thread : burst) {
        thread.join();
    }
    EXPECT_EQ(cuesAfterSettling(4), 4u);

    // Silenced, the log sends no cue but still writes its records.
    ContextAuditLog silent = makeLog(false);
    silent.activityCue();
    silent.record({"read_preferences", "ok", {}, {}, {}, {}});
    ASSERT_TRUE(silent.drain(10s));
    EXPECT_EQ(fileLines(home.path() / "reads.jsonl").size(), 1u);
    EXPECT_EQ(cuesAfterSettling(4), 4u);
}

}  // namespace
}  // namespace orvo
