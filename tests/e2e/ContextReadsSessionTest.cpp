// Reads of the user's own content through the real binary, run as a throwaway user: one audit line
// each, whatever the app answered, one cue per burst, and nothing for tools that read nothing.
#include <thread>

#include <gtest/gtest.h>

#include "support/UserAppTest.h"

namespace orvo::test {
namespace {

using namespace std::chrono_literals;

class ContextReadsSessionTest : public UserAppTest {
protected:
    // The audit lines, without their time. Read once the server has exited: it writes every
    // queued record before it does.
    std::vector<json> records() const {
        std::vector<json> parsed;
        for (const std::string& line :
             splitLines(readFile(user_->home / ".config/orvo-agent/mcp-context-reads.jsonl")
                            .value_or(""))) {
            json record = json::parse(line, nullptr, false);
            EXPECT_TRUE(record.is_object() && record.contains("ts")) << line;
            record.erase("ts");
            parsed.push_back(std::move(record));
        }
        return parsed;
    }
    std::size_t cuesAfterSettling() const {
        std::this_thread::sleep_for(500ms);
        std::size_t cues = 0;
        for (const ReceivedRequest& request : app_->received()) {
            cues += request.request.value("method", "") == "connected_app_activity_cue" ? 1 : 0;
        }
        return cues;
    }
};

TEST_F(ContextReadsSessionTest, EachReadLeavesOneLineOfItsOutcome) {
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
        {"session_read", {{"task_id", "t-7"}}, {{"tool", "session_read"}, {"task_id", "t-7"}}},
        {"set_tts_voice", {{"voice", "Ava"}}, nullptr},
        {"get_live_transcript", json::object(), {{"tool", "get_live_transcript"}}},  // app gone
    };
    ServerProcess server(asUser());
    std::vector<json> expected;
    int id = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        if (c.tool == "get_live_transcript") {
            app_.reset();
        }
        server.sendLine(dumpCompact(toolCall(++id, c.tool, c.arguments)));
        const json response = json::parse(server.readLine().value_or(""), nullptr, false);
        ASSERT_TRUE(response.is_object());
        if (c.record.is_null()) {
            continue;
        }
        json record = c.record;
        if (const json* result = member(response, "result")) {
            record["result"] = "ok";
            record["output_bytes"] = (*result)["content"][0]["text"].get<std::string>().size();
        } else {
            record["result"] = "error: " + response["error"]["message"].get<std::string>();
        }
        expected.push_back(std::move(record));
    }
    server.closeInput();
    EXPECT_EQ(server.waitForExit(), 0);
    EXPECT_EQ(records(), expected);
    EXPECT_TRUE(expected[2]["result"].get<std::string>().starts_with("error: "));
    EXPECT_TRUE(expected[3]["result"].get<std::string>().starts_with("error: "));
}

TEST_F(ContextReadsSessionTest, ABurstOfReadsCuesOnceUnlessSilenced) {
    app_->on("get_current_meeting", successReply({{"id", "m-1"}}));
    for (const bool silenced : {false, true}) {
        SCOPED_TRACE(silenced ? "ORVO_MCP_AUDIBLE=0" : "audible");
        std::filesystem::remove(user_->home / ".config/orvo-agent/mcp-context-reads.jsonl");
        const std::size_t before = cuesAfterSettling();
        ProcessOptions options = asUser();
        if (silenced) {
            options.environment = {{"ORVO_MCP_AUDIBLE", "0"}};
        }
        ServerProcess server(options);
        for (int id = 1; id <= 3; ++id) {
            server.sendLine(dumpCompact(toolCall(id, "get_current_meeting")));
            ASSERT_TRUE(server.readLine().has_value());
        }
        // The cue is never waited for, so it is counted while the server still runs.
        EXPECT_EQ(cuesAfterSettling() - before, silenced ? 0u : 1u);
        server.closeInput();
        EXPECT_EQ(server.waitForExit(), 0);
        EXPECT_EQ(records().size(), 3u);
    }
}

}  // namespace
}  // namespace orvo::test
