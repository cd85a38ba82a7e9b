// The computer-use calls in flight, by request id, with their cancellation tokens.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "applink/RequestCancellation.h"
#include "protocol/Json.h"

namespace orvo {

inline constexpr std::size_t kMaxTrackedCalls = 16;

// The key of a request id: the JSON text of [id], so that 5 and "5" stay apart.
std::string requestIdKey(const json& id);

enum class TrackOutcome { tracked, full, duplicate };

class RequestTracker {
public:
    // A new token under `key`, unless 16 calls are in flight or the key already is.
    TrackOutcome track(const std::string& key, std::shared_ptr<RequestCancellation>& token);
    void remove(const std::string& key);
    // Cancels the call under `key`, if it is still in flight.
    void cancel(const std::string& key);
    // Cancels every call in flight (end of input).
    void cancelAll();

private:
    std::mutex requestLock_;  // never held while a token's own lock is taken
    std::map<std::string, std::shared_ptr<RequestCancellation>> requests_;
};

}  // namespace orvo
