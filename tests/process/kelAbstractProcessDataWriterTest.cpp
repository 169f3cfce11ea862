#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <QDataStream>
#include <QDomDocument>
#include <QRect>

#include <climits>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

/// A type whose stream operators are known to the meta-type system.
struct kelWriterTestPair
{
    int first, second;
};
QDataStream &operator<<(QDataStream &out, const kelWriterTestPair &p) { return out << p.first << p.second; }
QDataStream &operator>>(QDataStream &in, kelWriterTestPair &p) { return in >> p.first >> p.second; }
Q_DECLARE_METATYPE(kelWriterTestPair)

namespace {

using Data = QSharedPointer<kelAbstractData>;

const QString entryAdded = QStringLiteral("\n xml entry added");

Data blob(QVariantMap map)
{
    Data result(new kelDataBlob);
    result->setMap(map);
    return result;
}

QByteArray recordOf(const Data &data)
{
    return kelDataFlowRecord{data->identifier(), data->getMap()}.encoded();
}

/// The attributes of an element, "name=value", sorted by name.
QStringList attributes(const QDomElement &element)
{
    QStringList result;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i)
        result.append(map.item(i).nodeName() + '=' + map.item(i).nodeValue());
    result.sort();
    return result;
}

} // namespace

class kelAbstractProcessDataWriterTest : public TemporaryFolder
{
protected:
    /// Writes `map` as a blob's element.
    QDomElement element(const QVariantMap &map)
    {
        writer.setData(blob(map));
        return writer.writeData(document);
    }

    QString valueText(QVariantMap map, QString typeName)
    {
        return QString::fromUtf8(writer.getDataType(map, typeName));
    }

    kelAbstractProcessDataWriter writer;
    QDomDocument document;
};

TEST_F(kelAbstractProcessDataWriterTest, AStageHoldsNothingButThePrivatePointer)
{
    EXPECT_EQ(sizeof(kelAbstractProcessDataWriter), sizeof(nubAbstractObject));
    EXPECT_EQ(writer.identifier(), "kelAbstractProcessDataWriter");
    EXPECT_EQ(writer.parent(), nullptr);
}

TEST_F(kelAbstractProcessDataWriterTest, TheElementHoldsTheTypeAndOneEntryPerKeyInAscendingOrder)
{
    MessageCapture messages;
    const QDomElement data =
        element({{"b", 1.5}, {"a", QRect(10, 20, 30, 40)}, {"C", "x"}, {"d", 7}, {"e", QVariant()}});
    EXPECT_EQ(data.tagName(), "Data");
    EXPECT_EQ(attributes(data), QStringList{"dataType=kelDataBlob"});
    ASSERT_EQ(data.childNodes().count(), 5);
    QStringList entries;
    for (int i = 0; i < 5; ++i) {
        const QDomElement entry = data.childNodes().at(i).toElement();
        EXPECT_EQ(entry.tagName(), "entry");
        EXPECT_FALSE(entry.hasChildNodes());
        entries.append(attributes(entry).join(' '));
    }
    EXPECT_EQ(entries,
              (QStringList{"key=C type=QString value=", "key=a type=QRect value=0 0 0 0",
                           "key=b type=double value=", "key=d type=int value=", "key=e type= value="}));
}

TEST_F(kelAbstractProcessDataWriterTest, TheElementStandsAtTheTopOfTheDocumentUntilItIsMoved)
{
    MessageCapture messages;
    QDomElement root = document.createElement("root");
    document.appendChild(root);
    const QDomElement data = element({});
    EXPECT_EQ(data.parentNode(), document);
    EXPECT_EQ(document.lastChild(), data);
    root.appendChild(data);
    EXPECT_EQ(data.parentNode(), root);
    EXPECT_EQ(document.childNodes().count(), 1);
}

TEST_F(kelAbstractProcessDataWriterTest, AnObjectWithAnEmptyMapHasNoEntriesAndStillIsRecorded)
{
    MessageCapture messages;
    writer.setData(Data(new kelDataImage));
    const QDomElement data = writer.writeData(document);
    EXPECT_EQ(attributes(data), QStringList{"dataType=kelDataImage"});
    EXPECT_FALSE(data.hasChildNodes());
    EXPECT_EQ(messages.lines(), QStringList{entryAdded});
    EXPECT_EQ(content("dataflow.dat").toHex(),
              "00000018006b0065006c00440061007400610049006d00610067006500000000");
}

