// The agent's pre-tool-use hook: asks the owner, through the app, before a held action runs.
#include "hook/ActionHoldHook.h"

#include <csignal>
#include <cstdlib>

#include <sys/socket.h>
#include <unistd.h>

#include "protocol/ActionHoldClassifier.h"
#include "protocol/ActionHoldWire.h"
#include "protocol/AppEnvelope.h"
#include "protocol/DescriptorIO.h"
#include "protocol/Diagnostics.h"
#include "protocol/Platform.h"

namespace orvo {
namespace {

// The classifiers read "tool_name" and the members of "tool_input", so nothing deeper is built:
// input of any depth is read whole and checked, and deep contents cost neither stack nor memory.
constexpr int kHookInputKeptDepth = 3;

HoldOutcome failedClosed(std::string text) {
    return {HoldOutcomeKind::failedClosed, std::move(text)};
}

// Reads the reply to the app's close, waking every step to check the deadline and the agent.
HoldOutcome readOwnerReply(int fd, const HoldWait& wait) {
    const IOClock::time_point deadline = IOClock::now() + wait.limit;
    std::string reply;
    for (;;) {
        const IOResult read =
            readUpTo(fd, reply, kMaxReplyBytes, std::min(deadline, IOClock::now() + wait.step));
        if (read.status == IOStatus::done) {
            break;
        }
        if (read.status == IOStatus::tooLarge) {
            return failedClosed("reply too large");
        }
        if (read.status == IOStatus::failed) {
            return failedClosed(std::string(read.call) + "() failed: errno " +
                                std::to_string(read.error));
        }
        if (IOClock::now() >= deadline) {
            return failedClosed("no reply in time");
        }
        if (wait.agentStillThere && !wait.agentStillThere()) {
            return {HoldOutcomeKind::agentGone, {}};
        }
    }
    if (reply.empty()) {
        return failedClosed("the app closed the connection without a reply");
    }
    MCPMutationDecodeResult decoded = decodeMCPMutationResponse(reply);
    if (const auto* malformed = std::get_if<MCPMutationMalformed>(&decoded)) {
        return failedClosed("malformed reply: " + malformed->reason);
    }
    if (const auto* error = std::get_if<MCPMutationError>(&decoded)) {
        return {HoldOutcomeKind::failedOpen, error->message};
    }
    const json& result = std::get<MCPMutationSuccess>(decoded).result;
    const std::optional<std::string_view> decision = stringMember(result, "decision");
    if (!decision) {
        return failedClosed("malformed action hold reply");
    }
    if (*decision == "allow") {
        return {HoldOutcomeKind::allowed, {}};
    }
    if (*decision == "deny") {
        return {HoldOutcomeKind::refused, std::string(stringMember(result, "reason").value_or(""))};
    }
    return failedClosed("unknown action hold decision " + std::string(*decision));
}

std::string denyLine(std::string_view reason) {
    return dumpCompact(json{{"hookSpecificOutput",
                             {{"hookEventName", "PreToolUse"},
                              {"permissionDecision", "deny"},
                              {"permissionDecisionReason", reason}}}}) +
           "\n";
}

// All of it, however large: agents hand the hook whole file contents and attachments, and a
// call is never let through for being big.
std::string readAllInput() {
    std::string input;
    if (readUpTo(STDIN_FILENO, input, input.max_size()).status != IOStatus::done) {
        return {};  // unreadable: not a hook input at all
    }
    return input;
}

}  // namespace

HoldOutcome askOwner(const AppClient& app, const json& args, const HoldWait& wait) {
    Result<UniqueFd> socket = app.connectToApp(wait.limit);
    if (!socket) {
        return {HoldOutcomeKind::failedOpen, socket.error().message};
    }
    const Result<std::string> request = encodeMCPMutationRequest(
        ActionHoldWire::kMethod, app.withAgentContext(args, /*cancelOnDisconnect=*/false));
    if (!request) {
        return {HoldOutcomeKind::failedOpen, request.error().message};
    }
    if (Status written =
            AppClient::writeAll(socket->get(), *request, IOClock::now() + kSendTimeout);
        !written) {
        return {HoldOutcomeKind::failedOpen, written.error().message};
    }
    // The request is whole: from here on a failure refuses the call rather than letting it run.
    ::shutdown(socket->get(), SHUT_WR);
    return readOwnerReply(socket->get(), wait);
}

HookCall readHookCall(std::string_view input, const std::optional<std::string>& token) {
    const BoundedParse parsed = parseJsonPruned(input, kHookInputKeptDepth);
    const json& call = parsed.value;
    const json* toolName = member(call, "tool_name");
    const json* toolInput = member(call, "tool_input");
    if (toolName == nullptr || !toolName->is_string() || toolInput == nullptr ||
        !toolInput->is_object()) {
        return {};
    }
    const std::vector<ActionHoldMatch> matches =
        ActionHoldClassifier::classify(toolName->get_ref<const std::string&>(), *toolInput);
    if (matches.empty()) {
        return {true, std::nullopt};
    }
    json wireMatches = json::array();
    for (const ActionHoldMatch& match : matches) {
        wireMatches.push_back(match.wireValue());
    }
    json args = {{"matches", std::move(wireMatches)}, {"tool", *toolName}};
    if (token && !token->empty()) {
        args["token"] = *token;
    }
    return {true, std::move(args)};
}

HookResult runHook(std::string_view input, const AppClient& app,
                   const std::optional<std::string>& token, const HoldWait& wait) {
    HookResult result;
    const HookCall call = readHookCall(input, token);
    if (!call.readable) {
        result.logLines.emplace_back("unreadable hook input; allowing");
        return result;
    }
    if (!call.holdArgs) {
        return result;
    }
    const HoldOutcome outcome = askOwner(app, *call.holdArgs, wait);
    switch (outcome.kind) {
        case HoldOutcomeKind::allowed:
        case HoldOutcomeKind::agentGone:
            break;
        case HoldOutcomeKind::refused:
            result.output = denyLine(outcome.text);
            break;
        case HoldOutcomeKind::failedOpen:
            result.logLines.push_back(outcome.text + "; allowing");
            break;
        case HoldOutcomeKind::failedClosed:
            result.logLines.push_back(outcome.text + "; not running it");
            result.output = denyLine(kFailedClosedReason);
            break;
    }
    return result;
}

void runActionHoldHook(const std::optional<std::string>& agentName, bool assistantOrigin) {
    // An agent that stops reading our answer must not kill the hook with a signal.
    (void)std::signal(SIGPIPE, SIG_IGN);
    HookResult result;
    try {
        const pid_t agent = ::getppid();
        const AppClient app(AppClientOptions{userHomeDirectory(), agentName, assistantOrigin, {}});
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the hook runs on one thread
        const char* token = std::getenv(std::string(ActionHoldWire::kTokenEnvKey).c_str());
        const HoldWait wait{std::chrono::milliseconds(500),
                            std::chrono::seconds(MCPReplyTimeout::seconds(ActionHoldWire::kMethod)),
                            [agent] { return ::getppid() == agent; }};
        result = runHook(readAllInput(), app,
                         token != nullptr ? std::optional<std::string>(token) : std::nullopt, wait);
    } catch (const std::exception& error) {
        // Nothing was asked, so nothing is refused: the call goes on as if there were no hook.
        result = HookResult{{}, {std::string(error.what()) + "; allowing"}};
    }
    for (const std::string& line : result.logLines) {
        logLine(kHookLogPrefix, line);
    }
    (void)writeAll(STDOUT_FILENO, result.output);  // an agent that stopped reading has gone
    std::exit(0);  // NOLINT(concurrency-mt-unsafe): no other thread was started
}

}  // namespace orvo
