/// \file
/// kelrecord and kelreplay, run as their users run them.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"
#include "support/TemporaryFolder.h"

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <QDomDocument>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QThread>

#include <random>

#include <signal.h>
#include <unistd.h>

namespace {

/// What a program printed and how it ended.
struct Ended
{
    int code = -1;
    bool crashed = false;
    QString output;
    QString errors;

    /// Exactly one line on standard error.
    bool oneLine() const { return errors.count('\n') == 1 && errors.endsWith('\n'); }
};

std::ostream &operator<<(std::ostream &out, const Ended &run)
{
    return out << "code " << run.code << (run.crashed ? ", crashed" : "")
               << "\noutput: " << run.output.toStdString() << "\nerrors: " << run.errors.toStdString();
}

QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    environment.remove("QT_QPA_PLATFORM");
    return environment;
}

Ended run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(withoutDisplay());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    Ended result;
    EXPECT_TRUE(process.waitForFinished(120000)) << program.toStdString();
    result.code = process.exitCode();
    result.crashed = process.exitStatus() != QProcess::NormalExit;
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.errors = QString::fromUtf8(process.readAllStandardError());
    return result;
}

Ended kelrecord(const QStringList &arguments) { return run(KELRECORD, arguments); }
Ended kelreplay(const QStringList &arguments) { return run(KELREPLAY, arguments); }

/// The value at a path of keys and indices, such as "objects.0.type".
QJsonValue at(QJsonValue value, const char *path)
{
    for (const QString &step : QString::fromLatin1(path).split('.'))
        value = value.isArray() ? value.toArray().at(step.toInt()) : value.toObject().value(step);
    return value;
}

QJsonObject parsed(const QString &json) { return QJsonDocument::fromJson(json.toUtf8()).object(); }

/// A command line of the shell, with the programs in $RECORD and $REPLAY.
Ended shell(const QString &command)
{
    return run("/bin/sh",
               {"-c", QStringLiteral("RECORD='%1' REPLAY='%2'; %3").arg(KELRECORD, KELREPLAY, command)});
}

} // namespace

/// A short video: a still, grained background, over which a bright square, 24 pixels wide, moves from frame
/// 15 on.
class programsTest : public TemporaryFolder
{
protected:
    static constexpr int frameCount = 40;
    static constexpr int firstSquare = 15;

    void SetUp() override
    {
        makeVideo("video.avi", frameCount);
        ASSERT_TRUE(QFileInfo::exists("video.avi"));
    }

    static void makeVideo(const char *name, int frames)
    {
        cv::VideoWriter video(name, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10, {160, 120});
        ASSERT_TRUE(video.isOpened());
        cv::Mat background(120, 160, CV_8UC3);
        cv::theRNG().state = 7;
        cv::randu(background, 90, 110);
        for (int i = 0; i < frames; ++i) {
            cv::Mat frame = background.clone();
            if (i >= firstSquare)
                cv::rectangle(frame, squareAt(i), cv::Scalar(240, 240, 240), cv::FILLED);
            video.write(frame);
        }
    }

    static cv::Rect squareAt(int frame) { return cv::Rect(4 + (frame - firstSquare) * 6 % 128, 40, 24, 24); }

    static QStringList recording(const QString &folder, const QStringList &more = {})
    {
        return QStringList{"video.avi",           "--out", folder,  "--min-area", "100",
                           "--min-dimension",     "8",     "--fps", "10",         "--start",
                           "2009-06-01T12:00:00Z"}
        + more;
    }

    /// The boxes of a frame, by kelreplay.
    static QList<cv::Rect> boxes(const QString &folder, int frame)
    {
        const Ended run = kelreplay({"frame", folder, QString::number(frame), "--json"});
        QList<cv::Rect> boxes;
        for (const QJsonValue object : at(parsed(run.output), "objects").toArray()) {
            const QJsonValue box = at(object, "properties.BoundingBox2D");
            boxes.append(cv::Rect(at(box, "x").toInt(), at(box, "y").toInt(), at(box, "width").toInt(),
                                  at(box, "height").toInt()));
        }
        return boxes;
    }
};

