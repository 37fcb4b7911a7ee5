#!/usr/bin/env bash
# Installs what is missing, builds Talvex and opens its window. With arguments it runs the
# command-line calculator instead: ./run.sh 3d6 "Roll: 2d6" --json (see ./run.sh --help).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/ensure_packages.sh
source scripts/build_steps.sh
talvex_ensure_packages "${TALVEX_BUILD_PACKAGES[@]}"
talvex_configure release
talvex_build release talvex talvex-cli

if [ $# -gt 0 ]; then
    exec build/release/cli/talvex-cli "$@"
fi
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "Talvex: no display to open the window on; run it under Xvfb with:" \
        "xvfb-run -a build/release/gui/talvex (the command-line calculator follows)." >&2
    exec build/release/cli/talvex-cli "3d6 vs 2d10"
fi
exec build/release/gui/talvex
