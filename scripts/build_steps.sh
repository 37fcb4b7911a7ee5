# The stages run.sh and test.sh share, each announced on one line of standard error (standard
# output stays the calculator's own), with the build's progress from Ninja.

talvex_step() {
    printf 'Talvex: %s\n' "$*" >&2
}

# Configures a preset only when it has never been configured or the presets changed since:
# otherwise Ninja itself re-runs CMake when a CMakeLists.txt changes.
talvex_configure() {
    local preset=$1 stamp="build/$1/.configured"
    if [ -f "$stamp" ] && [ -f "build/$1/build.ninja" ] && [ "$stamp" -nt CMakePresets.json ]; then
        return 0
    fi
    talvex_step "configuring the $preset build"
    local log
    log=$(mktemp)
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
    touch "$stamp"
}

# Builds a preset (the given targets, or everything), saying so only when there is work to do.
talvex_build() {
    local preset=$1
    shift
    local targets=()
    [ $# -gt 0 ] && targets=(--target "$@")
    if ninja -C "build/$preset" -n "${@}" 2>/dev/null | grep -q '^ninja: no work to do'; then
        return 0
    fi
    talvex_step "building the $preset build${1:+ (${*})}"
    cmake --build --preset "$preset" "${targets[@]}" -- -k 0 >&2
}
