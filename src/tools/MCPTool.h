// What every tool offered to the agent is: a name, a description, an argument schema and a handler.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <variant>

#include "protocol/Json.h"
#include "protocol/Result.h"

namespace orvo {

class AppClient;
class ContextAuditLog;

// What a tool may reach outside itself. Paths come from start-up so that tests can redirect them.
struct ToolContext {
    std::filesystem::path home;      // the current user's home directory, from the user database
    std::string programPath;         // the first command-line argument, for finding installed files
    const AppClient* app = nullptr;  // the running app, for tools that forward to it
    ContextAuditLog* auditLog = nullptr;  // where reads of the user's context are recorded
};

// A text handed to the agent as it is, not serialised as JSON.
struct PlainText {
    std::string text;
};

// A tool's answer: a JSON object or array serialised for the agent, or a plain text.
using ToolOutput = std::variant<json, PlainText>;

class MCPTool {
public:
    virtual ~MCPTool() = default;

    virtual std::string_view name() const = 0;
    virtual std::string_view description() const = 0;
    // Built once, on first use, and kept for the life of the process.
    virtual const json& inputSchema() const = 0;
    virtual Result<ToolOutput> call(const json& arguments, const ToolContext& context) const = 0;
};

}  // namespace orvo
