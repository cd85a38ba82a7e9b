#!/usr/bin/env bash
# Runs every fuzz target at once for the given number of seconds (default 300) with
# AddressSanitizer, leak checks and UBSan, then replays every input found in the optimised build
# and fails if any takes over 10 ms. Needs the asan and ci builds (scripts/test.sh makes both).
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-300}
targets=$(sed -n 's/^set(ORVO_FUZZ_TARGETS \(.*\))$/\1/p' CMakeLists.txt)
pids=()
for target in $targets; do
    corpus="build/asan/corpus/$target"
    mkdir -p "$corpus"
    options=(-max_total_time="$seconds" -timeout=5 -print_final_stats=1)
    [ -f "fuzz/$target.dict" ] && options+=("-dict=fuzz/$target.dict")
    seeds=()
    [ -d "fuzz/corpus/$target" ] && seeds+=("fuzz/corpus/$target")
    # libFuzzer adds what it finds to the first directory only, so the seeds stay as they are.
    "build/asan/bin/$target" "${options[@]}" "$corpus" "${seeds[@]}" >"build/asan/$target.log" 2>&1 &
    pids+=($!)
done

failed=0
set -- $targets
for pid in "${pids[@]}"; do
    target=$1
    shift
    if ! wait "$pid"; then
        tail -n 40 "build/asan/$target.log"
        echo "fuzz target $target found a fault (build/asan/$target.log)" >&2
        failed=1
    fi
done
[ "$failed" -eq 0 ] || exit 1

for target in $targets; do
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "build/asan/$target.log")
    echo "$target: $runs executions in $seconds s, no finding"
    seeds=()
    [ -d "fuzz/corpus/$target" ] && seeds+=("fuzz/corpus/$target")
    "build/ci/bin/${target}_replay" 10 "build/asan/corpus/$target" "${seeds[@]}"
done
