// The request and reply that the server and the app exchange over the socket, both sides' halves.
#include "protocol/AppEnvelope.h"

#include "protocol/ActionHoldWire.h"

namespace orvo {
namespace {

// One line of the envelope, or why it cannot be written without loss.
Result<std::string> envelopeLine(const json& envelope) {
    if (!isRepresentable(envelope)) {
        return RPCError{RPCCode::kInternalError,
                        "Internal error: a number that is not finite or text that is not UTF-8 "
                        "cannot be sent as JSON",
                        std::nullopt};
    }
    std::string bytes = dumpCompact(envelope);
    bytes.push_back('\n');
    return bytes;
}

}  // namespace

std::string_view rawValue(MCPMutationErrorCode code) {
    return kMCPMutationErrorCodes[static_cast<std::size_t>(code)].rawValue;
}

int rpcCode(MCPMutationErrorCode code) {
    return kMCPMutationErrorCodes[static_cast<std::size_t>(code)].rpcCode;
}

std::optional<MCPMutationErrorCode> mutationErrorCode(std::string_view raw) {
    for (std::size_t i = 0; i < kMCPMutationErrorCodes.size(); ++i) {
        if (kMCPMutationErrorCodes[i].rawValue == raw) {
            return static_cast<MCPMutationErrorCode>(i);
        }
    }
    return std::nullopt;
}

Result<std::string> encodeMCPMutationRequest(std::string_view method, const json& args) {
    return envelopeLine(json{{"method", method}, {"args", args}});
}

MCPMutationDecodeResult decodeMCPMutationResponse(std::string_view bytes) {
    BoundedParse parsed = parseJsonBounded(bytes, kMaxReplyDepth);
    json& reply = parsed.value;
    if (parsed.status != JsonParseStatus::ok || !reply.is_object()) {
        return MCPMutationMalformed{"response was not a JSON object"};
    }
    if (std::optional<bool> ok = boolMember(reply, "ok"); ok && *ok) {
        auto result = reply.find("result");
        return MCPMutationSuccess{result == reply.end() ? json::object() : std::move(*result)};
    }
    const json* error = objectMember(reply, "error");
    if (error == nullptr) {
        return MCPMutationMalformed{"error response missing 'error' object"};
    }
    const std::optional<std::string_view> code = stringMember(*error, "code");
    const json* data = member(*error, "data");
    return MCPMutationError{
        code ? mutationErrorCode(*code).value_or(MCPMutationErrorCode::internal_error)
             : MCPMutationErrorCode::internal_error,
        std::string(stringMember(*error, "message").value_or("Unknown error")),
        data != nullptr ? std::optional<json>(*data) : std::nullopt};
}

Result<json> mutationOutcome(MCPMutationDecodeResult decoded) {
    if (auto* success = std::get_if<MCPMutationSuccess>(&decoded)) {
        return std::move(success->result);
    }
    if (auto* error = std::get_if<MCPMutationError>(&decoded)) {
        json data =
            error->data && error->data->is_object() ? std::move(*error->data) : json::object();
        data["code"] = rawValue(error->code);
        return RPCError{rpcCode(error->code), std::move(error->message), std::move(data)};
    }
    return RPCError{
        RPCCode::kMalformedReply,
        "Malformed response from Orvo: " + std::get<MCPMutationMalformed>(decoded).reason,
        std::nullopt};
}

Result<std::string> encodeMCPMutationSuccess(const json& result) {
    return envelopeLine(json{{"ok", true}, {"result", result}});
}

Result<std::string> encodeMCPMutationError(MCPMutationErrorCode code, std::string_view message,
                                           const std::optional<json>& data) {
    json error = {{"code", rawValue(code)}, {"message", message}};
    if (data) {
        error["data"] = *data;
    }
    return envelopeLine(json{{"ok", false}, {"error", std::move(error)}});
}

int MCPReplyTimeout::seconds(std::string_view method) {
    if (method == ActionHoldWire::kMethod) {
        return ActionHoldWire::kReplyTimeoutSeconds;
    }
    if (isComputerUseTool(method)) {
        return 180;
    }
    return 30;
}

}  // namespace orvo
