// Where the app listens for this program: a Unix-domain socket in the user's Application Support.
#pragma once

#include <filesystem>
#include <string_view>

namespace orvo::MCPSocketPath {

// The app may listen elsewhere when this is set in its own environment; clients never read it.
// NOLINTNEXTLINE(readability-identifier-naming): the app uses this name too
inline constexpr std::string_view overrideEnvKey = "ORVO_MCP_SOCKET";

// Application Support/orvo-agent/mcp.sock for the user whose home is `home`.
std::filesystem::path resolve(const std::filesystem::path& home);

}  // namespace orvo::MCPSocketPath
