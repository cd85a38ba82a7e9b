// Start-up: what the command line and environment ask for, and the server's run until end of input.
#include "server/Startup.h"

#include <algorithm>
#include <csignal>

#include <unistd.h>

#include "applink/AppClient.h"
#include "protocol/ActionHoldWire.h"
#include "protocol/ActivityLogFiles.h"
#include "protocol/Diagnostics.h"
#include "protocol/Platform.h"
#include "server/Instructions.h"
#include "server/LineReader.h"
#include "server/Server.h"
#include "server/TerminationWatch.h"
#include "tools/ToolCatalog.h"
#include "userfiles/ContextAuditLog.h"
#include "userfiles/PreferenceNotes.h"

namespace orvo {
namespace {

// How long the end of input waits for audit records still queued: long enough for any working
// disk, short enough that a stuck one cannot keep the agent's session from ending.
constexpr std::chrono::seconds kAuditDrainLimit{3};

// The argument after the first occurrence of `flag`, if there is one.
std::optional<std::string> valueAfter(std::span<const std::string> arguments,
                                      std::string_view flag) {
    auto it = std::ranges::find(arguments, flag);
    if (it == arguments.end() || std::next(it) == arguments.end()) {
        return std::nullopt;
    }
    return *std::next(it);
}

bool hasFlag(std::span<const std::string> arguments, std::string_view flag) {
    return std::ranges::find(arguments, flag) != arguments.end();
}

}  // namespace

StartupSettings readStartupSettings(std::span<const std::string> arguments,
                                    const char* assistantOriginValue, const char* audibleValue) {
    StartupSettings settings;
    settings.arguments.assign(arguments.begin(), arguments.end());
    settings.agentName = valueAfter(arguments, "--agent");
    settings.assistantOrigin =
        assistantOriginValue != nullptr && std::string_view(assistantOriginValue) == "1";
    settings.audibleCue = audibleValue == nullptr || std::string_view(audibleValue) != "0";
    settings.hookMode = hasFlag(arguments, ActionHoldWire::kHookFlag);
    if (std::optional<std::string> toolsets = valueAfter(arguments, "--toolsets")) {
        settings.selection.enabled = parseToolsets(*toolsets);
    }
    settings.selection.readOnly = hasFlag(arguments, "--read-only");
    settings.selection.assistantOrigin = settings.assistantOrigin;
    return settings;
}

int runServer(const StartupSettings& settings, std::span<const PrecomputedListingEntry> listing) {
    // An agent that closes its end of the pipe must not kill us mid-write; the write fails instead.
    (void)std::signal(SIGPIPE, SIG_IGN);
    blockTerminationSignals();

    const ToolRegistry registry = ToolRegistry::assemble(registeredTools(), settings.selection);
    const std::filesystem::path home = userHomeDirectory();
    const AppClient app(AppClientOptions{home, settings.agentName, settings.assistantOrigin, {}});
    // The cue's copy of the client outlives the run, should the app be slow to answer at exit.
    ContextAuditLog auditLog(ContextAuditLogOptions{
        ActivityLogFiles::contextReads(home),
        [app] {
            [[maybe_unused]] Result<json> ignored = app.callApp(kActivityCueMethod, json::object());
        },
        settings.audibleCue,
        {}});
    ServerOptions options;
    options.toolContext.home = home;
    options.toolContext.app = &app;
    options.toolContext.auditLog = &auditLog;
    options.toolContext.programPath = settings.arguments.empty() ? "" : settings.arguments.front();
    options.documentationDirectory =
        documentationDirectory(applicationSupportDirectory(options.toolContext.home));
    options.outputFd = STDOUT_FILENO;
    options.precomputedListing = listing;
    Server server(registry, std::move(options));

    // A terminated server leaves the notes whole, no temporary file behind and every answered
    // read audited. Calls in flight are not waited for: the app sees their sockets close with
    // the process.
    TerminationWatch terminationWatch([&auditLog] {
        holdPreferenceWrites();
        if (!auditLog.drainForExit(kAuditDrainLimit)) {
            logDiagnostic("audit log records still unwritten at exit were dropped");
        }
    });

    LineReader reader(STDIN_FILENO);
    while (std::optional<std::string_view> line = reader.next()) {
        if (!line->empty()) {
            server.handleLine(*line, /*moreInputReady=*/true);
        }
        if (!reader.hasBufferedLine()) {
            server.flushOutput();  // before reading blocks
        }
    }
    terminationWatch.finish();
    server.finishInput();
    // Records of reads already answered must reach the file before the process goes.
    if (!auditLog.drain(kAuditDrainLimit)) {
        logDiagnostic("audit log records still unwritten at exit were dropped");
    }
    return 0;
}

}  // namespace orvo
