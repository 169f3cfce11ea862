/// \file
/// Input that is wrong, damaged or made to harm: each ends with one line, a code and in time.

#include "integration/programs.h"
#include "support/ChildProcess.h"

#include <opencv2/imgcodecs.hpp>

#include <QRegularExpression>

#include <cstdio>
#include <random>
#include <tuple>

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

class hostileInputTest : public Programs
{ };

TEST_F(hostileInputTest, BadInputIsOneLineAndACode)
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
        {{"", "--out", "x"}, 2},
        {{"video.avi", "--out", ""}, 2},
        {{"video.avi", "--out", "x", "--fps", "1e-320"}, 2},
        {{"video.avi", "--out", "x", "--start", "9999-12-31T23:59:59-05:00"}, 2},
        {{"video.avi", "--out", "x", "--calibration", ""}, 2},
        {{"video.avi", "--out", "x", "--render", ""}, 2},
        {{"video.avi", "--out", "x", "--render", "video.avi"}, 2},
        {{"video.avi", "--out", "z", "--start", "9999-12-31T23:59:59.950Z", "--quiet"}, 1},
        {{"video.avi", "--out", "y", "--render", "a/b"}, 1},
        {{"video.avi", "--out", "y", "--render", "a/b.avi"}, 1},
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
        {{"info", ""}, 2},
        {{"render", "run", "1", ""}, 2},
        {{"render", "run", "1", "x.png", "--video", ""}, 2},
        {{"render", "run", "1", "a/b/x.png"}, 1},
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
    EXPECT_FALSE(QFileInfo::exists("a"));
}

TEST_F(hostileInputTest, DamagedRecordsNeverCrashAReplay)
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

TEST_F(hostileInputTest, AParserThatThrowsAnythingIsOneLine)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    write("damaged.yml", "%YAML:1.0\n---\na: { :y 1 }\n"); // no exception of OpenCV's own
    const QString camera = QStringLiteral(KEL_SOURCE_DIR "/examples/data/vtest_camera.yml");
    const QStringList render{"render", "run", "1", "x.png"};
    for (const Ended &run : {kelrecord(recording("x", {"--calibration", "damaged.yml"})),
                             kelreplay(render + QStringList{"--calibration", "damaged.yml"})})
        EXPECT_EQ(
            run.errors.section(": ", 1),
            "damaged.yml holds no calibration: it needs intrinsicMatrix (3x4) and extrinsicMatrix (4x4), "
            "both of doubles\n")
            << run;
    const QStringList context{"--calibration", camera, "--context", "damaged.yml"};
    for (const Ended &run : {kelrecord(recording("x") + context), kelreplay(render + context)})
        EXPECT_EQ(run.errors.section(": ", 1),
                  "damaged.yml holds no context: it needs a list of maps named contextList\n")
            << run;
    EXPECT_FALSE(QFileInfo::exists("x"));
}

TEST_F(hostileInputTest, AParserThatFindsNoEndIsEndedWithOneLine)
{
    write("endless.yml", "%YAML:1.\n -z\n\"  -\n");
    const Ended run = ::run(KELRECORD, recording("x", {"--calibration", "endless.yml"}), 60);
    EXPECT_EQ(run.code, 1) << run;
    EXPECT_TRUE(run.oneLine()) << run;
    EXPECT_TRUE(run.errors.startsWith("kelrecord: endless.yml holds no calibration: ")) << run;
    EXPECT_TRUE(run.errors.endsWith("and the parser finds no end in it\n")) << run;
}

