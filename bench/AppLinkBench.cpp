// What the server adds to a forwarded call: its round trip against a bare socket to the same app.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "applink/AppClient.h"
#include "protocol/AppEnvelope.h"
#include "protocol/MCPSocketPath.h"
#include "server/Server.h"
#include "support/FakeApp.h"
#include "support/ServerProcess.h"
#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

double medianMicroseconds(std::vector<double>& samples) {
    std::ranges::nth_element(samples, samples.begin() + samples.size() / 2);
    return samples[samples.size() / 2];
}

// Each iteration makes one bare call (connect, write the request line, half-close, read to the
// app's close) and one call through the server (a tools/call line in, the response line out),
// alternating so that both see the same machine; the counters are the medians and the difference.
void BM_ForwardedCallOverhead(benchmark::State& state) {
    test::TempDir home;
    test::FakeApp app(MCPSocketPath::resolve(home.path()));
    app.on("get_meeting_notes", test::successReply({{"notes", "# Standup\n- ship it"}}));

    const std::string path = MCPSocketPath::resolve(home.path()).string();
    const std::string request =
        *encodeMCPMutationRequest("get_meeting_notes", json{{"id", "m-42"}});
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);

    constexpr ToolRow kNotes{
        "get_meeting_notes", {{MCPToolset::meetings}, kReading, true}, "bench"};
    const MCPTool tool(kNotes);
    const MCPTool* const tools[] = {&tool};
    const ToolRegistry registry = ToolRegistry::assemble(tools, {});
    const AppClient client(AppClientOptions{home.path(), "bench", false, {}});
    int output[2];
    if (::pipe(output) != 0) {
        state.SkipWithError("pipe failed");
        return;
    }
    Server server(registry, ServerOptions{{home.path(), "", &client}, "/docs/", output[1], {}});
    const std::string line =
        R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":"get_meeting_notes","arguments":{"id":"m-42"}}})";

    std::vector<double> bare, served;
    char chunk[65536];
    using Clock = std::chrono::steady_clock;
    for (auto _ : state) {
        const auto start = Clock::now();
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            state.SkipWithError("connect failed");
            break;
        }
        [[maybe_unused]] ssize_t sent = ::write(fd, request.data(), request.size());
        ::shutdown(fd, SHUT_WR);
        while (::read(fd, chunk, sizeof chunk) > 0) {
        }
        ::close(fd);
        const auto middle = Clock::now();
        server.handleLine(line);  // returns once the response is written
        [[maybe_unused]] ssize_t received = ::read(output[0], chunk, sizeof chunk);
        const auto end = Clock::now();
        bare.push_back(std::chrono::duration<double, std::micro>(middle - start).count());
        served.push_back(std::chrono::duration<double, std::micro>(end - middle).count());
    }
    const double bareMedian = medianMicroseconds(bare);
    const double servedMedian = medianMicroseconds(served);
    state.counters["bare_median_us"] = bareMedian;
    state.counters["server_median_us"] = servedMedian;
    state.counters["added_us"] = servedMedian - bareMedian;
    ::close(output[0]);
    ::close(output[1]);
}
BENCHMARK(BM_ForwardedCallOverhead)->Unit(benchmark::kMicrosecond)->Iterations(3000);

}  // namespace
}  // namespace orvo
