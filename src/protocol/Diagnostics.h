// Diagnostics: single lines on standard error, each written whole.
#pragma once

#include <string>
#include <string_view>

namespace orvo {

inline constexpr std::string_view kServerLogPrefix = "orvo-agent-mcp: ";

// Writes `prefix`, `message` and a line feed to standard error in one write.
void logLine(std::string_view prefix, std::string_view message);

inline void logDiagnostic(std::string_view message) {
    logLine(kServerLogPrefix, message);
}

// The system's message for `error` followed by " (errno N)".
std::string errnoDescription(int error);

}  // namespace orvo
