#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"
#include "support/TemporaryFolder.h"

#include <QDomDocument>

#include <memory>

namespace {

using Data = QSharedPointer<kelAbstractData>;

QString nameLine(const QString &name) { return "\n nodeName:  \"" + name + '"'; }
QString fileLine(const QString &file) { return "\n parameters file:  \"" + file + '"'; }
QString hourLine(int hour) { return QStringLiteral("\n hour:  %1").arg(hour); }
QString timeLine(const QString &time) { return "\n dataTime:  \"" + time + '"'; }
QString valueLine(const QString &value) { return "\n content of xml data entry:  \"" + value + '"'; }
QString dataTypeLine(const QString &type) { return "\n this is the datatype:  \"" + type + '"'; }

/// The objects read, deleted at the end.
class Objects
{
public:
    Objects() = default;
    explicit Objects(const QList<kelAbstractData *> &objects) : list(objects) { }
    ~Objects() { qDeleteAll(list); }
    Objects(const Objects &) = delete;
    Objects &operator=(const Objects &) = delete;

    /// One word per object: its class and the keys and numbers of its map.
    QStringList words() const
    {
        QStringList result;
        for (kelAbstractData *object : list) {
            if (!object) {
                result.append("null");
                continue;
            }
            QString word = object->identifier();
            const QVariantMap map = object->getMap();
            for (auto it = map.cbegin(); it != map.cend(); ++it)
                word += ' ' + it.key() + '=' + it.value().toString();
            result.append(word);
        }
        return result;
    }

    QList<kelAbstractData *> list;
};

QByteArray record(const char *type, int number)
{
    return kelDataFlowRecord{QLatin1String(type), {{"k", number}}}.encoded();
}

const char *const frameHead = "<Parameters file='p'/><Synchronization timeHour='1'/>";

/// A frame with one blob whose entry has that key.
QByteArray frame(const char *number, const char *key)
{
    return QByteArray("<Frame frameNumber='") + number + "'>" + frameHead
        + "<Data dataType='kelDataBlob'><entry key='" + key + "' value='1 2 3 4'/></Data></Frame>";
}

} // namespace

class kelAbstractProcessDataFlowReaderTest : public TemporaryFolder
{
protected:
    /// The objects of a frame of a document, and what was said about them.
    QStringList read(const QByteArray &document, int frameNumber)
    {
        write("run.xml", document);
        EXPECT_TRUE(reader.setFile("run.xml"));
        Objects objects;
        MessageCapture messages;
        EXPECT_TRUE(reader.getDataFlow(objects.list, frameNumber));
        said = messages.lines();
        QStringList keys;
        for (kelAbstractData *object : objects.list)
            keys.append(object ? object->identifier() + ':' + object->getMap().keys().join(',') : "null");
        return keys;
    }

    /// What is said about a frame with that "Synchronization" element.
    QStringList saidAbout(const QByteArray &synchronization)
    {
        EXPECT_TRUE(
            read("<DataFlow><Frame><Parameters/>" + synchronization + "</Frame></DataFlow>", 0).isEmpty());
        return said;
    }

    kelAbstractProcessDataFlowReader reader;
    QStringList said;
};

TEST_F(kelAbstractProcessDataFlowReaderTest, AFreshReaderHasNoNamesAndItsFlagIsSet)
{
    EXPECT_EQ(reader.getFile(), "");
    EXPECT_EQ(reader.getDir(), "");
    EXPECT_TRUE(reader.userFlag);
    EXPECT_EQ(reader.parent(), nullptr);
    EXPECT_TRUE(reader.getSpecificParameters().isEmpty());
    EXPECT_EQ(reader.identifier(), "kelAbstractProcessDataFlowReader");
}

TEST_F(kelAbstractProcessDataFlowReaderTest, SetFileReportsAMissingFileAndKeepsTheName)
{
    MessageCapture messages;
    EXPECT_FALSE(reader.setFile("missing.xml"));
    EXPECT_EQ(messages.take(), QStringList{"\n error xml file !exist "});
    EXPECT_EQ(reader.getFile(), "missing.xml");

    write("run.xml", "anything");
    EXPECT_TRUE(reader.setFile("run.xml"));
    EXPECT_EQ(reader.getFile(), "run.xml");
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowReaderTest, SetDirStoresTheTextAsItIs)
{
    reader.setDir("no such/folder//");
    EXPECT_EQ(reader.getDir(), "no such/folder//");
}

