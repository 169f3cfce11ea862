// Records two frames with one blob each into the working directory, and reads the blobs back.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>

#include <QDebug>
#include <QFile>
#include <QtAlgorithms>

int main()
{
    kelAbstractProcessDataFlowWriter writer; // waits for one character on standard input
    writer.setFilePath(QFile("dataflow.xml"));
    for (int number = 0; number < 2; ++number) {
        CSynchronizer stamp;
        stamp.setFrameNumber(number);
        stamp.setDateTime(QDateTime::currentDateTimeUtc());
        QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D_qt(QRect(10 + number, 20, 30, 40)); // the box that is recorded
        writer.setSynchronizer(stamp);
        writer.setDataFlow(QList<QSharedPointer<kelAbstractData>>{blob});
        writer.writeDataFlow();
    }

    kelAbstractProcessDataFlowReader reader;
    reader.setDir("dataflow.dat");
    const QList<kelAbstractData *> objects = reader.getDataFlow(); // ours to delete
    for (kelAbstractData *object : objects)
        if (auto *blob = dynamic_cast<kelDataBlob *>(object))
            qInfo() << blob->identifier() << blob->getBoundingBox2D_qt();
    qDeleteAll(objects);
}
