#include <kelCore/recording/kelRecording.h>

#include "recording/RunScripts.h"
#include "support/TemporaryFolder.h"

#include <QDir>
#include <QDomDocument>

#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class kelRecordingTest : public TemporaryFolder
{
protected:
    static void record(const std::vector<MadeFrame> &frames, const QString &folder = QStringLiteral("run"))
    {
        kelRecordingOptions options;
        options.mode = kelRecordingOptions::Mode::Append;
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(folder, options)));
        for (const MadeFrame &frame : frames)
            ASSERT_TRUE(done(writer.write(frame.stamp, frame.objects)));
    }

    static std::vector<MadeFrame> plainFrames(int count)
    {
        std::vector<MadeFrame> frames;
        for (int i = 0; i < count; ++i)
            frames.push_back(plainFrame(i, i % 4));
        return frames;
    }

    /// The recording gives the frames back, with everything that was recorded.
    static void expectFrames(const kelRecording &run, const std::vector<MadeFrame> &frames)
    {
        ASSERT_EQ(run.frameCount(), qint64(frames.size()));
        for (size_t i = 0; i < frames.size(); ++i) {
            const kelRecordedFrame frame = run.frame(qint64(i));
            EXPECT_EQ(frame.number, frames[i].stamp.getFrameNumber());
            EXPECT_EQ(frame.time, frames[i].stamp.getDateTime());
            Objects there;
            for (const auto &object : frames[i].objects)
                if (object)
                    there.append(object);
            const std::vector<kelDataFlowRecord> records = run.records(frame);
            ASSERT_EQ(records.size(), size_t(there.size())) << i;
            for (int k = 0; k < there.size(); ++k) {
                EXPECT_EQ(records[size_t(k)].dataType, there[k]->identifier());
                EXPECT_EQ(records[size_t(k)].properties.keys(), there[k]->getMap().keys());
            }
        }
    }

    void flip(const QString &name, int byte, int bit)
    {
        QByteArray bytes = content(name);
        bytes[byte] = static_cast<char>(bytes.at(byte) ^ 1 << bit);
        write(name, bytes);
    }
};

TEST_F(kelRecordingTest, GivesBackWhatWasRecordedWithAndWithoutAnIndex)
{
    for (unsigned seed = 0; seed < 100; ++seed) {
        FrameMaker maker(seed);
        std::vector<MadeFrame> frames;
        for (int i = maker.below(30); i >= 0; --i)
            frames.push_back(maker.frame());
        ASSERT_NO_FATAL_FAILURE(record(frames));
        for (int pass = 0; pass < 2; ++pass) {
            kelRecording run;
            ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
            ASSERT_NO_FATAL_FAILURE(expectFrames(run, frames)) << seed;
            EXPECT_TRUE(done(run.verify())) << seed;
            QFile::remove(QStringLiteral("run/dataflow.idx"));
        }
        QDir(QStringLiteral("run")).removeRecursively();
    }
}

TEST_F(kelRecordingTest, UsesAnIndexAsFarAsItGoes)
{
    const std::vector<MadeFrame> frames = plainFrames(300);
    ASSERT_NO_FATAL_FAILURE(record(frames));
    const QByteArray index = content(QStringLiteral("run/dataflow.idx"));
    for (const int rows : {0, 1, 2, 150, 299, 300}) {
        write(QStringLiteral("run/dataflow.idx"), index.left((rows + 1) * 64));
        kelRecording run;
        ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
        ASSERT_NO_FATAL_FAILURE(expectFrames(run, frames));
        EXPECT_TRUE(done(run.verify())) << rows;
    }
}

TEST_F(kelRecordingTest, AnIndexOfAnotherRunIsNotUsed)
{
    ASSERT_NO_FATAL_FAILURE(record(plainFrames(20), QStringLiteral("other")));
    std::vector<MadeFrame> frames = plainFrames(40);
    std::reverse(frames.begin(), frames.end());
    ASSERT_NO_FATAL_FAILURE(record(frames));
    ASSERT_TRUE(QFile::remove(QStringLiteral("run/dataflow.idx")));
    ASSERT_TRUE(QFile::copy(QStringLiteral("other/dataflow.idx"), QStringLiteral("run/dataflow.idx")));
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    expectFrames(run, frames);
}

