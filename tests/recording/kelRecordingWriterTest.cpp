#include <kelCore/recording/kelRecordingWriter.h>

#include "recording/RunScripts.h"
#include "support/TemporaryFolder.h"

#include <QDir>
#include <QThread>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Mode = kelRecordingOptions::Mode;

kelRecordingOptions in(Mode mode)
{
    kelRecordingOptions options;
    options.mode = mode;
    return options;
}

class kelRecordingWriterTest : public TemporaryFolder
{
protected:
    /// What the stage records of the frames, in `folder`.
    void recordStated(const QString &folder, const std::vector<MadeFrame> &frames)
    {
        ASSERT_TRUE(QDir().mkpath(folder));
        const QString before = QDir::currentPath();
        ASSERT_TRUE(QDir::setCurrent(folder));
        const auto writer = makeStatedWriter();
        for (const MadeFrame &frame : frames)
            writeStated(*writer, frame);
        ASSERT_TRUE(QDir::setCurrent(before));
    }

    void expectSameRecording(const QString &folder, const QString &other)
    {
        for (const char *name : {"/dataflow.xml", "/dataflow.dat"})
            ASSERT_EQ(content(folder + QLatin1String(name)), content(other + QLatin1String(name))) << name;
    }

    QStringList files(const QString &folder)
    {
        return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    const MessageCapture m_messages;
};

TEST_F(kelRecordingWriterTest, WritesTheBytesOfTheStageWhateverTheFrames)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        FrameMaker maker(seed);
        std::vector<MadeFrame> frames;
        for (int i = maker.below(9); i >= 0; --i)
            frames.push_back(maker.frame());
        recordStated(QStringLiteral("stage"), frames);
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("writer"))));
        for (const MadeFrame &frame : frames)
            ASSERT_TRUE(done(writer.write(frame.stamp, frame.objects))) << seed;
        ASSERT_TRUE(done(writer.close()));
        ASSERT_NO_FATAL_FAILURE(expectSameRecording(QStringLiteral("stage"), QStringLiteral("writer")))
            << seed;
        for (const char *folder : {"stage", "writer"})
            QDir(QLatin1String(folder)).removeRecursively();
    }
}

TEST_F(kelRecordingWriterTest, LeavesADocumentRecordsAndAnIndex)
{
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"))));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(done(writer.write(plainFrame(i).stamp, plainFrame(i).objects)));
    EXPECT_EQ(writer.frameCount(), 3);
    ASSERT_TRUE(done(writer.close()));
    EXPECT_EQ(files(QStringLiteral("run")),
              (QStringList{QStringLiteral("dataflow.dat"), QStringLiteral("dataflow.idx"),
                           QStringLiteral("dataflow.xml")}));
}

TEST_F(kelRecordingWriterTest, RefusesAFrameWithAValueThatCannotBeRecorded)
{
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"))));
    ASSERT_TRUE(done(writer.write(plainFrame(0).stamp, plainFrame(0).objects)));
    const QByteArray document = content(QStringLiteral("run/dataflow.xml"));
    const QByteArray records = content(QStringLiteral("run/dataflow.dat"));
    MadeFrame frame = plainFrame(1);
    QVariantMap map;
    map.insert(QStringLiteral("Thread"), QVariant::fromValue(static_cast<QThread *>(nullptr)));
    frame.objects.last()->setMap(map);
    const kelResult refused = writer.write(frame.stamp, frame.objects);
    EXPECT_FALSE(refused);
    EXPECT_TRUE(refused.line().contains(QStringLiteral("Thread"))) << refused.line().toStdString();
    EXPECT_EQ(content(QStringLiteral("run/dataflow.xml")), document);
    EXPECT_EQ(content(QStringLiteral("run/dataflow.dat")), records);
    EXPECT_TRUE(done(writer.write(plainFrame(2).stamp, plainFrame(2).objects)));
}

/// What somebody with an editor may do to a document between two frames: the same elements in the same order,
/// in other words and with other things between them.
void edit(int way, FrameMaker &maker)
{
    QFile file(QStringLiteral("dataflow.xml"));
    if (!file.exists() || !file.open(QIODevice::ReadWrite))
        return;
    QByteArray text = file.readAll();
    switch (way) {
    case 0:
        text.replace("<DataFlow>\n", "<DataFlow>\n <!-- seen -->\n");
        break;
    case 1:
        text.replace("</DataFlow>\n", "</DataFlow>");
        break;
    case 2:
        if (!text.startsWith("<?xml"))
            text.prepend("<?xml version=\"1.0\"?>\n");
        break;
    case 3: // the same size
        text.replace("/myfile/param.txt", QByteArray("/myfile/param.tx") + char('a' + maker.below(26)));
        break;
    case 4:
        text.replace(" <Frame", "<Frame");
        break;
    case 5:
        text.replace("<!-- seen -->", "");
        break;
    default:
        break; // touched
    }
    file.resize(0);
    file.seek(0);
    file.write(text);
}