TEST_F(programsTest, HelpShowsUsageExamplesAndExitCodes)
{
    for (const Ended &run : {kelrecord({"--help"}), kelreplay({"--help"})}) {
        EXPECT_EQ(run.code, 0) << run;
        EXPECT_TRUE(run.output.startsWith("Usage: kelre")) << run;
        EXPECT_TRUE(run.output.contains("Examples:\n")) << run;
        EXPECT_TRUE(run.output.contains("Exit codes:\n")) << run;
        EXPECT_TRUE(run.errors.isEmpty()) << run;
    }
}

TEST_F(programsTest, ARunIsRecordedWithTheBoxOfTheMovingSquare)
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

TEST_F(programsTest, TheRecordingIsTheSameBytesEveryTime)
{
    ASSERT_EQ(kelrecord(recording("a")).code, 0);
    ASSERT_EQ(kelrecord(recording("b")).code, 0);
    EXPECT_EQ(content("a/dataflow.xml"), content("b/dataflow.xml"));
    EXPECT_EQ(content("a/dataflow.dat"), content("b/dataflow.dat"));
    EXPECT_FALSE(content("a/dataflow.dat").isEmpty());
}

TEST_F(programsTest, EveryBoxIsReadBackByTheLibraryAsKelreplayShowsIt)
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

TEST_F(programsTest, BlobsHonourTheMinimums)
{
    ASSERT_EQ(kelrecord(recording("run", {"--min-area", "1", "--min-dimension", "1"})).code, 0);
    ASSERT_EQ(kelrecord({"video.avi", "--out", "none"}).code, 0); // the stage's own: 2000 and 50
    EXPECT_FALSE(content("run/dataflow.dat").isEmpty());
    EXPECT_TRUE(content("none/dataflow.dat").isEmpty());
}

TEST_F(programsTest, AFolderThatHoldsARecordingIsRefused)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    const QByteArray before = content("run/dataflow.xml");
    const Ended refused = kelrecord(recording("run"));
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.oneLine()) << refused;
    EXPECT_TRUE(refused.errors.contains("--append")) << refused;
    EXPECT_EQ(content("run/dataflow.xml"), before);
}

TEST_F(programsTest, OverwriteReplacesTheRecording)
{
    ASSERT_EQ(kelrecord(recording("run")).code, 0);
    ASSERT_EQ(kelrecord(recording("run", {"--overwrite", "--max-frames", "3"})).code, 0);
    EXPECT_TRUE(kelreplay({"verify", "run"}).output.startsWith("complete: 3 frames"));

    EXPECT_EQ(kelrecord(recording("run", {"--overwrite", "--render", "video.avi/x"})).code, 1);
    EXPECT_TRUE(kelreplay({"verify", "run"}).output.startsWith("complete: 3 frames"))
        << "a call that fails replaces nothing";
}

TEST_F(programsTest, AppendGivesWhatAnUninterruptedRunGives)
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

TEST_F(programsTest, WhatAnInterruptedRunLeftIsAcceptedByVerifyAndTrimmedByAppend)
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

TEST_F(programsTest, AppendBeginsARecordingThatWasKilledBeforeItsFirstFrame)
{
    ASSERT_EQ(kelrecord(recording("whole", {"--max-frames", "5"})).code, 0);
    QDir().mkdir("run");
    write("run/dataflow.dat", QByteArray(7, 'x'));
    EXPECT_EQ(kelreplay({"verify", "run"}).code, 0);
    ASSERT_EQ(kelrecord(recording("run", {"--append", "--max-frames", "5"})).code, 0);
    EXPECT_EQ(content("run/dataflow.xml"), content("whole/dataflow.xml"));
    EXPECT_EQ(content("run/dataflow.dat"), content("whole/dataflow.dat"));
}

