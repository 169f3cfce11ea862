/// \file
/// What the four stages of the recording and the XML stage share: how they are extended, assigned and laid out,
/// and that they say nothing through the framework's logger.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader_p.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter_p.h>
#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/process/kelAbstractProcessDataReader_p.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/process/kelAbstractProcessDataWriter_p.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter_p.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualSlot.h"

#include <QDataStream>
#include <QDomDocument>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <type_traits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/// A type whose stream operators throw.
struct kelPersistenceTestThrower
{ };
QDataStream &operator<<(QDataStream &out, const kelPersistenceTestThrower &)
{
    Q_UNUSED(out)
    throw 42;
}
QDataStream &operator>>(QDataStream &, kelPersistenceTestThrower &) { throw 43; }
Q_DECLARE_METATYPE(kelPersistenceTestThrower)

namespace {

using Data = QSharedPointer<kelAbstractData>;

/// A stage as a plug-in derives it: with a private object of its own, which copies carry.
template <class Stage, class StagePrivate> class Derived : public Stage
{
public:
    class Private : public StagePrivate
    {
    public:
        int number = 5;
    };

    Derived() : Stage(*new Private) { }
    Derived(const Derived &other) : Stage(*new Private(other.d()), other.parent()) { }
    Derived &operator=(const Derived &other)
    {
        Stage::operator=(other);
        return *this;
    }

    Private &d() const { return static_cast<Private &>(*this->nub_d); }
};

using DerivedReader = Derived<kelAbstractProcessDataReader, kelAbstractProcessDataReaderPrivate>;
using DerivedWriter = Derived<kelAbstractProcessDataWriter, kelAbstractProcessDataWriterPrivate>;
using DerivedFlowReader = Derived<kelAbstractProcessDataFlowReader, kelAbstractProcessDataFlowReaderPrivate>;
using DerivedFlowWriter = Derived<kelAbstractProcessDataFlowWriter, kelAbstractProcessDataFlowWriterPrivate>;

Data blob(QVariantMap map)
{
    Data result(new kelDataBlob);
    result->setMap(map);
    return result;
}

std::unique_ptr<kelAbstractProcessDataFlowWriter> flowWriter(const char *path)
{
    OutputCapture output;
    auto writer = std::make_unique<kelAbstractProcessDataFlowWriter>();
    writer->setFilePath(QFile(path));
    return writer;
}

/// Runs an operation whenever it is asked what it is.
class MeddlingBlob : public kelDataBlob
{
public:
    std::function<void()> action;
    QString identifier() const override
    {
        if (action)
            action();
        return kelDataBlob::identifier();
    }
};

/// A class that derives appends its first operation where its base's table ends.
template <class Derived, class Base> void expectNoOperationsOfItsOwn(const char *name)
{
    struct OfBase : Base
    {
        using Base::Base;
        virtual void probe() { }
    };
    struct OfDerived : Derived
    {
        using Derived::Derived;
        virtual void probe() { }
    };
    EXPECT_EQ(slot(&OfDerived::probe), slot(&OfBase::probe)) << name;
}

template <class Field> const char *place(const Field &field)
{
    return reinterpret_cast<const char *>(&field);
}

} // namespace

template <class Stage> class persistenceModelTest : public TemporaryFolder
{ };
using Stages = testing::Types<DerivedReader, DerivedWriter, DerivedFlowReader, DerivedFlowWriter>;
TYPED_TEST_SUITE(persistenceModelTest, Stages);

TYPED_TEST(persistenceModelTest, AClassCanDeriveWithAPrivateObjectOfItsOwn)
{
    OutputCapture output;
    TypeParam stage;
    EXPECT_EQ(stage.d().number, 5);
    EXPECT_EQ(stage.d().q_ptr, &stage);
    EXPECT_EQ(output.take(), ""); // and neither prints nor waits
    stage.d().number = 6;
    stage.setSpecificParameters({{"k", 1}});
    const TypeParam copy(stage);
    EXPECT_EQ(copy.d().number, 6);
    EXPECT_EQ(copy.d().q_ptr, &copy);
    EXPECT_EQ(copy.getSpecificParameters(), (QVariantMap{{"k", 1}}));
    EXPECT_NE(&copy.d(), &stage.d());
}

