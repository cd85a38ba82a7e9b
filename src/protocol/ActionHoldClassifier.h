// Which held actions a pending tool call of an agent would perform, so that the owner can be asked.
#pragma once

#include <string_view>
#include <vector>

#include "protocol/ActionHoldMatch.h"

namespace orvo::ActionHoldClassifier {

// The held actions of a shell command line: at most one match per category, in the order the
// categories first appear, each with the details of every command that holds it. Never fails;
// what cannot be read yields fewer matches.
std::vector<ActionHoldMatch> classifyCommand(std::string_view command);

}  // namespace orvo::ActionHoldClassifier
