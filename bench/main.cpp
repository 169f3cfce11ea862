/// \file
/// Runs the benchmarks of a program without a display, with an empty standard input and without debug lines.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char **argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (!std::freopen("/dev/null", "r", stdin))
        return EXIT_FAILURE;
    QLoggingCategory::setFilterRules("*.debug=false");
    QApplication application(argc, argv);

    char tabular[] = "--benchmark_counters_tabular=true";
    std::vector<char *> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, tabular);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
