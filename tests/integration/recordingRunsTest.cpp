/// \file
/// kelrecord: what a run leaves in its folder.

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/recording/kelRecordingWriter.h>

#include "integration/programs.h"
#include "support/Capture.h"

#include <opencv2/imgcodecs.hpp>

#include <QRegularExpression>

#include <signal.h>

class recordingRunsTest : public Programs
{ };

TEST_F(recordingRunsTest, HelpShowsUsageExamplesAndExitCodes)
{
    for (const Ended &run : {kelrecord({"--help"}), kelreplay({"--help"})}) {
        EXPECT_EQ(run.code, 0) << run;
        EXPECT_TRUE(run.output.startsWith("Usage: kelre")) << run;
        EXPECT_TRUE(run.output.contains("Examples:\n")) << run;
        EXPECT_TRUE(run.output.contains("Exit codes:\n")) << run;
        EXPECT_TRUE(run.errors.isEmpty()) << run;
    }
}

TEST_F(recordingRunsTest, ARunIsRecordedWithTheBoxOfTheMovingSquare)
{
    const Ended run = kelrecord(recording("run"));
    ASSERT_EQ(run.code, 0) << run;
    EXPECT_TRUE(run.output.startsWith("recorded 40 frames with ")) << run;

    const Ended info = kelreplay({"info", "run"});
    EXPECT_TRUE(info.output.contains("frames:    40\n")) << info;
    EXPECT_TRUE(info.output.contains("2009-06-01T12:00:00.000Z to 2009-06-01T12:00:03.900Z (3.900 s)"))
        << info;
    const Ended verify = kelreplay({"verify", "run"});
    EXPECT_EQ(verify.code, 0) << verify;
    EXPECT_TRUE(verify.output.startsWith("complete: 40 frames, ")) << verify;

    int overlapping = 0;
    for (int i = firstSquare; i < frameCount; ++i)
        for (const cv::Rect &box : boxes("run", i))
            overlapping += (box & squareAt(i)).area() > squareAt(i).area() / 2;
    EXPECT_EQ(overlapping, frameCount - firstSquare);
}

TEST_F(recordingRunsTest, TheRecordingIsTheSameBytesEveryTime)
{
    ASSERT_EQ(kelrecord(recording("a")).code, 0);
    ASSERT_EQ(kelrecord(recording("b")).code, 0);
    EXPECT_EQ(content("a/dataflow.xml"), content("b/dataflow.xml"));
    EXPECT_EQ(content("a/dataflow.dat"), content("b/dataflow.dat"));
    EXPECT_FALSE(content("a/dataflow.dat").isEmpty());
}

TEST_F(recordingRunsTest, EveryBoxIsReadBackByTheLibraryAsKelreplayShowsIt)
{
    ASSERT_EQ(kelrecord(recording("run")).code, 0);
    MessageCapture silence;
    kelAbstractProcessDataFlowReader reader;
    reader.setDir("run/dataflow.dat");
    const QList<kelAbstractData *> objects = reader.getDataFlow();
    QList<cv::Rect> shown;
    for (int i = 0; i < frameCount; ++i)
        shown += boxes("run", i);
    ASSERT_EQ(objects.size(), shown.size());
    ASSERT_FALSE(objects.isEmpty());
    for (int i = 0; i < objects.size(); ++i) {
        auto *blob = qobject_cast<kelDataBlob *>(objects[i]);
        ASSERT_NE(blob, nullptr);
        const QRect box = blob->getBoundingBox2D_qt();
        EXPECT_EQ(cv::Rect(box.x(), box.y(), box.width(), box.height()), shown[i]);
    }
    qDeleteAll(objects);
}

TEST_F(recordingRunsTest, NumberedPicturesAreRecordedToTheLast)
{
    const int pictures = 200; // more than are opened before the first is recorded
    for (int i = 0; i < pictures; ++i)
        cv::imwrite(cv::format("picture_%03d.png", i), cv::Mat(32, 32, CV_8UC3, cv::Scalar::all(i)));
    EXPECT_EQ(kelrecord({"picture_%03d.png", "--out", "run"}).code, 0);
    EXPECT_TRUE(kelreplay({"verify", "run"}).output.startsWith("complete: 200 frames"));
}

