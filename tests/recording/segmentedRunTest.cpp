/// \file
/// Runs in segments, read as one.

#include <kelCore/recording/kelRecording.h>

#include "recording/RunScripts.h"
#include "support/TemporaryFolder.h"

#include <QDir>
#include <QFileInfo>

#include <sys/resource.h>

namespace {

QString segment(int number) { return QStringLiteral("run/%1").arg(number, 6, 10, QLatin1Char('0')); }

/// A run of 30 frames in segments of 7, each written as a recording of its own.
class SegmentedRunTest : public TemporaryFolder
{
protected:
    static constexpr int frameCount = 30;
    static constexpr int framesPerSegment = 7;

    void SetUp() override { ASSERT_NO_FATAL_FAILURE(makeRun(frameCount, framesPerSegment)); }

    static void makeRun(int frames, int perSegment)
    {
        ASSERT_TRUE(QDir().mkpath(QStringLiteral("run")));
        for (int begin = 0, number = 1; begin < frames; begin += perSegment, ++number) {
            kelRecordingWriter writer;
            ASSERT_TRUE(done(writer.open(segment(number))));
            for (int i = begin; i < std::min(begin + perSegment, frames); ++i)
                ASSERT_TRUE(done(writer.write(plainFrame(i, i % 4).stamp, plainFrame(i, i % 4).objects)));
        }
    }

