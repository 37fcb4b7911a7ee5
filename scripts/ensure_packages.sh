# Installs the Debian packages Talvex needs to build, when they are missing.
# Sourced by run.sh and test.sh; prints nothing when everything is already there.

talvex_missing_packages() {
    local pkg
    for pkg in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed'; then
            printf '%s\n' "$pkg"
        fi
    done
}

talvex_ensure_packages() {
    local missing
    missing=$(talvex_missing_packages "$@")
    if ! command -v python3 >/dev/null 2>&1; then
        missing="$missing python3"
    fi
    missing=$(echo $missing)
    [ -z "$missing" ] && return 0

    local sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null 2>&1; then
            sudo="sudo"
        else
            echo "Talvex needs these Debian packages: $missing (run as root to install them)" >&2
            return 1
        fi
    fi
    echo "Talvex: installing Debian packages: $missing" >&2
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    # shellcheck disable=SC2086
    $sudo apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

# Everything the build, the tests, the benchmarks and scripts/screenshot.sh use; unrtf is the
# independent reader that checks the rich text Talvex writes, poppler-utils the one that reads
# the printed PDF pages.
TALVEX_BUILD_PACKAGES=(g++ cmake ninja-build libgtest-dev libgmock-dev libbenchmark-dev
    libcli11-dev nlohmann-json3-dev qt6-base-dev libqt6svg6 libgl-dev xvfb xauth
    fonts-dejavu-core imagemagick unrtf poppler-utils)
