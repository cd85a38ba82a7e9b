// libFuzzer target: any bytes as lines from the agent, through the whole line handler, with tools
// that answer at once: one echoes its arguments as the result, one refuses with them as data, and
// a computer-use one takes the tracked path.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <fcntl.h>

#include "server/Server.h"
#include "tools/ToolRegistry.h"

namespace {

orvo::Result<orvo::ToolOutput> echo(const orvo::json& arguments,
                                    const orvo::ToolContext& /*context*/) {
    return orvo::ToolOutput{arguments};
}

orvo::Result<orvo::ToolOutput> refuse(const orvo::json& arguments,
                                      const orvo::ToolContext& /*context*/) {
    return orvo::RPCError{-32016, "refused", arguments};
}

constexpr orvo::MCPToolMetadata kConcurrent{{orvo::MCPToolset::state}, orvo::kReading, true};

const orvo::ToolRow kRows[] = {
    {"computer_inspect", kConcurrent, "fuzz", nullptr, {}, echo},
    {"get_meeting_notes", kConcurrent, "fuzz", nullptr, {}, echo},
    {"list_meetings", kConcurrent, "fuzz", nullptr, {}, refuse},
};

orvo::Server& server() {
    static const orvo::MCPTool inspect(kRows[0]);
    static const orvo::MCPTool notes(kRows[1]);
    static const orvo::MCPTool meetings(kRows[2]);
    static const orvo::MCPTool* const tools[] = {&inspect, &notes, &meetings};
    static const orvo::ToolRegistry registry = orvo::ToolRegistry::assemble(tools, {});
    static orvo::Server instance = [] {
        orvo::ServerOptions options;
        options.outputFd = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        options.documentationDirectory = "/docs/";
        return orvo::Server(registry, std::move(options));
    }();
    return instance;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    orvo::Server& lines = server();
    while (!input.empty()) {
        const std::size_t end = std::min(input.find('\n'), input.size());
        if (end > 0) {
            lines.handleLine(input.substr(0, end));
        }
        input.remove_prefix(std::min(end + 1, input.size()));
    }
    // Every queued computer-use call ends before the next input, as at end of input.
    lines.finishInput();
    return 0;
}
