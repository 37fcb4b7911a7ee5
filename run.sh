#!/usr/bin/env bash
# Installs what is missing, builds Talvex and runs it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/ensure_packages.sh
talvex_ensure_packages "${TALVEX_BUILD_PACKAGES[@]}"

log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! cmake --preset release >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
cmake --build --preset release -- --quiet

cat <<'TXT'
Talvex is built (build/release). The calculator's front ends are not there yet:
the command-line front end (talvex-cli) comes next, then the desktop app.
What exists today is the exact 38-digit arithmetic and the distribution engine;
see it at work with:  build/release/bench/talvex-bench
TXT