TEST_F(hostileInputTest, APipeIsRefusedWhereverAFileIsRead)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    const QString camera = QStringLiteral(KEL_SOURCE_DIR "/examples/data/vtest_camera.yml");
    for (const char *folder : {"pipes", "document", "records"})
        QDir().mkdir(folder);
    for (const char *pipe : {"pipes/in", "pipes/out.avi", "document/dataflow.xml", "records/dataflow.dat"})
        ASSERT_EQ(mkfifo(pipe, 0600), 0);
    ASSERT_TRUE(QFile::link("pipes/in", "link"));

    const QStringList render{"render", "run", "1"};
    const std::vector<QStringList> calls{
        {KELRECORD, "pipes/in", "--out", "x"},
        {KELRECORD, "link", "--out", "x"},
        QStringList{KELRECORD} + recording("pipes/in"),
        QStringList{KELRECORD} + recording("document"),
        QStringList{KELRECORD} + recording("document", {"--append"}),
        QStringList{KELRECORD} + recording("document", {"--overwrite"}),
        QStringList{KELRECORD} + recording("records"),
        QStringList{KELRECORD} + recording("records", {"--append"}),
        QStringList{KELRECORD} + recording("records", {"--overwrite"}),
        QStringList{KELRECORD} + recording("x", {"--calibration", "pipes/in"}),
        QStringList{KELRECORD} + recording("x", {"--calibration", camera, "--context", "pipes/in"}),
        QStringList{KELRECORD} + recording("x", {"--render", "pipes/in"}),
        QStringList{KELRECORD} + recording("x", {"--render", "pipes/out.avi"}),
        {KELREPLAY, "info", "document"},
        {KELREPLAY, "info", "document/dataflow.xml"},
        {KELREPLAY, "verify", "records"},
        {KELREPLAY, "cat", "pipes/in"},
        QStringList{KELREPLAY} + render + QStringList{"pipes/in"},
        QStringList{KELREPLAY} + render + QStringList{"x.png", "--video", "pipes/in"},
        QStringList{KELREPLAY} + render + QStringList{"x.png", "--calibration", "pipes/in"},
        QStringList{KELREPLAY} + render + QStringList{"x.png", "--calibration", camera, "--context", "link"},
    };
    for (const QStringList &call : calls) {
        const Ended ended = ::run(call.first(), call.mid(1), 30);
        EXPECT_EQ(ended.code, 1) << call.join(' ').toStdString() << '\n' << ended;
        EXPECT_TRUE(ended.oneLine()) << call.join(' ').toStdString() << '\n' << ended;
        EXPECT_TRUE(ended.errors.contains(QRegularExpression("pipe or a device|not a folder|cannot be made")))
            << call.join(' ').toStdString() << '\n'
            << ended;
    }
    EXPECT_FALSE(QFileInfo::exists("x"));
    for (const char *pipe : {"pipes/in", "pipes/out.avi", "document/dataflow.xml", "records/dataflow.dat"})
        EXPECT_FALSE(QFileInfo(pipe).isFile()) << pipe << " was replaced";
}

TEST_F(hostileInputTest, SymbolicLinksToFilesAreFollowed)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    ASSERT_TRUE(QFile::link("video.avi", "linked.avi"));
    QDir().mkdir("linked");
    ASSERT_TRUE(QFile::link("../run/dataflow.xml", "linked/dataflow.xml"));
    ASSERT_TRUE(QFile::link("../run/dataflow.dat", "linked/dataflow.dat"));
    EXPECT_EQ(kelreplay({"render", "linked", "1", "x.png", "--video", "linked.avi"}).code, 0);
    EXPECT_EQ(kelrecord(recording("linked", {"--append"})).code, 0);
    EXPECT_TRUE(kelreplay({"verify", "run"}).output.startsWith("complete: 40 frames"));
}

/// Numbered pictures, one of which is a pipe: whoever opens it waits for ever.
class hangingVideoTest : public hostileInputTest
{
protected:
    static constexpr int pictures = 400;

    static QString pictureName(int i)
    {
        return QStringLiteral("picture_%1.png").arg(i, 3, 10, QLatin1Char('0'));
    }

    static void makePictures()
    {
        for (int i = 0; i < pictures; ++i)
            cv::imwrite(pictureName(i).toStdString(), cv::Mat(32, 32, CV_8UC3, cv::Scalar::all(i % 256)));
    }

    static void replaceByPipe(int i)
    {
        ASSERT_EQ(mkfifo("pipe", 0600), 0);
        ASSERT_EQ(std::rename("pipe", pictureName(i).toLatin1().constData()), 0);
    }

    static void send(const QProcess &process, int signal)
    {
        ASSERT_GT(process.processId(), 0) << "it has ended already";
        ::kill(static_cast<pid_t>(process.processId()), signal);
    }
};

TEST_F(hangingVideoTest, BeforeTheFirstFrameOneSignalEndsAProgram)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    makePictures();
    replaceByPipe(0);
    const QStringList record{"picture_%03d.png", "--out", "x"};
    const QStringList render{"render", "run", "1", "x.png", "--video", "picture_%03d.png"};
    for (const auto &[program, arguments, signal] :
         {std::tuple(QString(KELRECORD), record, SIGINT), std::tuple(QString(KELRECORD), record, SIGTERM),
          std::tuple(QString(KELREPLAY), render, SIGINT)}) {
        QProcess process;
        start(process, program, arguments);
        ASSERT_FALSE(process.waitForFinished(2000)) << "the video should keep it waiting";
        send(process, signal);
        const Ended run = ended(process, 30);
        EXPECT_TRUE(run.crashed) << run;
        EXPECT_EQ(run.code, signal) << run;
    }
    EXPECT_FALSE(QFileInfo::exists("x"));
}

