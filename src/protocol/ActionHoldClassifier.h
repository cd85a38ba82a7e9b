// Which held actions a pending tool call of an agent would perform, so that the owner can be asked.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "protocol/ActionHoldMatch.h"
#include "protocol/Json.h"

namespace orvo::ActionHoldClassifier {

// The held actions of one pending tool call. A "Bash" call is read by its "command" argument,
// a call of another MCP server's tool (mcp__server__tool) by its name and arguments; any other
// tool yields none.
std::vector<ActionHoldMatch> classify(std::string_view toolName, const json& input);

// The held actions of a shell command line: at most one match per category, in the order the
// categories first appear, each with the details of every command that holds it. Never fails;
// what cannot be read yields fewer matches.
std::vector<ActionHoldMatch> classifyCommand(std::string_view command);

// The held action of a call of another MCP server's tool, by the words of the tool's name.
std::optional<ActionHoldMatch> classifyMCPTool(std::string_view toolName, const json& input);

}  // namespace orvo::ActionHoldClassifier
