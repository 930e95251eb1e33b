# Sourced by ./run and ./test: says what happens, installs what is missing, configures and builds.

preset=default
build=build
# What fuzz/run needs beside a build: the fuzzer is a part of clang's run-time library.
readonly fuzz_tools=(clang libclang-rt-dev llvm)

say() {
    printf '%s: %s\n' "${0##*/}" "$*"
}

# Ends with what is wrong on standard error; 2 is a wrong call, 1 all else.
fail() {
    local code=$1
    shift
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit "$code"
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail 1 "cannot install: neither root nor sudo. As root: apt-get install ${missing[*]}"
    fi
}

# ensure_tools [package...]: what a build needs, and these. Asks dpkg alone while everything is there: no network, no
# rights needed.
ensure_tools() {
    local wanted=(g++ cmake ninja-build ccache qt6-base-dev qt6-serialport-dev qt6-svg-dev libgtest-dev libgmock-dev
        libxcb1-dev fonts-liberation xvfb xauth locales "$@")
    local package
    missing=()
    if ! command -v dpkg-query >/dev/null; then
        say "no dpkg here; taking for granted what these Debian packages hold: ${wanted[*]}"
        return
    fi
    for package in "${wanted[@]}"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "installing ${missing[*]}"
    as_root apt-get update -q || say "apt-get update failed; trying with the lists that are there"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" ||
        fail 1 "apt-get could not install ${missing[*]}"
}

# build_targets [target...]: configures and builds them, everything without one.
build_targets() {
    say "configuring in $build/"
    local words
    words=$(cmake --preset "$preset" 2>&1) || {
        printf '%s\n' "$words" >&2
        fail 1 "cmake could not configure"
    }
    say "building ${*:-everything}"
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"} || fail 1 "the build failed"
}
