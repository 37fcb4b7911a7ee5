#!/usr/bin/env bash
# Installs what is missing, builds Talvex and runs the whole test suite.
# Usage: ./test.sh [PRESET]    PRESET is one of dev, release, asan-ubsan, tsan, ci (default: ci).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/ensure_packages.sh
source scripts/build_steps.sh
talvex_ensure_packages "${TALVEX_BUILD_PACKAGES[@]}"

preset=${1:-ci}
talvex_configure "$preset"
talvex_build "$preset"
talvex_step "running the $preset tests"
ctest --preset "$preset" -j "$(nproc)"
