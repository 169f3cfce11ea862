/// \file
/// A run of a million frames: opened, a frame of it read, and one found by its time, each beside the time that it
/// may take.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/recording/kelRecording.h>
#include <kelCore/recording/kelRecordingWriter.h>

#include <QDateTime>

#include <functional>
#include <random>

namespace {

constexpr qint64 frameCount = 1000000;

struct Layout
{
    const char *name;
    qint64 segmentFrames;
    bool compress;
};

/// Records the run once: a blob in each fourth frame.
bool record(const QString &folder, const Layout &layout)
{
    kelRecordingOptions options;
    options.segmentFrames = layout.segmentFrames;
    options.compress = layout.compress;
    kelRecordingWriter writer;
    bool good = bool(writer.open(folder, options));
    CSynchronizer stamp;
    const QDateTime start(QDate(2024, 2, 29), QTime(0, 0), Qt::UTC);
    const QSharedPointer<kelDataBlob> blob(new kelDataBlob);
    for (qint64 i = 0; good && i < frameCount; ++i) {
        stamp.setFrameNumber(static_cast<unsigned>(i));
        stamp.setDateTime(start.addMSecs(40 * i));
        blob->setBoundingBox2D_qt(QRect(int(i % 600), 100, 30, 80));
        good = bool(writer.write(stamp,
                                 i % 4 == 0 ? QList<QSharedPointer<kelAbstractData>>{blob}
                                            : QList<QSharedPointer<kelAbstractData>>()));
    }
    return good && writer.close();
}

/// The run is made once a layout, however often a benchmark is repeated.
const QString &madeRun(const Layout &layout)
{
    static const BenchFolder folder(BenchFolder::InMemory);
    static std::map<std::string, QString> runs;
    QString &place = runs[layout.name];
    if (place.isEmpty()) {
        place = QDir::currentPath() + QLatin1Char('/') + QLatin1String(layout.name);
        if (!record(place, layout))
            place = QStringLiteral("nowhere");
    }
    return place;
}

/// \param allowed milliseconds, to which the median is the ratio
void report(benchmark::State &state, double allowed, const std::function<void()> &work)
{
    std::vector<double> times;
    for (auto _ : state) {
        const double time = seconds(work);
        state.SetIterationTime(time);
        times.push_back(time);
    }
    state.counters["ms"] = median(times) * 1e3;
    state.counters["allowed_ms"] = allowed;
    state.counters["ratio"] = median(times) * 1e3 / allowed;
    state.counters["bound"] = 1;
}

void openRun(benchmark::State &state, const Layout &layout)
{
    const QString place = madeRun(layout);
    bool good = true;
    report(state, 50, [&] {
        kelRecording run;
        good &= run.open(place) && run.frameCount() == frameCount;
    });
    if (!good)
        state.SkipWithError("the run cannot be read");
}

void randomFrame(benchmark::State &state, const Layout &layout)
{
    kelRecording run;
    bool good = bool(run.open(madeRun(layout)));
    std::mt19937 random(1);
    report(state, 1, [&] {
        const auto i = static_cast<qint64>(random()) % frameCount / 4 * 4;
        const kelRecordedFrame frame = run.frame(i);
        good &= frame.number == quint32(i) && run.records(frame).size() == 1;
    });
    if (!good)
        state.SkipWithError("a frame cannot be read");
}

void frameAtATime(benchmark::State &state, const Layout &layout)
{
    kelRecording run;
    bool good = bool(run.open(madeRun(layout)));
    std::mt19937 random(1);
    const QDateTime start(QDate(2024, 2, 29), QTime(0, 0), Qt::UTC);
    report(state, 10, [&] {
        const auto i = static_cast<qint64>(random()) % frameCount;
        good &= run.frameAt(start.addMSecs(40 * i + 13)) == i;
    });
    if (!good)
        state.SkipWithError("a frame cannot be found");
}

constexpr Layout layouts[] = {{"oneFile", 0, false}, {"segments", 10000, false}, {"compressed", 10000, true}};

void registerAll()
{
    for (const Layout &layout : layouts) {
        const std::string name = layout.name;
        const auto add = [&layout](const std::string &what, auto function, int iterations) {
            benchmark::RegisterBenchmark(what.c_str(), function, layout)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->Iterations(iterations);
        };
        add("openRun/" + name, openRun, 11);
        add("randomFrame/" + name, randomFrame, 1001);
        add("frameAtATime/" + name, frameAtATime, 101);
    }
}

const bool registered = (registerAll(), true);

} // namespace
