#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"

#include <QDataStream>
#include <QDomDocument>
#include <QLoggingCategory>

#include <memory>

namespace {

using Object = std::unique_ptr<kelAbstractData>;

QString dataTypeLine(const QString &type) { return "\n this is the datatype:  \"" + type + '"'; }
QString valueLine(const QString &value) { return "\n content of xml data entry:  \"" + value + '"'; }

/// What the reader makes of a "Data" element.
Object fromXml(const char *element, MessageCapture *messages = nullptr)
{
    QDomDocument document;
    EXPECT_TRUE(document.setContent(QByteArray(element)));
    kelAbstractProcessDataReader reader;
    if (messages)
        messages->take();
    return Object(reader.readData(document.documentElement()));
}

/// The map of the blob that the reader makes of a single entry.
QVariantMap mapOf(const char *entry)
{
    const QByteArray element = QByteArray("<Data dataType=\"kelDataBlob\">") + entry + "</Data>";
    const Object object = fromXml(element.constData());
    EXPECT_NE(qobject_cast<kelDataBlob *>(object.get()), nullptr);
    return object ? object->getMap() : QVariantMap();
}

QRect corners(int left, int top, int right, int bottom) { return {QPoint(left, top), QPoint(right, bottom)}; }

} // namespace

TEST(kelAbstractProcessDataReaderTest, AStageHoldsNothingButThePrivatePointer)
{
    EXPECT_EQ(sizeof(kelAbstractProcessDataReader), sizeof(nubAbstractObject));
    EXPECT_EQ(kelAbstractProcessDataReader().identifier(), "kelAbstractProcessDataReader");
}

TEST(kelAbstractProcessDataReaderTest, ARecordGivesABlobWithTheWholeMap)
{
    const QVariantMap map{{"BoundingBox2D", QRect(1, 2, 3, 4)}, {"area", 12}, {"name", "x"}};
    QDataStream in(kelDataFlowRecord{"kelDataBlob", map}.encoded());
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    const Object object(reader.readData(in));
    ASSERT_NE(qobject_cast<kelDataBlob *>(object.get()), nullptr);
    EXPECT_EQ(object->getMap(), map);
    EXPECT_EQ(object->parent(), nullptr);
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ(messages.lines(), QStringList{dataTypeLine("kelDataBlob")});
}

TEST(kelAbstractProcessDataReaderTest, ARecordGivesAnImageWithTheWholeMap)
{
    const QVariantMap map{{"k", 1}};
    QDataStream in(kelDataFlowRecord{"kelDataImage", map}.encoded());
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    const Object object(reader.readData(in));
    auto *image = qobject_cast<kelDataImage *>(object.get());
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->getMap(), map);
    EXPECT_TRUE(image->getImage().empty());
    EXPECT_EQ(messages.lines(), QStringList{dataTypeLine("kelDataImage")});
}

TEST(kelAbstractProcessDataReaderTest, ReadingContinuesBehindARecordOfAnUnknownType)
{
    QDataStream in(kelDataFlowRecord{"kelDataActor", {{"k", 1}}}.encoded()
                   + kelDataFlowRecord{"kelDataBlob", {{"k", 2}}}.encoded());
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    EXPECT_EQ(Object(reader.readData(in)), nullptr);
    EXPECT_EQ(in.status(), QDataStream::Ok);
    const Object object(reader.readData(in));
    ASSERT_NE(qobject_cast<kelDataBlob *>(object.get()), nullptr);
    EXPECT_EQ(object->getMap(), (QVariantMap{{"k", 2}}));
    EXPECT_EQ(messages.lines(), (QStringList{dataTypeLine("kelDataActor"), dataTypeLine("kelDataBlob")}));
}

TEST(kelAbstractProcessDataReaderTest, TheDataTypeStandsBetweenQuotesAsItIs)
{
    QDataStream in(kelDataFlowRecord{"a\"b\nc\\\u00e9", {}}.encoded());
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    EXPECT_EQ(Object(reader.readData(in)), nullptr);
    EXPECT_EQ(messages.lines(), QStringList{dataTypeLine("a\"b\nc\\\u00e9")});
}

