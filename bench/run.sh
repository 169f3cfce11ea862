#!/usr/bin/env bash
# Builds the benchmarks optimised and runs them all. The rows named "median" are the figures to read.
#
# usage: bench/run.sh [BUILD_DIR]
#   BUILD_DIR   default: build-bench
set -euo pipefail

source=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath -m "${1:-$source/build-bench}")

cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKEL_BUILD_BENCH=ON >/dev/null
cmake --build "$build" --target benchmarks
cd "$build"
for program in bin/*Bench; do
    "$program" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
done
