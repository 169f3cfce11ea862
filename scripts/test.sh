#!/usr/bin/env bash
# Builds everything and runs the tests, without a display and without standard input.
#
# usage: scripts/test.sh [PRESET]
#   PRESET           release (the default), debug, sanitize or qt6: see CMakePresets.json
#   KEL_CMAKE_ARGS   environment variable: more arguments for the configuration, such as -DKEL_WERROR=ON
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf 'test: %s\n' "$*"; }
fail() { say "$*" >&2; exit 1; }

preset=${1:-release}
setup=()
case $preset in
    release) build=build ;;
    qt6) build=build-qt6 setup=(--ci) ;;
    debug | sanitize) build=build-$preset ;;
    -h | --help) sed -n '/^# usage/,/^[^#]/s/^# //p' "${BASH_SOURCE[0]}"; exit 0 ;;
    *) printf 'test: unknown preset %s (release, debug, sanitize, qt6)\n' "$preset" >&2; exit 2 ;;
esac
results=$PWD/$build/test-results
read -ra cmake_args <<<"${KEL_CMAKE_ARGS:-}"

scripts/setup.sh "${setup[@]}"

say "configuring $build"
cmake --preset "$preset" -DKEL_BUILD_TESTS=ON "${cmake_args[@]}" </dev/null || fail "configuring $build failed"
say "building $build"
cmake --build --preset "$preset" </dev/null || fail "building $build failed"

say "running the tests of $build"
mkdir -p "$results"
rm -f "$results"/*
outcome=passed
QT_QPA_PLATFORM=offscreen ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error \
    --output-log "$results/tests.log" --output-junit "$results/tests.xml" </dev/null || outcome=failed
say "$outcome; the log is $results/tests.log, the JUnit file $results/tests.xml"
[[ $outcome == passed ]]
