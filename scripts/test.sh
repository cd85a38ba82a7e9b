#!/usr/bin/env bash
# Builds everything and runs every test: the unit and end-to-end suites, then the benchmarks once.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
jobs=$(nproc)

cmake --preset ci >/dev/null
cmake --build --preset ci -j "$jobs"
ctest --preset ci -j "$jobs"

# The same suite under the sanitizers: memory errors and undefined behaviour, then data races.
for preset in asan tsan; do
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs"
done

# The benchmarks run briefly so that they keep working; their figures come from a full run.
build/ci/bin/orvo_bench --benchmark_min_time=0.05 >/dev/null
echo "benchmarks ran"
