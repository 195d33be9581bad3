# shellcheck shell=bash
# Sourced by the scripts: what more than one of them does. No side effects.

# Says what is wrong and ends the script.
fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# True where windows can be shown.
have_display() {
    [ -n "${DISPLAY:-}" ] && xdotool getdisplaygeometry >/dev/null 2>&1
}

# Starts a virtual display; sets DISPLAY, and displayPid for whoever has to end it.
start_display() {
    local folder number=
    folder=$(mktemp -d)
    mkfifo "$folder/number"
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3<>"$folder/number" >/dev/null 2>&1 </dev/null &
    displayPid=$!
    read -r -t 20 number <>"$folder/number" || true
    rm -r "$folder"
    [ -n "$number" ] || { kill "$displayPid" 2>/dev/null; fail "could not start a virtual display (Xvfb)"; }
    export DISPLAY=:$number
}

# configure PRESET [ARGUMENT...]: makes build/PRESET ready to build, unless it is. The current folder is the project's.
configure() {
    local preset=$1 cache=build/$1/CMakeCache.txt fresh=()
    shift
    if [ -f "$cache" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
        fresh=(--fresh) # the checkout has moved
    elif [ -f "build/$preset/build.ninja" ] && [ $# -eq 0 ]; then
        return
    fi
    if [ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ] && command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    cmake --preset "$preset" "${fresh[@]}" "$@"
}
