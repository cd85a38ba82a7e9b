#include "server/Startup.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(StartupTest, ReadsFlagsTheWayAgentsPassThem) {
    const MCPToolsets all = MCPToolsets::all();
    const MCPToolsets some{MCPToolset::voice, MCPToolset::meetings};
    const struct {
        std::vector<std::string> flags;
        const char* origin;
        std::string agent;  // empty: none
        bool assistantOrigin, readOnly, hook;
        MCPToolsets toolsets;
    } cases[] = {
        {{}, nullptr, "", false, false, false, all},
        {{"--agent"}, "1", "", true, false, false, all},
        {{"--agent", "--read-only"}, "true", "--read-only", false, true, false, all},
        {{"--agent", "claude", "--agent", "codex"}, "01", "claude", false, false, false, all},
        {{"--toolsets", "voice,meetings", "--toolsets", "all"}, "", "", false, false, false, some},
        {{"--read-only", "--toolsets"}, " 1", "", false, true, false, all},
        {{"--unknown", "--action-hold-hook", "--READ-ONLY"}, nullptr, "", false, false, true, all},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.flags));
        std::vector<std::string> arguments = {"orvo"};
        arguments.insert(arguments.end(), c.flags.begin(), c.flags.end());
        const StartupSettings settings = readStartupSettings(arguments, c.origin, nullptr);
        EXPECT_EQ(settings.agentName.value_or(""), c.agent);
        EXPECT_EQ(settings.assistantOrigin, c.assistantOrigin);
        EXPECT_EQ(settings.selection.assistantOrigin, c.assistantOrigin);
        EXPECT_EQ(settings.selection.readOnly, c.readOnly);
        EXPECT_EQ(settings.hookMode, c.hook);
        EXPECT_EQ(settings.selection.enabled, c.toolsets);
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
