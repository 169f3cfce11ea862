#!/usr/bin/env bash
# Builds the benchmarks optimised and runs them. The rows named "median" are the figures to read; a ratio above its
# bound is said at the end, and an error.
#
# usage: bench/run.sh [PROGRAM...]
#   PROGRAM   runs these alone, such as appendRecordBench; without one, all of them run
source "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/../scripts/common.sh"

programs=("$@")
for program in "${programs[@]}"; do
    case $program in
        -h | --help) usage; exit 0 ;;
        -*) misused "unknown option $program" ;;
        *) [[ -r $top/bench/$program.cpp && $program == *Bench ]] || misused "there is no benchmark $program" ;;
    esac
done

cd "$top"
scripts/setup.sh
((${#programs[@]})) || mapfile -t programs < <(basename -s .cpp bench/*Bench.cpp)
build release "${programs[@]}"

failed=()
for program in "${programs[@]}"; do
    (cd build && "bin/$program" --benchmark_repetitions=5) \
        || failed+=("$program")
done
((${#failed[@]} == 0)) || fail "above a bound, or with an error: ${failed[*]}"
say "every ratio is within its bound"