TEST_F(recordingRunsTest, BlobsHonourTheMinimums)
{
    ASSERT_EQ(kelrecord(recording("run", {"--min-area", "1", "--min-dimension", "1"})).code, 0);
    ASSERT_EQ(kelrecord({"video.avi", "--out", "none"}).code, 0); // the stage's own: 2000 and 50
    EXPECT_FALSE(content("run/dataflow.dat").isEmpty());
    EXPECT_TRUE(content("none/dataflow.dat").isEmpty());
}

TEST_F(recordingRunsTest, AFolderThatHoldsARecordingIsRefused)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    const QByteArray before = content("run/dataflow.xml");
    const Ended refused = kelrecord(recording("run"));
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.oneLine()) << refused;
    EXPECT_TRUE(refused.errors.contains("--append")) << refused;
    EXPECT_EQ(content("run/dataflow.xml"), before);
}

TEST_F(recordingRunsTest, OverwriteReplacesTheRecording)
{
    ASSERT_EQ(kelrecord(recording("run")).code, 0);
    ASSERT_EQ(kelrecord(recording("run", {"--overwrite", "--max-frames", "3"})).code, 0);
    EXPECT_TRUE(kelreplay({"verify", "run"}).output.startsWith("complete: 3 frames"));

    EXPECT_EQ(kelrecord(recording("run", {"--overwrite", "--render", "video.avi/x"})).code, 1);
    EXPECT_TRUE(kelreplay({"verify", "run"}).output.startsWith("complete: 3 frames"))
        << "a call that fails replaces nothing";
}

TEST_F(recordingRunsTest, CtrlCEndsCleanly)
{
    makeVideo("video.avi", 400);
    QProcess process;
    process.setProcessEnvironment(withoutDisplay());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(KELRECORD, recording("run"));
    ASSERT_TRUE(process.waitForStarted());
    while (process.state() == QProcess::Running && !QFileInfo::exists("run/dataflow.xml"))
        process.waitForFinished(1);
    process.waitForFinished(50);
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    EXPECT_TRUE(output.startsWith("interrupted; recorded ")) << output.toStdString();
    const QString frames = output.section(' ', 2, 2);
    const Ended verify = kelreplay({"verify", "run"});
    EXPECT_TRUE(verify.output.startsWith(QStringLiteral("complete: %1 frame").arg(frames))) << verify;
    EXPECT_FALSE(verify.output.contains("at the end")) << verify;
}

TEST_F(recordingRunsTest, AFullDiskIsOneLineAndLosesNoFrameBeforeIt)
{
    // A limit on file sizes fails a write just as a full disk does.
    const Ended full = shell(
        "ulimit -f 8; exec $RECORD video.avi --out run --min-area 100 --min-dimension 8 --fps 10 --quiet");
    EXPECT_EQ(full.code, 1) << full;
    EXPECT_FALSE(full.crashed);
    EXPECT_TRUE(full.oneLine()) << full;
    const QRegularExpressionMatch frame =
        QRegularExpression("frame (\\d+) could not be written").match(full.errors);
    ASSERT_TRUE(frame.hasMatch()) << full;
    const Ended verify = kelreplay({"verify", "run"});
    EXPECT_EQ(verify.code, 0) << verify;
    EXPECT_TRUE(verify.output.startsWith(QStringLiteral("complete: %1 frames").arg(frame.captured(1))))
        << verify;
}

TEST_F(recordingRunsTest, OutputThatCannotBeWrittenIsAFailure)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    const Ended run = shell("$REPLAY info run > /dev/full");
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.oneLine()) << run;
}

TEST_F(recordingRunsTest, AClosedStandardInputDoesNotMatter)
{
    const Ended run = shell("$RECORD video.avi --out run --max-frames 3 --quiet <&-");
    EXPECT_EQ(run.code, 0) << run;
    EXPECT_TRUE(run.output.isEmpty()) << run;
    EXPECT_TRUE(run.errors.isEmpty()) << run;
}

