# shellcheck shell=bash
# What the scripts share: sourced by them first, with nothing on standard input from then on.
set -euo pipefail
exec </dev/null

script=$(realpath "${BASH_SOURCE[1]}")
top=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
script_name=${script#"$top"/}
script_name=${script_name#scripts/}
script_name=${script_name%.sh}

say() { printf '%s: %s\n' "$script_name" "$*"; }
fail() { say "$*" >&2; exit 1; }

# The lines of the calling script's first comment from "usage:" on.
usage() { sed -n '/^# usage/,/^[^#]/s/^# \?//p' "$script"; }
misused() { say "$* ($(usage | head -n 1))" >&2; exit 2; }

# build PRESET [TARGET...]: configures the preset's folder and builds the targets; all of them when none is named.
build() {
    local preset=$1 cmake_args
    shift
    read -ra cmake_args <<<"${KEL_CMAKE_ARGS:-}"
    say "configuring the preset $preset"
    cmake --preset "$preset" "${cmake_args[@]}" || fail "the configuration failed: see the lines above"
    say "building ${*:-everything}"
    cmake --build --preset "$preset" ${1:+--target "$@"} || fail "the build failed: see the lines above"
}