TEST_F(kelRecordingTest, FindsFramesByNumberAndTime)
{
    ASSERT_NO_FATAL_FAILURE(record(plainFrames(600)));
    ASSERT_NO_FATAL_FAILURE(record({plainFrame(7, 2)}));
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    EXPECT_EQ(run.framesNumbered(7), (std::vector<qint64>{7, 600}));
    EXPECT_TRUE(run.framesNumbered(9999).empty());
    const QDateTime start = plainFrame(0).stamp.getDateTime();
    EXPECT_EQ(run.frameAt(start.addMSecs(-1)), -1);
    EXPECT_EQ(run.frameAt(start), 0);
    EXPECT_EQ(run.frameAt(start.addMSecs(40 * 123 + 39)), 123);
}

TEST_F(kelRecordingTest, EverySingleFlippedBitIsFoundWhereThereIsAnIndex)
{
    ASSERT_NO_FATAL_FAILURE(record(plainFrames(4)));
    for (const char *name : {"run/dataflow.xml", "run/dataflow.dat", "run/dataflow.idx"}) {
        const QString file = QString::fromLatin1(name);
        const QByteArray whole = content(file);
        for (int byte = 0; byte < whole.size(); ++byte) {
            const int bit = byte % 8;
            flip(file, byte, bit);
            kelRecording run;
            EXPECT_FALSE(run.open(QStringLiteral("run")) && run.verify())
                << name << " " << byte << " " << bit;
            write(file, whole);
        }
    }
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    EXPECT_TRUE(done(run.verify()));
}

TEST_F(kelRecordingTest, SwappedRecordsAreFoundWithoutAnIndex)
{
    ASSERT_NO_FATAL_FAILURE(record({plainFrame(0, 2)}));
    QByteArray records = content(QStringLiteral("run/dataflow.dat"));
    const int half = records.size() / 2;
    write(QStringLiteral("run/dataflow.dat"), records.mid(half) + records.left(half));
    QFile::remove(QStringLiteral("run/dataflow.idx"));
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    const kelResult wrong = run.verify();
    ASSERT_FALSE(wrong);
    EXPECT_TRUE(wrong.line().contains(QStringLiteral("frame 0"))) << wrong.line().toStdString();
}

TEST_F(kelRecordingTest, ReadsTheFramesBeforeATear)
{
    const std::vector<MadeFrame> frames = plainFrames(50);
    ASSERT_NO_FATAL_FAILURE(record(frames));
    const QByteArray document = content(QStringLiteral("run/dataflow.xml"));
    const QByteArray index = content(QStringLiteral("run/dataflow.idx"));
    for (int cut = document.size() - 1; cut > document.size() - 2000; cut -= 37) {
        write(QStringLiteral("run/dataflow.xml"), document.left(cut) + QByteArray(cut % 100, '\0'));
        for (const bool indexed : {true, false}) {
            if (!indexed)
                QFile::remove(QStringLiteral("run/dataflow.idx"));
            kelRecording run;
            ASSERT_TRUE(done(run.open(QStringLiteral("run")))) << cut;
            ASSERT_LE(run.frameCount(), 50);
            ASSERT_GE(run.frameCount(), 40);
            EXPECT_FALSE(run.state());
            EXPECT_EQ(run.frame(39).number, 39u);
        }
        write(QStringLiteral("run/dataflow.idx"), index);
    }
}

TEST_F(kelRecordingTest, GoesOnBehindATear)
{
    const std::vector<MadeFrame> frames = plainFrames(50);
    ASSERT_NO_FATAL_FAILURE(record(frames));
    const QByteArray document = content(QStringLiteral("run/dataflow.xml"));
    write(QStringLiteral("run/dataflow.xml"), document.left(document.size() - 300));
    kelRecording torn;
    ASSERT_TRUE(done(torn.open(QStringLiteral("run"))));
    const auto left = static_cast<size_t>(torn.frameCount());
    ASSERT_LT(left, frames.size());
    ASSERT_NO_FATAL_FAILURE(record({frames.begin() + std::ptrdiff_t(left), frames.end()}));
    EXPECT_EQ(content(QStringLiteral("run/dataflow.xml")), document);
}

