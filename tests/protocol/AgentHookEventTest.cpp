#include "protocol/AgentHookEvent.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace orvo {
namespace {

AgentHookEvent fullEvent() {
    AgentHookEvent event;
    event.provider = AgentHookProvider::codex;
    event.kind = AgentHookKind::stop;
    event.sessionID = "s-1";
    event.turnID = "t-2";
    event.eventID = "e-3";
    event.cwd = "/Users/me/repo";
    event.host.tty = "/dev/ttys004";
    event.host.ancestors = {{4242, 4000, "/bin/zsh", "/dev/ttys004", 1700000000.25},
                            {4000, 1, std::nullopt, std::nullopt, std::nullopt}};
    event.host.environment = {{"TERM_PROGRAM", "quarn"}, {"TMUX_PANE", "%3"}};
    event.host.terminalProgram = "quarn";
    event.host.appPID = 812;
    event.host.appBundleID = "com.example.term";
    event.timestamp = 1700000123.5;
    event.finalMessage = "Done: é🙂";
    event.permissionDescription = "Run git push";
    event.failure = "none";
    return event;
}

TEST(AgentHookEventTest, RawValuesRoundTripOnlyWhenSpelledExactly) {
    for (AgentHookProvider provider : kAllAgentHookProviders) {
        EXPECT_EQ(parseAgentHookProvider(rawValue(provider)), provider);
    }
    for (AgentHookKind kind : kAllAgentHookKinds) {
        EXPECT_EQ(parseAgentHookKind(rawValue(kind)), kind);
    }
    EXPECT_EQ(rawValue(AgentHookKind::userPromptSubmit), "userPromptSubmit");
    EXPECT_EQ(rawValue(AgentHookKind::permissionRequest), "permissionRequest");
    EXPECT_EQ(parseAgentHookProvider("Claude"), std::nullopt);
    EXPECT_EQ(parseAgentHookKind("session_start"), std::nullopt);
}

TEST(AgentHookEventTest, EncodesKeysInFieldOrderAndReadsBackEqual) {
    const AgentHookEvent event = fullEvent();
    const std::optional<std::string> text = event.encode();
    ASSERT_TRUE(text);
    EXPECT_EQ(
        *text,
        R"({"schemaVersion":1,"provider":"codex","kind":"stop","sessionID":"s-1",)"
        R"("turnID":"t-2","eventID":"e-3","cwd":"/Users/me/repo","host":{"tty":"/dev/ttys004",)"
        R"("ancestors":[{"pid":4242,"parentPID":4000,"executablePath":"/bin/zsh",)"
        R"("tty":"/dev/ttys004","startTime":1700000000.25},{"pid":4000,"parentPID":1}],)"
        R"("environment":{"TERM_PROGRAM":"quarn","TMUX_PANE":"%3"},"terminalProgram":"quarn",)"
        R"("appPID":812,"appBundleID":"com.example.term"},"timestamp":1700000123.5,)"
        R"("finalMessage":"Done: é🙂","permissionDescription":"Run git push",)"
        R"("failure":"none","finalMessageTruncated":false})");
    EXPECT_EQ(AgentHookEvent::decode(*text), event);
}

TEST(AgentHookEventTest, EventWithoutOptionalFieldsRoundTrips) {
    AgentHookEvent event;
    event.sessionID = "s";
    event.eventID = "e";
    const std::optional<std::string> text = event.encode();
    ASSERT_TRUE(text);
    EXPECT_EQ(*text,
              R"({"schemaVersion":1,"provider":"claude","kind":"sessionStart","sessionID":"s",)"
              R"("eventID":"e","host":{"ancestors":[],"environment":{}},"timestamp":0.0,)"
              R"("finalMessageTruncated":false})");
    EXPECT_EQ(AgentHookEvent::decode(*text), event);
    // Null reads as absent.
    EXPECT_EQ(AgentHookEvent::decode(
                  R"({"schemaVersion":1,"provider":"claude","kind":"sessionStart","sessionID":"s",)"
                  R"("eventID":"e","turnID":null,"host":{"ancestors":[],"environment":{},)"
                  R"("appPID":null},"timestamp":0,"finalMessageTruncated":false})"),
              event);
}

TEST(AgentHookEventTest, OnlyAllowedEnvironmentKeysTravel) {
    EXPECT_TRUE(AgentHookWire::isAllowedEnvironmentKey("__CFBundleIdentifier"));
    EXPECT_TRUE(AgentHookWire::isAllowedEnvironmentKey("QUARN_PANE_ID"));
    EXPECT_FALSE(AgentHookWire::isAllowedEnvironmentKey("HOME"));
    EXPECT_FALSE(AgentHookWire::isAllowedEnvironmentKey("tmux"));

    AgentHookEvent event = fullEvent();
    event.host.environment["AWS_SECRET_ACCESS_KEY"] = "x";
    const std::optional<std::string> text = event.encode();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->find("AWS_SECRET"), std::string::npos);
    std::string withSecret = *text;
    withSecret.replace(withSecret.find("\"TERM_PROGRAM\""), 0, R"("HOME":"/Users/me",)");
    std::optional<AgentHookEvent> decoded = AgentHookEvent::decode(withSecret);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->host.environment, fullEvent().host.environment);
}

