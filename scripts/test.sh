#!/usr/bin/env bash
# Builds everything and runs the tests, without a display and without standard input.
#
# usage: scripts/test.sh [PRESET]
#   PRESET           release (the default), debug, sanitize or qt6: see CMakePresets.json
#   KEL_CMAKE_ARGS   environment variable: more arguments for the configuration, such as -DKEL_WERROR=ON; they
#                    hold for the preset's folder until others are given
source "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/common.sh"

preset=${1:-release}
setup=()
case $preset in
    -h | --help) usage; exit 0 ;;
    release) folder=build ;;
    qt6) folder=build-qt6 setup=(--qt6) ;;
    debug | sanitize) folder=build-$preset ;;
    -*) misused "unknown option $preset" ;;
    *) misused "unknown preset $preset: release, debug, sanitize or qt6" ;;
esac
(($# < 2)) || misused "more than one preset"

cd "$top"
scripts/setup.sh "${setup[@]}"
build "$preset"

results=$top/$folder/test-results
say "running the tests of $folder"
mkdir -p "$results"
rm -f "$results"/*
outcome=passed
QT_QPA_PLATFORM=offscreen ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error \
    --output-log "$results/tests.log" --output-junit "$results/tests.xml" || outcome=failed
say "$outcome; the log is $results/tests.log, the JUnit file $results/tests.xml"
[[ $outcome == passed ]]
