// orvo-agent-mcp: the Orvo MCP server for coding agents, or with --action-hold-hook their hook.
#include <cstdlib>
#include <string>
#include <vector>

#include "hook/ActionHoldHook.h"
#include "server/Startup.h"
#include "tools/ToolListing.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    const orvo::StartupSettings settings = orvo::readStartupSettings(
        // NOLINTNEXTLINE(concurrency-mt-unsafe): read before any thread starts
        arguments, std::getenv("ORVO_ASSISTANT_ORIGIN"), std::getenv("ORVO_MCP_AUDIBLE"));
    if (settings.hookMode) {
        orvo::runActionHoldHook(settings.agentName, settings.assistantOrigin);
    }
    return orvo::runServer(settings, orvo::generatedToolListing());
}
