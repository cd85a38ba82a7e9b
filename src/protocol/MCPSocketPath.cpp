// Where the app listens for this program: a Unix-domain socket in the user's Application Support.
#include "protocol/MCPSocketPath.h"

#include "protocol/Platform.h"

namespace orvo::MCPSocketPath {

std::filesystem::path resolve(const std::filesystem::path& home) {
    return applicationSupportDirectory(home) / "orvo-agent" / "mcp.sock";
}

}  // namespace orvo::MCPSocketPath
