// Reads of the user's own content through the real binary, run as a throwaway user: one audit line
// each, whatever the app answered, one cue per burst, and nothing for tools that read nothing.
#include <algorithm>
#include <thread>

#include <gtest/gtest.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

using namespace std::chrono_literals;

using ContextReadsSessionTest = UserAppTest;

TEST_F(ContextReadsSessionTest, EachReadLeavesOneLineOfItsOutcomeAndABurstOneCue) {
    const std::filesystem::path log = user_->home / ".config/orvo-agent/mcp-context-reads.jsonl";
    // The cue is never waited for, so it is counted after a pause.
    const auto cuesAfterSettling = [this] {
        std::this_thread::sleep_for(500ms);
        return std::ranges::count_if(app_->received(), [](const ReceivedRequest& request) {
            return request.request.value("method", "") == "connected_app_activity_cue";
        });
    };
    app_->on("get_meeting", successReply({{"title", "Standup"}}));
    app_->on(
        "computer_read",
        successReply({{"app", "Notes"}, {"bundle_id", "com.example.notes"}, {"text", "secret"}}));
    app_->on("session_read", errorReply("consent_denied", "The owner said no"));
    app_->on("set_tts_voice", successReply({{"ok", true}}));
    const struct {
        std::string tool;
        json arguments;
        json record;  // without result and output_bytes; null when the call leaves none
    } cases[] = {
        {"get_meeting", {{"id", "m-42"}}, {{"tool", "get_meeting"}, {"id", "m-42"}}},
        {"computer_read",
         {{"state_id", "s-1"}},
         {{"tool", "computer_read"}, {"app", "Notes"}, {"bundle_id", "com.example.notes"}}},
        {"session_read",
         {{"task_id", "t-7"}},
         {{"tool", "session_read"}, {"task_id", "t-7"}, {"result", "error: The owner said no"}}},
        {"set_tts_voice", {{"voice", "Ava"}}, nullptr},
    };
    for (const bool silenced : {false, true}) {
        SCOPED_TRACE(silenced ? "ORVO_MCP_AUDIBLE=0" : "audible");
        std::filesystem::remove(log);
        const std::ptrdiff_t cuesBefore = cuesAfterSettling();
        ServerProcess server(asUser({}, {{"ORVO_MCP_AUDIBLE", silenced ? "0" : "1"}}));
        std::vector<json> expected;
        int id = 0;
        for (const auto& c : cases) {
            SCOPED_TRACE(c.tool);
            const json response = server.request(toolCall(++id, c.tool, c.arguments));
            ASSERT_TRUE(response.is_object());
            if (c.record.is_null()) {
                continue;
            }
            expected.push_back(c.record);
            if (const json* result = member(response, "result")) {
                expected.back()["result"] = "ok";
                expected.back()["output_bytes"] =
                    (*result)["content"][0]["text"].get<std::string>().size();
            }
        }
        EXPECT_EQ(cuesAfterSettling() - cuesBefore, silenced ? 0 : 1);
        server.closeInput();
        EXPECT_EQ(server.waitForExit(), 0);  // every queued record is written before it exits
        // The audit lines, without their time.
        std::vector<json> records;
        for (const std::string& line : splitLines(readFile(log).value_or(""))) {
            json record = json::parse(line, nullptr, false);
            EXPECT_TRUE(record.is_object() && record.erase("ts") == 1) << line;
            records.push_back(std::move(record));
        }
        EXPECT_EQ(records, expected);
    }
}

}  // namespace
}  // namespace orvo::test
