/// \file
/// Runs that are recorded in segments: where one ends, what makes room, what is compressed.

#include <kelCore/recording/kelRecording.h>

#include "recording/RunScripts.h"
#include "support/TemporaryFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <csignal>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

using Mode = kelRecordingOptions::Mode;

QString segment(int number) { return QStringLiteral("run/%1").arg(number, 6, 10, QLatin1Char('0')); }

MadeFrame frameAt(int number, qint64 ms)
{
    MadeFrame frame = plainFrame(number, 1);
    frame.stamp.setDateTime(QDateTime(QDate(2024, 2, 28), QTime(12, 0), Qt::UTC).addMSecs(ms));
    return frame;
}

class RecordingSegmentsTest : public TemporaryFolder
{
protected:
    RecordingSegmentsTest()
    {
        m_options.mode = Mode::Append;
        m_options.notice = [this](const QString &line) { m_notices.append(line); };
    }

    /// Records plain frames from the number on that the run has as many of.
    kelResult record(int end)
    {
        kelRecordingWriter writer;
        kelResult result = writer.open(QStringLiteral("run"), m_options);
        for (int i = static_cast<int>(writer.frameCount()); result && i < end; ++i)
            result = writer.write(plainFrame(i, i % 4).stamp, plainFrame(i, i % 4).objects);
        const kelResult closed = writer.close();
        return result ? closed : result;
    }

    /// Numbers of the frames in each segment.
    static std::vector<std::vector<int>> segments()
    {
        std::vector<std::vector<int>> list;
        for (const QString &name : QDir(QStringLiteral("run")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            kelRecording part;
            EXPECT_TRUE(done(part.open(QStringLiteral("run/") + name)));
            EXPECT_TRUE(done(part.verify()));
            list.emplace_back();
            for (qint64 i = 0; i < part.frameCount(); ++i)
                list.back().push_back(static_cast<int>(part.frame(i).number));
        }
        return list;
    }

    /// The run holds the plain frames from `begin` up to the one before `end`.
    static void expectPlainRun(int begin, int end)
    {
        kelRecording run;
        ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
        ASSERT_EQ(run.frameCount(), end - begin);
        for (int i = begin; i < end; ++i) {
            ASSERT_EQ(run.frame(i - begin).number, quint32(i));
            ASSERT_EQ(run.records(run.frame(i - begin)).size(), size_t(i % 4));
        }
        EXPECT_TRUE(done(run.verify()));
    }

    static qint64 bytesOfRun(const QString &folder = QStringLiteral("run"))
    {
        qint64 bytes = 0;
        const QDir dir(folder);
        for (const QFileInfo &entry :
             dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            bytes += entry.isDir() ? bytesOfRun(entry.filePath()) : entry.size();
        return bytes;
    }

    kelRecordingOptions m_options;
    QStringList m_notices;
};

TEST_F(RecordingSegmentsTest, EndBeforeTheFrameThatIsOneTooMany)
{
    m_options.segmentFrames = 3;
    ASSERT_TRUE(done(record(8)));
    EXPECT_EQ(segments(), (std::vector<std::vector<int>>{{0, 1, 2}, {3, 4, 5}, {6, 7}}));
    EXPECT_EQ(QDir(segment(1)).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{QStringLiteral("dataflow.dat"), QStringLiteral("dataflow.idx"),
                           QStringLiteral("dataflow.xml")}));
    expectPlainRun(0, 8);
}

TEST_F(RecordingSegmentsTest, EndBeforeTheFrameThatDoesNotFit)
{
    m_options.segmentBytes = 8192;
    ASSERT_TRUE(done(record(60)));
    const auto list = segments();
    ASSERT_GT(list.size(), 3u);
    for (int number = 1; number <= static_cast<int>(list.size()); ++number) {
        EXPECT_LE(bytesOfRun(segment(number)), 8192);
        const bool isLast = number == static_cast<int>(list.size());
        EXPECT_GT(bytesOfRun(segment(number)), isLast ? 0 : 8192 - 2500);
    }
    expectPlainRun(0, 60);
}

TEST_F(RecordingSegmentsTest, AFrameThatIsLargerThanASegmentHasOneForItself)
{
    m_options.segmentBytes = 100;
    ASSERT_TRUE(done(record(3)));
    EXPECT_EQ(segments(), (std::vector<std::vector<int>>{{0}, {1}, {2}}));
}

TEST_F(RecordingSegmentsTest, EndByTheTimesOfTheFrames)
{
    m_options.segmentTime = 1000;
    for (int pass = 0; pass < 2; ++pass) { // the second goes on where the first ended
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("run"), m_options)));
        for (int i = 0; i < 5; ++i) {
            const MadeFrame frame = frameAt(5 * pass + i, 300 * (5 * pass + i));
            ASSERT_TRUE(done(writer.write(frame.stamp, frame.objects)));
        }
    }
    EXPECT_EQ(segments(), (std::vector<std::vector<int>>{{0, 1, 2, 3}, {4, 5, 6, 7}, {8, 9}}));
}