TYPED_TEST(persistenceModelTest, AssignmentCallsTheVirtualCopyAndCarriesTheFrameworksPart)
{
    struct Counting : TypeParam
    {
        void copy(const nubAbstractObject &other) override
        {
            ++copies;
            TypeParam::copy(other);
        }
        Counting &operator=(const Counting &other)
        {
            TypeParam::operator=(other);
            return *this;
        }
        int copies = 0;
    };
    Counting one, two;
    one.d().properties["p"] = "v";
    one.setSpecificParameters({{"k", 1}});
    CSynchronizer stamp;
    stamp.setFrameNumber(7);
    one.setSynchronizer(stamp);
    two = one;
    EXPECT_EQ(two.copies, 1);
    EXPECT_EQ(two.d().properties.value("p"), "v");
    EXPECT_TRUE(two.getSpecificParameters().isEmpty());
    EXPECT_EQ(two.getSynchronizer().getFrameNumber(), 0u);
    Counting &itself = two;
    two = itself;
    EXPECT_EQ(two.d().properties.value("p"), "v");
}

using persistenceTest = TemporaryFolder;

TEST_F(persistenceTest, AssigningAFlowWriterLeavesItsSettingsAndItsStateAlone)
{
    const auto one = flowWriter("one.xml");
    DerivedFlowWriter two;
    MessageCapture messages;
    one->setDataFlow(blob({}));
    static_cast<kelAbstractProcessDataFlowWriter &>(two) = *one;
    EXPECT_FALSE(two.userFlag1);
    EXPECT_EQ(two.userValue1, 0);
    EXPECT_EQ(two.userValue2, 0);
    EXPECT_FALSE(two.userFlag2);
    EXPECT_EQ(two.getFilePath().fileName(), "");
    EXPECT_TRUE(two.d().dataFlow.isEmpty());
    EXPECT_NE(two.d().dataWriter, nullptr);

    static_cast<kelAbstractProcessDataFlowWriter &>(*one) = two;
    EXPECT_TRUE(one->userFlag1);
    EXPECT_EQ(one->userValue1, 1);
    EXPECT_EQ(one->getFilePath().fileName(), "one.xml");
}

TEST_F(persistenceTest, AssigningAFlowReaderLeavesItsFlagAndItsNamesAlone)
{
    kelAbstractProcessDataFlowReader one, two;
    MessageCapture messages;
    one.setDir("one");
    one.setFile("one.xml");
    one.userFlag = false;
    two = one;
    EXPECT_TRUE(two.userFlag);
    EXPECT_EQ(two.getDir(), "");
    EXPECT_EQ(two.getFile(), "");
}

TEST_F(persistenceTest, AssigningAWriterLeavesItsObjectAlone)
{
    kelAbstractProcessDataWriter one, two;
    one.setData(blob({{"k", 1}}));
    two.setData(blob({{"k", 2}}));
    two = one;
    EXPECT_TRUE(two.writeDataBin());
    EXPECT_EQ(content("dataflow.dat"), (kelDataFlowRecord{"kelDataBlob", {{"k", 2}}}.encoded()));
}

TEST_F(persistenceTest, TheEncodersAddNoVirtualOperations)
{
    expectNoOperationsOfItsOwn<kelAbstractProcessDataReader, kelAbstractProcess>("reader");
    expectNoOperationsOfItsOwn<kelAbstractProcessDataWriter, kelAbstractProcess>("writer");
}