TEST_F(hangingVideoTest, ASecondSignalEndsARunThatHangs)
{
    makePictures();
    QProcess process;
    start(process, KELRECORD, {"picture_%03d.png", "--out", "run", "--quiet"});
    while (process.state() == QProcess::Running && !QFileInfo::exists("run/dataflow.xml"))
        process.waitForFinished(1);
    const int hanging = pictures - 50;
    replaceByPipe(hanging);
    const auto frames = [] { return content("run/dataflow.xml").count("<Frame "); };
    const int ahead = 40; // the decoder may open some pictures before they are asked for
    for (int i = 0; i < 600 && frames() < hanging - ahead; ++i)
        ASSERT_FALSE(process.waitForFinished(100)) << "the video should keep it waiting";
    ASSERT_FALSE(process.waitForFinished(3000)) << "the video should keep it waiting";
    const auto before = frames();
    send(process, SIGINT);
    ASSERT_FALSE(process.waitForFinished(500)) << "the first signal is for the loop";
    send(process, SIGTERM);
    const Ended run = ended(process, 30);
    EXPECT_TRUE(run.crashed) << run;
    EXPECT_EQ(run.code, SIGTERM) << run;
    EXPECT_EQ(frames(), before);
    EXPECT_EQ(kelreplay({"verify", "run"}).code, 0) << "nothing is lost";
}

TEST_F(hostileInputTest, RecordsBeyondWhatCanBeReadAreOneLine)
{
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "3"})).code, 0);
    write("run/dataflow.dat", "");
    if (truncate("run/dataflow.dat", 3LL << 30) != 0)
        GTEST_SKIP() << "the disk takes no sparse file of 3 GiB";
    const Ended run = kelreplay({"verify", "run"});
    EXPECT_EQ(run.code, 1) << run;
    EXPECT_TRUE(
        run.errors.contains("run/dataflow.dat has 3221225472 bytes, and records are read up to 2 GiB"))
        << run;
}

TEST_F(hostileInputTest, FilesThatVanishWhileTheyAreRecordedEndTheRun)
{
    makeVideo("video.avi", 400);
    for (const QString name : {"dataflow.xml", "dataflow.dat"}) {
        const QString folder = "without " + name;
        QProcess process;
        start(process, KELRECORD, recording(folder, {"--quiet"}));
        while (process.state() == QProcess::Running && QFileInfo(folder + "/dataflow.dat").size() == 0)
            process.waitForFinished(1);
        for (; process.state() == QProcess::Running; process.waitForFinished(3))
            QFile::remove(folder + '/' + name);
        const Ended run = ended(process, 60);
        EXPECT_EQ(run.code, 1) << run;
        EXPECT_TRUE(run.oneLine()) << run;
        EXPECT_TRUE(run.errors.contains(name + ": ")) << run;
        EXPECT_TRUE(run.errors.contains("leave the files alone while they are recorded")) << run;
    }
}

TEST_F(hostileInputTest, RecordsThatCannotBeWrittenEndTheRunBeforeTheDocumentNamesThem)
{
    if (!inChild([] { return becomeNobody() && access(KELRECORD, X_OK) == 0; }))
        GTEST_SKIP() << "the build folder is not open to a user without rights";
    ASSERT_EQ(kelrecord(recording("whole")).code, 0);
    ASSERT_EQ(kelrecord(recording("run", {"--max-frames", "23"})).code, 0);
    ASSERT_TRUE(inChild([&] {
        if (chmod(".", 0777) != 0 || chmod("run", 0777) != 0 || chmod("run/dataflow.xml", 0666) != 0
            || chmod("run/dataflow.dat", 0444) != 0 || !becomeNobody())
            return false;
        const Ended refused = kelrecord(recording("run", {"--append"}));
        return refused.code == 1 && refused.oneLine()
            && refused.errors.contains("dataflow.dat cannot be written; check the permissions of ");
    }));
    ASSERT_EQ(chmod("run/dataflow.dat", 0644), 0);
    ASSERT_EQ(kelrecord(recording("run", {"--append"})).code, 0);
    EXPECT_EQ(content("run/dataflow.xml"), content("whole/dataflow.xml"));
    EXPECT_EQ(content("run/dataflow.dat"), content("whole/dataflow.dat"));
}