TEST_F(RecordingSegmentsTest, EndByTheClockWhereFramesHaveNoTimes)
{
    m_options.segmentTime = 50;
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"), m_options)));
    for (int i = 0; i < 4; ++i) {
        MadeFrame frame = plainFrame(i, 1);
        frame.stamp.setDateTime(QDateTime());
        if (i == 2)
            usleep(60000);
        ASSERT_TRUE(done(writer.write(frame.stamp, frame.objects)));
    }
    ASSERT_TRUE(done(writer.close()));
    const auto list = segments();
    ASSERT_GE(list.size(), 2u);
    EXPECT_EQ(list.back().back(), 3);
    EXPECT_TRUE(std::none_of(list.begin(), list.end(), [](const std::vector<int> &part) {
        return std::find(part.begin(), part.end(), 1) != part.end()
            && std::find(part.begin(), part.end(), 2) != part.end();
    }));
}

TEST_F(RecordingSegmentsTest, AppendingGoesOnInTheLastOne)
{
    m_options.segmentFrames = 7;
    for (const int end : {3, 7, 8, 20, 30})
        ASSERT_TRUE(done(record(end)));
    ASSERT_EQ(segments().size(), 5u);
    const QDir run(QStringLiteral("run"));
    ASSERT_TRUE(QDir().rename(QStringLiteral("run"), QStringLiteral("appended")));
    ASSERT_TRUE(done(record(30)));
    for (int number = 1; number <= 5; ++number)
        for (const char *name : {"/dataflow.xml", "/dataflow.dat", "/dataflow.idx"}) {
            const QString file = segment(number) + QLatin1String(name);
            EXPECT_EQ(content(file),
                      content(QString(file).replace(QLatin1String("run"), QLatin1String("appended"))));
        }
}

TEST_F(RecordingSegmentsTest, AnotherLengthHoldsFromTheNextOneOn)
{
    m_options.segmentFrames = 4;
    ASSERT_TRUE(done(record(6)));
    m_options.segmentFrames = 1;
    ASSERT_TRUE(done(record(8)));
    EXPECT_EQ(segments(), (std::vector<std::vector<int>>{{0, 1, 2, 3}, {4, 5}, {6}, {7}}));
}

