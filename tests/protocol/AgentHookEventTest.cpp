#include "protocol/AgentHookEvent.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

AgentHookEvent fullEvent() {
    return {.provider = AgentHookProvider::codex,
            .kind = AgentHookKind::stop,
            .sessionID = "s-1",
            .turnID = "t-2",
            .eventID = "e-3",
            .cwd = "/Users/me/repo",
            .host = {.tty = "/dev/ttys004",
                     .ancestors = {{4242, 4000, "/bin/zsh", "/dev/ttys004", 1700000000.25},
                                   {4000, 1, std::nullopt, std::nullopt, std::nullopt}},
                     .environment = {{"TERM_PROGRAM", "quarn"}, {"TMUX_PANE", "%3"}},
                     .terminalProgram = "quarn",
                     .appPID = 812,
                     .appBundleID = "com.example.term"},
            .timestamp = 1700000123.5,
            .finalMessage = "Done: é🙂",
            .permissionDescription = "Run git push",
            .failure = "none"};
}

// Only the allowed environment keys travel, either way: the secret is not written, HOME not read.
TEST(AgentHookEventTest, EncodesKeysInFieldOrderAndReadsBackEqual) {
    AgentHookEvent event = fullEvent();
    event.host.environment.emplace("AWS_SECRET_ACCESS_KEY", "x");
    const std::string text = event.encode().value_or("");
    EXPECT_EQ(
        text,
        R"({"schemaVersion":1,"provider":"codex","kind":"stop","sessionID":"s-1",)"
        R"("turnID":"t-2","eventID":"e-3","cwd":"/Users/me/repo","host":{"tty":"/dev/ttys004",)"
        R"("ancestors":[{"pid":4242,"parentPID":4000,"executablePath":"/bin/zsh",)"
        R"("tty":"/dev/ttys004","startTime":1700000000.25},{"pid":4000,"parentPID":1}],)"
        R"("environment":{"TERM_PROGRAM":"quarn","TMUX_PANE":"%3"},"terminalProgram":"quarn",)"
        R"("appPID":812,"appBundleID":"com.example.term"},"timestamp":1700000123.5,)"
        R"("finalMessage":"Done: é🙂","permissionDescription":"Run git push",)"
        R"("failure":"none","finalMessageTruncated":false})");
    std::string withHome = text;
    withHome.replace(withHome.find("\"TERM_PROGRAM\""), 0, R"("HOME":"/Users/me",)");
    EXPECT_EQ(AgentHookEvent::decode(withHome), fullEvent());
}

TEST(AgentHookEventTest, EventWithoutOptionalFieldsRoundTrips) {
    AgentHookEvent event;
    // Moved in rather than assigned from literals, which g++ 12 -O3 falsely flags (-Wrestrict).
    event.sessionID = std::string("s");
    event.eventID = std::string("e");
    const std::optional<std::string> text = event.encode();
    ASSERT_TRUE(text);
    EXPECT_EQ(*text,
              R"({"schemaVersion":1,"provider":"claude","kind":"sessionStart","sessionID":"s",)"
              R"("eventID":"e","host":{"ancestors":[],"environment":{}},"timestamp":0.0,)"
              R"("finalMessageTruncated":false})");
    EXPECT_EQ(AgentHookEvent::decode(*text), event);
}

TEST(AgentHookEventTest, FinalMessageIsCutToItsLimitOnACharacterBoundary) {
    const std::string limit(AgentHookWire::kMaxFinalMessageBytes, 'a');
    AgentHookEvent event = fullEvent();
    event.setFinalMessage(limit);
    EXPECT_FALSE(event.finalMessageTruncated);
    EXPECT_EQ(event.finalMessage, limit);

    // A two-byte character straddles the limit: it goes whole.
    const std::string straddling = limit.substr(1) + "é";
    event.setFinalMessage(straddling);
    EXPECT_TRUE(event.finalMessageTruncated);
    EXPECT_EQ(event.finalMessage, limit.substr(1));

    // Assigned past the setter, the message is cut when it is written.
    AgentHookEvent assigned = fullEvent();
    assigned.finalMessage = straddling;
    EXPECT_EQ(AgentHookEvent::decode(assigned.encode().value_or("")), event);
}

TEST(AgentHookEventTest, OversizedEventsAreNeitherWrittenNorRead) {
    AgentHookEvent event = fullEvent();
    event.setFinalMessage(std::string(AgentHookWire::kMaxFinalMessageBytes, 'a'));
    event.permissionDescription = std::string(AgentHookWire::kMaxEventBytes / 2, 'b');
    EXPECT_EQ(event.encode(), std::nullopt);
    event.permissionDescription = std::string(AgentHookWire::kMaxEventBytes / 4, 'b');
    const std::optional<std::string> text = event.encode();
    ASSERT_TRUE(text);
    EXPECT_EQ(AgentHookEvent::decode(*text + std::string(AgentHookWire::kMaxEventBytes, ' ')),
              std::nullopt);

    // Nor is text that is not UTF-8.
    event.cwd = "/Users/caf\xE9";
    EXPECT_EQ(event.encode(), std::nullopt);
}

// Field types are the typed reader's to check; these are the event's own shapes.
TEST(AgentHookEventTest, DecodingRejectsMissingAndMistypedFields) {
    const std::string valid = *fullEvent().encode();
    const struct {
        std::string from;
        std::string to;
    } edits[] = {
        {R"("sessionID":"s-1",)", ""},
        {R"("provider":"codex")", R"("provider":"Codex")"},
        {R"("pid":4242)", R"("pid":2147483648)"},
        {R"("TMUX_PANE":"%3")", R"("TMUX_PANE":3)"},
        {R"("ancestors":[)", R"("ancestors":[1,)"},
    };
    for (const auto& edit : edits) {
        SCOPED_TRACE(edit.from + " -> " + edit.to);
        std::string text = valid;
        text.replace(text.find(edit.from), edit.from.size(), edit.to);
        EXPECT_EQ(AgentHookEvent::decode(text), std::nullopt);
    }
    EXPECT_EQ(AgentHookEvent::decode("[]"), std::nullopt);
}

}  // namespace
}  // namespace orvo