TEST(AgentHookEventTest, FinalMessageIsCutToItsLimitOnACharacterBoundary) {
    AgentHookEvent event = fullEvent();
    event.setFinalMessage(std::string(AgentHookWire::kMaxFinalMessageBytes, 'a'));
    EXPECT_FALSE(event.finalMessageTruncated);
    EXPECT_EQ(event.finalMessage->size(), AgentHookWire::kMaxFinalMessageBytes);

    // A two-byte character straddles the limit: it goes whole.
    event.setFinalMessage(std::string(AgentHookWire::kMaxFinalMessageBytes - 1, 'a') + "é");
    EXPECT_TRUE(event.finalMessageTruncated);
    EXPECT_EQ(*event.finalMessage, std::string(AgentHookWire::kMaxFinalMessageBytes - 1, 'a'));
    const std::optional<std::string> text = event.encode();
    ASSERT_TRUE(text);
    EXPECT_EQ(AgentHookEvent::decode(*text), event);

    // Assigned past the setter, the message is cut when it is written.
    AgentHookEvent assigned = fullEvent();
    assigned.finalMessage = std::string(AgentHookWire::kMaxFinalMessageBytes - 1, 'a') + "é";
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

    // Nor are events whose times JSON cannot hold, nor text that is not UTF-8.
    for (const double time : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        AgentHookEvent timed = fullEvent();
        timed.timestamp = time;
        EXPECT_EQ(timed.encode(), std::nullopt);
        timed = fullEvent();
        timed.host.ancestors[1].startTime = -time;
        EXPECT_EQ(timed.encode(), std::nullopt);
    }
    AgentHookEvent garbled = fullEvent();
    garbled.cwd = "/Users/caf\xE9";
    EXPECT_EQ(garbled.encode(), std::nullopt);
}

TEST(AgentHookEventTest, DecodingRejectsMissingAndMistypedFields) {
    const std::string valid = *fullEvent().encode();
    const struct {
        std::string from;
        std::string to;
    } edits[] = {
        {R"("sessionID":"s-1",)", ""},
        {R"("provider":"codex")", R"("provider":"Codex")"},
        {R"("timestamp":1700000123.5)", R"("timestamp":"now")"},
        {R"("turnID":"t-2")", R"("turnID":2)"},
        {R"("pid":4242)", R"("pid":4242.5)"},
        {R"("pid":4242)", R"("pid":2147483648)"},
        {R"("TMUX_PANE":"%3")", R"("TMUX_PANE":3)"},
        {R"("ancestors":[)", R"("ancestors":[1,)"},
        {R"("finalMessageTruncated":false)", R"("finalMessageTruncated":0)"},
        {R"("schemaVersion":1)", R"("schemaVersion":"1")"},
    };
    for (const auto& edit : edits) {
        SCOPED_TRACE(edit.from + " -> " + edit.to);
        std::string text = valid;
        const std::size_t at = text.find(edit.from);
        ASSERT_NE(at, std::string::npos);
        text.replace(at, edit.from.size(), edit.to);
        EXPECT_EQ(AgentHookEvent::decode(text), std::nullopt);
    }
    EXPECT_EQ(AgentHookEvent::decode("[]"), std::nullopt);
}

}  // namespace
}  // namespace orvo
