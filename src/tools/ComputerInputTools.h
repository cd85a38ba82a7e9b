// The computer-use tools that act on an inspected target, and the parameters that tools in both
// computer-use files take.
#pragma once

#include <span>

#include "protocol/Json.h"
#include "tools/MCPTool.h"

namespace orvo {

json stateIdParameter();  // a computer_state_id from computer_inspect
json detailParameter();   // summary or full, for what inspect returns

// computer_click through computer_terminal_click, in registration order; computerUseTools()
// offers them with the rest of the family.
std::span<const MCPTool* const> computerInputTools();

}  // namespace orvo