TEST_F(RecordingSegmentsTest, AreNotMixedWithARunThatHasNone)
{
    ASSERT_TRUE(done(record(3)));
    m_options.segmentFrames = 2;
    const kelResult plain = record(4);
    ASSERT_FALSE(plain);
    EXPECT_TRUE(plain.line().contains(QStringLiteral("append without segments")))
        << plain.line().toStdString();
    m_options.mode = Mode::Overwrite;
    ASSERT_TRUE(done(record(3)));
    EXPECT_EQ(segments().size(), 2u);
    EXPECT_FALSE(QFile::exists(QStringLiteral("run/dataflow.xml")));
    m_options.mode = Mode::Append;
    m_options.segmentFrames = 0;
    const kelResult parts = record(4);
    ASSERT_FALSE(parts);
    EXPECT_TRUE(parts.line().contains(QStringLiteral("append with segments"))) << parts.line().toStdString();
    m_options.mode = Mode::Fresh;
    EXPECT_TRUE(record(4).line().contains(QStringLiteral("already holds a recording")));
    m_options.mode = Mode::Overwrite;
    ASSERT_TRUE(done(record(3)));
    EXPECT_TRUE(segments().empty());
    expectPlainRun(0, 3);
}

TEST_F(RecordingSegmentsTest, OneWriterHasTheWholeRun)
{
    m_options.segmentFrames = 2;
    kelRecordingWriter first, second;
    ASSERT_TRUE(done(first.open(QStringLiteral("run"), m_options)));
    EXPECT_TRUE(
        second.open(QStringLiteral("run"), m_options).line().contains(QStringLiteral("another recorder")));
    EXPECT_TRUE(second.open(segment(1), m_options).line().contains(QStringLiteral("another recorder")));
}