TEST_F(persistenceTest, ThePrivateFieldsStandInTheirOrder)
{
    DerivedFlowWriter writer;
    const auto &w = writer.d();
    EXPECT_LT(place(w.filePath), place(w.dataFlow));
    EXPECT_LT(place(w.dataFlow), place(w.dataWriter));
    EXPECT_LT(place(w.dataWriter), place(w.document));
    EXPECT_LT(place(w.specificParameters), place(w.filePath));
    DerivedFlowReader reader;
    const auto &r = reader.d();
    EXPECT_LT(place(r.file), place(r.dataReader));
    EXPECT_LT(place(r.dataReader), place(r.dir));
    EXPECT_LT(place(r.specificParameters), place(r.file));
    DerivedWriter encoder;
    EXPECT_LT(place(encoder.d().specificParameters), place(encoder.d().data));
    static_assert(std::is_same_v<decltype(w.filePath), QFile>);
    static_assert(std::is_same_v<decltype(w.dataFlow), QList<Data>>);
    static_assert(std::is_same_v<decltype(w.dataWriter), kelAbstractProcessDataWriter *>);
    static_assert(std::is_same_v<decltype(w.document), QDomDocument>);
    static_assert(std::is_same_v<decltype(r.file), QFile>);
    static_assert(std::is_same_v<decltype(r.dataReader), kelAbstractProcessDataReader *>);
    static_assert(std::is_same_v<decltype(r.dir), QString>);
    static_assert(std::is_same_v<decltype(encoder.d().data), Data>);
}

TEST_F(persistenceTest, CopiesOfAFlowWriterShareTheEncoderAndFlowReadersHaveTheirOwn)
{
    DerivedFlowReader reader;
    const DerivedFlowReader readerCopy(reader);
    EXPECT_NE(reader.d().dataReader, nullptr);
    EXPECT_NE(readerCopy.d().dataReader, nullptr);
    EXPECT_NE(readerCopy.d().dataReader, reader.d().dataReader);
    auto writer = std::make_unique<DerivedFlowWriter>();
    DerivedFlowWriter writerCopy(*writer);
    EXPECT_EQ(writerCopy.d().dataWriter, writer->d().dataWriter);
    writer.reset();
    writerCopy.d().dataWriter->setData(blob({}));
    EXPECT_TRUE(writerCopy.d().dataWriter->writeDataBin());
}

TEST_F(persistenceTest, TheFrameworksLoggerIsLeftAloneByEveryOperation)
{
    const auto writer = flowWriter("run.xml");
    const LogLevel everything(0);
    MessageCapture messages;
    writer->setDataFlow(QList<Data>{blob({{"k", QRect(1, 1, 2, 2)}})});
    writer->setDataFlow(blob({{"bad", QVariant::fromValue<QObject *>(nullptr)}}));
    writer->writeDataFlow();
    write("bad.xml", "no markup");
    writer->setFilePath(QFile("bad.xml"));
    writer->writeDataFlow();
    kelAbstractProcessDataFlowReader reader;
    reader.setFile("missing.xml");
    QList<kelAbstractData *> objects;
    reader.getDataFlow(objects, 0);
    reader.setFile("run.xml");
    reader.getDataFlow(objects, 0);
    reader.setDir("dataflow.dat");
    objects += reader.getDataFlow();
    objects += reader.getDataFlow_fromBin();
    reader.HasReachedWantedStartTime();
    reader.HasReachedWantedStopTime();
    static const QStringList own{"dataflow setted",
                                 "\n xml entry added",
                                 "entry \"bad\" of type",
                                 "\n creation of",
                                 "\n file created",
                                 "\n frame saved",
                                 "\n xml file content",
                                 "\n error xml file",
                                 "error opening xml",
                                 "\n nodeName: ",
                                 "\n parameters file: ",
                                 "\n hour: ",
                                 "\n dataTime: ",
                                 "\n content of xml",
                                 "\n this is the datatype: ",
                                 "\"/n filename",
                                 "\""};
    for (const QString &line : messages.lines())
        EXPECT_TRUE(std::any_of(own.begin(), own.end(), [&](const QString &text) {
            return line.startsWith(text);
        })) << line.toStdString();
    EXPECT_GE(messages.lines().size(), 20);
    messages.take();
    const LogLevel nothing(1000);
    reader.setFile("missing.xml");
    EXPECT_EQ(messages.lines().size(), 1); // and its level does not matter
    qDeleteAll(objects);
}

