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

class EchoTool final : public orvo::MCPTool {
public:
    EchoTool(std::string_view name, bool refuses) : name_(name), refuses_(refuses) {}
    std::string_view name() const override { return name_; }
    std::string_view description() const override { return "fuzz"; }
    const orvo::json& inputSchema() const override { return orvo::emptyInputSchema(); }
    orvo::Result<orvo::ToolOutput> call(const orvo::json& arguments,
                                        const orvo::ToolContext& /*context*/) const override {
        if (refuses_) {
            return orvo::RPCError{-32016, "refused", arguments};
        }
        return orvo::ToolOutput{arguments};
    }

private:
    std::string_view name_;
    bool refuses_;
};

orvo::Server& server() {
    static const EchoTool echo("get_meeting_notes", false);
    static const EchoTool refuse("list_meetings", true);
    static const EchoTool inspect("computer_inspect", false);
    static const orvo::MCPTool* const tools[] = {&echo, &refuse, &inspect};
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
