/// \file
/// kelreplay: what its commands say of a recording.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "integration/programs.h"
#include "support/Capture.h"

class replayCommandsTest : public Programs
{ };

TEST_F(replayCommandsTest, VerifySaysWhereTheFilesDoNotAgree)
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

TEST_F(replayCommandsTest, CatPrintsEveryRecordOfAnyType)
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

TEST_F(replayCommandsTest, ADocumentOfTheLibraryIsReadByItsPath)
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