    static void expectRun(const kelRecording &run, int begin = 0)
    {
        ASSERT_EQ(run.frameCount(), frameCount - begin);
        qint64 objects = 0;
        for (int i = begin; i < frameCount; ++i) {
            const kelRecordedFrame frame = run.frame(i - begin);
            EXPECT_EQ(frame.index, i - begin);
            EXPECT_EQ(frame.number, quint32(i));
            EXPECT_EQ(frame.time, plainFrame(i).stamp.getDateTime());
            EXPECT_EQ(frame.firstObject, objects);
            EXPECT_EQ(frame.objectCount, i % 4);
            EXPECT_EQ(run.records(frame).size(), size_t(i % 4));
            objects += i % 4;
        }
        EXPECT_EQ(run.objectCount(), objects);
    }
};

TEST_F(SegmentedRunTest, IsReadAsOneRun)
{
    for (const bool indexed : {true, false}) {
        for (int number = indexed ? 6 : 1; number <= 5; number += 2) {
            ASSERT_TRUE(QFile::remove(segment(number) + QStringLiteral("/dataflow.idx")));
        }
        ASSERT_TRUE(kelRecording::existsIn(QStringLiteral("run")));
        kelRecording run;
        ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
        EXPECT_EQ(run.segmentCount(), 5);
        ASSERT_NO_FATAL_FAILURE(expectRun(run));
        EXPECT_EQ(run.framesNumbered(20), std::vector<qint64>{20});
        const QDateTime start = plainFrame(0).stamp.getDateTime();
        for (int i = 0; i < frameCount; ++i)
            EXPECT_EQ(run.frameAt(start.addMSecs(40 * i + 39)), i);
        EXPECT_EQ(run.frameAt(start.addMSecs(-1)), -1);
        EXPECT_TRUE(done(run.state()));
        std::vector<qint64> progress;
        EXPECT_TRUE(done(run.verify([&progress](qint64 frames) { progress.push_back(frames); })));
        EXPECT_EQ(progress, std::vector<qint64>{0});
        qint64 document = 0, records = 0;
        for (int number = 1; number <= 5; ++number) {
            document += QFileInfo(segment(number) + QStringLiteral("/dataflow.xml")).size();
            records += QFileInfo(segment(number) + QStringLiteral("/dataflow.dat")).size();
        }
        EXPECT_EQ(run.documentSize(), document);
        EXPECT_EQ(run.recordsSize(), records);
        EXPECT_EQ(run.leftOverBytes(), 0);
    }
}

TEST_F(SegmentedRunTest, EachSegmentIsARecordingOfItsOwn)
{
    kelRecording part;
    ASSERT_TRUE(done(part.open(segment(5))));
    EXPECT_EQ(part.segmentCount(), 0);
    EXPECT_EQ(part.frameCount(), 2);
    EXPECT_EQ(part.frame(1).number, 29u);
}

TEST_F(SegmentedRunTest, MayBeginAnywhere)
{
    ASSERT_TRUE(QDir(segment(1)).removeRecursively());
    ASSERT_TRUE(QDir(segment(2)).removeRecursively());
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    EXPECT_EQ(run.frameCount(), 16);
    EXPECT_EQ(run.frame(0).number, 14u);
    EXPECT_EQ(run.frame(0).firstObject, 0);
    EXPECT_TRUE(done(run.verify()));
}

TEST_F(SegmentedRunTest, MayEndWithASegmentThatHoldsNothingYet)
{
    ASSERT_TRUE(QDir().mkpath(segment(6)));
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    EXPECT_EQ(run.segmentCount(), 6);
    ASSERT_NO_FATAL_FAILURE(expectRun(run));
    EXPECT_TRUE(done(run.verify()));
}

TEST_F(SegmentedRunTest, OtherFoldersAreNoSegments)
{
    for (const char *name : {"run/7", "run/0000006", "run/000006x", "run/.000006.removed", "run/000008"})
        ASSERT_TRUE(QDir().mkpath(QLatin1String(name)));
    write(QStringLiteral("run/000008/photo.png"), "somebody's own");
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    EXPECT_EQ(run.segmentCount(), 5);
    EXPECT_TRUE(done(run.state()));
}

TEST_F(SegmentedRunTest, SaysWhichSegmentIsDamaged)
{
    const auto expectProblem = [](const char *where, const char *what) {
        kelRecording run;
        ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
        const kelResult wrong = run.verify();
        ASSERT_FALSE(wrong);
        EXPECT_TRUE(wrong.line().contains(QLatin1String(where)) && wrong.line().contains(QLatin1String(what)))
            << wrong.line().toStdString();
    };
    const QString document = segment(4) + QStringLiteral("/dataflow.xml");
    const QByteArray whole = content(document);
    write(document, QByteArray(whole).replace("frameID=\"23\"", "frameID=\"24\""));
    expectProblem("000004", "frame 23");
    write(document, "no XML");
    expectProblem("000004", "cannot be parsed");
    ASSERT_TRUE(QFile::remove(document));
    expectProblem("000004", "has no dataflow.xml");
    ASSERT_TRUE(QDir(segment(4)).removeRecursively());
    expectProblem("000004", "is missing");
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run")))); // and the others are read
    EXPECT_EQ(run.frameCount(), frameCount - framesPerSegment);
    EXPECT_EQ(run.frame(21).number, 28u);
}

TEST_F(SegmentedRunTest, FramesOfASegmentThatHasGoneComeBackEmpty)
{
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    ASSERT_TRUE(QDir(segment(1)).removeRecursively());
    EXPECT_EQ(run.frame(3).number, 0u);
    EXPECT_TRUE(run.records(run.frame(3)).empty());
    EXPECT_EQ(run.frame(7).number, 7u);
    const kelResult wrong = run.verify();
    EXPECT_TRUE(wrong.line().contains(QStringLiteral("000001"))) << wrong.line().toStdString();
}

TEST_F(SegmentedRunTest, WhatIsRecordedLaterIsNotSeen)
{
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    kelRecordingOptions options;
    options.mode = kelRecordingOptions::Mode::Append;
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(segment(5), options)));
    ASSERT_TRUE(done(writer.write(plainFrame(99).stamp, plainFrame(99).objects)));
    ASSERT_NO_FATAL_FAILURE(expectRun(run));
    EXPECT_TRUE(done(run.verify()));
}

TEST_F(SegmentedRunTest, NeedsFewFilesAtOnce)
{
    ASSERT_TRUE(QDir(QStringLiteral("run")).removeRecursively());
    ASSERT_NO_FATAL_FAILURE(makeRun(300, 1));
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &old), 0);
    rlimit limit = old;
    limit.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    kelRecording run;
    EXPECT_TRUE(done(run.open(QStringLiteral("run"))));
    EXPECT_EQ(run.frameCount(), 300);
    for (qint64 i = 0; i < 300; ++i)
        EXPECT_EQ(run.records(run.frame(i * 7 % 300)).size(), size_t(i * 7 % 300 % 4));
    EXPECT_TRUE(done(run.verify()));
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &old), 0);
}

} // namespace