TEST_F(kelRecordingWriterTest, GoesOnWithWhatAnEditorAndTheStageLeave)
{
    for (unsigned seed = 0; seed < 400; ++seed) {
        std::mt19937 script(seed * 7919);
        std::vector<int> steps;
        for (int i = 0; i < 14; ++i)
            steps.push_back(static_cast<int>(script() % 16));
        // The same steps twice: with the stage alone, and with the stage and the writer by turns.
        for (const QString &folder : {QStringLiteral("stage"), QStringLiteral("mixed")}) {
            const bool mixed = folder == QStringLiteral("mixed");
            FrameMaker maker(seed);
            ASSERT_TRUE(QDir().mkpath(folder));
            const QString before = QDir::currentPath();
            ASSERT_TRUE(QDir::setCurrent(folder));
            {
                const auto stage = makeStatedWriter();
                kelRecordingWriter writer;
                if (mixed) {
                    ASSERT_TRUE(done(writer.open(QStringLiteral("."))));
                }
                for (const int step : steps) {
                    if (step >= 10) {
                        edit(step - 10, maker);
                        continue;
                    }
                    const MadeFrame frame = maker.frame();
                    const auto written = mixed && step < 6
                        ? done(writer.write(frame.stamp, frame.objects))
                        : testing::AssertionResult(writeStated(*stage, frame));
                    ASSERT_TRUE(written)
                        << seed << " " << step << " "
                        << m_messages.lines().join(QLatin1Char('\n')).right(300).toStdString()
                        << content(QStringLiteral("dataflow.xml")).left(600).toStdString();
                }
            }
            ASSERT_TRUE(QDir::setCurrent(before));
        }
        ASSERT_NO_FATAL_FAILURE(expectSameRecording(QStringLiteral("stage"), QStringLiteral("mixed")))
            << seed;
        for (const char *folder : {"stage", "mixed"})
            QDir(QLatin1String(folder)).removeRecursively();
    }
}

TEST_F(kelRecordingWriterTest, AppendsToTheBytesOfOneRun)
{
    std::vector<MadeFrame> frames;
    for (int i = 0; i < 200; ++i)
        frames.push_back(plainFrame(i, i % 4));
    recordStated(QStringLiteral("stage"), frames);
    for (size_t begin = 0; begin < frames.size(); begin += 40) {
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("run"), in(Mode::Append))));
        EXPECT_EQ(writer.frameCount(), qint64(begin));
        for (size_t i = begin; i < begin + 40; ++i)
            ASSERT_TRUE(done(writer.write(frames[i].stamp, frames[i].objects)));
    }
    expectSameRecording(QStringLiteral("stage"), QStringLiteral("run"));
    EXPECT_EQ(QFileInfo(QStringLiteral("run/dataflow.idx")).size(), 64 * 201);
}

TEST_F(kelRecordingWriterTest, CutsOffWhatAKilledProcessLeftBehindTheLastFrame)
{
    recordStated(QStringLiteral("stage"), {plainFrame(0), plainFrame(1)});
    {
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("run"))));
        ASSERT_TRUE(done(writer.write(plainFrame(0).stamp, plainFrame(0).objects)));
    }
    QFile records(QStringLiteral("run/dataflow.dat"));
    ASSERT_TRUE(records.open(QIODevice::Append));
    records.write("half a record");
    records.close();
    write(QStringLiteral("run/.dataflow.xml.shadow"), "half a document");
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"), in(Mode::Append))));
    ASSERT_TRUE(done(writer.write(plainFrame(1).stamp, plainFrame(1).objects)));
    ASSERT_TRUE(done(writer.close()));
    expectSameRecording(QStringLiteral("stage"), QStringLiteral("run"));
    EXPECT_FALSE(QFile::exists(QStringLiteral("run/.dataflow.xml.shadow")));
}

TEST_F(kelRecordingWriterTest, SharesAFolderWithNobody)
{
    kelRecordingWriter first, second;
    ASSERT_TRUE(done(first.open(QStringLiteral("run"))));
    const kelResult refused = second.open(QStringLiteral("run"), in(Mode::Append));
    EXPECT_FALSE(refused);
    EXPECT_TRUE(refused.line().contains(QStringLiteral("another recorder")));
    ASSERT_TRUE(done(first.close()));
    EXPECT_TRUE(done(second.open(QStringLiteral("run"), in(Mode::Append))));
}

TEST_F(kelRecordingWriterTest, RecordsIntoSeveralFoldersAtOnce)
{
    recordStated(QStringLiteral("stage"), {plainFrame(0), plainFrame(1), plainFrame(2)});
    kelRecordingWriter writers[3];
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(done(writers[i].open(QStringLiteral("run%1").arg(i))));
    for (int frame = 0; frame < 3; ++frame)
        for (kelRecordingWriter &writer : writers)
            ASSERT_TRUE(done(writer.write(plainFrame(frame).stamp, plainFrame(frame).objects)));
    for (int i = 0; i < 3; ++i)
        expectSameRecording(QStringLiteral("stage"), QStringLiteral("run%1").arg(i));
}

class kelRecordingWriterVanishTest : public kelRecordingWriterTest, public testing::WithParamInterface<int>
{ };

