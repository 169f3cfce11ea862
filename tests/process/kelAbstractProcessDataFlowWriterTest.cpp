#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter_p.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <QDomDocument>

#include <atomic>
#include <chrono>
#include <climits>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using Data = QSharedPointer<kelAbstractData>;

const QString creation = QStringLiteral("\n creation of a new xml file...");
const QString created = QStringLiteral("\n file created");
const QString problem = QStringLiteral("\n xml file content problem...");
const QString entryAdded = QStringLiteral("\n xml entry added");
const QString saved = QStringLiteral("\n frame saved");
const QString dataFlowSet = QStringLiteral("dataflow setted");

/// The second line about a document that cannot be parsed.
QString parserLine(const QString &message, int line, int column)
{
    return QStringLiteral("\"%1\"    %2    %3   ").arg(message).arg(line).arg(column);
}

Data blob(QVariantMap map = {})
{
    Data result(new kelDataBlob);
    result->setMap(map);
    return result;
}

QByteArray recordOf(const Data &data)
{
    return kelDataFlowRecord{data->identifier(), data->getMap()}.encoded();
}

CSynchronizer stamp(unsigned int frame, const QDateTime &time)
{
    CSynchronizer result;
    result.setFrameNumber(frame);
    result.setDateTime(time);
    return result;
}

QDateTime leapSecond() { return {QDate(2024, 2, 29), QTime(23, 59, 58, 999), Qt::UTC}; }

