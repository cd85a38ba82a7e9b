// The JSON bodies of the two assistant-history requests: a search, and one task's transcript.
#include "protocol/AssistantHistoryWire.h"

namespace orvo::AssistantHistoryWire {
namespace {

RPCError decodingError(std::string message) {
    return RPCError{RPCCode::kInvalidParams, std::move(message), std::nullopt};
}

void encodeOptional(json& object, std::string_view key, const std::optional<std::string>& value) {
    if (value) {
        object[key] = *value;
    }
}

RPCError typeMismatch(const json& object, std::string_view key) {
    return decodingError("type mismatch for key " + std::string(key) + ": expected string, found " +
                         member(object, key)->type_name());
}

// A required key that is null is of the wrong type, not missing.
Result<std::string> requiredString(const json& object, std::string_view key) {
    if (member(object, key) == nullptr) {
        return decodingError("key not found: " + std::string(key));
    }
    Result<std::optional<std::string>> value = read<std::string>(object, key, key);
    if (!value || !*value) {
        return typeMismatch(object, key);
    }
    return std::move(**value);
}

Status optionalString(const json& object, std::string_view key, std::optional<std::string>& out) {
    Result<std::optional<std::string>> value = read<std::string>(object, key, key);
    if (!value) {
        return typeMismatch(object, key);
    }
    out = std::move(*value);
    return ok();
}

Status expectObject(const json& object) {
    if (object.is_object()) {
        return ok();
    }
    return decodingError(std::string("type mismatch: expected object, found ") +
                         object.type_name());
}

}  // namespace

json encode(const SearchRequest& request) {
    json object = {{"query", request.query}};
    encodeOptional(object, "backend", request.backend);
    encodeOptional(object, "directory", request.directory);
    encodeOptional(object, "after", request.after);
    encodeOptional(object, "before", request.before);
    encodeOptional(object, "cursor", request.cursor);
    return object;
}

json encode(const ReadRequest& request) {
    json object = {{"task_id", request.taskID}};
    encodeOptional(object, "cursor", request.cursor);
    return object;
}

Result<SearchRequest> decodeSearchRequest(const json& object) {
    if (Status shape = expectObject(object); !shape) {
        return std::move(shape).error();
    }
    Result<std::string> query = requiredString(object, "query");
    if (!query) {
        return std::move(query).error();
    }
    SearchRequest request{std::move(*query)};
    for (auto [key, field] : {std::pair{"backend", &request.backend},
                              {"directory", &request.directory},
                              {"after", &request.after},
                              {"before", &request.before},
                              {"cursor", &request.cursor}}) {
        if (Status decoded = optionalString(object, key, *field); !decoded) {
            return std::move(decoded).error();
        }
    }
    return request;
}

Result<ReadRequest> decodeReadRequest(const json& object) {
    if (Status shape = expectObject(object); !shape) {
        return std::move(shape).error();
    }
    Result<std::string> taskID = requiredString(object, "task_id");
    if (!taskID) {
        return std::move(taskID).error();
    }
    ReadRequest request{std::move(*taskID)};
    if (Status decoded = optionalString(object, "cursor", request.cursor); !decoded) {
        return std::move(decoded).error();
    }
    return request;
}

}  // namespace orvo::AssistantHistoryWire