TEST_F(RecordingSegmentsTest, TheOldestGoWhenTheyAreTooOld)
{
    m_options.segmentFrames = 5;
    m_options.keepTime = 2000;
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"), m_options)));
    for (int i = 0; i < 30; ++i) {
        const MadeFrame frame = frameAt(i, 200 * i);
        ASSERT_TRUE(done(writer.write(frame.stamp, frame.objects)));
    }
    // The newest is at 5800; the last frame of the third segment is at 2800, that of the fourth at 3800.
    EXPECT_EQ(
        segments(),
        (std::vector<std::vector<int>>{{15, 16, 17, 18, 19}, {20, 21, 22, 23, 24}, {25, 26, 27, 28, 29}}));
    EXPECT_EQ(writer.frameCount(), 15);
    ASSERT_EQ(m_notices.size(), 3);
    EXPECT_TRUE(m_notices[0].contains(QStringLiteral("run/000001: removed, older")))
        << m_notices[0].toStdString();
    EXPECT_TRUE(QDir(QStringLiteral("run")).entryList(QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
}

TEST_F(RecordingSegmentsTest, TheOldestGoWhenTheRunIsTooLarge)
{
    m_options.segmentFrames = 10;
    m_options.keepBytes = 60000;
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"), m_options)));
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(done(writer.write(plainFrame(i, i % 4).stamp, plainFrame(i, i % 4).objects)));
        ASSERT_LE(bytesOfRun(), 60000) << i;
    }
    ASSERT_TRUE(done(writer.close()));
    ASSERT_GT(bytesOfRun(), 30000);
    ASSERT_GT(m_notices.size(), 10);
    expectPlainRun(200 - static_cast<int>(segments().size()) * 10, 200);
}

TEST_F(RecordingSegmentsTest, NothingIsLostWhenRemovingDoesNotHelp)
{
    m_options.segmentFrames = 10;
    ASSERT_TRUE(done(record(25)));
    m_options.segmentFrames = 1000;
    m_options.keepBytes = bytesOfRun() * 3 / 4;
    const kelResult stopped = record(200);
    ASSERT_FALSE(stopped);
    EXPECT_TRUE(stopped.line().contains(QStringLiteral("the open segment alone")))
        << stopped.line().toStdString();
    const auto list = segments();
    ASSERT_FALSE(list.empty());
    EXPECT_EQ(list.back().front(), 20);
    EXPECT_GT(list.back().size(), 5u);
    // And a disk that is full of other things.
    ASSERT_TRUE(QDir(QStringLiteral("run")).removeRecursively());
    m_options.keepBytes = 0;
    m_options.segmentFrames = 10;
    ASSERT_TRUE(done(record(25)));
    struct statvfs status;
    ASSERT_EQ(statvfs("run", &status), 0);
    m_options.minFree = qint64(status.f_blocks) * qint64(status.f_frsize) + 1;
    m_notices.clear();
    const kelResult full = record(26);
    ASSERT_FALSE(full);
    EXPECT_TRUE(full.line().contains(QStringLiteral("are to stay free"))) << full.line().toStdString();
    EXPECT_TRUE(m_notices.isEmpty());
    expectPlainRun(0, 25);
}

TEST_F(RecordingSegmentsTest, TheOldestGoWhenTheDiskIsFull)
{
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("run")));
    if (mount("none", "run", "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "no file system of its own can be mounted here";
    m_options.segmentFrames = 20;
    m_options.minFree = 300000;
    {
        kelRecordingWriter writer;
        EXPECT_TRUE(done(writer.open(QStringLiteral("run"), m_options)));
        for (int i = 0; i < 1500 && !HasFailure(); ++i) {
            EXPECT_TRUE(done(writer.write(plainFrame(i, i % 4).stamp, plainFrame(i, i % 4).objects))) << i;
            struct statvfs status;
            EXPECT_EQ(statvfs("run", &status), 0);
            // Files take whole blocks.
            EXPECT_GE(qint64(status.f_bavail) * qint64(status.f_frsize), 300000 - 4 * 4096) << i;
        }
    }
    EXPECT_GT(m_notices.size(), 10);
    EXPECT_GT(segments().size(), 3u);
    EXPECT_EQ(segments().back().back(), 1499);
    EXPECT_EQ(umount2("run", MNT_DETACH), 0);
}

TEST_F(RecordingSegmentsTest, WhatCannotBeIsRefused)
{
    m_options.keepBytes = 1000;
    EXPECT_TRUE(record(1).line().contains(QStringLiteral("set segmentFrames")));
    m_options.segmentBytes = 600;
    EXPECT_TRUE(record(1).line().contains(QStringLiteral("twice")));
    EXPECT_FALSE(QFile::exists(QStringLiteral("run")));
}

TEST_F(RecordingSegmentsTest, ALeftOverOfARemovalGoesWithTheNextWriter)
{
    m_options.segmentFrames = 5;
    ASSERT_TRUE(done(record(12)));
    ASSERT_TRUE(QDir().rename(segment(1), QStringLiteral("run/.000001.removed")));
    expectPlainRun(5, 12);
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"), m_options)));
    EXPECT_EQ(writer.frameCount(), 7);
    EXPECT_FALSE(QFile::exists(QStringLiteral("run/.000001.removed")));
}

TEST_F(RecordingSegmentsTest, ClosedOnesAreCompressedAndReadTheSame)
{
    m_options.segmentFrames = 10;
    m_options.compress = true;
    ASSERT_TRUE(done(record(35)));
    for (int number = 1; number <= 3; ++number)
        EXPECT_EQ(QDir(segment(number)).entryList(QDir::Files | QDir::Hidden, QDir::Name),
                  (QStringList{QStringLiteral("dataflow.dat.zst"), QStringLiteral("dataflow.idx"),
                               QStringLiteral("dataflow.xml.zst")}));
    EXPECT_TRUE(QFile::exists(segment(4) + QStringLiteral("/dataflow.xml")));
    expectPlainRun(0, 35);
    for (int number = 1; number <= 3;
         ++number) // each by itself, by its folder, its document and its old name
        for (const char *place : {"", "/dataflow.xml", "/dataflow.xml.zst"}) {
            kelRecording part;
            ASSERT_TRUE(done(part.open(segment(number) + QLatin1String(place))));
            EXPECT_EQ(part.frameCount(), 10);
            EXPECT_TRUE(done(part.verify()));
        }
    for (int number = 1; number <= 3; ++number)
        ASSERT_TRUE(QFile::remove(segment(number) + QStringLiteral("/dataflow.idx")));
    expectPlainRun(0, 35);
    EXPECT_TRUE(m_notices.isEmpty());
}

TEST_F(RecordingSegmentsTest, OtherProgramsDecompressThem)
{
    m_options.segmentFrames = 100;
    ASSERT_TRUE(done(record(250)));
    const QByteArray document = content(segment(1) + QStringLiteral("/dataflow.xml"));
    m_options.compress = true;
    ASSERT_TRUE(done(record(250)));
    QProcess zstd;
    zstd.start(QStringLiteral("zstd"),
               {QStringLiteral("-dc"), segment(1) + QStringLiteral("/dataflow.xml.zst")});
    if (!zstd.waitForStarted())
        GTEST_SKIP() << "no program zstd here";
    ASSERT_TRUE(zstd.waitForFinished());
    EXPECT_EQ(zstd.exitCode(), 0) << zstd.readAllStandardError().toStdString();
    EXPECT_EQ(zstd.readAllStandardOutput(), document);
}

TEST_F(RecordingSegmentsTest, AppendingBehindACompressedOneBeginsTheNext)
{
    m_options.segmentFrames = 10;
    m_options.compress = true;
    ASSERT_TRUE(done(record(15)));
    ASSERT_TRUE(QDir(segment(2)).removeRecursively());
    ASSERT_TRUE(done(record(12)));
    EXPECT_EQ(segments(), (std::vector<std::vector<int>>{{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {10, 11}}));
    kelRecordingOptions alone;
    for (const Mode mode : {Mode::Append, Mode::Fresh}) {
        alone.mode = mode;
        kelRecordingWriter writer;
        const kelResult refused = writer.open(segment(1), alone);
        ASSERT_FALSE(refused);
        const char *const why = mode == Mode::Append ? "is compressed" : "already holds a recording";
        EXPECT_TRUE(refused.line().contains(QLatin1String(why))) << refused.line().toStdString();
    }
    expectPlainRun(0, 12);
}

TEST_F(RecordingSegmentsTest, CompressionIsSpreadOverTheFramesThatFollow)
{
    m_options.segmentFrames = 9000;
    ASSERT_TRUE(done(record(9000)));
    const QString document = segment(1) + QStringLiteral("/dataflow.xml");
    ASSERT_GT(QFileInfo(document).size(), 3 << 20);
    m_options.compress = true;
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"), m_options)));
    int written = 9000;
    for (; QFile::exists(document) && written < 9100; ++written)
        ASSERT_TRUE(done(
            writer.write(plainFrame(written, written % 4).stamp, plainFrame(written, written % 4).objects)));
    EXPECT_GE(written - 9000, 4); // a megabyte each
    EXPECT_LE(written - 9000, 10);
    EXPECT_TRUE(QFile::exists(segment(1) + QStringLiteral("/dataflow.dat"))); // it comes behind the document
    ASSERT_TRUE(done(writer.close()));
    EXPECT_FALSE(QFile::exists(segment(1) + QStringLiteral("/dataflow.dat")));
    expectPlainRun(0, written);
}

TEST_F(RecordingSegmentsTest, WhatCannotBeCompressedStaysAndIsTold)
{
    m_options.segmentFrames = 2000;
    ASSERT_TRUE(done(record(2001)));
    m_options.compress = true;
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit limit = old;
    limit.rlim_cur = 20000; // stands for a full disk
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const kelResult told = record(2001);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, SIG_DFL);
    ASSERT_FALSE(told);
    EXPECT_TRUE(told.line().contains(QStringLiteral("000001/dataflow.xml"))) << told.line().toStdString();
    EXPECT_EQ(m_notices.size(), 1);
    EXPECT_EQ(QDir(segment(1)).entryList(QDir::Files | QDir::Hidden).size(), 3);
    expectPlainRun(0, 2001);
    ASSERT_TRUE(done(record(2001)));
    EXPECT_TRUE(QFile::exists(segment(1) + QStringLiteral("/dataflow.xml.zst")));
    expectPlainRun(0, 2001);
}

TEST_F(RecordingSegmentsTest, DamagedCompressedFilesAreFoundAndHarmNobody)
{
    m_options.segmentFrames = 12;
    m_options.compress = true;
    ASSERT_TRUE(done(record(13)));
    int harmless = 0;
    for (const char *name : {"dataflow.xml.zst", "dataflow.dat.zst"}) {
        const QString file = segment(1) + QLatin1Char('/') + QLatin1String(name);
        const QByteArray whole = content(file);
        const auto expectFound = [&](const QByteArray &bytes, const char *how, int at) {
            write(file, bytes);
            for (const char *place : {"run", "run/000001"}) {
                kelRecording run;
                EXPECT_FALSE(run.open(QLatin1String(place)) && run.verify()) << name << how << at;
                for (qint64 i = 0; i < run.frameCount(); ++i)
                    run.records(run.frame(i));
            }
        };
        for (int byte = 0; byte < whole.size(); ++byte) {
            QByteArray flipped = whole;
            flipped[byte] = static_cast<char>(flipped.at(byte) ^ 1 << byte % 8);
            // Some bits mean nothing: with them the plain bytes are the same, which the index proves.
            write(file, flipped);
            kelRecording run;
            if (run.open(QStringLiteral("run")) && run.verify()) {
                ++harmless;
                ASSERT_NO_FATAL_FAILURE(expectPlainRun(0, 13)) << name << byte;
            }
        }
        for (int size = 0; size < whole.size(); size += 7)
            expectFound(whole.left(size), " cut at ", size);
        // Tables that claim whatever they like.
        for (int entry = 0; entry < 8; ++entry)
            for (const char *value : {"\xff\xff\xff\xff", "\xff\xff\xff\x7f", "\x00\x00\x80\x00"}) {
                const auto at = static_cast<int>(whole.size()) - 25 + 3 * entry;
                expectFound(QByteArray(whole).replace(at, 4, value, 4), " set ", at);
            }
        write(file, whole);
    }
    EXPECT_LT(harmless, 12);
    expectPlainRun(0, 13);
}

TEST_F(RecordingSegmentsTest, ATableThatClaimsTooMuchIsRefusedBeforeAnythingIsReadByIt)
{
    m_options.segmentFrames = 12;
    m_options.compress = true;
    ASSERT_TRUE(done(record(13)));
    const QString file = segment(1) + QStringLiteral("/dataflow.xml.zst");
    const QByteArray whole = content(file);
    // One frame: the table takes the last 25 bytes.
    struct
    {
        int fromEnd;
        QByteArray bytes;
        const char *problem;
    } const claims[] = {
        {13, QByteArray("\x01\x00\x80\x00", 4), "frame 0 is too large"}, // 8 MiB and a byte
        {17, QByteArray("\xff\xff\xff\x7f", 4), "frame 0 is too large"},
        {17, QByteArray("\x07\x00\x00\x00", 4), "do not end where"},
        {9, QByteArray("\xff\xff\xff\xff", 4), "its table is too long"},
        {9, QByteArray("\x00\x01\x00\x00", 4), "its table is too long"}, // than the file
        {5, QByteArray("\x04", 1), "its table is too long"}, // a flag that nobody has given a meaning
        {9, QByteArray("\x00\x00\x00\x00", 4), "does not begin where"},
        {4, QByteArray("\x00", 1), "its table is missing"},
    };
    for (const auto &claim : claims) {
        const int at = static_cast<int>(whole.size()) - claim.fromEnd;
        write(file, QByteArray(whole).replace(at, claim.bytes.size(), claim.bytes));
        kelRecording part;
        const kelResult refused = part.open(segment(1));
        ASSERT_FALSE(refused) << claim.problem;
        EXPECT_TRUE(refused.line().contains(QLatin1String(claim.problem)))
            << refused.line().toStdString() << " not " << claim.problem;
    }
}

} // namespace
