// The JSON bodies of the two assistant-history requests: a search, and one task's transcript.
#pragma once

#include <optional>
#include <string>

#include "protocol/Json.h"
#include "protocol/Result.h"

namespace orvo::AssistantHistoryWire {

struct SearchRequest {
    std::string query;
    std::optional<std::string> backend = std::nullopt;
    std::optional<std::string> directory = std::nullopt;
    std::optional<std::string> after = std::nullopt;
    std::optional<std::string> before = std::nullopt;
    std::optional<std::string> cursor = std::nullopt;

    bool operator==(const SearchRequest&) const = default;
};

struct ReadRequest {
    std::string taskID;  // "task_id" on the wire
    std::optional<std::string> cursor = std::nullopt;

    bool operator==(const ReadRequest&) const = default;
};

// An absent optional field is left out, never written as null.
json encode(const SearchRequest& request);
json encode(const ReadRequest& request);

// The required key must hold a string; an optional key may be absent or null; unknown keys are
// ignored. Fails with -32602 naming the key that is missing or of the wrong type.
Result<SearchRequest> decodeSearchRequest(const json& object);
Result<ReadRequest> decodeReadRequest(const json& object);

}  // namespace orvo::AssistantHistoryWire
