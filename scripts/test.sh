#!/usr/bin/env bash
# Builds everything and runs every test: the unit and end-to-end suites, then the benchmarks once;
# on Linux also the macOS cross build of both arches; last the static checks.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
# The SDK client test drives the binary with the official MCP client from the npm registry. Without
# Node.js or the registry that one test skips and says why, so neither failure stops the run.
node_packages=()
command -v node >/dev/null || node_packages+=(nodejs)
command -v npm >/dev/null || node_packages+=(npm)
if [ ${#node_packages[@]} -gt 0 ]; then
    scripts/install-deps.sh "${node_packages[@]}" || echo "could not install ${node_packages[*]}" >&2
fi
# It is installed under build/, with the other things the build makes.
mkdir -p build/interop
cp tests/interop/package.json tests/interop/package-lock.json build/interop/
# npm's own time limits bound a registry that does not answer (macOS has no timeout(1)).
if ! npm ci --prefix build/interop --no-audit --no-fund --loglevel=error --fetch-timeout=60000 \
    --fetch-retries=1 >/dev/null; then
    # A half-installed SDK would fail the test instead of skipping it.
    rm -rf build/interop/node_modules
    echo "could not install the MCP SDK from the npm registry; its client test will skip" >&2
fi
jobs=$(getconf _NPROCESSORS_ONLN)
system=$(uname -s)

cmake --preset ci >/dev/null
cmake --build --preset ci -j "$jobs"
ctest --preset ci -j "$jobs"

# The same suite under the sanitizers: memory errors and undefined behaviour (a build that also
# holds the fuzz targets), then data races.
for preset in asan tsan; do
    if [ "$preset" = asan ] && [ "$system" = Darwin ]; then
        # Apple's clang has no libFuzzer: the Mac runs the suite under the sanitizers only.
        cmake --preset asan -DORVO_BUILD_FUZZ=OFF >/dev/null
    else
        cmake --preset "$preset" >/dev/null
    fi
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs"
done

# Every fuzz target at once for a minute, then every input found replayed in the optimised build.
if [ "$system" != Darwin ]; then
    scripts/fuzz.sh 60
fi

# The benchmarks run briefly so that they keep working; their figures come from a full run.
build/ci/bin/orvo_bench --benchmark_min_time=0.05 >/dev/null
echo "benchmarks ran"

# Everything that builds for Linux must build for both Mac arches too, with Apple's availability
# rules, and join into one universal binary.
if [ "$system" = Linux ]; then
    scripts/macos-cross.sh
fi

# Last, so that a finding fails the run without hiding what the suites found.
scripts/tidy.sh