TEST_F(programsTest, VerifySaysWhereTheFilesDoNotAgree)
{
    ASSERT_EQ(kelrecord(recording("run")).code, 0);
    const QByteArray records = content("run/dataflow.dat");
    const QByteArray document = content("run/dataflow.xml");

    write("run/dataflow.dat", records.left(records.size() - 10));
    Ended verify = kelreplay({"verify", "run"});
    EXPECT_EQ(verify.code, 1);
    EXPECT_TRUE(verify.oneLine()) << verify;
    EXPECT_TRUE(verify.errors.contains("of frame 39 (line ")) << verify;
    EXPECT_TRUE(verify.errors.contains("71 bytes of another")) << verify;
    EXPECT_EQ(kelrecord(recording("run", {"--append"})).code, 1);

    const kelDataFlowRecord image{"kelDataImage", {}};
    write("run/dataflow.dat", records.left(81) + image.encoded() + records.mid(162));
    verify = kelreplay({"verify", "run"});
    EXPECT_EQ(verify.code, 1);
    EXPECT_TRUE(verify.errors.contains("record 1 (byte 81 of run/dataflow.dat) is a \"kelDataImage\""))
        << verify;

    write("run/dataflow.dat", records);
    write("run/dataflow.xml", document.left(document.size() / 2));
    verify = kelreplay({"verify", "run"});
    EXPECT_EQ(verify.code, 1);
    EXPECT_TRUE(verify.oneLine()) << verify;
    EXPECT_TRUE(verify.errors.contains("cannot be parsed")) << verify;
}

TEST_F(programsTest, KillingARunAtAnyMomentLeavesACompleteRecordingThatAppendFinishes)
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

TEST_F(programsTest, CtrlCEndsCleanly)
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

TEST_F(programsTest, AFullDiskIsOneLineAndLosesNoFrameBeforeIt)
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