TEST_F(kelAbstractProcessDataWriterTest, OneLineIsPrintedHoweverManyEntries)
{
    MessageCapture messages;
    element({{"a", 1}, {"b", 2}, {"c", 3}});
    EXPECT_EQ(messages.lines(), QStringList{entryAdded});
}

TEST_F(kelAbstractProcessDataWriterTest, EveryBoxIsGivenTheTextOfTheFirstEntry)
{
    MessageCapture messages;
    const QDomElement data =
        element({{"a", QRect(1, 2, 3, 4)}, {"b", 5}, {"c", QRect(6, 7, 8, 9)}, {"d", "x"}});
    ASSERT_EQ(data.childNodes().count(), 4);
    QStringList values;
    for (int i = 0; i < 4; ++i)
        values.append(data.childNodes().at(i).toElement().attribute("value", "missing"));
    EXPECT_EQ(values, (QStringList{"1 2 3 4", "", "1 2 3 4", ""}));
}

TEST_F(kelAbstractProcessDataWriterTest, ABoxBehindANumberIsWrittenAsZeros)
{
    MessageCapture messages;
    const QDomElement data = element({{"bbox", QRect(10, 20, 30, 40)}, {"area", 1200}});
    ASSERT_EQ(data.childNodes().count(), 2);
    EXPECT_EQ(attributes(data.firstChildElement()), (QStringList{"key=area", "type=int", "value="}));
    EXPECT_EQ(attributes(data.lastChildElement()), (QStringList{"key=bbox", "type=QRect", "value=0 0 0 0"}));
}

TEST_F(kelAbstractProcessDataWriterTest, TheTextOfABoxIsLeftTopWidthHeight)
{
    EXPECT_EQ(valueText({{"k", QRect(10, 20, 30, 40)}}, "QRect"), "10 20 30 40");
    EXPECT_EQ(valueText({{"k", QRect(-5, -6, 0, -7)}}, "QRect"), "-5 -6 0 -7");
    EXPECT_EQ(valueText({{"k", QRect(QPoint(1, 1), QPoint(5, 6))}}, "QRect"), "1 1 5 6");
    EXPECT_EQ(valueText({{"k", QRect()}}, "QRect"), "0 0 0 0");
}

TEST_F(kelAbstractProcessDataWriterTest, TheTextOfABoxAtTheEndsOfTheRangeWrapsAround)
{
    EXPECT_EQ(valueText({{"k", QRect(QPoint(INT_MIN, INT_MIN), QPoint(INT_MAX, -1))}}, "QRect"),
              "-2147483648 -2147483648 0 -2147483648");
}

TEST_F(kelAbstractProcessDataWriterTest, AFirstEntryThatIsNoBoxIsConvertedOrCountsAsNull)
{
    EXPECT_EQ(valueText({{"k", QRectF(1, 2, 3, 4)}}, "QRect"), "1 2 3 4");
    EXPECT_EQ(valueText({{"k", 5}}, "QRect"), "0 0 0 0");
    EXPECT_EQ(valueText({{"k", "1 2 3 4"}}, "QRect"), "0 0 0 0");
    EXPECT_EQ(valueText({{"k", QVariant()}}, "QRect"), "0 0 0 0");
    EXPECT_EQ(valueText({}, "QRect"), "0 0 0 0");
}

TEST_F(kelAbstractProcessDataWriterTest, AnyOtherTypeNameGivesTheEmptyText)
{
    const QVariantMap map{{"k", QRect(1, 2, 3, 4)}};
    for (const char *name : {"int", "QString", "double", "QRectF", "qrect", "QRect ", ""})
        EXPECT_EQ(valueText(map, name), "") << name;
}

TEST_F(kelAbstractProcessDataWriterTest, GetDataTypeLeavesItsArgumentsAlone)
{
    QVariantMap map{{"a", 1}, {"b", QRect(1, 2, 3, 4)}};
    QString typeName = "QRect";
    writer.getDataType(map, typeName);
    EXPECT_EQ(map, (QVariantMap{{"a", 1}, {"b", QRect(1, 2, 3, 4)}}));
    EXPECT_EQ(typeName, "QRect");
}