/// Standard input from a pipe, for as long as it lives; an empty one afterwards, as the tests have it.
class StandardInput
{
public:
    StandardInput()
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        EXPECT_EQ(dup2(ends[0], STDIN_FILENO), STDIN_FILENO);
        close(ends[0]);
        m_in = ends[1];
        std::clearerr(stdin);
    }
    ~StandardInput()
    {
        end();
        EXPECT_NE(std::freopen("/dev/null", "r", stdin), nullptr);
    }
    StandardInput(const StandardInput &) = delete;
    StandardInput &operator=(const StandardInput &) = delete;

    void type(const std::string &text)
    {
        EXPECT_EQ(::write(m_in, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void end()
    {
        if (m_in >= 0)
            close(m_in);
        m_in = -1;
    }

private:
    int m_in = -1;
};

/// A writer whose state can be seen.
class Writer : public kelAbstractProcessDataFlowWriter
{
public:
    kelAbstractProcessDataFlowWriterPrivate &d()
    {
        return static_cast<kelAbstractProcessDataFlowWriterPrivate &>(*nub_d);
    }
};

/// A blob that does something to the world while it is recorded.
class MeddlingBlob : public kelDataBlob
{
public:
    explicit MeddlingBlob(std::function<void()> action) : m_action(std::move(action)) { }
    QString identifier() const override
    {
        m_action();
        return kelDataBlob::identifier();
    }

private:
    std::function<void()> m_action;
};

} // namespace

class kelAbstractProcessDataFlowWriterTest : public TemporaryFolder
{
protected:
    kelAbstractProcessDataFlowWriterTest()
    {
        OutputCapture output;
        writer.reset(new Writer);
        writer->setFilePath(QFile("run.xml"));
    }

    /// Adds a frame, without its messages.
    bool writeFrame()
    {
        MessageCapture messages;
        return writer->writeDataFlow();
    }

    /// The "Frame" elements of the document on disk.
    static QList<QDomElement> frames()
    {
        QDomDocument document;
        EXPECT_TRUE(document.setContent(content("run.xml")));
        EXPECT_EQ(document.documentElement().tagName(), "DataFlow");
        QList<QDomElement> result;
        for (QDomElement child = document.documentElement().firstChildElement(); !child.isNull();
             child = child.nextSiblingElement())
            result.append(child);
        return result;
    }

    /// The names of the children of an element.
    static QStringList children(const QDomElement &element)
    {
        QStringList result;
        for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling())
            result.append(child.nodeName());
        return result;
    }

    static QStringList files()
    {
        return QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<Writer> writer;
};

TEST_F(kelAbstractProcessDataFlowWriterTest, ConstructionSaysSoAndForcesTheSettings)
{
    OutputCapture output;
    MessageCapture messages;
    kelAbstractProcessDataFlowWriter fresh;
    EXPECT_EQ(output.take(), "forcing param\n");
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_TRUE(fresh.userFlag1);
    EXPECT_EQ(fresh.userValue1, 1);
    EXPECT_EQ(fresh.userValue2, 1);
    EXPECT_FALSE(fresh.userFlag2);
    EXPECT_EQ(fresh.parent(), nullptr);
    EXPECT_EQ(fresh.identifier(), "kelAbstractProcessDataFlowWriter");
    EXPECT_EQ(fresh.getFilePath().fileName(), "");
    EXPECT_FALSE(fresh.getFilePath().isOpen());
    EXPECT_TRUE(fresh.getSpecificParameters().isEmpty());
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AFreshWriterHasNoObjectsAndAnEmptyDocument)
{
    OutputCapture output;
    Writer fresh;
    EXPECT_TRUE(fresh.d().dataFlow.isEmpty());
    EXPECT_NE(fresh.d().dataWriter, nullptr);
    EXPECT_FALSE(fresh.d().document.hasChildNodes());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ConstructionConsumesExactlyOneCharacter)
{
    StandardInput input;
    input.type("a\nbc");
    OutputCapture output;
    {
        const kelAbstractProcessDataFlowWriter first;
    }
    {
        const kelAbstractProcessDataFlowWriter second;
    } // a line break counts
    EXPECT_EQ(std::getchar(), 'b');
    {
        const kelAbstractProcessDataFlowWriter third;
    }
    input.end();
    EXPECT_EQ(std::getchar(), EOF);
    EXPECT_EQ(output.take(), "forcing param\nforcing param\nforcing param\n");
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ConstructionWaitsForTheCharacter)
{
    StandardInput input;
    std::atomic<bool> typed{false};
    std::thread user([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        typed = true;
        input.type("x");
    });
    OutputCapture output;
    const kelAbstractProcessDataFlowWriter fresh;
    EXPECT_TRUE(typed);
    user.join();
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheEndOfTheInputDoesNotBlock)
{
    StandardInput input;
    input.end();
    OutputCapture output;
    const kelAbstractProcessDataFlowWriter fresh;
    EXPECT_EQ(output.take(), "forcing param\n");
}

TEST_F(kelAbstractProcessDataFlowWriterTest, SetFilePathTakesTheNameAndOpensNothing)
{
    QFile file("other.xml");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    writer->setFilePath(file);
    EXPECT_EQ(writer->getFilePath().fileName(), "other.xml");
    EXPECT_FALSE(writer->getFilePath().isOpen());
    EXPECT_NE(&writer->getFilePath(), &file);
    EXPECT_EQ(&writer->getFilePath(), &writer->getFilePath());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheNameCanBeSetThroughTheFileObject)
{
    writer->getFilePath().setFileName("other.xml");
    EXPECT_TRUE(writeFrame());
    EXPECT_EQ(files(), QStringList{"other.xml"});
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ACopyNeitherPrintsNorWaitsNorForcesTheSettings)
{
    StandardInput input;
    input.type("x");
    OutputCapture output;
    MessageCapture messages;
    const kelAbstractProcessDataFlowWriter copy(*writer);
    EXPECT_EQ(output.take(), "");
    EXPECT_EQ(std::getchar(), 'x');
    EXPECT_FALSE(copy.userFlag1);
    EXPECT_EQ(copy.userValue1, 0);
    EXPECT_EQ(copy.userValue2, 0);
    EXPECT_FALSE(copy.userFlag2);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ACopySharesListEncoderAndDocumentAndHasAFileObjectOfItsOwn)
{
    const Data data = blob();
    writer->setDataFlow(data);
    writer->setSynchronizer(stamp(7, leapSecond()));
    writer->setSpecificParameters({{"k", 1}});
    ASSERT_TRUE(writeFrame());
    Writer copy(*writer);
    EXPECT_EQ(copy.d().dataFlow, QList<Data>{data});
    EXPECT_EQ(copy.d().dataWriter, writer->d().dataWriter);
    EXPECT_EQ(copy.d().document, writer->d().document);
    EXPECT_EQ(copy.getSynchronizer().getFrameNumber(), 7u);
    EXPECT_EQ(copy.getSpecificParameters(), (QVariantMap{{"k", 1}}));
    EXPECT_EQ(copy.getFilePath().fileName(), "run.xml");

    copy.getFilePath().setFileName("copy.xml");
    EXPECT_EQ(writer->getFilePath().fileName(), "run.xml");
    copy.setDataFlow(blob());
    EXPECT_EQ(writer->d().dataFlow.size(), 1);
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ACopyGoesOnWhenItsSourceIsGone)
{
    writer->setDataFlow(blob({{"k", 1}}));
    Writer copy(*writer);
    writer.reset();
    MessageCapture messages;
    EXPECT_TRUE(copy.writeDataFlow());
    EXPECT_EQ(messages.lines(), (QStringList{creation, created, entryAdded, saved}));
    EXPECT_EQ(frames().size(), 1);
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ACopyTakesTheParentOfItsSource)
{
    QObject parent;
    Writer *source = writer.release();
    source->setParent(&parent);
    EXPECT_EQ((new kelAbstractProcessDataFlowWriter(*source))->parent(), &parent);
}

TEST_F(kelAbstractProcessDataFlowWriterTest, SettingAListReplacesTheObjectsAndSaysSo)
{
    const QList<Data> first{blob(), blob()};
    const QList<Data> second{blob()};
    MessageCapture messages;
    writer->setDataFlow(first);
    EXPECT_EQ(messages.take(), QStringList{dataFlowSet});
    EXPECT_EQ(writer->d().dataFlow, first);
    writer->setDataFlow(second);
    EXPECT_EQ(messages.take(), QStringList{dataFlowSet});
    EXPECT_EQ(writer->d().dataFlow, second);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, SettingOneObjectAppendsItSilently)
{
    const Data first = blob();
    const Data second = blob();
    const QList<Data> list{first};
    MessageCapture messages;
    writer->setDataFlow(list);
    messages.take();
    writer->setDataFlow(second);
    EXPECT_EQ(writer->d().dataFlow, (QList<Data>{first, second}));
    EXPECT_EQ(list.size(), 1);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, PlugInsOverrideTheThreeOperations)
{
    struct Quiet : kelAbstractProcessDataFlowWriter
    {
        explicit Quiet(const kelAbstractProcessDataFlowWriter &other)
            : kelAbstractProcessDataFlowWriter(other)
        { }
        void setDataFlow(const QList<Data> &) override { calls += 'l'; }
        void setDataFlow(const Data &) override { calls += 'o'; }
        bool writeDataFlow() override
        {
            calls += 'w';
            return false;
        }
        std::string calls;
    } quiet(*writer);
    kelAbstractProcessDataFlowWriter &base = quiet;
    base.setDataFlow(QList<Data>());
    base.setDataFlow(blob());
    EXPECT_FALSE(base.writeDataFlow());
    EXPECT_EQ(quiet.calls, "low");
}

TEST_F(kelAbstractProcessDataFlowWriterTest, XmlGenWritesAnEmptyDocument)
{
    MessageCapture messages;
    writer->xmlGen();
    EXPECT_EQ(messages.lines(), (QStringList{creation, created}));
    EXPECT_EQ(content("run.xml"), "<DataFlow/>\n");
    EXPECT_EQ(writer->d().document.documentElement().tagName(), "DataFlow");
    EXPECT_EQ(writer->d().document.childNodes().count(), 1);
}

TEST_F(kelAbstractProcessDataFlowWriterTest, XmlGenReplacesWhatWasThere)
{
    write("run.xml", "something longer than an empty document");
    MessageCapture messages;
    writer->xmlGen();
    EXPECT_EQ(content("run.xml"), "<DataFlow/>\n");
}

TEST_F(kelAbstractProcessDataFlowWriterTest, XmlGenStopsSilentlyWhenItCannotWrite)
{
    writer->setFilePath(QFile("missing/run.xml"));
    MessageCapture messages;
    writer->xmlGen();
    EXPECT_EQ(messages.lines(), QStringList{creation});
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(writer->d().document.documentElement().tagName(), "DataFlow");
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheFirstFrameCreatesTheDocument)
{
    writer->setDataFlow(blob({{"k", 1}}));
    writer->setDataFlow(blob({{"k", 2}}));
    MessageCapture messages;
    EXPECT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(messages.take(), (QStringList{creation, created, entryAdded, entryAdded, saved}));
    EXPECT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(messages.take(), (QStringList{entryAdded, entryAdded, saved}));
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AFrameHasParametersSynchronizationAndItsObjects)
{
    writer->setSynchronizer(stamp(7, leapSecond()));
    writer->setDataFlow(blob({{"BoundingBox2D", QRect(10, 20, 30, 40)}}));
    writer->setDataFlow(Data(new kelDataImage));
    ASSERT_TRUE(writeFrame());
    EXPECT_EQ(content("run.xml").toStdString(),
              "<DataFlow>\n"
              " <Frame frameNumber=\"7\">\n"
              "  <Parameters file=\"/myfile/param.txt\"/>\n"
              "  <Synchronization frameID=\"7\" timeYear=\"2024\" timeMonth=\"2\" timeDay=\"29\""
              " timeHour=\"23\" timeMin=\"59\" timeSec=\"58\" timeMs=\"999\"/>\n"
              "  <Data dataType=\"kelDataBlob\">\n"
              "   <entry key=\"BoundingBox2D\" type=\"QRect\" value=\"10 20 30 40\"/>\n"
              "  </Data>\n"
              "  <Data dataType=\"kelDataImage\"/>\n"
              " </Frame>\n"
              "</DataFlow>\n");
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ThreeCallsGiveThreeFramesInOrder)
{
    for (unsigned int i = 0; i < 3; ++i) {
        writer->setSynchronizer(stamp(5 - i, leapSecond().addSecs(i)));
        ASSERT_TRUE(writeFrame());
    }
    QStringList seen;
    for (const QDomElement &frame : frames()) {
        const QDomElement synchronization = frame.lastChildElement();
        seen.append(frame.attribute("frameNumber") + ' ' + synchronization.attribute("frameID") + ' '
                    + synchronization.attribute("timeMonth") + ' ' + synchronization.attribute("timeSec"));
    }
    EXPECT_EQ(seen, (QStringList{"5 5 2 58", "4 4 2 59", "3 3 3 0"}));
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AFrameWithoutObjectsHoldsOnlyParametersAndSynchronization)
{
    ASSERT_TRUE(writeFrame());
    ASSERT_EQ(frames().size(), 1);
    EXPECT_EQ(children(frames().first()), (QStringList{"Parameters", "Synchronization"}));
    EXPECT_EQ(files(), QStringList{"run.xml"}); // and no record
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheListIsNotClearedAndSingleObjectsAccumulate)
{
    writer->setDataFlow(blob({{"a", 1}}));
    ASSERT_TRUE(writeFrame());
    writer->setDataFlow(blob({{"b", 1}}));
    ASSERT_TRUE(writeFrame());
    ASSERT_TRUE(writeFrame());
    QStringList keys;
    for (const QDomElement &frame : frames()) {
        QStringList ofFrame;
        for (QDomElement data = frame.firstChildElement("Data"); !data.isNull();
             data = data.nextSiblingElement("Data"))
            ofFrame.append(data.firstChildElement().attribute("key"));
        keys.append(ofFrame.join(' '));
    }
    EXPECT_EQ(keys, (QStringList{"a", "a b", "a b"}));
}

TEST_F(kelAbstractProcessDataFlowWriterTest, NullPointersAreSkipped)
{
    const Data data = blob({{"k", 1}});
    const QList<Data> list{Data(), data, Data()};
    MessageCapture messages;
    writer->setDataFlow(list);
    writer->setDataFlow(Data());
    messages.take();
    EXPECT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(messages.lines(), (QStringList{creation, created, entryAdded, saved}));
    ASSERT_EQ(frames().size(), 1);
    EXPECT_EQ(children(frames().first()), (QStringList{"Parameters", "Synchronization", "Data"}));
    EXPECT_EQ(content("dataflow.dat"), recordOf(data));
}

TEST_F(kelAbstractProcessDataFlowWriterTest, EveryObjectsRecordIsAppendedInListOrder)
{
    const Data first = blob({{"k", 1}});
    const Data second(new kelDataImage);
    MessageCapture messages;
    writer->setDataFlow(QList<Data>{first, second, first});
    ASSERT_TRUE(writer->writeDataFlow());
    const QByteArray frame = recordOf(first) + recordOf(second) + recordOf(first);
    EXPECT_EQ(content("dataflow.dat"), frame);
    ASSERT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(content("dataflow.dat"), frame + frame);
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheTimePartsOfANullDateTimeAreUnsigned)
{
    writer->setSynchronizer(stamp(UINT_MAX, QDateTime()));
    ASSERT_TRUE(writeFrame());
    ASSERT_EQ(frames().size(), 1);
    EXPECT_TRUE(content("run.xml").contains(
        "<Frame frameNumber=\"4294967295\">\n"
        "  <Parameters file=\"/myfile/param.txt\"/>\n"
        "  <Synchronization frameID=\"4294967295\" timeYear=\"0\" timeMonth=\"0\" timeDay=\"0\""
        " timeHour=\"4294967295\" timeMin=\"4294967295\" timeSec=\"4294967295\" timeMs=\"4294967295\"/>\n"))
        << content("run.xml").toStdString();
}

TEST_F(kelAbstractProcessDataFlowWriterTest, SetTimeStampElementBuildsAnElementOfTheDocumentWithoutAParent)
{
    writer->setSynchronizer(stamp(7, leapSecond()));
    ASSERT_TRUE(writeFrame());
    MessageCapture messages;
    const QDomElement element = writer->setTimeStampElement();
    EXPECT_EQ(element.tagName(), "Synchronization");
    EXPECT_TRUE(element.parentNode().isNull());
    EXPECT_EQ(element.ownerDocument(), writer->d().document);
    EXPECT_FALSE(element.hasChildNodes());
    EXPECT_EQ(element.attributes().count(), 8);
    const char *const expected[][2] = {{"frameID", "7"},  {"timeYear", "2024"}, {"timeMonth", "2"},
                                       {"timeDay", "29"}, {"timeHour", "23"},   {"timeMin", "59"},
                                       {"timeSec", "58"}, {"timeMs", "999"}};
    for (const auto &attribute : expected)
        EXPECT_EQ(element.attribute(attribute[0]), attribute[1]) << attribute[0];
    EXPECT_EQ(frames().size(), 1);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheDocumentInMemoryHoldsWhatWasWrittenLast)
{
    ASSERT_TRUE(writeFrame());
    ASSERT_TRUE(writeFrame());
    EXPECT_EQ(children(writer->d().document.documentElement()), (QStringList{"Frame", "Frame"}));
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheDocumentIsReadAgainBeforeEveryFrame)
{
    ASSERT_TRUE(writeFrame());
    write("run.xml", "<DataFlow><Other/></DataFlow>");
    ASSERT_TRUE(writeFrame());
    QStringList names;
    for (const QDomElement &frame : frames())
        names.append(frame.tagName());
    EXPECT_EQ(names, (QStringList{"Other", "Frame"}));

    QFile::remove("run.xml");
    MessageCapture messages;
    ASSERT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(messages.lines(), (QStringList{creation, created, saved}));
    EXPECT_EQ(frames().size(), 1);
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ALaterRunGoesOnBehindAnEarlierOne)
{
    writer->setSynchronizer(stamp(1, leapSecond()));
    ASSERT_TRUE(writeFrame());
    OutputCapture output;
    writer.reset(new Writer);
    writer->setFilePath(QFile("run.xml"));
    writer->setSynchronizer(stamp(2, leapSecond()));
    MessageCapture messages;
    ASSERT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(messages.lines(), QStringList{saved});
    ASSERT_EQ(frames().size(), 2);
    EXPECT_EQ(frames().at(0).attribute("frameNumber"), "1");
    EXPECT_EQ(frames().at(1).attribute("frameNumber"), "2");
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AFileThatDoesNotParseStaysAsItIs)
{
    writer->setDataFlow(blob({{"k", 1}}));
    for (const char *text : {"this is no xml", "", "<DataFlow>\n <Frame>\n", "<a/><b/>"}) {
        write("run.xml", text);
        QDomDocument document;
        QString message;
        int line = 0;
        int column = 0;
        ASSERT_FALSE(document.setContent(QByteArray(text), &message, &line, &column));
        ASSERT_FALSE(message.isEmpty());
        MessageCapture messages;
        EXPECT_FALSE(writer->writeDataFlow());
        EXPECT_EQ(messages.lines(), (QStringList{problem, parserLine(message, line, column)}));
        EXPECT_EQ(content("run.xml"), text);
        EXPECT_EQ(files(), QStringList{"run.xml"}); // no record either
    }
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AMissingFolderIsReportedAsAnEmptyProblem)
{
    writer->setDataFlow(blob({{"k", 1}}));
    writer->setFilePath(QFile("missing/run.xml"));
    MessageCapture messages;
    EXPECT_FALSE(writer->writeDataFlow());
    EXPECT_EQ(messages.lines(), (QStringList{creation, problem, parserLine("", 0, 0)}));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, APathThatIsAFolderIsReportedAsAnEmptyProblem)
{
    ASSERT_TRUE(QDir().mkdir("run.xml"));
    MessageCapture messages;
    EXPECT_FALSE(writer->writeDataFlow());
    EXPECT_EQ(messages.lines(), (QStringList{problem, parserLine("", 0, 0)}));
    EXPECT_TRUE(QFileInfo("run.xml").isDir());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, WithoutAPathNothingIsWritten)
{
    OutputCapture output;
    Writer fresh;
    MessageCapture messages;
    EXPECT_FALSE(fresh.writeDataFlow());
    EXPECT_EQ(messages.count(creation), 1);
    EXPECT_EQ(messages.count(created), 0);
    EXPECT_EQ(messages.count(problem), 1);
    EXPECT_EQ(messages.lines().last(), parserLine("", 0, 0));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AFrameThatCannotBeWrittenIsLostSilently)
{
    ASSERT_TRUE(QDir().mkdir("sub"));
    writer->setFilePath(QFile("sub/run.xml"));
    writer->setDataFlow(Data(new MeddlingBlob([] { QDir("sub").removeRecursively(); })));
    MessageCapture messages;
    EXPECT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(messages.lines(), (QStringList{creation, created, entryAdded}));
    EXPECT_EQ(files(), QStringList{"dataflow.dat"});
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AFullDiskLosesTheFrameAndNotTheDocument)
{
    ASSERT_TRUE(writeFrame());
    const QByteArray before = content("run.xml");
    EXPECT_TRUE(inChild([&] {
        MessageCapture messages;
        return limitFileSize(before.size() + 20) && writer->writeDataFlow() && messages.lines().isEmpty();
    }));
    EXPECT_EQ(content("run.xml"), before);
    EXPECT_EQ(files(), QStringList{"run.xml"});
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AReadOnlyDocumentStaysAsItIs)
{
    ASSERT_TRUE(writeFrame());
    const QByteArray before = content("run.xml");
    ASSERT_EQ(chmod("run.xml", 0444), 0);
    ASSERT_EQ(chmod(".", 0777), 0);
    EXPECT_TRUE(inChild([&] {
        MessageCapture messages;
        return becomeNobody() && writer->writeDataFlow() && messages.lines().isEmpty();
    }));
    EXPECT_EQ(content("run.xml"), before);
    EXPECT_EQ(files(), QStringList{"run.xml"});
}

TEST_F(kelAbstractProcessDataFlowWriterTest, InAReadOnlyFolderTheDocumentIsRewrittenInPlace)
{
    ASSERT_TRUE(writeFrame());
    ASSERT_EQ(chmod("run.xml", 0666), 0);
    ASSERT_EQ(chmod(".", 0555), 0);
    EXPECT_TRUE(inChild([&] {
        MessageCapture messages;
        return becomeNobody() && writer->writeDataFlow() && messages.lines() == QStringList{saved};
    }));
    ASSERT_EQ(chmod(".", 0700), 0);
    EXPECT_EQ(frames().size(), 2);
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ABinaryFileThatCannotBeWrittenIsNotReported)
{
    ASSERT_TRUE(QDir().mkdir("dataflow.dat"));
    writer->setDataFlow(blob({{"k", 1}}));
    MessageCapture messages;
    EXPECT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(messages.lines(), (QStringList{creation, created, entryAdded, saved}));
    EXPECT_EQ(children(frames().value(0)), (QStringList{"Parameters", "Synchronization", "Data"}));
}

TEST_F(kelAbstractProcessDataFlowWriterTest, ASymbolicLinkStaysALink)
{
    ASSERT_TRUE(QDir().mkdir("sub"));
    ASSERT_EQ(symlink("sub/real.xml", "run.xml"), 0);
    ASSERT_TRUE(writeFrame()); // leads nowhere yet
    ASSERT_TRUE(writeFrame());
    EXPECT_TRUE(QFileInfo("run.xml").isSymLink());
    EXPECT_TRUE(QFileInfo("sub/real.xml").isFile());
    EXPECT_EQ(content("sub/real.xml"), content("run.xml"));
    EXPECT_EQ(frames().size(), 2);
    EXPECT_EQ(QDir("sub").entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"real.xml"});
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheDocumentIsReplacedInOneStep)
{
    ASSERT_TRUE(writeFrame());
    const QByteArray before = content("run.xml");
    ASSERT_EQ(chmod("run.xml", 0640), 0);
    struct stat old, now;
    ASSERT_EQ(stat("run.xml", &old), 0);
    QFile open("run.xml");
    ASSERT_TRUE(open.open(QIODevice::ReadOnly));

    ASSERT_TRUE(writeFrame());
    EXPECT_EQ(open.readAll(), before); // whoever was reading goes on reading the whole old document
    ASSERT_EQ(stat("run.xml", &now), 0);
    EXPECT_NE(now.st_ino, old.st_ino);
    EXPECT_EQ(now.st_mode, old.st_mode);
    EXPECT_EQ(frames().size(), 2);
    EXPECT_EQ(files(), QStringList{"run.xml"});
}

TEST_F(kelAbstractProcessDataFlowWriterTest, TheFrameNumberAndTheFrameIdAreTheSame)
{
    for (const unsigned int number : {0u, 1u, 2147483648u, 4294967295u}) {
        QFile::remove("run.xml");
        writer->setSynchronizer(stamp(number, leapSecond()));
        ASSERT_TRUE(writeFrame());
        ASSERT_EQ(frames().size(), 1);
        EXPECT_EQ(frames().first().attribute("frameNumber"), QString::number(number));
        EXPECT_EQ(frames().first().lastChildElement().attribute("frameID"), QString::number(number));
    }
}

TEST_F(kelAbstractProcessDataFlowWriterTest, AYearBeforeTheFirstIsUnsignedToo)
{
    writer->setSynchronizer(stamp(1, QDateTime(QDate(-1, 12, 31), QTime(1, 2, 3, 4), Qt::UTC)));
    EXPECT_EQ(writer->setTimeStampElement().attribute("timeYear"), "4294967295");
    EXPECT_EQ(writer->setTimeStampElement().attribute("timeMs"), "4");
}