TEST(kelAbstractProcessDataReaderTest, TheCallersStreamVersionIsRestored)
{
    const QVariantMap map{{"k", 1.5}, {"null", QVariant()}};
    for (const int version :
         {int(QDataStream::Qt_4_0), int(QDataStream::Qt_4_8), int(QDataStream::Qt_5_15)}) {
        QDataStream in(kelDataFlowRecord{"kelDataBlob", map}.encoded());
        in.setVersion(version);
        kelAbstractProcessDataReader reader;
        MessageCapture messages;
        const Object object(reader.readData(in));
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(object->getMap(), map);
        EXPECT_EQ(in.version(), version);
    }
}

TEST(kelAbstractProcessDataReaderTest, ATruncatedRecordGivesTheObjectAsFarAsItWasRead)
{
    const QByteArray record = kelDataFlowRecord{"kelDataBlob", {{"a", 1}, {"b", 2}}}.encoded();
    QDataStream in(record.left(record.size() - 1));
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    const Object object(reader.readData(in));
    ASSERT_NE(qobject_cast<kelDataBlob *>(object.get()), nullptr);
    EXPECT_EQ(object->getMap(), (QVariantMap{{"b", 2}}));
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
    EXPECT_EQ(messages.lines(), QStringList{dataTypeLine("kelDataBlob")});
}

TEST(kelAbstractProcessDataReaderTest, AnEmptyStreamGivesNull)
{
    QDataStream in{QByteArray()};
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    EXPECT_EQ(Object(reader.readData(in)), nullptr);
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
    EXPECT_EQ(messages.lines(), QStringList{dataTypeLine("")});
}

TEST(kelAbstractProcessDataReaderTest, NothingIsSaidWhileTheDebugChannelIsOff)
{
    QLoggingCategory *category = QLoggingCategory::defaultCategory();
    const bool enabled = category->isDebugEnabled();
    category->setEnabled(QtDebugMsg, false);
    QDataStream in(kelDataFlowRecord{"kelDataBlob", {{"k", 1}}}.encoded());
    kelAbstractProcessDataReader reader;
    MessageCapture messages;
    const Object object(reader.readData(in));
    const Object other = fromXml("<Data dataType='kelDataBlob'/>");
    category->setEnabled(QtDebugMsg, enabled);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->getMap(), (QVariantMap{{"k", 1}}));
    EXPECT_NE(other, nullptr);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessDataReaderTest, AnElementGivesAnImageWithoutItsEntries)
{
    MessageCapture messages;
    const Object object = fromXml(
        "<Data dataType='kelDataImage'><entry key='k' type='QRect' value='1 1 5 6'/></Data>", &messages);
    auto *image = qobject_cast<kelDataImage *>(object.get());
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(image->getMap().isEmpty());
    EXPECT_TRUE(image->getImage().empty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessDataReaderTest, AnElementOfAnotherTypeGivesNullAndSaysNothing)
{
    MessageCapture messages;
    EXPECT_EQ(fromXml("<Data dataType='kelDataActor'><entry key='k' value='1 1 5 6'/></Data>"), nullptr);
    EXPECT_EQ(fromXml("<Data dataType='KELDATABLOB'/>"), nullptr);
    EXPECT_EQ(fromXml("<Data/>"), nullptr);
    kelAbstractProcessDataReader reader;
    EXPECT_EQ(Object(reader.readData(QDomElement())), nullptr);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessDataReaderTest, TheFourNumbersAreTakenAsInclusiveCorners)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf("<entry key='bbox' type='QRect' value='1 1 5 6'/>"),
              (QVariantMap{{"bbox", QRect(1, 1, 5, 6)}}));
    EXPECT_EQ(mapOf("<entry key='bbox' type='QRect' value='10 20 30 40'/>"),
              (QVariantMap{{"bbox", corners(10, 20, 30, 40)}}));
    EXPECT_EQ(mapOf("<entry key='bbox' type='QRect' value='-7 -8 -9 -10'/>"),
              (QVariantMap{{"bbox", corners(-7, -8, -9, -10)}}));
    EXPECT_EQ(messages.lines(),
              (QStringList{valueLine("1 1 5 6"), valueLine("10 20 30 40"), valueLine("-7 -8 -9 -10")}));
}

