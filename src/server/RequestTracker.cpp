// The computer-use calls in flight, by request id, with their cancellation tokens.
#include "server/RequestTracker.h"

#include <vector>

namespace orvo {

std::string requestIdKey(const json& id) {
    return dumpCompact(json::array({id}));
}

TrackOutcome RequestTracker::track(const std::string& key,
                                   std::shared_ptr<RequestCancellation>& token) {
    auto created = std::make_shared<RequestCancellation>();
    std::lock_guard<std::mutex> guard(requestLock_);
    if (requests_.size() >= kMaxTrackedCalls) {
        return TrackOutcome::full;
    }
    if (!requests_.emplace(key, created).second) {
        return TrackOutcome::duplicate;
    }
    token = std::move(created);
    return TrackOutcome::tracked;
}

void RequestTracker::remove(const std::string& key) {
    std::lock_guard<std::mutex> guard(requestLock_);
    requests_.erase(key);
}

void RequestTracker::cancel(const std::string& key) {
    std::shared_ptr<RequestCancellation> token;
    {
        std::lock_guard<std::mutex> guard(requestLock_);
        auto it = requests_.find(key);
        if (it == requests_.end()) {
            return;
        }
        token = it->second;
    }
    token->cancel();
}

void RequestTracker::cancelAll() {
    std::vector<std::shared_ptr<RequestCancellation>> tokens;
    {
        std::lock_guard<std::mutex> guard(requestLock_);
        for (const auto& [key, token] : requests_) {
            tokens.push_back(token);
        }
    }
    for (const auto& token : tokens) {
        token->cancel();
    }
}

}  // namespace orvo