TEST_F(kelAbstractProcessDataWriterTest, WriteDataAppendsTheRecordBehindItsMessage)
{
    MessageCapture messages;
    element({{"BoundingBox2D", QRect(10, 20, 30, 40)}});
    EXPECT_EQ(content("dataflow.dat").toHex(),
              "00000016006b0065006c00440061007400610042006c006f0062000000010000001a0042006f0075006e0064"
              "0069006e00670042006f00780032004400000013000000000a00000014000000270000003b");
}

TEST_F(kelAbstractProcessDataWriterTest, WritingTwiceAppendsTwoIdenticalRecords)
{
    const Data data = blob({{"k", 1}});
    writer.setData(data);
    MessageCapture messages;
    EXPECT_TRUE(writer.writeDataBin());
    const QByteArray once = content("dataflow.dat");
    EXPECT_EQ(once, recordOf(data));
    EXPECT_TRUE(writer.writeDataBin());
    EXPECT_EQ(content("dataflow.dat"), once + once);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataWriterTest, WhatTheFileHeldStaysInFront)
{
    write("dataflow.dat", "foreign");
    const Data data = blob({});
    writer.setData(data);
    EXPECT_TRUE(writer.writeDataBin());
    EXPECT_EQ(content("dataflow.dat"), "foreign" + recordOf(data));
}

TEST_F(kelAbstractProcessDataWriterTest, TheFileIsInTheWorkingDirectoryOfTheMoment)
{
    const Data data = blob({});
    writer.setData(data);
    ASSERT_TRUE(QDir().mkdir("sub"));
    QDir::setCurrent(path("sub"));
    EXPECT_TRUE(writer.writeDataBin());
    EXPECT_EQ(content(path("sub/dataflow.dat")), recordOf(data));
    EXPECT_FALSE(QFile::exists(path("dataflow.dat")));
}

TEST_F(kelAbstractProcessDataWriterTest, TheObjectIsSharedWithTheCaller)
{
    const Data data = blob({{"k", 1}});
    writer.setData(data);
    QVariantMap later{{"k", 2}};
    data->setMap(later);
    EXPECT_TRUE(writer.writeDataBin());
    EXPECT_EQ(content("dataflow.dat"), recordOf(data));
}

TEST_F(kelAbstractProcessDataWriterTest, SettingAnotherObjectReleasesThePreviousOne)
{
    Data data = blob({});
    const QWeakPointer<kelAbstractData> watched(data);
    writer.setData(data);
    data.reset();
    EXPECT_FALSE(watched.isNull());
    writer.setData(blob({}));
    EXPECT_TRUE(watched.isNull());
}

TEST_F(kelAbstractProcessDataWriterTest, WithoutAnObjectNothingIsWritten)
{
    MessageCapture messages;
    EXPECT_TRUE(writer.writeData(document).isNull());
    EXPECT_FALSE(writer.writeDataBin());
    EXPECT_FALSE(document.hasChildNodes());
    EXPECT_FALSE(QFile::exists("dataflow.dat"));
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataWriterTest, ACopySharesTheObjectAndCarriesTheBase)
{
    QObject parent;
    auto *source = new kelAbstractProcessDataWriter;
    source->setParent(&parent);
    const Data data = blob({{"k", 1}});
    source->setData(data);
    source->setSpecificParameters({{"p", 1}});
    auto *copy = new kelAbstractProcessDataWriter(*source);
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"p", 1}}));

    source->setData(blob({}));
    QVariantMap later{{"k", 2}};
    data->setMap(later);
    EXPECT_TRUE(copy->writeDataBin());
    EXPECT_EQ(content("dataflow.dat"), recordOf(data));
}

TEST_F(kelAbstractProcessDataWriterTest, AFileThatCannotBeOpenedIsReportedByTheResultAlone)
{
    ASSERT_TRUE(QDir().mkdir("dataflow.dat"));
    writer.setData(blob({{"k", 1}}));
    MessageCapture messages;
    EXPECT_FALSE(writer.writeDataBin());
    EXPECT_TRUE(messages.take().isEmpty());

    const QDomElement data = writer.writeData(document);
    EXPECT_EQ(data.childNodes().count(), 1);
    EXPECT_EQ(messages.lines(), QStringList{entryAdded});
}

TEST_F(kelAbstractProcessDataWriterTest, AFileThatMayNotBeWrittenStaysAsItIs)
{
    write("dataflow.dat", "kept");
    ASSERT_EQ(chmod("dataflow.dat", 0444), 0);
    ASSERT_EQ(chmod(".", 0777), 0);
    writer.setData(blob({}));
    EXPECT_TRUE(inChild([this] { return becomeNobody() && !writer.writeDataBin(); }));
    EXPECT_EQ(content("dataflow.dat"), "kept");
}

