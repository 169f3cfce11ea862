/// \file
/// kelrecord --append: runs that were interrupted, and go on.

#include "integration/programs.h"

#include <random>

class appendingTest : public Programs
{ };

TEST_F(appendingTest, AppendGivesWhatAnUninterruptedRunGives)
{
    ASSERT_EQ(kelrecord(recording("whole")).code, 0);
    ASSERT_EQ(kelrecord(recording("parts", {"--max-frames", "23"})).code, 0);
    ASSERT_EQ(
        kelrecord({"video.avi", "--out", "parts", "--append", "--min-area", "100", "--min-dimension", "8"})
            .code,
        0)
        << "start and frame rate come from the recording";
    EXPECT_EQ(content("parts/dataflow.xml"), content("whole/dataflow.xml"));
    EXPECT_EQ(content("parts/dataflow.dat"), content("whole/dataflow.dat"));

    const Ended again = kelrecord(recording("parts", {"--append"}));
    EXPECT_EQ(again.code, 0) << again;
    EXPECT_TRUE(again.output.startsWith("recorded 0 frames")) << again;
    EXPECT_EQ(content("parts/dataflow.xml"), content("whole/dataflow.xml"));
}

TEST_F(appendingTest, WhatAnInterruptedRunLeftIsAcceptedByVerifyAndTrimmedByAppend)
{
    ASSERT_EQ(kelrecord(recording("whole")).code, 0);
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "23"})).code, 0);
    const QByteArray records = content("run/dataflow.dat");
    const QByteArray one = records.left(81); // one blob's record
    write("run/dataflow.dat", records + one + one + one.left(30));

    const Ended verify = kelreplay({"verify", "run"});
    EXPECT_EQ(verify.code, 0) << verify;
    EXPECT_TRUE(verify.output.contains(
        "2 records of a frame that the document does not hold and an unfinished record of "
        "30 bytes"))
        << verify;
    ASSERT_EQ(kelrecord(recording("run", {"--append"})).code, 0);
    EXPECT_EQ(content("run/dataflow.xml"), content("whole/dataflow.xml"));
    EXPECT_EQ(content("run/dataflow.dat"), content("whole/dataflow.dat"));
}

TEST_F(appendingTest, AppendBeginsARecordingThatWasKilledBeforeItsFirstFrame)
{
    ASSERT_EQ(kelrecord(recording("whole", {"--max-frames", "5"})).code, 0);
    QDir().mkdir("run");
    write("run/dataflow.dat", QByteArray(7, 'x'));
    EXPECT_EQ(kelreplay({"verify", "run"}).code, 0);
    ASSERT_EQ(kelrecord(recording("run", {"--append", "--max-frames", "5"})).code, 0);
    EXPECT_EQ(content("run/dataflow.xml"), content("whole/dataflow.xml"));
    EXPECT_EQ(content("run/dataflow.dat"), content("whole/dataflow.dat"));
}

TEST_F(appendingTest, KillingARunAtAnyMomentLeavesACompleteRecordingThatAppendFinishes)
{
    makeVideo("video.avi", 120);
    ASSERT_EQ(kelrecord(recording("whole")).code, 0);
    std::mt19937 random(std::random_device{}());
    int interrupted = 0;
    for (int i = 0; i < 20; ++i) {
        const QString folder = QStringLiteral("run%1").arg(i);
        QProcess process;
        process.setProcessEnvironment(withoutDisplay());
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(KELRECORD, recording(folder));
        ASSERT_TRUE(process.waitForStarted());
        while (process.state() == QProcess::Running && !QFileInfo::exists(folder + "/dataflow.xml"))
            process.waitForFinished(1);
        process.waitForFinished(static_cast<int>(random() % 300));
        process.kill();
        process.waitForFinished();
        interrupted += process.exitStatus() == QProcess::CrashExit;

        const Ended verify = kelreplay({"verify", folder});
        EXPECT_EQ(verify.code, 0) << verify;
        const Ended append = kelrecord(recording(folder, {"--append"}));
        EXPECT_EQ(append.code, 0) << append;
        EXPECT_EQ(content(folder + "/dataflow.xml"), content("whole/dataflow.xml"));
        EXPECT_EQ(content(folder + "/dataflow.dat"), content("whole/dataflow.dat"));
    }
    EXPECT_GE(interrupted, 5);
}

TEST_F(appendingTest, AnAppendedRunGoesOnWithItsActors)
{
    const QStringList view{"--view", "rgbd", "--keys", "I", "--render"};
    ASSERT_EQ(kelrecord(recording("whole", view + QStringList{"a"})).code, 0);
    ASSERT_EQ(kelrecord(recording("parts", {"--max-frames", "23"})).code, 0);
    ASSERT_EQ(kelrecord(recording("parts", view + QStringList{"b", "--append"})).code, 0);
    EXPECT_EQ(QDir("b").entryList(QDir::Files).size(), frameCount - 23);
    EXPECT_EQ(content("b/frame_000030.png"), content("a/frame_000030.png"));
}
