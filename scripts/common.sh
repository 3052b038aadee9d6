# Sourced by the scripts at the top: set-up, and one way to configure and build a preset.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
export CCACHE_DIR=${CCACHE_DIR:-$root/.cache/ccache}
export CLICOLOR_FORCE=0

# build PRESET [target...]: configures the preset and builds the targets (default: all).
build()
{
    local preset=$1
    shift
    local log=$root/build/$preset-configure.log
    mkdir -p "$root/build"
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; return 1; }
    local -a targets=()
    [ $# -gt 0 ] && targets=(--target "$@")
    cmake --build --preset "$preset" "${targets[@]}" -- --quiet
}

# The toolkit wants a folder of its own for sockets, and says so when the session has none.
if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    export XDG_RUNTIME_DIR=$root/build/runtime
    mkdir -p -m 700 "$XDG_RUNTIME_DIR"
fi

# own_home PRESET: what is run from now on has a home of its own, so that nothing of the user's is read or written.
own_home()
{
    export HOME=$root/build/$1/home
    local variable
    for variable in "${!XDG_@}"; do
        [ "$variable" = XDG_RUNTIME_DIR ] || unset "$variable"
    done
    mkdir -p "$HOME"
}