TEST_F(kelAbstractProcessDataFlowReaderTest, ACopyCarriesTheBaseAlone)
{
    QObject parent;
    auto *source = new kelAbstractProcessDataFlowReader;
    source->setParent(&parent);
    write("run.xml", "<DataFlow>" + frame("1", "a") + "</DataFlow>");
    ASSERT_TRUE(source->setFile("run.xml"));
    source->setDir("dir");
    source->setSpecificParameters({{"k", 1}});
    CSynchronizer stamp;
    stamp.setFrameNumber(7);
    source->setSynchronizer(stamp);
    auto *copy = new kelAbstractProcessDataFlowReader(*source);
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(copy->getFile(), "");
    EXPECT_EQ(copy->getDir(), "");
    EXPECT_FALSE(copy->userFlag);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
    EXPECT_EQ(copy->getSynchronizer().getFrameNumber(), 7u);

    ASSERT_TRUE(copy->setFile("run.xml"));
    Objects objects;
    MessageCapture messages;
    EXPECT_TRUE(copy->getDataFlow(objects.list, 1));
    EXPECT_EQ(objects.list.size(), 1);
}

TEST_F(kelAbstractProcessDataFlowReaderTest, TheStartAndStopQueriesAreFalseUnlessOverridden)
{
    EXPECT_FALSE(reader.HasReachedWantedStartTime());
    EXPECT_FALSE(reader.HasReachedWantedStopTime());
    struct Replay : kelAbstractProcessDataFlowReader
    {
        QList<kelAbstractData *> getDataFlow() override { return {nullptr, nullptr}; }
        bool HasReachedWantedStartTime() override { return true; }
        bool HasReachedWantedStopTime() override { return true; }
    } replay;
    kelAbstractProcessDataFlowReader &base = replay;
    EXPECT_TRUE(base.HasReachedWantedStartTime());
    EXPECT_TRUE(base.HasReachedWantedStopTime());
    EXPECT_EQ(base.getDataFlow().size(), 2);
}

TEST_F(kelAbstractProcessDataFlowReaderTest, ADocumentThatCannotBeOpenedIsAnError)
{
    MessageCapture messages;
    reader.setFile("missing.xml");
    messages.take();
    Objects objects({nullptr});
    EXPECT_FALSE(reader.getDataFlow(objects.list, 0));
    EXPECT_EQ(messages.lines(), QStringList{"error opening xml file "});
    EXPECT_EQ(objects.list.size(), 1);
}

TEST_F(kelAbstractProcessDataFlowReaderTest, ADocumentThatDoesNotParseIsAnErrorAndAddsNothing)
{
    const QByteArray text = "<DataFlow>\n" + frame("0", "a") + "\n <Frame></Fram>";
    write("run.xml", text);
    QDomDocument document;
    QString message;
    int line = 0;
    int column = 0;
    ASSERT_FALSE(document.setContent(text, &message, &line, &column));
    ASSERT_TRUE(reader.setFile("run.xml"));
    Objects objects({nullptr});
    MessageCapture messages;
    EXPECT_FALSE(reader.getDataFlow(objects.list, 0));
    EXPECT_EQ(messages.lines(),
              (QStringList{"\n xml file content problem...",
                           QStringLiteral("\"%1\"    %2    %3   ").arg(message).arg(line).arg(column)}));
    EXPECT_EQ(objects.list, QList<kelAbstractData *>{nullptr});
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AFrameSaysWhatItReads)
{
    const QByteArray document =
        "<DataFlow><Frame frameNumber='3'><Parameters file='/myfile/param.txt'/>"
        "<Synchronization frameID='3' timeYear='2024' timeMonth='2' timeDay='29' timeHour='7' timeMin='8'"
        " timeSec='9' timeMs='10'/>"
        "<Data dataType='kelDataBlob'><entry key='bbox' type='QRect' value='1 1 5 6'/></Data>"
        "<Data dataType='kelDataImage'/></Frame></DataFlow>";
    EXPECT_EQ(read(document, 3), (QStringList{"kelDataBlob:bbox", "kelDataImage:"}));
    EXPECT_EQ(said,
              (QStringList{nameLine("Parameters"), fileLine("/myfile/param.txt"), nameLine("Synchronization"),
                           hourLine(7), timeLine("07:08:09"), nameLine("Data"), valueLine("1 1 5 6")}));
    EXPECT_TRUE(reader.getSynchronizer().getDateTime().isNull()); // the time is only said
}

