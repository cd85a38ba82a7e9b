// The hook runs before every tool call of every agent: its whole process, spawn to exit.
#include <string>

#include <benchmark/benchmark.h>

#include "ChildProcess.h"
#include "protocol/ActionHoldClassifier.h"

namespace orvo {
namespace {

constexpr std::string_view kReadCall =
    R"({"session_id":"s","transcript_path":"/tmp/t.jsonl","cwd":"/repo","hook_event_name":"PreToolUse","tool_name":"Read","tool_input":{"file_path":"/repo/src/main.cpp"}})";
constexpr std::string_view kGitStatusCall =
    R"({"session_id":"s","transcript_path":"/tmp/t.jsonl","cwd":"/repo","hook_event_name":"PreToolUse","tool_name":"Bash","tool_input":{"command":"git status","description":"Show working tree status"}})";

void runHookProcess(benchmark::State& state, std::string_view input) {
    for (auto _ : state) {
        Child child = Child::spawn(ORVO_BINARY_PATH, {"--action-hold-hook"});
        child.write(input);
        child.finish();
    }
}

void BM_HookProcessReadCall(benchmark::State& state) {
    runHookProcess(state, kReadCall);
}
BENCHMARK(BM_HookProcessReadCall)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly();

void BM_HookProcessGitStatusCall(benchmark::State& state) {
    runHookProcess(state, kGitStatusCall);
}
BENCHMARK(BM_HookProcessGitStatusCall)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly();

}  // namespace
}  // namespace orvo