TEST_F(recordingRunsTest, AMissingDisplayIsSaidInOneLineAndTheRunIsRecorded)
{
    const Ended run = kelrecord(recording("run", {"--show", "--max-frames", "3"}));
    EXPECT_EQ(run.code, 0) << run;
    EXPECT_TRUE(run.errors.startsWith("kelrecord: there is no display")) << run;
    EXPECT_TRUE(kelreplay({"verify", "run"}).output.startsWith("complete: 3 frames"));

    const Ended wrong = shell("DISPLAY=:4711 $REPLAY show run");
    EXPECT_EQ(wrong.code, 1) << wrong;
    EXPECT_FALSE(wrong.crashed);
    EXPECT_TRUE(wrong.oneLine()) << wrong;
}

TEST_F(recordingRunsTest, ACalibrationAddsFootPointsToTheRecords)
{
    // A camera 10 units above the ground that looks straight down: world X along columns, Y against rows.
    cv::FileStorage file("camera.yml", cv::FileStorage::WRITE);
    const cv::Mat K = (cv::Mat_<double>(3, 4) << 100, 0, 80, 0, 0, 100, 60, 0, 0, 0, 1, 0);
    const cv::Mat E = (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 10, 0, 0, 0, 1);
    cv::Mat pose = E.inv();
    for (int c = 0; c < 4; ++c)
        std::swap(pose.at<double>(1, c), pose.at<double>(2, c));
    file << "referentialName"
         << "test"
         << "intrinsicMatrix" << K << "extrinsicMatrix" << pose << "distortion"
         << cv::Mat::zeros(1, 4, CV_64F);
    file.release();

    ASSERT_EQ(kelrecord(recording("run", {"--calibration", "camera.yml"})).code, 0);
    const QList<cv::Rect> found = boxes("run", 20);
    ASSERT_EQ(found.size(), 1);
    const QJsonValue ground =
        at(parsed(kelreplay({"frame", "run", "20", "--json"}).output), "objects.0.properties.GroundPosition");
    EXPECT_NEAR(at(ground, "x").toDouble(), (found[0].x + found[0].width / 2.0 - 80) / 10, 1e-9);
    EXPECT_NEAR(at(ground, "y").toDouble(), -(found[0].y + found[0].height - 60) / 10.0, 1e-9);
    EXPECT_EQ(kelreplay({"verify", "run"}).code, 0);
}

TEST_F(recordingRunsTest, ABlobAboveTheHorizonStandsNowhere)
{
    // A camera 10 units above the ground that looks straight up: the ground is behind it everywhere.
    cv::FileStorage file("camera.yml", cv::FileStorage::WRITE);
    const cv::Mat K = (cv::Mat_<double>(3, 4) << 100, 0, 80, 0, 0, 100, 60, 0, 0, 0, 1, 0);
    const cv::Mat E = (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -10, 0, 0, 0, 1);
    cv::Mat pose = E.inv();
    for (int c = 0; c < 4; ++c)
        std::swap(pose.at<double>(1, c), pose.at<double>(2, c));
    file << "intrinsicMatrix" << K << "extrinsicMatrix" << pose;
    file.release();

    ASSERT_EQ(kelrecord(recording("run", {"--calibration", "camera.yml"})).code, 0);
    ASSERT_EQ(boxes("run", 20).size(), 1);
    EXPECT_FALSE(kelreplay({"frame", "run", "20", "--json"}).output.contains("GroundPosition"));
}

TEST_F(recordingRunsTest, ProgressIsALineAtATimeWithoutATerminal)
{
    const Ended run = kelrecord(recording("run"));
    EXPECT_TRUE(run.errors.contains(QRegularExpression("frame 40 of 40, [0-9.]+ frames/s\\n$"))) << run;
    EXPECT_FALSE(run.errors.contains('\r'));
    EXPECT_TRUE(kelrecord(recording("other", {"--quiet"})).errors.isEmpty());
}

TEST_F(recordingRunsTest, TwoRunsDoNotWriteIntoOneFolder)
{
    kelRecordingWriter first;
    ASSERT_TRUE(first.open("run"));
    const Ended second = kelrecord(recording("run", {"--append"}));
    EXPECT_EQ(second.code, 1) << second;
    EXPECT_TRUE(second.oneLine()) << second;
    EXPECT_TRUE(second.errors.contains("another recorder is writing")) << second;
    ASSERT_TRUE(first.close());
    EXPECT_EQ(kelrecord(recording("run", {"--append"})).code, 0);
}