TEST_P(kelRecordingWriterVanishTest, StopsWithALineThatNamesTheFile)
{
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"))));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(done(writer.write(plainFrame(i).stamp, plainFrame(i).objects)));
    const QString document = QStringLiteral("run/dataflow.xml");
    const QString records = QStringLiteral("run/dataflow.dat");
    const bool isDocument = GetParam() % 2 == 0;
    const QString file = isDocument ? document : records;
    switch (GetParam() / 2) {
    case 0:
        ASSERT_TRUE(QFile::remove(file));
        break;
    case 1:
        ASSERT_TRUE(QFile::rename(file, QStringLiteral("run/elsewhere")));
        break;
    case 2:
        ASSERT_TRUE(QFile::resize(file, QFileInfo(file).size() - 20));
        break;
    default: { // another file of that name
        const QByteArray bytes = content(file);
        ASSERT_TRUE(QFile::remove(file));
        write(file, isDocument ? QByteArray("<DataFlow/>\n") : bytes);
    }
    }
    const kelResult stopped = writer.write(plainFrame(3).stamp, plainFrame(3).objects);
    ASSERT_FALSE(stopped);
    EXPECT_TRUE(stopped.line().contains(QFileInfo(file).fileName())) << stopped.line().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Files, kelRecordingWriterVanishTest, testing::Range(0, 8));

TEST_F(kelRecordingWriterTest, AFullDiskCostsTheFrameAlone)
{
    // A limit on the size of files stands for a full disk: the write that passes it is cut short.
    std::signal(SIGXFSZ, SIG_IGN);
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"))));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(done(writer.write(plainFrame(i).stamp, plainFrame(i).objects)));
    const QByteArray document = content(QStringLiteral("run/dataflow.xml"));
    const QByteArray records = content(QStringLiteral("run/dataflow.dat"));
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    for (const auto size : {records.size() + 7, document.size() + 7}) {
        rlimit limit = old;
        limit.rlim_cur = static_cast<rlim_t>(size);
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const kelResult failed = writer.write(plainFrame(3).stamp, plainFrame(3).objects);
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
        EXPECT_FALSE(failed);
        EXPECT_EQ(content(QStringLiteral("run/dataflow.xml")), document);
        EXPECT_EQ(content(QStringLiteral("run/dataflow.dat")), records);
    }
    ASSERT_TRUE(done(writer.write(plainFrame(3).stamp, plainFrame(3).objects)));
    ASSERT_TRUE(done(writer.close()));
    recordStated(QStringLiteral("stage"), {plainFrame(0), plainFrame(1), plainFrame(2), plainFrame(3)});
    expectSameRecording(QStringLiteral("stage"), QStringLiteral("run"));
    std::signal(SIGXFSZ, SIG_DFL);
}

TEST_F(kelRecordingWriterTest, AReaderKeepsTheDocumentThatItOpened)
{
    kelRecordingWriter writer;
    ASSERT_TRUE(done(writer.open(QStringLiteral("run"))));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(done(writer.write(plainFrame(i).stamp, plainFrame(i).objects)));
    QFile reader(QStringLiteral("run/dataflow.xml"));
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    const QByteArray seen = reader.readAll();
    for (int i = 3; i < 9; ++i) {
        ASSERT_TRUE(done(writer.write(plainFrame(i).stamp, plainFrame(i).objects)));
        reader.seek(0);
        ASSERT_EQ(reader.readAll(), seen);
    }
    std::vector<MadeFrame> frames;
    for (int i = 0; i < 9; ++i)
        frames.push_back(plainFrame(i));
    recordStated(QStringLiteral("stage"), frames);
    expectSameRecording(QStringLiteral("stage"), QStringLiteral("run"));
}

TEST_F(kelRecordingWriterTest, TheDocumentKeepsItsModeAndItsLink)
{
    recordStated(QStringLiteral("stage"), {plainFrame(0), plainFrame(1), plainFrame(2), plainFrame(3)});
    recordStated(QStringLiteral("elsewhere"), {plainFrame(0)});
    ASSERT_EQ(chmod("elsewhere/dataflow.xml", 0640), 0);
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("run")));
    ASSERT_EQ(symlink("../elsewhere/dataflow.xml", "run/dataflow.xml"), 0);
    ASSERT_TRUE(QFile::rename(QStringLiteral("elsewhere/dataflow.dat"), QStringLiteral("run/dataflow.dat")));
    {
        kelRecordingWriter writer;
        ASSERT_TRUE(done(writer.open(QStringLiteral("run"), in(Mode::Append))));
        for (int i = 1; i < 4; ++i)
            ASSERT_TRUE(done(writer.write(plainFrame(i).stamp, plainFrame(i).objects)));
    }
    EXPECT_TRUE(QFileInfo(QStringLiteral("run/dataflow.xml")).isSymLink());
    struct stat status;
    ASSERT_EQ(stat("run/dataflow.xml", &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0640u);
    expectSameRecording(QStringLiteral("stage"), QStringLiteral("run"));
    EXPECT_EQ(files(QStringLiteral("elsewhere")), QStringList(QStringLiteral("dataflow.xml")));
}

} // namespace