TEST_F(kelAbstractProcessDataFlowReaderTest, ObjectsAreAppendedBehindThoseThatAreThere)
{
    write("run.xml", "<DataFlow>" + frame("1", "a") + "</DataFlow>");
    ASSERT_TRUE(reader.setFile("run.xml"));
    Objects objects({new kelDataImage});
    MessageCapture messages;
    EXPECT_TRUE(reader.getDataFlow(objects.list, 1));
    ASSERT_EQ(objects.list.size(), 2);
    EXPECT_EQ(objects.list.first()->identifier(), "kelDataImage");
    EXPECT_EQ(objects.list.last()->getMap(), (QVariantMap{{"a", QRect(QPoint(1, 2), QPoint(3, 4))}}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, EveryFrameOfTheNumberIsReadInDocumentOrder)
{
    const QByteArray document =
        "<DataFlow>" + frame("0", "a") + frame("1", "b") + frame("1", "c") + frame("2", "d") + "</DataFlow>";
    EXPECT_EQ(read(document, 1), (QStringList{"kelDataBlob:b", "kelDataBlob:c"}));
    EXPECT_EQ(said.size(), 14);
    EXPECT_EQ(read(document, 0), QStringList{"kelDataBlob:a"});
    EXPECT_EQ(read(document, 2), QStringList{"kelDataBlob:d"});
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AFrameThatIsNotThereGivesNothingAndSaysNothing)
{
    EXPECT_TRUE(read("<DataFlow>" + frame("0", "a") + "</DataFlow>", 7).isEmpty());
    EXPECT_TRUE(said.isEmpty());
    EXPECT_TRUE(read("<DataFlow/>", 0).isEmpty());
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AFrameWithoutANumberCountsAsZero)
{
    const QByteArray data = "<Data dataType='kelDataImage'/>";
    EXPECT_EQ(read("<DataFlow><Frame>" + QByteArray(frameHead) + data + "</Frame></DataFlow>", 0),
              QStringList{"kelDataImage:"});
    EXPECT_EQ(
        read("<DataFlow><Frame frameNumber='x'>" + QByteArray(frameHead) + data + "</Frame></DataFlow>", 0),
        QStringList{"kelDataImage:"});
    EXPECT_EQ(read("<DataFlow>" + frame("4294967295", "a") + "</DataFlow>", -1), QStringList());
    EXPECT_EQ(read("<DataFlow>" + frame("-1", "a") + "</DataFlow>", -1), QStringList{"kelDataBlob:a"});
    EXPECT_EQ(read("<DataFlow>" + frame("010", "a") + "</DataFlow>", 10), QStringList{"kelDataBlob:a"});
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AFrameWithoutObjectsGivesNothing)
{
    EXPECT_TRUE(read("<DataFlow><Frame frameNumber='1'>" + QByteArray(frameHead) + "</Frame></DataFlow>", 1)
                    .isEmpty());
    EXPECT_EQ(said,
              (QStringList{nameLine("Parameters"), fileLine("p"), nameLine("Synchronization"), hourLine(1),
                           timeLine("01:00:00"), nameLine("")}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AnEmptyFrameGivesNothing)
{
    EXPECT_TRUE(read("<DataFlow><Frame/></DataFlow>", 0).isEmpty());
    EXPECT_EQ(said,
              (QStringList{nameLine(""), fileLine(""), nameLine(""), hourLine(0), timeLine("00:00:00"),
                           nameLine("")}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AnUnknownTypeGivesANullPointer)
{
    EXPECT_EQ(
        read("<DataFlow><Frame>" + QByteArray(frameHead)
                 + "<Data dataType='kelDataActor'/><Data dataType='kelDataBlob'/><Data/></Frame></DataFlow>",
             0),
        (QStringList{"null", "kelDataBlob:noKey", "null"}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, NamesAreSaidAndNeverChecked)
{
    const QByteArray document =
        "<Root><!-- c --><F frameNumber='5'>text<!-- c --><A file='f'/>text<B timeHour='2'/>"
        "<!-- c --><C dataType='kelDataImage'/><D dataType='kelDataImage'/></F></Root>";
    EXPECT_EQ(read(document, 5), (QStringList{"kelDataImage:", "kelDataImage:"}));
    EXPECT_EQ(said,
              (QStringList{nameLine("A"), fileLine("f"), nameLine("B"), hourLine(2), timeLine("02:00:00"),
                           nameLine("C")}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, MissingPartsOfTheTimeCountAsZero)
{
    EXPECT_EQ(saidAbout("<S timeMin='5'/>").mid(3, 2), (QStringList{hourLine(0), timeLine("00:05:00")}));
    EXPECT_EQ(saidAbout("<S timeHour='23' timeMin='59' timeSec='58' timeMs='999'/>").mid(3, 2),
              (QStringList{hourLine(23), timeLine("23:59:58")}));
    EXPECT_EQ(saidAbout("<S timeHour='4294967295' timeMin='4294967295' timeSec='4294967295'"
                        " timeMs='4294967295'/>")
                  .mid(3, 2),
              (QStringList{hourLine(0), timeLine("00:00:00")}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, ATimeOutOfRangeIsInvalid)
{
    for (const char *part : {"timeHour='25'", "timeHour='25' timeMin='60'"})
        EXPECT_EQ(saidAbout(QByteArray("<S ") + part + "/>").mid(3, 2),
                  (QStringList{hourLine(25), timeLine("")}));
    for (const char *part : {"timeMin='60'", "timeSec='60'", "timeMs='1000'", "timeMs='-1'"})
        EXPECT_EQ(saidAbout(QByteArray("<S ") + part + "/>").mid(3, 2),
                  (QStringList{hourLine(0), timeLine("")}))
            << part;
    EXPECT_EQ(saidAbout("<S timeHour='-1'/>").mid(3, 2), (QStringList{hourLine(-1), timeLine("")}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, TextsStandBetweenQuotesAsTheyAre)
{
    read("<DataFlow><Frame><Parameters file='a&quot;b\\c&#10;d'/></Frame></DataFlow>", 0);
    EXPECT_EQ(said.value(1), fileLine("a\"b\\c\nd"));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AFileOfThreeRecordsGivesThreeObjectsInOrder)
{
    write("run.dat", record("kelDataBlob", 1) + record("kelDataImage", 2) + record("kelDataBlob", 3));
    reader.setDir("run.dat");
    MessageCapture messages;
    const Objects objects(reader.getDataFlow());
    EXPECT_EQ(objects.words(), (QStringList{"kelDataBlob k=1", "kelDataImage k=2", "kelDataBlob k=3"}));
    EXPECT_EQ(messages.lines(),
              (QStringList{dataTypeLine("kelDataBlob"), dataTypeLine("kelDataImage"),
                           dataTypeLine("kelDataBlob")}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, UnknownTypesInAFileOfRecordsGiveNullPointers)
{
    write("run.dat", record("kelDataActor", 1) + record("kelDataBlob", 2) + record("", 3));
    reader.setDir("run.dat");
    MessageCapture messages;
    const Objects objects(reader.getDataFlow());
    EXPECT_EQ(objects.words(), (QStringList{"null", "kelDataBlob k=2", "null"}));
    EXPECT_EQ(messages.lines(),
              (QStringList{dataTypeLine("kelDataActor"), dataTypeLine("kelDataBlob"), dataTypeLine("")}));
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AFileThatCannotBeOpenedGivesNothingAndSaysNothing)
{
    MessageCapture messages;
    reader.setDir("missing.dat");
    EXPECT_TRUE(reader.getDataFlow().isEmpty());
    reader.setDir(path(""));
    EXPECT_TRUE(reader.getDataFlow().isEmpty());
    write("empty.dat", "");
    reader.setDir("empty.dat");
    EXPECT_TRUE(reader.getDataFlow().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataFlowReaderTest, ATruncatedFileEndsWithWhatTheLastRecordGave)
{
    const QByteArray whole = record("kelDataBlob", 1);
    const QByteArray last = kelDataFlowRecord{"kelDataBlob", {{"a", 1}, {"b", 2}}}.encoded();
    reader.setDir("run.dat");
    MessageCapture messages;
    write("run.dat", whole + last.left(last.size() - 1));
    EXPECT_EQ(Objects(reader.getDataFlow()).words(), (QStringList{"kelDataBlob k=1", "kelDataBlob b=2"}));
    write("run.dat", whole + last.left(30)); // in the count of entries
    EXPECT_EQ(Objects(reader.getDataFlow()).words(), (QStringList{"kelDataBlob k=1", "kelDataBlob"}));
    write("run.dat", whole + last.left(10)); // in the type
    EXPECT_EQ(Objects(reader.getDataFlow()).words(), (QStringList{"kelDataBlob k=1", "null"}));
    write("run.dat", whole + last.left(1));
    EXPECT_EQ(Objects(reader.getDataFlow()).words(), (QStringList{"kelDataBlob k=1", "null"}));
    EXPECT_EQ(messages.count(dataTypeLine("")), 2);
}

TEST_F(kelAbstractProcessDataFlowReaderTest, AForeignFileIsReadToItsEnd)
{
    reader.setDir("run.dat");
    MessageCapture messages;
    write("run.dat", QByteArray(8 * 100, '\0'));
    EXPECT_EQ(Objects(reader.getDataFlow()).list.size(), 100);
    for (const char character : {'\x01', '\x7f', '\xff', 'x'}) {
        write("run.dat", QByteArray(1000, character));
        EXPECT_FALSE(Objects(reader.getDataFlow()).list.isEmpty());
    }
}

TEST_F(kelAbstractProcessDataFlowReaderTest, TheBinaryFileIsDirDirectlyFollowedByTheFileName)
{
    ASSERT_TRUE(QDir().mkdir("data"));
    write("data/run1.dat", record("kelDataBlob", 1));
    write("datarun1.dat", record("kelDataBlob", 2));
    MessageCapture messages;
    reader.setFile("run1.dat");
    messages.take();

    reader.setDir("data/");
    EXPECT_EQ(Objects(reader.getDataFlow_fromBin()).words(), QStringList{"kelDataBlob k=1"});
    EXPECT_EQ(messages.take(),
              (QStringList{"\"/n filename absolute: data/run1.dat\"", dataTypeLine("kelDataBlob")}));
    reader.setDir("data");
    EXPECT_EQ(Objects(reader.getDataFlow_fromBin()).words(), QStringList{"kelDataBlob k=2"});
    EXPECT_EQ(messages.take(),
              (QStringList{"\"/n filename absolute: datarun1.dat\"", dataTypeLine("kelDataBlob")}));
    reader.setDir("missing/");
    EXPECT_TRUE(reader.getDataFlow_fromBin().isEmpty());
    EXPECT_EQ(messages.take(), QStringList{"\"/n filename absolute: missing/run1.dat\""});
}

TEST_F(kelAbstractProcessDataFlowReaderTest, ARecordedRunIsReplayed)
{
    OutputCapture output;
    kelAbstractProcessDataFlowWriter writer;
    writer.setFilePath(QFile("run.xml"));
    const Data blob(new kelDataBlob);
    QVariantMap map{{"BoundingBox2D", QRect(1, 1, 5, 6)}, {"area", 30}};
    blob->setMap(map);
    MessageCapture messages;
    for (unsigned int i = 0; i < 3; ++i) {
        CSynchronizer stamp;
        stamp.setFrameNumber(i);
        writer.setSynchronizer(stamp);
        writer.setDataFlow(QList<Data>{blob, Data(new kelDataImage)});
        ASSERT_TRUE(writer.writeDataFlow());
    }

    ASSERT_TRUE(reader.setFile("run.xml"));
    Objects ofFrame;
    ASSERT_TRUE(reader.getDataFlow(ofFrame.list, 1));
    ASSERT_EQ(ofFrame.list.size(), 2);
    EXPECT_EQ(ofFrame.list.first()->getMap(), (QVariantMap{{"BoundingBox2D", QRect(1, 1, 5, 6)}}));
    EXPECT_EQ(ofFrame.list.last()->identifier(), "kelDataImage");

    reader.setDir("dataflow.dat");
    const Objects all(reader.getDataFlow());
    ASSERT_EQ(all.list.size(), 6);
    EXPECT_EQ(all.list.at(4)->getMap(), map);
    EXPECT_EQ(all.list.at(5)->identifier(), "kelDataImage");
}
