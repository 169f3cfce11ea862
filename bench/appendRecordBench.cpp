/// \file
/// One record appended to the binary file, beside the same system calls with the same bytes: opening a file,
/// locking it, writing and closing it.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr int appends = 100;

bool plainAppend(const char *path, const QByteArray &bytes)
{
    const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    ::flock(file, LOCK_SH);
    const bool written = ::write(file, bytes.constData(), static_cast<size_t>(bytes.size())) == bytes.size();
    return ::close(file) == 0 && written;
}

void appendRecord(benchmark::State &state, BenchFolder::Place place)
{
    const BenchFolder folder(place);
    const QSharedPointer<kelDataBlob> blob(new kelDataBlob);
    blob->setBoundingBox2D_qt(QRect(10, 20, 30, 40));
    const QByteArray bytes = kelDataFlowRecord{blob->identifier(), blob->getMap()}.encoded();
    kelAbstractProcessDataWriter writer;
    writer.setData(blob);

    bool done = folder.isValid();
    compare(
        state, 1.25,
        [&] {
            return seconds([&] {
                for (int i = 0; i < appends; ++i)
                    done &= writer.writeDataBin();
            });
        },
        [&] {
            return seconds([&] {
                for (int i = 0; i < appends; ++i)
                    done &= plainAppend("plain.dat", bytes);
            });
        },
        appends);
    if (!done)
        state.SkipWithError("a record was not written");
}

} // namespace

BENCHMARK_CAPTURE(appendRecord, memory, BenchFolder::InMemory)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(251);
BENCHMARK_CAPTURE(appendRecord, disk, BenchFolder::OnDisk)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(251);
