#!/usr/bin/env bash
# Installs the packages the build and the tests need, only those that are missing: Debian's with
# apt-get, or Homebrew's on a Mac. Extra arguments name further packages by their Debian names.
set -euo pipefail

if [ "$(uname -s)" = Darwin ]; then
    formulae=(cmake ninja nlohmann-json utf8proc googletest google-benchmark)
    for package in "$@"; do
        case "$package" in
            nodejs | npm) formulae+=(node) ;;
            clang-tidy) formulae+=(llvm) ;;
            *) formulae+=("$package") ;;
        esac
    done
    missing=()
    for formula in "${formulae[@]}"; do
        brew list --formula "$formula" >/dev/null 2>&1 || missing+=("$formula")
    done
    if [ ${#missing[@]} -gt 0 ]; then
        echo "installing: ${missing[*]}" >&2
        brew install --quiet "${missing[@]}"
    fi
    exit 0
fi

packages=(cmake ninja-build g++ clang libclang-rt-14-dev nlohmann-json3-dev libutf8proc-dev
          libgtest-dev libgmock-dev libbenchmark-dev passwd python3-jsonschema "$@")
missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi
echo "installing: ${missing[*]}" >&2
if [ "$(id -u)" -eq 0 ]; then
    sudo=()
else
    sudo=(sudo)
fi
"${sudo[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