TEST_F(programsTest, BadInputIsOneLineAndACode)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    write("text.txt", "no video at all\n");
    write("empty.avi", "");
    write("other.xml", "<Other/>");
    QDir().mkdir("nothing");
    const std::vector<std::pair<QStringList, int>> records{
        {{}, 2},
        {{"video.avi"}, 2},
        {{"video.avi", "--out"}, 2},
        {{"video.avi", "other.avi", "--out", "x"}, 2},
        {{"video.avi", "--out", "x", "--unknown"}, 2},
        {{"video.avi", "--out", "x", "--fps", "0"}, 2},
        {{"video.avi", "--out", "x", "--fps", "nan"}, 2},
        {{"video.avi", "--out", "x", "--start", "yesterday"}, 2},
        {{"video.avi", "--out", "x", "--max-frames", "0"}, 2},
        {{"video.avi", "--out", "x", "--render-every", "0"}, 2},
        {{"video.avi", "--out", "x", "--min-area", "-1"}, 2},
        {{"video.avi", "--out", "x", "--append", "--overwrite"}, 2},
        {{"video.avi", "--out", "x", "--view", "other"}, 2},
        {{"video.avi", "--out", "x", "--view", ""}, 2},
        {{"video.avi", "--out", "x", "--keys", "I"}, 2},
        {{"video.avi", "--out", "x", "--view", "plain", "--keys", "I"}, 2},
        {{"video.avi", "--out", "x", "--view", "rgbd", "--keys", "IQ"}, 2},
        {{"video.avi", "--out", "x", "--view", "rgbd", "--mask"}, 2},
        {{"video.avi", "--out", "x", "--view", "rgbd", "--context", "other.xml"}, 2},
        {{"missing.avi", "--out", "x"}, 1},
        {{"text.txt", "--out", "x"}, 1},
        {{"empty.avi", "--out", "x"}, 1},
        {{"nothing", "--out", "x"}, 1},
        {{"4711", "--out", "x"}, 1},
        {{"video.avi", "--out", "text.txt"}, 1},
        {{"video.avi", "--out", "text.txt/x"}, 1},
        {{"video.avi", "--out", "x", "--calibration", "missing.yml"}, 1},
        {{"video.avi", "--out", "x", "--calibration", "text.txt"}, 1},
        {{"video.avi", "--out", "x", "--calibration", "other.xml"}, 1},
        {{"video.avi", "--out", "y", "--render", "text.txt"}, 1},
    };
    for (const auto &[arguments, code] : records) {
        const Ended run = kelrecord(arguments);
        EXPECT_EQ(run.code, code) << arguments.join(' ').toStdString() << '\n' << run;
        EXPECT_FALSE(run.crashed);
        EXPECT_TRUE(run.oneLine()) << arguments.join(' ').toStdString() << '\n' << run;
    }
    EXPECT_FALSE(QFileInfo::exists("x")) << "nothing is made for a call that fails";

    const std::vector<std::pair<QStringList, int>> replays{
        {{}, 2},
        {{"dance", "run"}, 2},
        {{"info"}, 2},
        {{"info", "run", "more"}, 2},
        {{"frame", "run"}, 2},
        {{"frame", "run", "first"}, 2},
        {{"render", "run", "1", "x.png", "--view", "other"}, 2},
        {{"render", "run", "1", "x.png", "--keys", "I"}, 2},
        {{"render", "run", "1", "x.png", "--view", "rgbd", "--keys", "I?"}, 2},
        {{"render", "run", "1", "x.png", "--view", "rgbd", "--context", "other.xml"}, 2},
        {{"render", "run", "1", "x.png", "--view", "rgbd", "--calibration", "text.txt"}, 1},
        {{"render", "run", "1", "x.png", "--view", "rgbd", "--video", "text.txt"}, 1},
        {{"info", "missing"}, 1},
        {{"info", "nothing"}, 1},
        {{"info", "text.txt"}, 1},
        {{"info", "other.xml"}, 1},
        {{"frame", "run", "3"}, 1},
        {{"show", "run"}, 1},
        {{"render", "run", "1", "missing/x.png"}, 1},
        {{"render", "run", "1", "x.png", "--video", "text.txt"}, 1},
        {{"render", "run", "7", "x.png"}, 1},
    };
    for (const auto &[arguments, code] : replays) {
        const Ended run = kelreplay(arguments);
        EXPECT_EQ(run.code, code) << arguments.join(' ').toStdString() << '\n' << run;
        EXPECT_FALSE(run.crashed);
        EXPECT_TRUE(run.oneLine()) << arguments.join(' ').toStdString() << '\n' << run;
    }
    EXPECT_FALSE(QFileInfo::exists("x.png"));
}

TEST_F(programsTest, OutputThatCannotBeWrittenIsAFailure)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    const Ended run = shell("$REPLAY info run > /dev/full");
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.oneLine()) << run;
}

TEST_F(programsTest, AClosedStandardInputDoesNotMatter)
{
    const Ended run = shell("$RECORD video.avi --out run --max-frames 3 --quiet <&-");
    EXPECT_EQ(run.code, 0) << run;
    EXPECT_TRUE(run.output.isEmpty()) << run;
    EXPECT_TRUE(run.errors.isEmpty()) << run;
}

TEST_F(programsTest, AMissingDisplayIsSaidInOneLineAndTheRunIsRecorded)
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

