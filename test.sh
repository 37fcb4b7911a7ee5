#!/usr/bin/env bash
# Installs what is missing, builds Talvex and runs the whole test suite.
# Usage: ./test.sh [PRESET]    PRESET is one of dev, release, asan-ubsan, tsan, ci (default: ci).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/ensure_packages.sh
talvex_ensure_packages "${TALVEX_BUILD_PACKAGES[@]}"

preset=${1:-ci}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! cmake --preset "$preset" >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
cmake --build --preset "$preset" -- -k 0 --quiet
ctest --preset "$preset" -j "$(nproc)"
