/// \file
/// A recording whose files pass 4 GiB each. Takes minutes and some 15 GB on the disk, so that it runs only when
/// it is asked for: --gtest_also_run_disabled_tests --gtest_filter='LongRecordingTest*'

#include <kelCore/recording/kelRecording.h>

#include "recording/RunScripts.h"
#include "support/TemporaryFolder.h"

#include <QDir>
#include <QFileInfo>

namespace {

class LongRecordingTest : public TemporaryFolder
{
protected:
    /// Makes a file of a beginning, something that is repeated, and an end.
    static void repeat(const QString &name, const QByteArray &head, const QByteArray &body, qint64 times,
                       const QByteArray &tail)
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(head), head.size());
        for (qint64 left = times; left > 0;) {
            const int now = static_cast<int>(std::min<qint64>(left, 500));
            ASSERT_EQ(file.write(body.repeated(now)), qint64(body.size()) * now);
            left -= now;
        }
        ASSERT_EQ(file.write(tail), tail.size());
    }

    /// Most memory that this process has used since `forgetPeak`, in MiB; -1 where the system does not tell.
    static qint64 peak()
    {
        for (const QByteArray &line : content(QStringLiteral("/proc/self/status")).split('\n'))
            if (line.startsWith("VmHWM:"))
                return line.mid(6).simplified().split(' ').first().toLongLong() / 1024;
        return -1;
    }
    static void forgetPeak()
    {
        QFile file(QStringLiteral("/proc/self/clear_refs"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write("5"), 1);
    }
};

TEST_F(LongRecordingTest, DISABLED_IsReadAndGoneOnWithInLittleMemory)
{
    constexpr qint64 size = (qint64(1) << 32) + (qint64(1) << 29);
    MadeFrame made = plainFrame(7, 4);
    for (int i = 0; i < made.objects.size(); ++i) {
        QVariantMap map = made.objects[i]->getMap();
        map.insert(QString(700, QLatin1Char('k')), i);
        made.objects[i]->setMap(map);
    }
    {
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("one"))));
        ASSERT_TRUE(done(writer.write(made.stamp, made.objects)));
    }
    const QByteArray head("<DataFlow>\n"), tail("</DataFlow>\n");
    QByteArray text = content(QStringLiteral("one/dataflow.xml"));
    text = text.mid(head.size(), text.size() - head.size() - tail.size());
    const qint64 count = size / text.size();
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("run")));
    ASSERT_NO_FATAL_FAILURE(repeat(QStringLiteral("run/dataflow.xml"), head, text, count, tail));
    ASSERT_NO_FATAL_FAILURE(repeat(QStringLiteral("run/dataflow.dat"), QByteArray(),
                                   content(QStringLiteral("one/dataflow.dat")), count, QByteArray()));
    ASSERT_GT(QFileInfo(QStringLiteral("run/dataflow.dat")).size(), qint64(1) << 32);

    ASSERT_NO_FATAL_FAILURE(forgetPeak());
    const auto expectRun = [&](qint64 frames, const char *how) {
        kelRecording run;
        ASSERT_TRUE(done(run.open(QStringLiteral("run")))) << how;
        ASSERT_EQ(run.frameCount(), frames) << how;
        for (qint64 i = 0; i < frames; i += frames / 97) {
            ASSERT_EQ(run.frame(i).number, 7u) << how << i;
            ASSERT_EQ(run.records(run.frame(i)).size(), 4u) << how << i;
        }
        ASSERT_EQ(run.records(run.frame(frames - 1)).size(), 4u) << how;
        EXPECT_TRUE(done(run.verify())) << how;
        EXPECT_LT(peak(), 100) << how;
        std::cout << how << ": " << frames << " frames, " << run.documentSize() << " and "
                  << run.recordsSize() << " bytes, at most " << peak() << " MiB" << std::endl;
    };
    ASSERT_NO_FATAL_FAILURE(expectRun(count, "without an index"));
    {
        kelRecordingOptions options;
        options.mode = kelRecordingOptions::Mode::Append;
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("run"), options)));
        for (int i = 0; i < 3; ++i)
            ASSERT_TRUE(done(writer.write(made.stamp, made.objects)));
    }
    ASSERT_NO_FATAL_FAILURE(expectRun(count + 3, "with an index"));

    // As the closed segment of a run that compresses.
    ASSERT_TRUE(QDir().rename(QStringLiteral("run"), QStringLiteral("part")));
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("run")));
    ASSERT_TRUE(QDir().rename(QStringLiteral("part"), QStringLiteral("run/000001")));
    kelRecordingOptions options;
    options.mode = kelRecordingOptions::Mode::Append;
    options.segmentFrames = 1;
    options.compress = true;
    {
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("run"), options)));
        ASSERT_TRUE(done(writer.write(made.stamp, made.objects)));
        ASSERT_TRUE(done(writer.close()));
    }
    ASSERT_TRUE(QFile::exists(QStringLiteral("run/000001/dataflow.xml.zst")));
    ASSERT_NO_FATAL_FAILURE(expectRun(count + 4, "compressed"));
}

} // namespace
