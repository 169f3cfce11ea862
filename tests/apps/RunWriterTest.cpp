#include "kelrecord/RunWriter.h"

#include "common/Recording.h"

#include "apps/problem.h"
#include "apps/scenes.h"
#include "support/Capture.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <kelCore/data/kelDataBlob.h>

#include <functional>

#include <sys/stat.h>

namespace {

using Objects = QList<QSharedPointer<kelAbstractData>>;

Objects blobs(int count, const QVariant &more = {})
{
    Objects objects;
    for (int i = 0; i < count; ++i) {
        QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D_qt(QRect(i, 2, 3, 4));
        QVariantMap map = blob->getMap();
        if (more.isValid())
            map.insert("more", more);
        blob->setMap(map);
        objects.append(blob);
    }
    return objects;
}

/// "FRAMES frames, OBJECTS objects" of a recording whose document and records agree.
QString whole(const QString &folder)
{
    const Recording recording(folder);
    recording.check();
    return QStringLiteral("%1 frames, %2 objects")
        .arg(QString::number(recording.frames().size()), QString::number(recording.elementCount()));
}

} // namespace

class RunWriterTest : public TemporaryFolder
{
protected:
    QString folder() const { return path("run"); }
    QString in(const char *name) const { return path(QStringLiteral("run/") + QLatin1String(name)); }

    MessageCapture silence;
};

TEST_F(RunWriterTest, FramesAreWrittenAndGoneOnBehind)
{
    {
        RunWriter writer(folder(), RunWriter::Mode::Fresh);
        EXPECT_EQ(writer.previous(), nullptr);
        writer.write(stampOf(0), blobs(2));
        writer.write(stampOf(1), blobs(0));
    }
    RunWriter writer(folder(), RunWriter::Mode::Append);
    ASSERT_NE(writer.previous(), nullptr);
    EXPECT_EQ(writer.previous()->frames().size(), 2u);
    writer.write(stampOf(2), blobs(1));
    EXPECT_EQ(whole(folder()), "3 frames, 3 objects");
}

TEST_F(RunWriterTest, AFolderIsHeldByOneWriter)
{
    {
        const RunWriter writer(folder(), RunWriter::Mode::Fresh);
        EXPECT_TRUE(problem([this] {
                        RunWriter(folder(), RunWriter::Mode::Append);
                    }).contains("another recorder is writing there"));
    }
    EXPECT_EQ(problem([this] { RunWriter(folder(), RunWriter::Mode::Append); }), QString());
}

TEST_F(RunWriterTest, AFolderThatCannotBeOpenedIsSaidAsItIs)
{
    QDir().mkdir(folder());
    ASSERT_EQ(chmod(".", 0755), 0);
    ASSERT_EQ(chmod("run", 0333), 0); // may be entered and written, but not opened
    EXPECT_TRUE(inChild([this] {
        return becomeNobody()
            && problem([this] { RunWriter(folder(), RunWriter::Mode::Fresh); })
                   .endsWith("the folder cannot be opened: Permission denied; check that you may read "
                             "and write it");
    }));
}

TEST_F(RunWriterTest, FilesThatChangeBetweenFramesEndTheRun)
{
    RunWriter writer(folder(), RunWriter::Mode::Fresh);
    writer.write(stampOf(0), blobs(1));
    const QByteArray records = content(in("dataflow.dat"));
    const QByteArray document = content(in("dataflow.xml"));

    const auto next = [&writer] { return problem([&writer] { writer.write(stampOf(1), blobs(1)); }); };

    write(in("dataflow.dat"), records + "more");
    EXPECT_TRUE(next().contains("dataflow.dat: was changed by another program"));
    write(in("dataflow.dat"), records);
    QFile::remove(in("dataflow.xml"));
    EXPECT_TRUE(next().contains("dataflow.xml: has vanished"));
    EXPECT_FALSE(QFile::exists(in("dataflow.xml"))) << "no new document begins";
    write(in("dataflow.xml"), document);
    writer.write(stampOf(1), blobs(1));
    EXPECT_EQ(whole(folder()), "2 frames, 2 objects");

    QFile::remove(in("dataflow.dat"));
    EXPECT_TRUE(next().contains("dataflow.dat: has vanished"));
    EXPECT_TRUE(next().endsWith("leave the files alone while they are recorded"));
}

TEST_F(RunWriterTest, ARecordThatTheDiskDoesNotTakeIsInNoDocument)
{
    // The records grow faster than the document, so that they are what no longer fits.
    const QVariant much(QString(4000, 'x'));
    EXPECT_TRUE(inChild([&] {
        if (!limitFileSize(30000))
            return false;
        RunWriter writer(folder(), RunWriter::Mode::Fresh);
        for (int i = 0; i < 3; ++i)
            writer.write(stampOf(i), blobs(1, much));
        return problem([&] { writer.write(stampOf(3), blobs(1, much)); })
            .startsWith("frame 3 could not be written: ");
    }));
    EXPECT_EQ(whole(folder()), "3 frames, 3 objects");
    RunWriter(folder(), RunWriter::Mode::Append).write(stampOf(3), blobs(1, much));
    EXPECT_EQ(whole(folder()), "4 frames, 4 objects");
}

TEST_F(RunWriterTest, AnObjectThatNoRecordCanHoldIsInNoDocument)
{
    RunWriter writer(folder(), RunWriter::Mode::Fresh);
    writer.write(stampOf(0), blobs(1));
    const QVariant unknown = QVariant::fromValue(static_cast<QObject *>(nullptr));
    EXPECT_TRUE(problem([&] { writer.write(stampOf(1), blobs(1, unknown)); }).contains("QObject*"));
    writer.write(stampOf(1), blobs(1));
    EXPECT_EQ(whole(folder()), "2 frames, 2 objects");
}

TEST_F(RunWriterTest, TheNextWriterRemovesWhatAKilledOneLeft)
{
    QDir().mkdir(folder());
    write(in("dataflow.xml.aXbYcZ"), "<DataFlow>");
    write(in("dataflow.xml.backup"), "<DataFlow></DataFlow>");
    {
        const RunWriter writer(folder(), RunWriter::Mode::Fresh);
    }
    EXPECT_FALSE(QFile::exists(in("dataflow.xml.aXbYcZ")));
    EXPECT_TRUE(QFile::exists(in("dataflow.xml.backup")));
}

TEST_F(RunWriterTest, RecordsThatMayNotBeWrittenAreSaidBeforeTheFirstFrame)
{
    RunWriter(folder(), RunWriter::Mode::Fresh).write(stampOf(0), blobs(1));
    ASSERT_EQ(chmod(path("").toUtf8().constData(), 0755), 0);
    ASSERT_EQ(chmod(folder().toUtf8().constData(), 0777), 0);
    ASSERT_EQ(chmod(in("dataflow.xml").toUtf8().constData(), 0666), 0);
    ASSERT_EQ(chmod(in("dataflow.dat").toUtf8().constData(), 0444), 0);
    EXPECT_TRUE(inChild([this] {
        return becomeNobody() && problem([this] {
                                     RunWriter(folder(), RunWriter::Mode::Append);
                                 }).contains("dataflow.dat cannot be written; check the permissions");
    }));
}
