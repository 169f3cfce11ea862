/// \file
/// 100,000 records read back, beside building the same objects.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QFile>

namespace {

constexpr int records = 100000;
const QString fileName = QStringLiteral("dataflow.dat");

QRect box(int i) { return QRect(i % 640, i % 480, 20 + i % 50, 40 + i % 60); }

bool writeRecords()
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (int i = 0; i < records; ++i) {
        kelDataBlob blob;
        blob.setBoundingBox2D_qt(box(i));
        file.write(kelDataFlowRecord{blob.identifier(), blob.getMap()}.encoded());
    }
    return file.flush();
}

kelAbstractData *withMap(int i)
{
    static const QString key = QStringLiteral("BoundingBox2D");
    auto *blob = new kelDataBlob;
    QVariantMap map{{key, box(i)}};
    blob->setMap(map);
    return blob;
}

kelAbstractData *withBox(int i)
{
    auto *blob = new kelDataBlob;
    blob->setBoundingBox2D_qt(box(i));
    return blob;
}

void readRecords(benchmark::State &state, kelAbstractData *(*build)(int))
{
    const BenchFolder folder(BenchFolder::InMemory);
    bool whole = folder.isValid() && writeRecords();
    kelAbstractProcessDataFlowReader reader;
    reader.setDir(fileName);
    compare(
        state, 1.3,
        [&] {
            return seconds([&] {
                const QList<kelAbstractData *> objects = reader.getDataFlow();
                whole &= objects.size() == records;
                qDeleteAll(objects);
            });
        },
        [&] {
            return seconds([&] {
                QList<kelAbstractData *> objects;
                for (int i = 0; i < records; ++i)
                    objects.append(build(i));
                qDeleteAll(objects);
            });
        });
    if (!whole)
        state.SkipWithError("the records were not read");
}

} // namespace

BENCHMARK_CAPTURE(readRecords, besideSetMap, withMap)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(15);
BENCHMARK_CAPTURE(readRecords, besideSetBox, withBox)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(15);
