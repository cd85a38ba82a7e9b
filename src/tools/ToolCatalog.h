// Every tool name the program knows, one table of rows per family, and the lookups over them all.
#pragma once

#include <span>
#include <string_view>

#include "tools/MCPTool.h"

namespace orvo {

// Family tables, each in its own file, sorted by name.
std::span<const ToolRow> localFileTools();
std::span<const ToolRow> computerUseTools();
std::span<const ToolRow> computerInputTools();
std::span<const ToolRow> meetingTools();
std::span<const ToolRow> voiceSettingsTools();
std::span<const ToolRow> slateAndPersonaTools();
std::span<const ToolRow> followUpAndHistoryTools();
std::span<const ToolRow> playbookTools();
std::span<const ToolRow> scheduleTools();

// Every row of every family, sorted by name.
std::span<const ToolRow* const> toolRows();

// The row named `name`, or null.
const ToolRow* toolRow(std::string_view name);

// One tool for every row that has one, sorted by name.
std::span<const MCPTool* const> registeredTools();

}  // namespace orvo
