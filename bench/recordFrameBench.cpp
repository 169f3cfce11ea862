/// \file
/// One frame added to a recording of a given length by the writer that records for as long as a run lasts,
/// beside the system calls that this takes at least, with bytes that are ready.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/recording/kelRecordingWriter.h>

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Objects = QList<QSharedPointer<kelAbstractData>>;

CSynchronizer stampOf(int number)
{
    CSynchronizer stamp;
    stamp.setFrameNumber(static_cast<unsigned>(number));
    stamp.setDateTime(QDateTime(QDate(2020, 2, 29), QTime(0, 0), Qt::UTC).addMSecs(number * qint64(40)));
    return stamp;
}

Objects fiveBlobs()
{
    Objects objects;
    for (int i = 0; i < 5; ++i) {
        const QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D_qt(QRect(100 + i, 200 + i, 30 + i, 80 + i));
        objects.append(blob);
    }
    return objects;
}

QByteArray content(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Two files that take turns, as the writer's do, and the records.
class PlainCalls
{
public:
    explicit PlainCalls(bool sync) : m_sync(sync)
    {
        const QByteArray document = content(QStringLiteral("run/dataflow.xml"));
        const int frame = document.indexOf(" <Frame", document.size() / 2);
        m_frame = document.mid(frame, document.indexOf(" <Frame", frame + 1) - frame);
        m_tail = m_frame + m_frame + "</DataFlow>\n";
        m_record = QByteArray(document.count("<Data ") > 0 ? 530 : 0, 'r');
        m_sizes[0] = m_sizes[1] = document.size();
        const char *names[2] = {"plain.xml", "plain.shadow"};
        for (int i = 0; i < 2; ++i) {
            QFile::remove(QString::fromLatin1(names[i]));
            m_files[i] = ::open(names[i], O_RDWR | O_CREAT | O_CLOEXEC, 0600);
            m_good &= ::write(m_files[i], document.constData(), size_t(document.size())) == document.size();
        }
        m_records = ::open("plain.dat", O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }
    ~PlainCalls()
    {
        for (const int file : {m_files[0], m_files[1], m_records})
            ::close(file);
    }

    void addFrame()
    {
        m_good &= ::write(m_records, m_record.constData(), size_t(m_record.size())) == m_record.size();
        struct stat status;
        m_good &= ::fstat(m_files[0], &status) == 0;
        const int shadow = m_turn ^= 1;
        m_good &= ::pwrite(m_files[shadow], m_tail.constData(), size_t(m_tail.size()), m_sizes[shadow] - 12)
            == m_tail.size();
        m_sizes[shadow] += m_tail.size() - 12;
        if (m_sync) {
            ::fdatasync(m_records);
            ::fdatasync(m_files[shadow]);
        } else {
            m_good &= ::renameat2(AT_FDCWD, "plain.shadow", AT_FDCWD, "plain.xml", RENAME_EXCHANGE) == 0;
        }
    }
    bool good() const { return m_good; }

private:
    bool m_sync;
    QByteArray m_frame, m_tail, m_record;
    int m_files[2];
    off_t m_sizes[2];
    int m_records;
    int m_turn = 0;
    bool m_good = true;
};

void recordFrame(benchmark::State &state, BenchFolder::Place place, kelRecordingOptions::Sync sync)
{
    const BenchFolder folder(place);
    const bool synced = sync == kelRecordingOptions::Sync::Frame;
    const int repeats = synced ? 5 : 200;
    const Objects objects = fiveBlobs();
    bool done = folder.isValid();
    int number = 0;
    {
        kelRecordingWriter filler;
        done = done && filler.open(QStringLiteral("run"));
        for (; done && number < state.range(0); ++number)
            done = bool(filler.write(stampOf(number), objects));
    }
    kelRecordingOptions options;
    options.mode = kelRecordingOptions::Mode::Append;
    options.sync = sync;
    kelRecordingWriter writer;
    done = done && writer.open(QStringLiteral("run"), options);
    PlainCalls plain(synced);
    compare(
        state, synced ? 1.3 : 1.5,
        [&] {
            return seconds([&] {
                for (int i = 0; i < repeats; ++i)
                    done &= bool(writer.write(stampOf(number++), objects));
            });
        },
        [&] {
            return seconds([&] {
                for (int i = 0; i < repeats; ++i)
                    plain.addFrame();
            });
        },
        repeats);
    if (!done || !plain.good())
        state.SkipWithError("a frame was not written");
}

} // namespace

BENCHMARK_CAPTURE(recordFrame, memory, BenchFolder::InMemory, kelRecordingOptions::Sync::None)
    ->ArgName("frames")
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Iterations(11);
BENCHMARK_CAPTURE(recordFrame, disk, BenchFolder::OnDisk, kelRecordingOptions::Sync::None)
    ->ArgName("frames")
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Iterations(11);
BENCHMARK_CAPTURE(recordFrame, diskSynced, BenchFolder::OnDisk, kelRecordingOptions::Sync::Frame)
    ->ArgName("frames")
    ->Arg(1000)
    ->UseManualTime()
    ->Iterations(11);
