// What every tool offered to the agent is: a row of a family's table, served by one tool type.
#include "tools/MCPTool.h"

#include <cassert>

#include "applink/AppClient.h"
#include "applink/RequestCancellation.h"
#include "tools/ToolSchema.h"
#include "userfiles/ContextAuditLog.h"

namespace orvo {
namespace {

RPCError internalError(std::string message) {
    return RPCError{RPCCode::kInternalError, std::move(message), std::nullopt};
}

// The text of a tool result: JSON objects and arrays readably printed, plain texts as they are.
Result<std::string> toolText(const ToolOutput& output) {
    if (const auto* text = std::get_if<PlainText>(&output)) {
        return text->text;
    }
    const json& value = std::get<json>(output);
    if (!value.is_object() && !value.is_array()) {
        return internalError("Internal error: tool result is not a JSON object or array");
    }
    return dumpReadable(value);
}

const std::string* stringAt(const json& object, std::string_view key) {
    const json* value = member(object, key);
    return value != nullptr && value->is_string() ? value->get_ptr<const std::string*>() : nullptr;
}

// The record of one read. `reply` is the tool's result before it became text; local tools report
// their own failures inside it.
AuditRecord auditRecord(const ToolRow& row, const json& arguments, const json* reply,
                        const Result<std::string>& text) {
    const ContextRead& audit = row.audit;
    AuditRecord record{std::string(row.name), "ok", {}, {}, {}, {}};
    const json noReply;
    const json& result = reply != nullptr ? *reply : noReply;
    if (!text) {
        record.result = "error: " + text.error().message;
    } else if (const std::string* error = stringAt(result, "error")) {
        record.result = "error: " + *error;
    } else if (const json* count = member(result, "char_count");
               count != nullptr && count->is_number_integer()) {
        // Preference notes measure themselves in characters, and say so.
        record.outputBytes = count->get<std::int64_t>();
    } else {
        record.outputBytes = static_cast<std::int64_t>(text->size());
    }
    const std::string* named =
        audit.argument.empty() ? nullptr : stringAt(arguments, audit.argument);
    if (audit.namesApp) {
        const std::string* app = stringAt(result, "app");
        if (app == nullptr) {
            app = named;
        }
        if (app != nullptr) {
            record.app = *app;
        }
        if (const std::string* bundleId = stringAt(result, "bundle_id")) {
            record.bundleId = *bundleId;
        }
    } else if (named != nullptr) {
        record.extras.emplace_back(std::string(audit.argument), *named);
    }
    if (!audit.counted.empty()) {
        const json* counted = member(result, audit.counted);
        record.extras.emplace_back(std::string(audit.counted),
                                   counted != nullptr && counted->is_array() ? counted->size() : 0);
    }
    return record;
}

}  // namespace

const json& MCPTool::inputSchema() const {
    std::call_once(schemaBuilt_, [this] {
        schema_ = row_->schema != nullptr ? row_->schema() : emptyInputSchema();
    });
    return schema_;
}

Result<std::string> MCPTool::call(const json& arguments, const ToolContext& context) const {
    Result<ToolOutput> output = [&]() -> Result<ToolOutput> {
        if (row_->handler != nullptr) {
            return row_->handler(arguments, context);
        }
        assert(context.app != nullptr);
        return context.app->callApp(row_->name, arguments);
    }();
    Result<std::string> text = output ? toolText(*output) : Result<std::string>(output.error());
    // A cancelled call is never answered, so nothing was handed over and nothing is recorded.
    const RequestCancellation* cancellation = currentCancellation();
    if (row_->audit.recorded && context.auditLog != nullptr &&
        (cancellation == nullptr || !cancellation->isCancelled())) {
        context.auditLog->activityCue();
        const json* reply = output ? std::get_if<json>(&*output) : nullptr;
        context.auditLog->record(auditRecord(*row_, arguments, reply, text));
    }
    return text;
}

}  // namespace orvo