TEST_F(programsTest, RenderedFramesShowThePictureAndTheBoxes)
{
    ASSERT_EQ(kelrecord(recording("run", {"--render", "pictures", "--render-every", "10"})).code, 0);
    EXPECT_EQ(QDir("pictures").entryList(QDir::Files),
              (QStringList{"frame_000000.png", "frame_000010.png", "frame_000020.png", "frame_000030.png"}));
    ASSERT_EQ(kelreplay({"render", "run", "20", "replayed.png", "--video", "video.avi"}).code, 0);
    ASSERT_EQ(kelreplay({"render", "run", "20", "alone.png"}).code, 0);
    const cv::Mat live = cv::imread("pictures/frame_000020.png");
    const cv::Mat replayed = cv::imread("replayed.png");
    ASSERT_EQ(live.size(), cv::Size(160, 120));
    EXPECT_EQ(cv::norm(live, replayed, cv::NORM_INF), 0) << "replay shows what was recorded";

    const cv::Vec3b magenta(255, 0, 255);
    const QList<cv::Rect> found = boxes("run", 20);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(replayed.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2), magenta);
    const cv::Mat alone = cv::imread("alone.png");
    EXPECT_EQ(alone.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2), magenta);
    EXPECT_EQ(alone.at<cv::Vec3b>(0, 0), cv::Vec3b(0, 0, 0));
}

TEST_F(programsTest, MaskPaintsTheForegroundBlack)
{
    ASSERT_EQ(kelrecord(recording("run", {"--render", "masked", "--mask"})).code, 0);
    const cv::Mat picture = cv::imread("masked/frame_000020.png");
    const cv::Rect square = squareAt(20);
    EXPECT_EQ(picture.at<cv::Vec3b>(square.y + 12, square.x + 12), cv::Vec3b(0, 0, 0));
}

TEST_F(programsTest, RenderMakesAVideo)
{
    ASSERT_EQ(kelrecord(recording("run", {"--render", "out/run.avi"})).code, 0);
    cv::VideoCapture video("out/run.avi");
    ASSERT_TRUE(video.isOpened());
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_COUNT), frameCount);
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_WIDTH), 160);
}

TEST_F(programsTest, ACalibrationAddsFootPointsToTheRecords)
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

TEST_F(programsTest, ABlobAboveTheHorizonStandsNowhere)
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

