#include "server/Startup.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(StartupTest, ReadsFlagsTheWayAgentsPassThem) {
    using enum MCPToolset;
    const MCPToolsets all = MCPToolsets::all();
    const struct {
        std::vector<std::string> arguments;
        const char* origin;
        std::optional<std::string> agent;
        bool assistantOrigin, readOnly, hook;
        MCPToolsets toolsets;
    } cases[] = {
        {{"orvo"}, nullptr, std::nullopt, false, false, false, all},
        {{"orvo", "--agent"}, "1", std::nullopt, true, false, false, all},
        {{"orvo", "--agent", "--read-only"}, "true", "--read-only", false, true, false, all},
        {{"orvo", "--agent", "claude", "--agent", "codex"},
         "01",
         "claude",
         false,
         false,
         false,
         all},
        {{"orvo", "--toolsets", "voice,meetings", "--toolsets", "all"},
         "",
         std::nullopt,
         false,
         false,
         false,
         MCPToolsets{voice, meetings}},
        {{"orvo", "--read-only", "--toolsets"}, " 1", std::nullopt, false, true, false, all},
        {{"orvo", "--unknown", "--action-hold-hook", "--READ-ONLY"},
         nullptr,
         std::nullopt,
         false,
         false,
         true,
         all},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments));
        const StartupSettings settings = readStartupSettings(c.arguments, c.origin, nullptr);
        EXPECT_EQ(settings.agentName, c.agent);
        EXPECT_EQ(settings.assistantOrigin, c.assistantOrigin);
        EXPECT_EQ(settings.selection.assistantOrigin, c.assistantOrigin);
        EXPECT_EQ(settings.selection.readOnly, c.readOnly);
        EXPECT_EQ(settings.hookMode, c.hook);
        EXPECT_EQ(settings.selection.enabled, c.toolsets);
        EXPECT_EQ(settings.arguments, c.arguments);
    }
}

TEST(StartupTest, OnlyZeroSilencesTheActivityCue) {
    const std::vector<std::string> arguments = {"orvo"};
    const struct {
        const char* value;
        bool audible;
    } cases[] = {{nullptr, true}, {"0", false}, {"", true}, {"00", true}, {" 0", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value ? c.value : "(unset)");
        EXPECT_EQ(readStartupSettings(arguments, nullptr, c.value).audibleCue, c.audible);
    }
}

}  // namespace
}  // namespace orvo