TEST_F(persistenceTest, AFolderIsNoFileForTheReader)
{
    ASSERT_TRUE(QDir().mkdir("folder"));
    ASSERT_EQ(symlink("folder", "link"), 0);
    kelAbstractProcessDataFlowReader reader;
    MessageCapture messages;
    for (const char *name : {"folder", "link", "."}) {
        EXPECT_FALSE(reader.setFile(name)) << name;
        EXPECT_EQ(messages.take(), QStringList{"\n error xml file !exist "});
        EXPECT_EQ(reader.getFile(), name);
    }
    EXPECT_TRUE(reader.setFile("/dev/null"));
}

TEST_F(persistenceTest, TheReadersOpenTheirFilesReadOnly)
{
    const auto writer = flowWriter("run.xml");
    MessageCapture messages;
    writer->setDataFlow(blob({{"k", 1}}));
    ASSERT_TRUE(writer->writeDataFlow());
    write("scene.xml", "<scene/>");
    const char *const names[] = {"run.xml", "dataflow.dat", "scene.xml"};
    timespec old[2] = {{1, 0}, {1, 0}};
    for (const char *name : names) {
        ASSERT_EQ(chmod(name, 0444), 0);
        ASSERT_EQ(utimensat(AT_FDCWD, name, old, 0), 0);
    }
    ASSERT_EQ(chmod(".", 0555), 0);
    EXPECT_TRUE(inChild([] {
        MessageCapture quiet;
        kelAbstractProcessDataFlowReader reader;
        QList<kelAbstractData *> objects;
        reader.setDir("dataflow.dat");
        struct Scene : kelAbstractProcessXMLReaderWriter
        {
            bool parsePhysicalObjects() override { return false; }
            bool parseActors() override { return false; }
            bool writePhysicalObjects() override { return false; }
            bool writeActors() override { return false; }
            bool isLoaded() const
            {
                return !static_cast<kelAbstractProcessXMLReaderWriterPrivate &>(*nub_d).document.isNull();
            }
        } scene;
        scene.setInputXML("scene.xml");
        return becomeNobody() && reader.setFile("run.xml") && reader.getDataFlow(objects, 0)
            && reader.getDataFlow().size() == 1 && scene.isLoaded();
    }));
    ASSERT_EQ(chmod(".", 0700), 0);
    for (const char *name : names) {
        struct stat status;
        ASSERT_EQ(stat(name, &status), 0);
        EXPECT_EQ(status.st_mtime, 1) << name;
    }
}

