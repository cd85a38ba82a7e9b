#include "server/Startup.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

// The settings in words, so that a case is one line: the agent, then each switch that is on.
std::string described(const StartupSettings& settings) {
    return settings.agentName.value_or("(none)") + (settings.assistantOrigin ? " origin" : "") +
           (settings.selection.readOnly ? " read-only" : "") + (settings.hookMode ? " hook" : "") +
           (settings.audibleCue ? "" : " silent");
}

// Only "0" silences the activity cue; the assistant origin is any non-empty value.
TEST(StartupTest, ReadsFlagsAndEnvironmentTheWayAgentsPassThem) {
    const MCPToolsets all = MCPToolsets::all();
    const struct {
        std::vector<std::string> flags;
        const char *origin, *audible;
        std::string settings;
        MCPToolsets toolsets;
    } cases[] = {
        {{}, nullptr, nullptr, "(none)", all},
        {{"--agent"}, "1", "0", "(none) origin silent", all},
        {{"--agent", "--read-only"}, "true", "", "--read-only read-only", all},
        {{"--agent", "claude", "--agent", "codex"}, "01", "00", "claude", all},
        {{"--toolsets", "voice,meetings", "--toolsets", "all"},
         "",
         " 0",
         "(none)",
         MCPToolsets{MCPToolset::voice, MCPToolset::meetings}},
        {{"--read-only", "--toolsets"}, " 1", nullptr, "(none) read-only", all},
        {{"--unknown", "--action-hold-hook", "--READ-ONLY"}, nullptr, nullptr, "(none) hook", all},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.flags));
        std::vector<std::string> arguments = {"orvo"};
        arguments.insert(arguments.end(), c.flags.begin(), c.flags.end());
        const StartupSettings settings = readStartupSettings(arguments, c.origin, c.audible);
        EXPECT_EQ(described(settings), c.settings);
        EXPECT_EQ(settings.selection.assistantOrigin, settings.assistantOrigin);
        EXPECT_EQ(settings.selection.enabled, c.toolsets);
    }
}

}  // namespace
}  // namespace orvo
