#include "userfiles/ContextAuditLog.h"

#include <atomic>

#include <gtest/gtest.h>

#include "support/ServerProcess.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;
using std::chrono::system_clock;

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
    {
        ContextAuditLog log(ContextAuditLogOptions{file});
        for (int i = 0; i < 200; ++i) {
            log.record({"tool" + std::to_string(i), "ok", {}, {}, {}, {}});
        }
        ASSERT_TRUE(log.drain(10s));
    }
    const std::vector<std::string> lines = test::splitLines(test::readFile(file).value_or(""));
    ASSERT_EQ(lines.size(), 200u);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(json::parse(lines[i])["tool"], "tool" + std::to_string(i));
    }
}

TEST(ContextAuditLogTest, SendsAtMostOneCuePerTwoSeconds) {
    test::TempDir home;
    std::atomic<std::size_t> cues{0};
    std::atomic<std::chrono::steady_clock::duration> now{std::chrono::hours(1)};
    // A log whose clock the test moves, counting the cues it sends.
    ContextAuditLog log(
        ContextAuditLogOptions{home.path() / "reads.jsonl", [&] { ++cues; }, true,
                               [&] { return std::chrono::steady_clock::time_point{now.load()}; }});
    const std::chrono::steady_clock::duration start = now.load();
    for (auto offset : {0ms, 500ms, 1999ms, 2000ms, 2500ms, 3999ms, 10000ms}) {
        now = start + offset;
        log.activityCue();
    }
    // Cues sent, after a pause long enough for a stray one to show up.
    for (int i = 0; i < 500 && cues.load() < 3; ++i) {
        std::this_thread::sleep_for(10ms);
    }
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(cues.load(), 3u);  // at 0, 2.0 and 10 seconds
}

}  // namespace
}  // namespace orvo
