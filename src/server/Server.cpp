// The MCP server: answers JSON-RPC lines from the agent and writes one response line per request.
#include "server/Server.h"

#include <algorithm>
#include <exception>

#include <unistd.h>

#include "protocol/AppEnvelope.h"
#include "protocol/DescriptorIO.h"
#include "protocol/Diagnostics.h"
#include "server/Instructions.h"
#include "userfiles/VersionLookup.h"

namespace orvo {
namespace {

// Answers held for a burst are written once they reach this size, whatever follows.
constexpr std::size_t kMaxPendingOutputBytes = std::size_t{64} * 1024;

RPCError rpcError(int code, std::string message) {
    return RPCError{code, std::move(message), std::nullopt};
}

bool holds(const std::vector<std::string>& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

// The one place where a failure that is not an RPCError becomes one.
template <class Run>
Result<json> catchingInternalErrors(Run&& run) {
    try {
        return run();
    } catch (const std::exception& error) {
        return rpcError(RPCCode::kInternalError, std::string("Internal error: ") + error.what());
    } catch (...) {
        return rpcError(RPCCode::kInternalError, "Internal error: unknown exception");
    }
}

}  // namespace

Server::Server(const ToolRegistry& registry, ServerOptions options)
    : registry_(registry), options_(std::move(options)), voiceOffer_(registry.offers("speak")) {}

void Server::handleLine(std::string_view line, bool moreInputReady) {
    dispatchLine(line);
    if (!moreInputReady) {
        flushOutput();
    }
}

void Server::dispatchLine(std::string_view line) {
    BoundedParse parsed = parseJsonBounded(line, kMaxRequestDepth);
    if (parsed.status == JsonParseStatus::invalid || parsed.topLevel != json::value_t::object) {
        answer(nullptr, rpcError(RPCCode::kParseError, "Parse error"));
        return;
    }
    if (parsed.status == JsonParseStatus::tooDeep) {
        answer(nullptr, rpcError(RPCCode::kInvalidRequest, "Request exceeds max depth"));
        return;
    }
    // An id that would come back changed could also collide with another in flight.
    if (holds(parsed.roundedMembers, "id")) {
        answer(nullptr, rpcError(RPCCode::kInvalidRequest,
                                 "Invalid Request: id is a number that cannot be echoed exactly"));
        return;
    }
    const json& request = parsed.value;
    const json* id = member(request, "id");
    const std::string_view method = stringMember(request, "method").value_or("");
    static const json kNoParams = json::object();
    const json* params = objectMember(request, "params");
    if (params == nullptr) {
        params = &kNoParams;
    }
    if (id == nullptr) {
        // Notifications are never answered.
        if (method == "notifications/cancelled" && !holds(parsed.roundedMembers, "params")) {
            if (const json* requestId = member(*params, "requestId")) {
                requests_.cancel(requestIdKey(*requestId));
            }
        }
        return;
    }
    if (method == "tools/call") {
        if (std::optional<std::string_view> name = stringMember(*params, "name");
            name && isComputerUseTool(*name)) {
            queueComputerUseCall(*id, *name, *params);
            return;
        }
    }
    handleRequest(*id, method, *params);
}

void Server::handleRequest(const json& id, std::string_view method, const json& params) {
    if (method == "tools/list") {
        if (!listingText_) {
            listingText_ = listingText(registry_, options_.precomputedListing);
        }
        answerWithText(id, *listingText_);
        return;
    }
    if (method == "tools/call") {
        flushOutput();  // a tool may wait long for the app; earlier answers must not wait with it
    }
    answer(id, catchingInternalErrors([&] { return runMethod(method, params); }));
}

void Server::queueComputerUseCall(json id, std::string_view toolName, json params) {
    std::string key = requestIdKey(id);
    std::shared_ptr<RequestCancellation> token;
    switch (requests_.track(key, token)) {
        case TrackOutcome::full:
            answer(id, rpcError(RPCCode::kServerError,
                                "Maximum number of pending Computer Use requests reached"));
            return;
        case TrackOutcome::duplicate:
            answer(id, rpcError(RPCCode::kInvalidRequest, "Duplicate request id"));
            return;
        case TrackOutcome::tracked:
            break;
    }
    // A tool that is not offered is refused in order, behind the calls that change things.
    const MCPTool* tool = registry_.find(toolName);
    WorkQueue& queue = tool != nullptr && tool->metadata().permitsConcurrentRequests
                           ? observationQueue_
                           : mutationQueue_;
    workers_.enter();
    queue.submit([this, id = std::move(id), params = std::move(params), key = std::move(key),
                  token = std::move(token)] {
        processQueued(id, params, *token);
        requests_.remove(key);
        workers_.leave();
    });
}

void Server::processQueued(const json& id, const json& params, RequestCancellation& token) {
    Result<json> outcome = rpcError(RPCCode::kServerError, "Request cancelled");
    {
        CurrentCancellationScope current(&token);
        if (!token.isCancelled()) {
            outcome = catchingInternalErrors([&] { return callTool(params); });
        }
    }
    // A cancelled call is never answered, whatever became of it.
    if (!token.isCancelled()) {
        answer(id, std::move(outcome));
        flushOutput();
    }
}

void Server::finishInput() {
    flushOutput();
    requests_.cancelAll();
    workers_.wait();
}

Result<json> Server::runMethod(std::string_view method, const json& params) {
    if (method == "ping") {
        return json::object();
    }
    if (method == "tools/call") {
        return callTool(params);
    }
    if (method == "initialize") {
        return initialize();
    }
    if (method == "prompts/list") {
        return listPrompts(voiceOffer_);
    }
    if (method == "prompts/get") {
        return getPrompt(params, voiceOffer_);
    }
    if (method == "resources/list") {
        return json{{"resources", json::array()}};
    }
    if (method == "resources/templates/list") {
        return json{{"resourceTemplates", json::array()}};
    }
    return rpcError(RPCCode::kMethodNotFound, "Method not found: " + std::string(method));
}

Result<json> Server::initialize() {
    if (!version_) {
        version_ = lookupVersion(options_.toolContext.programPath);
    }
    json capabilities = {{"tools", {{"listChanged", true}}}};
    if (voiceOffer_) {
        capabilities["prompts"] = {{"listChanged", false}};
    }
    return json{{"protocolVersion", kProtocolVersion},
                {"capabilities", std::move(capabilities)},
                {"serverInfo", {{"name", kServerName}, {"version", *version_}}},
                {"instructions", instructions(options_.documentationDirectory, voiceOffer_)}};
}

Result<json> Server::callTool(const json& params) {
    std::optional<std::string_view> name = stringMember(params, "name");
    if (!name) {
        return rpcError(RPCCode::kInvalidParams, "Missing 'name' in tools/call");
    }
    const MCPTool* tool = registry_.find(*name);
    if (tool == nullptr) {
        return rpcError(RPCCode::kInvalidParams, "Unknown tool: " + std::string(*name));
    }
    static const json kNoArguments = json::object();
    const json* arguments = objectMember(params, "arguments");
    Result<std::string> text =
        tool->call(arguments != nullptr ? *arguments : kNoArguments, options_.toolContext);
    if (!text) {
        return std::move(text).error();
    }
    return json{{"content", json::array({json{{"type", "text"}, {"text", std::move(*text)}}})},
                {"isError", false}};
}

void Server::answer(const json& id, Result<json> outcome) {
    if (outcome) {
        // The result's line is put together around it, without building the response object.
        answerWithText(id, dumpCompact(*outcome));
        return;
    }
    const RPCError& error = outcome.error();
    json encoded = {{"code", error.code}, {"message", error.message}};
    if (error.data) {
        encoded["data"] = *error.data;
    }
    writeResponse(json{{"jsonrpc", "2.0"}, {"id", id}, {"error", std::move(encoded)}});
}

// The same line as answer() would write, with a result that is already JSON text; keys in order.
void Server::answerWithText(const json& id, std::string_view resultText) {
    std::string bytes = R"({"id":)";
    bytes.append(dumpCompact(id)).append(R"(,"jsonrpc":"2.0","result":)").append(resultText);
    bytes.append("}\n");
    writeLine(bytes);
}

void Server::writeResponse(const json& response) {
    std::string bytes;
    try {
        bytes = dumpCompact(response);
    } catch (const std::exception&) {
        logDiagnostic("failed to serialize response");
        return;
    }
    bytes.push_back('\n');
    writeLine(bytes);
}

void Server::writeLine(std::string_view bytes) {
    std::lock_guard<std::mutex> lock(outputLock_);
    pendingOutput_.append(bytes);
    if (pendingOutput_.size() >= kMaxPendingOutputBytes) {
        writePendingLocked();
    }
}

void Server::flushOutput() {
    std::lock_guard<std::mutex> lock(outputLock_);
    writePendingLocked();
}

void Server::writePendingLocked() {
    // An agent that stopped reading has gone; nothing else can be done with the lines.
    (void)writeAll(options_.outputFd, pendingOutput_);
    pendingOutput_.clear();
}

}  // namespace orvo
