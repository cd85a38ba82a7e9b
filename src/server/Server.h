// The MCP server: answers JSON-RPC lines from the agent and writes one response line per request.
#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "applink/RequestCancellation.h"
#include "protocol/Json.h"
#include "protocol/Result.h"
#include "server/RequestTracker.h"
#include "server/WorkQueue.h"
#include "tools/MCPTool.h"
#include "tools/ToolListing.h"
#include "tools/ToolRegistry.h"

namespace orvo {

inline constexpr int kMaxRequestDepth = 32;
inline constexpr std::string_view kProtocolVersion = "2024-11-05";
inline constexpr std::string_view kServerName = "orvo-agent";

struct ServerOptions {
    ToolContext toolContext;
    std::filesystem::path documentationDirectory;  // named in the instructions, never read
    int outputFd = 1;
    // Listing entries serialised when the program was built; tools without one are serialised
    // on the first tools/list.
    std::span<const PrecomputedListingEntry> precomputedListing;
};

class Server {
public:
    Server(const ToolRegistry& registry, ServerOptions options);

    // Answers one line, or hands it to a queue and returns at once. With `moreInputReady` the
    // answer may wait for the answers to the lines after it, so that a burst of requests is
    // answered in one write; it never waits while a tool runs.
    void handleLine(std::string_view line, bool moreInputReady = false);
    // Writes the answers that are waiting.
    void flushOutput();

    // End of input: cancels the computer-use calls in flight and waits for their work to end.
    void finishInput();

private:
    void handleRequest(const json& id, std::string_view method, const json& params);
    void queueComputerUseCall(json id, std::string_view toolName, json params);
    void processQueued(const json& id, const json& params, RequestCancellation& token);
    Result<json> runMethod(std::string_view method, const json& params);
    Result<json> initialize();
    Result<json> callTool(const json& params);
    void answer(const json& id, Result<json> outcome);
    void answerWithText(const json& id, std::string_view resultText);
    void writeResponse(const json& response);
    void writeLine(std::string_view bytes);
    void writePendingLocked();  // with outputLock_ held
    void dispatchLine(std::string_view line);

    const ToolRegistry& registry_;
    ServerOptions options_;
    bool voiceOffer_;
    std::optional<std::string> version_;      // read at the first initialize
    std::optional<std::string> listingText_;  // made at the first tools/list; the set never changes
    std::mutex outputLock_;
    std::string pendingOutput_;  // whole lines not yet written; guarded by outputLock_
    RequestTracker requests_;
    WorkerGroup workers_;
    // Declared last so that their threads are joined before anything they use goes away.
    WorkQueue mutationQueue_{1};
    WorkQueue observationQueue_{kMaxTrackedCalls};
};

}  // namespace orvo
