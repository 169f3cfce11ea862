// The files of tests/golden: bytes that any reader of recordings can be held against. They are read, and what
// was read is written again, to the byte.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "recording/recordedTypes.h"
#include "support/Capture.h"
#include "support/TemporaryFolder.h"

#include <algorithm>

namespace {

QString golden(const QString &name) { return QStringLiteral(KEL_SOURCE_DIR "/tests/golden/") + name; }

/// The records of a file; a whole one each.
std::vector<kelDataFlowRecord> records(const QByteArray &file)
{
    std::vector<kelDataFlowRecord> result;
    kelDataFlowRecord record;
    qint64 at = 0;
    while (const qint64 used = record.decode(file.constData() + at, file.size() - at)) {
        result.push_back(record);
        at += used;
    }
    EXPECT_EQ(at, file.size());
    return result;
}

/// A file of one record for each value, under its name.
void expectValues(const QByteArray &file, const std::vector<std::pair<std::string, QVariant>> &values)
{
    ASSERT_FALSE(file.isEmpty());
    QMap<QString, QVariant> byName;
    for (const auto &[name, value] : values)
        byName.insert(QString::fromStdString(name), value);
    for (const kelDataFlowRecord &record : records(file)) {
        ASSERT_EQ(record.properties.size(), 1);
        const QString name = record.properties.firstKey();
        ASSERT_TRUE(byName.contains(name)) << name.toStdString();
        const QVariantMap expected{{name, byName.take(name)}};
        EXPECT_EQ((kelDataFlowRecord{"kelDataBlob", expected}.encoded().toHex().toStdString()),
                  record.encoded().toHex().toStdString())
            << name.toStdString();
    }
    EXPECT_TRUE(byName.isEmpty()) << QStringList(byName.keys()).join(' ').toStdString();
}

} // namespace

class goldenFilesTest : public TemporaryFolder
{ };

TEST_F(goldenFilesTest, EveryFileOfRecordsIsReadAndWrittenAgain)
{
    const QStringList names = QDir(golden(QString())).entryList({"*.dat"});
    EXPECT_GE(names.size(), 5);
    for (const QString &name : names) {
        SCOPED_TRACE(name.toStdString());
        const QByteArray file = content(golden(name));
        QByteArray again;
        for (const kelDataFlowRecord &record : records(file))
            again += record.encoded();
        EXPECT_EQ(again.toHex().toStdString(), file.toHex().toStdString());

        QDataStream in(file);
        for (size_t left = records(file).size(); left > 0; --left)
            EXPECT_TRUE(kelDataFlowRecord().read(in));
        EXPECT_TRUE(in.atEnd());
    }
}

TEST_F(goldenFilesTest, TheValuesOfCoreTypesAreThese)
{
    auto values = coreValues();
    const auto isNothing = [](const auto &value) {
        return value.first == "nothing";
    }; // a null value under Qt 6
    values.erase(std::remove_if(values.begin(), values.end(), isNothing), values.end());
    expectValues(content(golden("core-types.dat")), values);
}

TEST_F(goldenFilesTest, TheValuesOfDrawingTypesAreThese)
{
    auto values = drawingValues();
    const auto isTheMachines =
        [](const auto &value) { // what a font, a palette and a picture hold depends on it
            static const QStringList names{"font", "palette", "image"};
            return names.contains(QString::fromStdString(value.first));
        };
    values.erase(std::remove_if(values.begin(), values.end(), isTheMachines), values.end());
    expectValues(content(golden("drawing-types.dat")), values);
}

TEST_F(goldenFilesTest, ARunGivesTheseObjects)
{
    kelAbstractProcessDataFlowReader reader;
    reader.setDir(golden("run.dat"));
    MessageCapture messages;
    const QList<kelAbstractData *> objects = reader.getDataFlow();
    ASSERT_EQ(objects.size(), 4);
    EXPECT_EQ(objects[0]->getMap(), (QVariantMap{{"BoundingBox2D", QRect(10, 20, 30, 40)}, {"Label", "a"}}));
    EXPECT_EQ(objects[1]->identifier(), "kelDataImage");
    EXPECT_EQ(objects[2], nullptr); // an actor
    EXPECT_EQ(objects[3]->getMap(),
              (QVariantMap{{"BoundingBox2D", QRect(1, 1, 5, 6)}, {"Ground", QPointF(1.5, -2)}}));
    qDeleteAll(objects);
}

TEST_F(goldenFilesTest, ADamagedFileIsReadAsFarAsItGoes)
{
    for (const char *name :
         {"cut-off", "count-beyond-the-end", "odd-text", "unknown-type", "too-deep", "picture-too-large"}) {
        SCOPED_TRACE(name);
        const QByteArray file = content(golden(QStringLiteral("damaged/%1.dat").arg(name)));
        ASSERT_FALSE(file.isEmpty());
        kelDataFlowRecord record;
        const qint64 first = record.decode(file.constData(), file.size());
        EXPECT_GT(first, 0);
        EXPECT_EQ(record.properties, (QVariantMap{{"k", 1}}));
        EXPECT_EQ(record.decode(file.constData() + first, file.size() - first), 0);
        EXPECT_EQ(record.dataType, "kelDataBlob");
        EXPECT_EQ(record.properties, (QVariantMap{{"z", 5}})); // what came before the damage
    }
}

TEST_F(goldenFilesTest, EveryDocumentGrowsByOneFrameAndIsOtherwiseTheSame)
{
    OutputCapture output;
    kelAbstractProcessDataFlowWriter writer;
    const QStringList names = QDir(golden(QString())).entryList({"*.xml"});
    EXPECT_GE(names.size(), 4);
    for (const QString &name : names) {
        SCOPED_TRACE(name.toStdString());
        const QByteArray before = content(golden(name));
        write(name, before);
        writer.setFilePath(QFile(name));
        MessageCapture messages;
        ASSERT_TRUE(writer.writeDataFlow());
        const int end = static_cast<int>(before.lastIndexOf("</DataFlow>"));
        ASSERT_GT(end, 0);
        const QByteArray after = content(name);
        EXPECT_EQ(after.left(end).toStdString(), before.left(end).toStdString());
        EXPECT_EQ(after.mid(after.lastIndexOf("</DataFlow>")).toStdString(), before.mid(end).toStdString());
        EXPECT_EQ(after.count("<Frame "), before.count("<Frame ") + 1);
    }
}

TEST_F(goldenFilesTest, TheDocumentOfARunIsThis)
{
    OutputCapture output;
    kelAbstractProcessDataFlowWriter writer;
    writer.setFilePath(QFile("run.xml"));
    MessageCapture messages;
    for (const kelDataFlowRecord &record : records(content(golden("run.dat")))) {
        if (record.dataType == "kelDataActor")
            continue; // is no object of this library's own
        CSynchronizer stamp;
        stamp.setFrameNumber(3);
        stamp.setDateTime(QDateTime(QDate(2009, 6, 1), QTime(12, 0, 0, 250), Qt::UTC));
        writer.setSynchronizer(stamp);
        const QSharedPointer<kelAbstractData> blob(new kelDataBlob);
        QVariantMap map = record.properties;
        blob->setMap(map);
        writer.setDataFlow(QList<QSharedPointer<kelAbstractData>>{blob});
        ASSERT_TRUE(writer.writeDataFlow());
    }
    EXPECT_EQ(content("run.xml").toStdString(), content(golden("run.xml")).toStdString());
}