TEST_F(kelAbstractProcessDataWriterTest, AFullDiskMakesWritingFail)
{
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no such device here";
    ASSERT_EQ(symlink("/dev/full", "dataflow.dat"), 0);
    writer.setData(blob({{"k", 1}}));
    MessageCapture messages;
    EXPECT_FALSE(writer.writeDataBin());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessDataWriterTest, APartOfARecordNeverStays)
{
    const Data data = blob({{"k", QString(500, 'x')}});
    const QByteArray record = recordOf(data);
    writer.setData(data);
    ASSERT_TRUE(writer.writeDataBin());
    EXPECT_TRUE(
        inChild([&] { return limitFileSize(record.size() + record.size() / 2) && !writer.writeDataBin(); }));
    EXPECT_EQ(content("dataflow.dat"), record);
    EXPECT_TRUE(writer.writeDataBin()); // and later records follow it as if nothing had happened
    EXPECT_EQ(content("dataflow.dat"), record + record);
}

TEST_F(kelAbstractProcessDataWriterTest, AValueWithoutStreamOperatorsIsRefusedBeforeAnythingIsWritten)
{
    const QVariant object = QVariant::fromValue<QObject *>(nullptr);
    const QVariantMap maps[] = {
        {{"a", 1}, {"bad", object}},
        {{"a", QVariantMap{{"bad", object}}}},
        {{"bad", QVariantList{object}}},
    };
    MessageCapture messages;
    for (const QVariantMap &map : maps) {
        writer.setData(blob(map));
        EXPECT_FALSE(writer.writeDataBin());
        ASSERT_EQ(messages.lines().size(), 1);
        EXPECT_TRUE(messages.lines().first().contains("\"bad\"")) << messages.lines().first().toStdString();
        EXPECT_TRUE(messages.lines().first().contains("QObject*")) << messages.lines().first().toStdString();
        EXPECT_FALSE(QFile::exists("dataflow.dat"));
        messages.take();
    }

    write("dataflow.dat", "kept");
    const QDomElement data = element({{"bad", object}});
    EXPECT_EQ(content("dataflow.dat"), "kept");
    EXPECT_EQ(attributes(data.firstChildElement()), (QStringList{"key=bad", "type=QObject*", "value="}));
    ASSERT_EQ(messages.lines().size(), 2);
    EXPECT_EQ(messages.lines().first(), entryAdded);
    EXPECT_TRUE(messages.lines().last().contains("\"bad\""));
}

TEST_F(kelAbstractProcessDataWriterTest, AUserTypeWithStreamOperatorsIsReadBack)
{
    qRegisterMetaType<kelWriterTestPair>("kelWriterTestPair");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaTypeStreamOperators<kelWriterTestPair>("kelWriterTestPair");
#endif
    MessageCapture messages;
    const QDomElement data = element({{"k", QVariant::fromValue(kelWriterTestPair{3, 4})}});
    EXPECT_EQ(attributes(data.firstChildElement()),
              (QStringList{"key=k", "type=kelWriterTestPair", "value="}));

    QDataStream in(content("dataflow.dat"));
    kelAbstractProcessDataReader reader;
    const std::unique_ptr<kelAbstractData> read(reader.readData(in));
    ASSERT_NE(read, nullptr);
    const auto pair = read->getMap().value("k").value<kelWriterTestPair>();
    EXPECT_EQ(pair.first, 3);
    EXPECT_EQ(pair.second, 4);
    EXPECT_TRUE(in.atEnd());
}

TEST_F(kelAbstractProcessDataWriterTest, ABoxSurvivesTheElementOnlyWhenItsLeftAndTopAreOne)
{
    MessageCapture messages;
    kelAbstractProcessDataReader reader;
    const std::unique_ptr<kelAbstractData> kept(reader.readData(element({{"k", QRect(1, 1, 5, 6)}})));
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->getMap().value("k"), QRect(1, 1, 5, 6));
    const std::unique_ptr<kelAbstractData> other(reader.readData(element({{"k", QRect(10, 20, 30, 40)}})));
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->getMap().value("k"), QRect(QPoint(10, 20), QPoint(30, 40)));
}
