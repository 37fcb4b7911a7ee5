#!/usr/bin/env bash
# Builds talvex, opens it on a virtual X screen in a fresh home folder, calculates an expression
# and photographs the screen: docs/screenshot.png. Also prints how long the window took to
# appear.
# Usage: scripts/screenshot.sh [EXPRESSION [COMPARISON [TAB [OUTPUT]]]]
#        (defaults: 3d6 compared with 2d10 on the Tables tab, docs/screenshot.png; an empty
#        COMPARISON compares nothing)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/ensure_packages.sh
talvex_ensure_packages "${TALVEX_BUILD_PACKAGES[@]}"

expression=${1:-3d6}
comparison=${2-2d10}
tab=${3:-Tables}
output=${4:-docs/screenshot.png}
binary=${TALVEX_BINARY:-build/release/gui/talvex}

if [ -z "${TALVEX_BINARY:-}" ]; then
    log=$(mktemp)
    if ! cmake --preset release >"$log" 2>&1 ||
        ! cmake --build --preset release --target talvex >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        exit 1
    fi
    rm -f "$log"
fi

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -p "$(dirname "$output")"
export HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_DATA_HOME="$home/.local/share" \
    XDG_CACHE_HOME="$home/.cache" XDG_RUNTIME_DIR="$home/runtime"
mkdir -m 700 "$XDG_RUNTIME_DIR"

screen="-screen 0 1280x900x24"
# The first start builds font caches in the new home; the figure is taken from the second.
xvfb-run -a -s "$screen" "$binary" --measure-startup >/dev/null
xvfb-run -a -s "$screen" "$binary" --measure-startup

# The window fills the screen; the photograph waits for the calculation and the drawing.
xvfb-run -a -s "$screen" bash -c '
    compare=()
    if [ -n "$3" ]; then compare=(--compare "$3"); fi
    "$1" -geometry 1280x900+0+0 --expression "$2" "${compare[@]}" --tab "$4" &
    pid=$!
    sleep "${TALVEX_SCREENSHOT_DELAY:-3}"
    import -window root "$5"
    # A list changed by the calculation is offered for saving at the end, which nobody answers
    # here: after a moment the window is stopped for good.
    kill "$pid"
    for _ in 1 2 3 4 5; do kill -0 "$pid" 2>/dev/null || break; sleep 1; done
    kill -9 "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
' screenshot "$binary" "$expression" "$comparison" "$tab" "$output"
echo "Wrote $output"