TEST(kelAbstractProcessDataReaderTest, TheTypeOfTheEntryIsNotLookedAt)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf("<entry key='k' type='int' value='1 2 3 4'/>"),
              (QVariantMap{{"k", corners(1, 2, 3, 4)}}));
}

TEST(kelAbstractProcessDataReaderTest, AMissingOrUnparsablePartCountsAsZero)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf("<entry key='k' value='1 2'/>").value("k"), corners(1, 2, 0, 0));
    EXPECT_EQ(mapOf("<entry key='k' value='x 2 3.5 4'/>").value("k"), corners(0, 2, 0, 4));
    EXPECT_EQ(mapOf("<entry key='k' value='0x10 010 4294967296 4'/>").value("k"), corners(0, 10, 0, 4));
    EXPECT_EQ(mapOf("<entry key='k' value=''/>").value("k"), corners(0, 0, 0, 0));
    EXPECT_EQ(mapOf("<entry key='k'/>").value("k"), corners(0, 0, 0, 0));
}

TEST(kelAbstractProcessDataReaderTest, EmptyPartsCountAndFurtherPartsDoNot)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf("<entry key='k' value='1  3 4'/>").value("k"), corners(1, 0, 3, 4));
    EXPECT_EQ(mapOf("<entry key='k' value=' 2 3 4'/>").value("k"), corners(0, 2, 3, 4));
    EXPECT_EQ(mapOf("<entry key='k' value='1 2 3 4 5 6'/>").value("k"), corners(1, 2, 3, 4));
}

TEST(kelAbstractProcessDataReaderTest, OnlyTheFirstEntryIsRead)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf("<entry key='a' value='1 2 3 4'/><entry key='b' value='5 6 7 8'/>"),
              (QVariantMap{{"a", corners(1, 2, 3, 4)}}));
    EXPECT_EQ(messages.lines(), QStringList{valueLine("1 2 3 4")});
}

TEST(kelAbstractProcessDataReaderTest, TheFirstChildIsTakenWhateverItIs)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf("<!-- c --><entry key='a' value='1 2 3 4'/>"),
              (QVariantMap{{"noKey", corners(0, 0, 0, 0)}}));
    EXPECT_EQ(mapOf("<other key='a' value='1 2 3 4'/>"), (QVariantMap{{"a", corners(1, 2, 3, 4)}}));
}

TEST(kelAbstractProcessDataReaderTest, ABlobWithoutEntriesGetsANullBoxUnderNoKey)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf(""), (QVariantMap{{"noKey", corners(0, 0, 0, 0)}}));
    EXPECT_EQ(messages.lines(), QStringList{valueLine("")});
}

TEST(kelAbstractProcessDataReaderTest, AMissingKeyIsNoKeyAndAnEmptyOneStays)
{
    MessageCapture messages;
    EXPECT_EQ(mapOf("<entry value='1 2 3 4'/>"), (QVariantMap{{"noKey", corners(1, 2, 3, 4)}}));
    EXPECT_EQ(mapOf("<entry key='' value='1 2 3 4'/>"), (QVariantMap{{"", corners(1, 2, 3, 4)}}));
}

TEST(kelAbstractProcessDataReaderTest, TheValueStandsBetweenQuotesAsItIs)
{
    MessageCapture messages;
    EXPECT_NE(fromXml("<Data dataType='kelDataBlob'><entry value='a&quot;b&#10;c\\'/></Data>", &messages),
              nullptr);
    EXPECT_EQ(messages.lines(), QStringList{valueLine("a\"b\nc\\")});
}

TEST(kelAbstractProcessDataReaderTest, ACopyCarriesTheBaseAndReads)
{
    QObject parent;
    auto *reader = new kelAbstractProcessDataReader;
    reader->setParent(&parent);
    reader->setSpecificParameters({{"k", 1}});
    auto *copy = new kelAbstractProcessDataReader(*reader);
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
    QDataStream in(kelDataFlowRecord{"kelDataBlob", {}}.encoded());
    MessageCapture messages;
    EXPECT_NE(Object(copy->readData(in)), nullptr);
}
