// The constants of the agent hook event record, which the app receives and checks.
#include "protocol/AgentHookWire.h"

#include <algorithm>

namespace orvo::AgentHookWire {
namespace {

constexpr std::string_view kAllowedEnvironmentKeyList[] = {
    "GHOSTTY_BIN_DIR",
    "GHOSTTY_MAC_APP",
    "GHOSTTY_RESOURCES_DIR",
    "GHOSTTY_SURFACE_ID",
    "ITERM_SESSION_ID",
    "KITTY_LISTEN_ON",
    "KITTY_PID",
    "KITTY_WINDOW_ID",
    "LC_TERMINAL",
    "LC_TERMINAL_VERSION",
    "QUARN_CLIENT_SOCKET_PATH",
    "QUARN_ENV",
    "QUARN_PANE_ID",
    "QUARN_SESSION_NAME",
    "QUARN_SOCKET_PATH",
    "QUARN_TAB_ID",
    "QUARN_WORKSPACE_ID",
    "TERM_PROGRAM",
    "TERM_PROGRAM_VERSION",
    "TERM_SESSION_ID",
    "TMUX",
    "TMUX_PANE",
    "VSCODE_CWD",
    "VSCODE_IPC_HOOK_CLI",
    "VSCODE_PID",
    "WEZTERM_PANE",
    "WEZTERM_UNIX_SOCKET",
    "__CFBundleIdentifier",
};
static_assert(std::size(kAllowedEnvironmentKeyList) == 28);
static_assert(std::ranges::is_sorted(kAllowedEnvironmentKeyList));

}  // namespace

const std::span<const std::string_view> kAllowedEnvironmentKeys = kAllowedEnvironmentKeyList;

bool isAllowedEnvironmentKey(std::string_view key) {
    return std::ranges::binary_search(kAllowedEnvironmentKeys, key);
}

}  // namespace orvo::AgentHookWire