TEST_F(programsTest, DrawnFramesShowTheGroundGridAndTheContext)
{
    const QString data = QStringLiteral(KEL_SOURCE_DIR "/examples/data/");
    const QStringList calibration{"--calibration", data + "vtest_camera.yml"};
    const QStringList context{"--context", data + "vtest_context.yml"};
    {
        cv::VideoWriter video("street.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 7, {768, 576});
        for (int i = 0; i < 2; ++i)
            video.write(cv::Mat(576, 768, CV_8UC3, cv::Scalar(90, 90, 90)));
    }
    ASSERT_EQ(
        kelrecord(QStringList{"street.avi", "--out", "run", "--render", "scene"} + calibration + context)
            .code,
        0);
    ASSERT_EQ(kelrecord(QStringList{"street.avi", "--out", "plain", "--render", "plain"}).code, 0);
    const cv::Mat scene = cv::imread("scene/frame_000000.png");
    const cv::Mat plain = cv::imread("plain/frame_000000.png");
    ASSERT_EQ(scene.size(), plain.size());
    // In the middle of a zone of the context, the picture is redder than before.
    kelAbstractDataCalibration camera;
    ASSERT_TRUE(camera.read(data + "vtest_camera.yml"));
    cv::FileStorage file((data + "vtest_context.yml").toStdString(), cv::FileStorage::READ);
    const cv::FileNode zone = file["contextList"][0];
    cv::Point3d middle;
    for (const cv::FileNode point : zone["points"])
        middle += cv::Point3d(double(point["x"]), double(point["y"]), double(point["z"]))
            / double(zone["points"].size());
    const cv::Point2d at = camera.worldToImage(middle);
    const cv::Rect around(cvRound(at.x) - 12, cvRound(at.y) + 6, 24, 8); // beside the label
    EXPECT_GT(cv::mean(scene(around))[2], cv::mean(plain(around))[2] + 30);
    // The grid lies on the ground alone: nothing above the horizon, a line somewhere in each part below it.
    const auto changed = [&](const cv::Rect &part) {
        return cv::norm(scene(part), plain(part), cv::NORM_INF) > 0;
    };
    EXPECT_FALSE(changed({600, 0, 168, 40}));
    for (int x = 0; x < 768; x += 192)
        EXPECT_TRUE(changed({x, 400, 192, 140})) << x;

    ASSERT_EQ(kelreplay(QStringList{"render", "run", "0", "replayed.png", "--video", "street.avi"}
                        + calibration + context)
                  .code,
              0);
    EXPECT_EQ(cv::norm(cv::imread("replayed.png"), scene, cv::NORM_INF), 0);

    const Ended alone = kelreplay(QStringList{"render", "run", "0", "x.png"} + context);
    EXPECT_EQ(alone.code, 2) << alone;
    EXPECT_TRUE(alone.oneLine()) << alone;
    const Ended bad =
        kelreplay(QStringList{"render", "run", "0", "x.png", "--context", "street.avi"} + calibration);
    EXPECT_EQ(bad.code, 1) << bad;
    EXPECT_TRUE(bad.oneLine()) << bad;
}

TEST_F(programsTest, TheOperatorsViewIsTheSameWhileRecordingAndFromTheRecording)
{
    const QStringList view{"--view", "rgbd", "--keys", "I"};
    ASSERT_EQ(kelrecord(recording("run", QStringList{"--render", "live"} + view)).code, 0);
    for (const int frame : {0, 16, 20, 39}) {
        const QString name = QStringLiteral("%1.png").arg(frame);
        const Ended render = kelreplay(
            QStringList{"render", "run", QString::number(frame), name, "--video", "video.avi"} + view);
        ASSERT_EQ(render.code, 0) << render;
        const cv::Mat live =
            cv::imread(QStringLiteral("live/frame_%1.png").arg(frame, 6, 10, QLatin1Char('0')).toStdString());
        const cv::Mat replayed = cv::imread(name.toStdString());
        ASSERT_EQ(live.size(), cv::Size(640, 120 + 480));
        EXPECT_EQ(cv::norm(live, replayed, cv::NORM_INF), 0) << frame;
    }
}

TEST_F(programsTest, TheOperatorsViewShowsActorsAndTheTimeline)
{
    ASSERT_EQ(kelrecord(recording("run")).code, 0);
    const auto drawn = [](const QString &frame, const QString &keys) {
        const Ended render = kelreplay(
            {"render", "run", frame, "drawn.png", "--video", "video.avi", "--view", "rgbd", "--keys", keys});
        EXPECT_EQ(render.code, 0) << render;
        return render.code == 0 ? cv::imread("drawn.png") : cv::Mat::zeros(600, 640, CV_8UC3);
    };
    const auto count = [](const cv::Mat &picture, const cv::Scalar &color) {
        cv::Mat found;
        cv::inRange(picture, color, color, found);
        return cv::countNonZero(found);
    };
    const cv::Scalar magenta(255, 0, 255), cyan(255, 255, 0);
    const QList<cv::Rect> found = boxes("run", 25);
    ASSERT_EQ(found.size(), 1);

    const cv::Mat boxAndWay = drawn("25", "e"); // without the text; the first actor's colour is magenta
    EXPECT_EQ(boxAndWay.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2), cv::Vec3b(255, 0, 255));
    const cv::Mat way = drawn("25", "EB");
    EXPECT_GT(way.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2)[1], 60);
    const int past = boxes("run", 20).front().x + boxes("run", 20).front().width / 2;
    EXPECT_GT(count(way(cv::Rect(past - 2, found[0].y + found[0].height - 4, 4, 8)), magenta), 4);
    EXPECT_EQ(count(drawn("25", "EBT").rowRange(0, 120), magenta), 0);
    EXPECT_GT(count(drawn("25", "EBTI").rowRange(0, 120), magenta), 0) << "the label";

    const cv::Rect timeline(0, 120, 640, 480);
    EXPECT_EQ(count(drawn("10", "E")(timeline), cyan), 0) << "nothing has been in view yet";
    const int bar = count(drawn("20", "E")(timeline), cyan);
    EXPECT_GT(bar, 0);
    EXPECT_EQ(count(boxAndWay(timeline), cyan), bar + 5 * 18) << "half a second more";
}

