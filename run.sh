#!/usr/bin/env bash
# Installs what is missing, builds Talvex and runs it. Until the desktop app exists this is the
# command-line calculator: ./run.sh 3d6 "Roll: 2d6" --json, or no arguments to type expressions.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/ensure_packages.sh
talvex_ensure_packages "${TALVEX_BUILD_PACKAGES[@]}"

log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! cmake --preset release >"$log" 2>&1 || ! cmake --build --preset release --target talvex-cli >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
if [ $# -eq 0 ] && [ -t 0 ]; then
    echo "Talvex: type a dice expression per line (3d6, 5c7, 1d20, ...); Ctrl-D ends." >&2
fi
exec build/release/cli/talvex-cli "$@"
