/// \file
/// Runs the benchmarks of a program without a display, with an empty standard input and without debug lines.
/// Ends with an error where a ratio is above its bound, or a benchmark has failed.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

/// The usual table, of several repetitions their statistics alone; and in the end what does not hold.
class BoundsReporter : public benchmark::ConsoleReporter
{
public:
    BoundsReporter() : ConsoleReporter(OO_Tabular) { }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        std::vector<Run> shown;
        for (const Run &run : runs) {
            const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
            if (run.error_occurred)
                m_complaints.push_back(run.benchmark_name() + ": " + run.error_message);
            else if (single || run.aggregate_name == "median")
                judge(run);
            if (single || run.error_occurred || run.run_type == Run::RT_Aggregate)
                shown.push_back(run);
        }
        if (!shown.empty())
            ConsoleReporter::ReportRuns(shown);
    }

    bool allHolds() const
    {
        for (const std::string &complaint : m_complaints)
            std::fprintf(stderr, "%s\n", complaint.c_str());
        return m_complaints.empty();
    }

private:
    void judge(const Run &run)
    {
        const auto ratio = run.counters.find("ratio"), bound = run.counters.find("bound");
        if (ratio == run.counters.end() || bound == run.counters.end())
            return;
        if (ratio->second.value <= bound->second.value)
            return;
        char text[80];
        std::snprintf(text, sizeof text, ": the ratio %.3g is above its bound %.3g", ratio->second.value,
                      bound->second.value);
        m_complaints.push_back(run.benchmark_name() + text);
    }

    std::vector<std::string> m_complaints;
};

} // namespace

int main(int argc, char **argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (!std::freopen("/dev/null", "r", stdin))
        return EXIT_FAILURE;
    QLoggingCategory::setFilterRules("*.debug=false");
    QApplication application(argc, argv);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    BoundsReporter reporter;
    const bool found = benchmark::RunSpecifiedBenchmarks(&reporter) > 0;
    return reporter.allHolds() && found ? EXIT_SUCCESS : EXIT_FAILURE;
}