TEST_F(programsTest, AnAppendedRunGoesOnWithItsActors)
{
    const QStringList view{"--view", "rgbd", "--keys", "I", "--render"};
    ASSERT_EQ(kelrecord(recording("whole", view + QStringList{"a"})).code, 0);
    ASSERT_EQ(kelrecord(recording("parts", {"--max-frames", "23"})).code, 0);
    ASSERT_EQ(kelrecord(recording("parts", view + QStringList{"b", "--append"})).code, 0);
    EXPECT_EQ(QDir("b").entryList(QDir::Files).size(), frameCount - 23);
    EXPECT_EQ(content("b/frame_000030.png"), content("a/frame_000030.png"));
}

TEST_F(programsTest, TheOperatorsViewIsDrawnIntoAVideo)
{
    ASSERT_EQ(kelrecord(recording("run", {"--render", "run.avi", "--view", "rgbd"})).code, 0);
    cv::VideoCapture video("run.avi");
    ASSERT_TRUE(video.isOpened());
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_COUNT), frameCount);
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_HEIGHT), 600);
}

TEST_F(programsTest, TheOperatorsViewDrawsTheZonesByItself)
{
    const QString data = QStringLiteral(KEL_SOURCE_DIR "/examples/data/");
    const QStringList scene{"--calibration", data + "vtest_camera.yml", "--context",
                            data + "vtest_context.yml"};
    {
        cv::VideoWriter video("street.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 7, {768, 576});
        for (int i = 0; i < 2; ++i)
            video.write(cv::Mat(576, 768, CV_8UC3, cv::Scalar(90, 90, 90)));
    }
    ASSERT_EQ(kelrecord(QStringList{"street.avi", "--out", "run"} + scene).code, 0);
    const auto drawn = [&scene](const QString &keys) {
        const Ended render = kelreplay(QStringList{"render", "run", "0", "drawn.png", "--video", "street.avi",
                                                   "--view", "rgbd", "--keys", keys}
                                       + scene);
        EXPECT_EQ(render.code, 0) << render;
        return render.code == 0 ? cv::imread("drawn.png") : cv::Mat::zeros(1056, 768, CV_8UC3);
    };
    const cv::Mat without = drawn("E"), with = drawn("EZ");
    cv::Mat plain;
    cv::inRange(without.rowRange(0, 576), cv::Scalar(86, 86, 86), cv::Scalar(94, 94, 94), plain);
    EXPECT_EQ(cv::countNonZero(plain), 576 * 768) << "neither grid nor zones";
    kelAbstractDataCalibration camera;
    ASSERT_TRUE(camera.read(data + "vtest_camera.yml"));
    const cv::Point2d junction = camera.worldToImage({-8000, -7500, 0});
    const cv::Point pixel(cvRound(junction.x), cvRound(junction.y));
    EXPECT_GT(with.at<cv::Vec3b>(pixel)[2], without.at<cv::Vec3b>(pixel)[2] + 40);
}

TEST_F(programsTest, ProgressIsALineAtATimeWithoutATerminal)
{
    const Ended run = kelrecord(recording("run"));
    EXPECT_TRUE(run.errors.contains(QRegularExpression("frame 40 of 40, [0-9.]+ frames/s\\n$"))) << run;
    EXPECT_FALSE(run.errors.contains('\r'));
    EXPECT_TRUE(kelrecord(recording("other", {"--quiet"})).errors.isEmpty());
}

TEST_F(programsTest, CatPrintsEveryRecordOfAnyType)
{
    QDir().mkdir("run");
    const kelDataFlowRecord blob{"kelDataBlob", {{"BoundingBox2D", QRect(1, 2, 3, 4)}}};
    const kelDataFlowRecord actor{"kelDataActor",
                                  {{"name", "Ana \"A\"\n"},
                                   {"speed", 1.5},
                                   {"list", QVariantList{1, "two", QVariantMap{{"k", QPointF(1, 2)}}}},
                                   {"nothing", QVariant()}}};
    write("run/dataflow.dat", blob.encoded() + actor.encoded() + blob.encoded().left(20));
    const Ended run = kelreplay({"cat", "run"});
    EXPECT_EQ(run.code, 0) << run;
    const QStringList lines = run.output.split('\n');
    ASSERT_EQ(lines.size(), 3) << run;
    EXPECT_EQ(lines[0],
              "{\"offset\":0,\"properties\":{\"BoundingBox2D\":{\"height\":4,\"width\":3,\"x\":1,\"y\":2}},"
              "\"record\":0,"
              "\"type\":\"kelDataBlob\"}");
    const QJsonObject second = parsed(lines[1]);
    EXPECT_EQ(at(second, "type"), "kelDataActor");
    EXPECT_EQ(at(second, "offset").toInt(), 81);
    EXPECT_EQ(at(second, "properties.name"), "Ana \"A\"\n");
    EXPECT_EQ(at(second, "properties.list.2.k.x").toDouble(), 1);
    EXPECT_TRUE(at(second, "properties.nothing").isNull());
    EXPECT_TRUE(run.errors.contains("unfinished record of 20 bytes")) << run;
}

TEST_F(programsTest, DamagedRecordsNeverCrashAReplay)
{
    ASSERT_EQ(kelrecord(recording("run")).code, 0);
    const QByteArray records = content("run/dataflow.dat");
    std::mt19937 random(11);
    for (int i = 0; i < 40; ++i) {
        QByteArray damaged = records;
        for (int k = 0; k < 4; ++k)
            damaged[static_cast<int>(random() % static_cast<unsigned>(damaged.size()))] =
                static_cast<char>(random());
        write("run/dataflow.dat", damaged);
        for (const QString command : {"verify", "cat", "info"}) {
            const Ended run = kelreplay({command, "run"});
            EXPECT_FALSE(run.crashed) << run;
            EXPECT_TRUE(run.code == 0 || run.oneLine()) << run;
        }
    }
}

TEST_F(programsTest, ADocumentOfTheLibraryIsReadByItsPath)
{
    MessageCapture silence;
    OutputCapture output;
    kelAbstractProcessDataFlowWriter writer;
    writer.setFilePath(QFile("own name.xml"));
    CSynchronizer stamp;
    stamp.setFrameNumber(4000000000u);
    writer.setSynchronizer(stamp);
    QSharedPointer<kelDataBlob> blob(new kelDataBlob);
    blob->setBoundingBox2D_qt(QRect(10, 20, 30, 40));
    writer.setDataFlow({blob, QSharedPointer<kelDataImage>(new kelDataImage)});
    ASSERT_TRUE(writer.writeDataFlow());
    output.take();

    EXPECT_EQ(kelreplay({"verify", "own name.xml"}).code, 0);
    EXPECT_EQ(
        kelreplay({"frame", "own name.xml", "4000000000"}).output,
        "frame 4000000000, no time, 2 objects\n  kelDataBlob  BoundingBox2D: 10 20 30 40\n  kelDataImage\n");
}

TEST_F(programsTest, TwoRunsDoNotWriteIntoOneFolder)
{
    makeVideo("video.avi", 400);
    QProcess first;
    first.setStandardInputFile(QProcess::nullDevice());
    first.start(KELRECORD, recording("run"));
    while (first.state() != QProcess::NotRunning && !QFileInfo::exists("run/dataflow.xml"))
        first.waitForFinished(1);
    const Ended second = kelrecord(recording("run", {"--append"}));
    EXPECT_EQ(second.code, 1) << second;
    EXPECT_TRUE(second.errors.contains("another kelrecord is writing")) << second;
    first.kill();
    first.waitForFinished();
}
