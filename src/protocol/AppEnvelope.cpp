// The request and reply that the server and the app exchange over the socket, both sides' halves.
#include "protocol/AppEnvelope.h"

#include "protocol/ActionHoldWire.h"

namespace orvo {

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

std::string encodeMCPMutationRequest(std::string_view method, const json& args) {
    std::string bytes = dumpCompact(json{{"method", method}, {"args", args}});
    bytes.push_back('\n');
    return bytes;
}

MCPMutationDecodeResult decodeMCPMutationResponse(std::string_view bytes) {
    json reply = json::parse(bytes, nullptr, false);
    if (reply.is_discarded() || !reply.is_object()) {
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

std::string encodeMCPMutationSuccess(const json& result) {
    std::string bytes = dumpCompact(json{{"ok", true}, {"result", result}});
    bytes.push_back('\n');
    return bytes;
}

std::string encodeMCPMutationError(MCPMutationErrorCode code, std::string_view message,
                                   const std::optional<json>& data) {
    json error = {{"code", rawValue(code)}, {"message", message}};
    if (data) {
        error["data"] = *data;
    }
    std::string bytes = dumpCompact(json{{"ok", false}, {"error", std::move(error)}});
    bytes.push_back('\n');
    return bytes;
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
