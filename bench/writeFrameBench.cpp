/// \file
/// One frame added to a data-flow document, beside what the toolkit alone takes to read that document, to
/// turn it into text again and to write it.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>

#include <QDateTime>
#include <QDomDocument>
#include <QFile>

#include <iostream>

namespace {

const QString fileName = QStringLiteral("dataflow.xml");

QByteArray content()
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void restore(const QByteArray &bytes)
{
    QFile file(fileName);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    QFile::remove(QStringLiteral("dataflow.dat"));
}

/// The one frame of a document, as often as wanted.
QByteArray repeated(QByteArray document, int frames)
{
    const int begin = static_cast<int>(document.indexOf(" <Frame"));
    const int end = static_cast<int>(document.indexOf("</DataFlow>"));
    return document.replace(begin, end - begin, document.mid(begin, end - begin).repeated(frames));
}

void rewriteWithTheToolkitAlone(QDomDocument &document)
{
    QFile file(fileName);
    file.open(QIODevice::ReadOnly);
    document.setContent(&file);
    file.close();
    file.open(QIODevice::WriteOnly);
    file.write(document.toString(1).toUtf8());
}

void writeFrame(benchmark::State &state, BenchFolder::Place place)
{
    const BenchFolder folder(place);
    // The writer's constructor prints a line, which has no place in a table.
    std::streambuf *output = std::cout.rdbuf(nullptr);
    kelAbstractProcessDataFlowWriter writer;
    std::cout.rdbuf(output);
    std::cout.clear();

    writer.setFilePath(QFile(fileName));
    CSynchronizer stamp;
    stamp.setDateTime(QDateTime(QDate(2020, 2, 29), QTime(12, 34, 56, 789)));
    stamp.setFrameNumber(123456);
    writer.setSynchronizer(stamp);
    for (int i = 0; i < 5; ++i) {
        const QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D_qt(QRect(100 + i, 200 + i, 30 + i, 80 + i));
        writer.setDataFlow(blob);
    }
    bool done = folder.isValid() && writer.writeDataFlow();
    const QByteArray document = repeated(content(), static_cast<int>(state.range(0)));

    // Kept from one frame to the next, as the writer keeps its own: the one before is freed while the time
    // runs.
    QDomDocument plainDocument;
    compare(
        state, place == BenchFolder::InMemory ? 1.1 : 1.3,
        [&] {
            restore(document);
            return seconds([&] { done &= writer.writeDataFlow(); });
        },
        [&] {
            restore(document);
            return seconds([&] { rewriteWithTheToolkitAlone(plainDocument); });
        });
    if (!done)
        state.SkipWithError("a frame was not written");
}

void atSizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("frames")->Arg(100)->Arg(1000)->Arg(5000);
    benchmark->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(11);
}

} // namespace

BENCHMARK_CAPTURE(writeFrame, memory, BenchFolder::InMemory)->Apply(atSizes);
BENCHMARK_CAPTURE(writeFrame, disk, BenchFolder::OnDisk)->Apply(atSizes);
