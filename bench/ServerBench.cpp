// Server speed and memory: cold start to the tool list, pipelined pings, in-process handling.
#include <cstring>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ChildProcess.h"
#include "server/Server.h"
#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

constexpr std::string_view kInitialize =
    R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2024-11-05","capabilities":{},"clientInfo":{"name":"bench","version":"1"}}})"
    "\n";
constexpr std::string_view kToolsList = R"({"jsonrpc":"2.0","id":2,"method":"tools/list"})"
                                        "\n";
constexpr std::string_view kPing = R"({"jsonrpc":"2.0","id":3,"method":"ping"})"
                                   "\n";

void BM_SpawnTrue(benchmark::State& state) {
    for (auto _ : state) {
        Child child = Child::spawn("/bin/true");
        child.finish();
    }
}
BENCHMARK(BM_SpawnTrue)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly();

void BM_ColdStartToToolList(benchmark::State& state) {
    std::string buffer;
    for (auto _ : state) {
        Child child = Child::spawn(ORVO_BINARY_PATH);
        child.write(kInitialize);
        child.write(kToolsList);
        buffer.clear();
        child.readLines(2, buffer);
        state.PauseTiming();
        child.finish();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ColdStartToToolList)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly();

void BM_PeakMemoryAfterToolList(benchmark::State& state) {
    long peakKiB = 0;
    std::string buffer;
    for (auto _ : state) {
        Child child = Child::spawn(ORVO_BINARY_PATH);
        child.write(kInitialize);
        child.write(kToolsList);
        buffer.clear();
        child.readLines(2, buffer);
        peakKiB = std::max(peakKiB, child.peakResidentKiB());
        child.finish();
    }
    state.counters["peak_KiB"] = static_cast<double>(peakKiB);
}
BENCHMARK(BM_PeakMemoryAfterToolList)->Iterations(20)->Unit(benchmark::kMicrosecond);

// Pings kept 32 in flight against one server process; items per second is answered pings.
void BM_PipelinedPings(benchmark::State& state) {
    constexpr int kInFlight = 32;
    Child child = Child::spawn(ORVO_BINARY_PATH);
    std::string burst;
    for (int i = 0; i < kInFlight; ++i) {
        burst += kPing;
    }
    std::string buffer;
    child.write(burst);
    for (auto _ : state) {
        // Read one burst's answers while the next burst is already queued.
        child.write(burst);
        buffer.clear();
        child.readLines(kInFlight, buffer);
    }
    buffer.clear();
    child.readLines(kInFlight, buffer);
    state.SetItemsProcessed(state.iterations() * kInFlight);
    child.finish();
}
BENCHMARK(BM_PipelinedPings)->Unit(benchmark::kMicrosecond)->UseRealTime();

struct InProcess {
    InProcess()
        : registry(ToolRegistry::assemble(registeredTools(), {})),
          devNull(::open("/dev/null", O_WRONLY)),
          server(registry, ServerOptions{{}, "/tmp/docs/", devNull, generatedToolListing()}) {}
    ToolRegistry registry;
    int devNull;
    Server server;
};

void BM_HandlePing(benchmark::State& state) {
    InProcess process;
    const std::string_view line = kPing.substr(0, kPing.size() - 1);
    for (auto _ : state) {
        process.server.handleLine(line);
    }
}
BENCHMARK(BM_HandlePing);

void BM_HandleToolsList(benchmark::State& state) {
    InProcess process;
    const std::string_view line = kToolsList.substr(0, kToolsList.size() - 1);
    for (auto _ : state) {
        process.server.handleLine(line);
    }
}
BENCHMARK(BM_HandleToolsList)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvo

BENCHMARK_MAIN();
