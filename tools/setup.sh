# Shared by run, test and the tools: finds out what is missing on this machine and installs it.
# Sourced, not started. Needs: top (the folder of the project).

# What the build needs, by its Debian package names.
BUILD_PACKAGES="g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libgtest-dev qt6-base-dev qt6-tools-dev qt6-svg-dev qt6-charts-dev"
# The manual's PDF and its letters.
BUILD_PACKAGES="$BUILD_PACKAGES pandoc weasyprint fonts-open-sans fonts-dejavu-core"
# The Python package.
BUILD_PACKAGES="$BUILD_PACKAGES python3-dev python3-numpy pybind11-dev"
# What the tests need besides.
TEST_PACKAGES="git rsync clang-format clang-tidy dbus-daemon xvfb openbox xdotool imagemagick jq poppler-utils qpdf proj-bin locales pkgconf doxygen"
TEST_PACKAGES="$TEST_PACKAGES python3-pytest python3-scipy python3-pandas python3-matplotlib python3-venv python3-pip python3-wheel"
# The fleet of examples/fleet.py.
TEST_PACKAGES="$TEST_PACKAGES python3-dask python3-distributed"
# What the benchmarks need besides.
BENCH_PACKAGES="libbenchmark-dev libeigen3-dev libopenblas-dev mawk"
# What builds for Windows, and runs that here.
WINDOWS_PACKAGES="g++-mingw-w64-x86-64-posix wine64 libcli11-dev nlohmann-json3-dev libgtest-dev"

installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

ensure_packages() {
    missing=""
    for package in "$@"; do installed "$package" || missing="$missing $package"; done
    [ -n "$missing" ] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "Needed, and this machine has no apt-get to install it with:$missing" >&2
        exit 1
    fi
    echo "Installing from Debian's packages:$missing" >&2
    as_root=""
    [ "$(id -u)" = 0 ] || as_root="sudo"
    log=$(mktemp)
    if ! { $as_root apt-get update && $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y $missing; } >"$log" 2>&1 </dev/null; then
        tail -20 "$log" >&2
        rm -f "$log"
        echo "The installation failed." >&2
        exit 1
    fi
    rm -f "$log"
}

# Configures a preset where that has not been done yet, and builds targets of it. What the compiler
# says is shown only when it fails.
build() {
    preset=$1
    folder=$2
    shift 2
    log=$(mktemp)
    if [ ! -f "$top/$folder/build.ninja" ]; then
        echo "Configuring $folder" >&2
        (cd "$top" && cmake --preset "$preset") >"$log" 2>&1 || { cat "$log" >&2; rm -f "$log"; return 1; }
    fi
    # A build with nothing to do is over before this speaks.
    { sleep 2 >/dev/null 2>&1; echo "Building into $folder (a first build takes some minutes)" >&2; } &
    notice=$!
    status=0
    ninja -C "$top/$folder" "$@" >"$log" 2>&1 || status=$?
    kill "$notice" 2>/dev/null || true
    wait "$notice" 2>/dev/null || true
    [ "$status" = 0 ] || cat "$log" >&2
    rm -f "$log"
    return "$status"
}