TEST_F(persistenceTest, TheWordOfTheFlowWriterComesBeforeItWaits)
{
    int input[2], output[2];
    ASSERT_EQ(pipe(input), 0);
    ASSERT_EQ(pipe(output), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(input[0], STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        std::clearerr(stdin);
        const kelAbstractProcessDataFlowWriter writer;
        _exit(::write(output[1], "built", 5) == 5 ? 0 : 1);
    }
    close(output[1]);
    const std::string word = "forcing param\n";
    std::string said;
    char byte;
    while (said.size() < word.size() && read(output[0], &byte, 1) == 1)
        said += byte;
    EXPECT_EQ(said, word); // and nobody has typed yet
    EXPECT_EQ(::write(input[1], "x", 1), 1);
    said.clear();
    while (read(output[0], &byte, 1) == 1)
        said += byte;
    EXPECT_EQ(said, "built");
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    for (const int end : {input[0], input[1], output[0]})
        close(end);
}

TEST_F(persistenceTest, TheDataTypeIsSaidBeforeTheMapIsRead)
{
    qRegisterMetaType<kelPersistenceTestThrower>("kelPersistenceTestThrower"); // which ends the reading
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaTypeStreamOperators<kelPersistenceTestThrower>("kelPersistenceTestThrower");
#endif
    QByteArray record = kelDataFlowRecord{"kelDataBlob", {{"k", QVariant()}}}.encoded();
    record.chop(9);
    record += QByteArray::fromHex("0000007f000000001a") + QByteArray("kelPersistenceTestThrower", 26);
    QDataStream in(record);
    in.setVersion(QDataStream::Qt_5_0);
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    EXPECT_THROW(reader.readData(in), int);
    EXPECT_EQ(messages.lines(), QStringList{"\n this is the datatype:  \"kelDataBlob\""});
    EXPECT_EQ(in.version(), QDataStream::Qt_5_0);
}

TEST_F(persistenceTest, AnExceptionOfAnApplicationsTypePassesAndTheNextFrameIsWhole)
{
    qRegisterMetaType<kelPersistenceTestThrower>("kelPersistenceTestThrower");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaTypeStreamOperators<kelPersistenceTestThrower>("kelPersistenceTestThrower");
#endif
    const auto writer = flowWriter("run.xml");
    MessageCapture messages;
    writer->setDataFlow(QList<Data>{blob({{"k", 1}})});
    ASSERT_TRUE(writer->writeDataFlow());
    const QByteArray before = content("run.xml");
    const QByteArray record = content("dataflow.dat");
    writer->setDataFlow(QList<Data>{blob({{"k", QVariant::fromValue(kelPersistenceTestThrower())}})});
    EXPECT_THROW(writer->writeDataFlow(), int);
    EXPECT_EQ(content("run.xml"), before);
    EXPECT_EQ(content("dataflow.dat"), record);
    writer->setDataFlow(QList<Data>{blob({{"k", 1}})});
    ASSERT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(content("run.xml").count("<Data "), 2);
    EXPECT_EQ(content("dataflow.dat"), record + record);
}

TEST_F(persistenceTest, AnObjectMayChangeTheWriterWhileItIsWritten)
{
    const auto writer = flowWriter("run.xml");
    const QSharedPointer<MeddlingBlob> first(new MeddlingBlob);
    MessageCapture messages;
    first->action = [&] {
        first->action = nullptr;
        writer->setDataFlow(QList<Data>());
        for (int i = 0; i < 100; ++i)
            writer->setDataFlow(blob({{"other", i}}));
        writer->setFilePath(QFile("elsewhere.xml"));
        writer->xmlGen();
        CSynchronizer stamp;
        stamp.setFrameNumber(9);
        writer->setSynchronizer(stamp);
    };
    writer->setDataFlow(QList<Data>{first, blob({{"second", 1}})});
    EXPECT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(content("run.xml").count("<Data "), 2);
    EXPECT_EQ(content("run.xml").count("key=\"second\""), 1);
    EXPECT_EQ(content("run.xml").count("key=\"other\""), 0);
    EXPECT_EQ(content("elsewhere.xml"), "<DataFlow/>\n");
}

TEST_F(persistenceTest, AnObjectMayGiveTheEncoderAnotherOneWhileItIsWritten)
{
    kelAbstractProcessDataWriter writer;
    QSharedPointer<MeddlingBlob> first(new MeddlingBlob);
    const auto action = [&writer] { writer.setData(blob({{"other", 1}})); };
    first->action = action;
    writer.setData(first);
    first.reset();
    MessageCapture messages;
    QDomDocument document;
    const QDomElement element = writer.writeData(document);
    EXPECT_EQ(element.attribute("dataType"), "kelDataBlob");
    EXPECT_FALSE(element.hasChildNodes());
    EXPECT_TRUE(writer.writeDataBin());
}
