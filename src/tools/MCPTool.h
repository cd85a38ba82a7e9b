// What every tool offered to the agent is: a row of a family's table (name, metadata, description,
// schema, audit, handler), served by one tool type.
#pragma once

#include <filesystem>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "protocol/Json.h"
#include "protocol/Result.h"
#include "tools/MCPToolMetadata.h"

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

using ToolHandler = Result<ToolOutput> (*)(const json& arguments, const ToolContext& context);
using SchemaBuilder = json (*)();

// Whether a call hands the agent the user's own content, and what its audit record names besides
// the result and the size of the text handed over. Never the content itself.
struct ContextRead {
    bool recorded = false;
    // An argument copied into the record: as `app` when `namesApp`, else as an extra of its name.
    std::string_view argument = {};
    // The record names the app read: the reply's `app` and `bundle_id`, else `argument`.
    bool namesApp = false;
    // A result array whose length goes into the record under its name.
    std::string_view counted = {};
};

inline constexpr ContextRead kRecordedRead{true};
inline constexpr ContextRead kAppRead{true, {}, true};
constexpr ContextRead recordedRead(std::string_view argument) {
    return {true, argument};
}
constexpr ContextRead appRead(std::string_view argument) {
    return {true, argument, true};
}

// One name of the catalogue. A row with no description is a name the app knows that no tool here
// implements: it has metadata and is never offered.
struct ToolRow {
    std::string_view name;
    MCPToolMetadata metadata;
    std::string_view description = {};
    SchemaBuilder schema = nullptr;  // null: the tool takes no arguments
    ContextRead audit = {};
    ToolHandler handler = nullptr;  // null: the app carries the call out under `name`
};

// Families keep their rows sorted by name, so that a reader finds a tool where the listing has it.
constexpr bool rowsAreSorted(std::span<const ToolRow> rows) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (!(rows[i - 1].name < rows[i].name)) {
            return false;
        }
    }
    return true;
}

class MCPTool {
public:
    explicit MCPTool(const ToolRow& row) : row_(&row) {}
    MCPTool(const MCPTool&) = delete;
    MCPTool& operator=(const MCPTool&) = delete;

    std::string_view name() const { return row_->name; }
    std::string_view description() const { return row_->description; }
    const MCPToolMetadata& metadata() const { return row_->metadata; }
    // Built once, on first use, and kept for the life of the process.
    const json& inputSchema() const;

    // Runs the call and returns the text handed to the agent: JSON pretty-printed, plain text as
    // it is. A read of the user's context then cues the app and leaves one audit record, unless
    // the call was cancelled.
    Result<std::string> call(const json& arguments, const ToolContext& context) const;

private:
    const ToolRow* row_;
    mutable std::once_flag schemaBuilt_;
    mutable json schema_;
};

}  // namespace orvo
