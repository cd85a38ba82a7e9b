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
#include "tools/ToolRegistry.h"

namespace orvo {

inline constexpr int kMaxRequestDepth = 32;
inline constexpr std::string_view kProtocolVersion = "2024-11-05";
inline constexpr std::string_view kServerName = "orvo-agent";

struct ServerOptions {
    ToolContext toolContext;
    std::filesystem::path documentationDirectory;  // named in the instructions, never read
    int outputFd = 1;
};

class Server {
public:
    Server(const ToolRegistry& registry, ServerOptions options);

    // Answers one line, or hands it to a queue and returns at once.
    void handleLine(std::string_view line);

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
    void writeResponse(const json& response);

    const ToolRegistry& registry_;
    ServerOptions options_;
    bool voiceOffer_;
    std::optional<std::string> version_;  // read at the first initialize
    std::mutex outputLock_;
    RequestTracker requests_;
    WorkerGroup workers_;
    // Declared last so that their threads are joined before anything they use goes away.
    WorkQueue mutationQueue_{1};
    WorkQueue observationQueue_{kMaxTrackedCalls};
};

}  // namespace orvo
