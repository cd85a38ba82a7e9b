// Held-action classifier speed: the hook runs it before every tool call of every agent session.
#include <string_view>

#include <benchmark/benchmark.h>

#include "protocol/ActionHoldClassifier.h"

namespace orvo {
namespace {

// Commands as agents write them, held and not.
constexpr std::string_view kAgentCommands[] = {
    "git status",
    "ls -la src/protocol",
    "npm test -- --watch=false",
    "cd /Users/me/repo && git add -A && git commit -m \"Fix the parser\" && git push origin main",
    "git push --force-with-lease origin feature/parser",
    "rm -rf node_modules dist && npm install",
    "rm -rf src/old",
    "gh pr create --title \"Parser fixes\" --body \"$(cat <<'EOF'\nFixes the parser.\nEOF\n)\"",
    "gh api repos/o/r/issues -f title=bug -f body=\"details\"",
    "curl -sS -X POST https://api.example.com/v1/items -H 'Content-Type: application/json' -d "
    "'{\"a\":1}'",
    "find . -name '*.pyc' -delete",
    "ssh deploy@prod 'cd /srv/app && git pull && sudo systemctl restart app'",
    "bash -c 'set -euo pipefail; make build && ./scripts/deploy-staging.sh'",
    "sudo -u ci env CI=1 timeout 300 npx wrangler deploy --env production",
    "python3 -m pytest tests/ -x -q 2>&1 | tail -20",
    "for f in *.log; do grep -H ERROR \"$f\"; done",
};

void BM_ClassifyCommand(benchmark::State& state) {
    const std::string_view command = kAgentCommands[state.range(0)];
    state.SetLabel(std::string(command.substr(0, 48)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(ActionHoldClassifier::classifyCommand(command));
    }
}
BENCHMARK(BM_ClassifyCommand)
    ->DenseRange(0, std::size(kAgentCommands) - 1)
    ->Repetitions(5)
    ->ReportAggregatesOnly()
    ->Unit(benchmark::kNanosecond);

void BM_ClassifyMCPTool(benchmark::State& state) {
    const json input = {{"text", "Deploy finished"}, {"channel", "C123"}};
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            ActionHoldClassifier::classify("mcp__claude_ai_Slack__slack_send_message", input));
    }
}
BENCHMARK(BM_ClassifyMCPTool);

}  // namespace
}  // namespace orvo