TEST_F(kelRecordingTest, ReadsADocumentOfAnotherForm)
{
    const std::vector<MadeFrame> frames = plainFrames(9);
    ASSERT_NO_FATAL_FAILURE(record(frames));
    write(QStringLiteral("run/dataflow.xml"),
          "<?xml version='1.0'?>\n" + content(QStringLiteral("run/dataflow.xml")).replace("\n", "\r\n  "));
    kelRecording run;
    ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
    expectFrames(run, frames);
    EXPECT_TRUE(done(run.verify()));
}

TEST_F(kelRecordingTest, RefusesWhatIsNoRecordingWithALineThatSaysWhy)
{
    kelRecording run;
    EXPECT_TRUE(run.open(QStringLiteral("nowhere")).line().contains(QStringLiteral("no such recording")));
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("empty")));
    EXPECT_TRUE(run.open(QStringLiteral("empty")).line().contains(QStringLiteral("holds no recording")));
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("page")));
    write(QStringLiteral("page/dataflow.xml"), "<html/>");
    EXPECT_TRUE(run.open(QStringLiteral("page")).line().contains(QStringLiteral("html")));
    write(QStringLiteral("page/dataflow.xml"), "no XML");
    EXPECT_TRUE(run.open(QStringLiteral("page")).line().contains(QStringLiteral("cannot be parsed")));
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("pipe")));
    ASSERT_EQ(mkfifo("pipe/dataflow.xml", 0600), 0);
    EXPECT_TRUE(run.open(QStringLiteral("pipe")).line().contains(QStringLiteral("no regular file")));
}

TEST_F(kelRecordingTest, ADocumentWithoutItsRecordsIsReadAndSaidToBeDamaged)
{
    ASSERT_NO_FATAL_FAILURE(record(plainFrames(9)));
    ASSERT_TRUE(QFile::remove(QStringLiteral("run/dataflow.dat")));
    for (const bool indexed : {true, false}) {
        if (!indexed)
            QFile::remove(QStringLiteral("run/dataflow.idx"));
        kelRecording run;
        ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
        EXPECT_EQ(run.frameCount(), 9);
        EXPECT_TRUE(run.records(run.frame(3)).empty());
        EXPECT_FALSE(run.state());
    }
}

TEST_F(kelRecordingTest, NeverSeesADocumentThatDoesNotParseWhileItIsRecorded)
{
    constexpr int frameCount = 20000;
    const pid_t recorder = fork();
    ASSERT_GE(recorder, 0);
    if (recorder == 0) {
        kelRecordingWriter writer;
        bool good = bool(writer.open(QStringLiteral("run")));
        for (int i = 0; good && i < frameCount; ++i)
            good = bool(writer.write(plainFrame(i, 2).stamp, plainFrame(i, 2).objects));
        good = good && writer.close();
        _exit(good ? 0 : 1);
    }
    qint64 seen = 0;
    int opened = 0, status = 0;
    bool running = true;
    while (running && !HasFailure()) {
        running = waitpid(recorder, &status, WNOHANG) == 0;
        if (!QFile::exists(QStringLiteral("run/dataflow.xml")))
            continue;
        // As our own reader does it, and as any other.
        kelRecording run;
        ASSERT_TRUE(done(run.open(QStringLiteral("run"))));
        ASSERT_TRUE(done(run.state()));
        ASSERT_GE(run.frameCount(), seen);
        seen = run.frameCount();
        if (seen > 0) {
            ASSERT_EQ(run.frame(seen - 1).number, quint32(seen - 1));
            ASSERT_EQ(run.records(run.frame(seen - 1)).size(), 2u);
        }
        const QByteArray text = content(QStringLiteral("run/dataflow.xml"));
        ASSERT_TRUE(text.endsWith("\n </Frame>\n</DataFlow>\n"));
        if (opened++ % 16 == 0) {
            QDomDocument nodes;
            ASSERT_TRUE(nodes.setContent(text));
        }
    }
    if (running)
        waitpid(recorder, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(seen, frameCount);
    EXPECT_GT(opened, 10);
}

} // namespace
