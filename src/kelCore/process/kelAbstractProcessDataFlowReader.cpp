#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader_p.h>

#include <kelCore/process/kelDataFlowReading_p.h>
#include <kelCore/process/kelDataFlowRecord.h>
#include <kelCore/process/kelDebugLine_p.h>

#include <QDataStream>
#include <QDomDocument>
#include <QTime>

using kelDataFlow::debugLine;
using kelDataFlow::quoted;

namespace {

int number(const QDomElement &element, const char *name)
{
    return element.attribute(QLatin1String(name), QStringLiteral("0")).toInt();
}

void sayName(const QDomElement &element) { debugLine("\n nodeName: ", quoted(element.tagName())); }

/// Appends the objects of one frame. The order of its elements is relied on, their names are not checked.
void readFrame(const QDomElement &frame, kelAbstractProcessDataReader &reader,
               QList<kelAbstractData *> &objects)
{
    const QDomElement parameters = frame.firstChildElement();
    sayName(parameters);
    debugLine("\n parameters file: ", quoted(parameters.attribute(QStringLiteral("file"))));

    const QDomElement synchronization = parameters.nextSiblingElement();
    sayName(synchronization);
    const QTime time(number(synchronization, "timeHour"), number(synchronization, "timeMin"),
                     number(synchronization, "timeSec"), number(synchronization, "timeMs"));
    debugLine("\n hour: ", number(synchronization, "timeHour"));
    debugLine("\n dataTime: ", quoted(time.toString()));

    QDomElement data = synchronization.nextSiblingElement();
    sayName(data);
    for (; !data.isNull(); data = data.nextSiblingElement())
        objects.append(reader.readData(data));
}

/// Larger files of records are read through a stream, at half the speed: a byte array may not hold them.
constexpr qint64 largestInMemory = 1 << 30;

/// Rebuilds every object of a file of records.
QList<kelAbstractData *> readRecords(const QString &path, kelAbstractProcessDataReader &reader)
{
    QList<kelAbstractData *> objects;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return objects;
    const auto readThrough = [&](QDataStream &&in) {
        while (!in.atEnd())
            objects.append(reader.readData(in));
    };
    if (file.size() > largestInMemory) {
        readThrough(QDataStream(&file));
        return objects;
    }

    const QByteArray bytes = file.readAll();
    kelDataFlowRecord record;
    qint64 at = 0;
    while (const qint64 used = record.decode(bytes.constData() + at, bytes.size() - at)) {
        objects.append(kelDataFlow::rebuild(record));
        at += used;
    }
    // What is left is cut off or foreign: it is read as far as it goes.
    readThrough(QDataStream(bytes.mid(static_cast<int>(at))));
    return objects;
}

} // namespace

kelAbstractProcessDataFlowReader::kelAbstractProcessDataFlowReader()
    : kelAbstractProcess(*new kelAbstractProcessDataFlowReaderPrivate)
{
    userFlag = true;
}

kelAbstractProcessDataFlowReader::kelAbstractProcessDataFlowReader(
    const kelAbstractProcessDataFlowReader &other)
    : kelAbstractProcess(*new kelAbstractProcessDataFlowReaderPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessDataFlowReader::~kelAbstractProcessDataFlowReader() = default;

bool kelAbstractProcessDataFlowReader::setFile(const QString &fileName)
{
    Q_D(kelAbstractProcessDataFlowReader);
    d->file.setFileName(fileName);
    if (d->file.exists())
        return true;
    debugLine("\n error xml file !exist ");
    return false;
}

QString kelAbstractProcessDataFlowReader::getFile() { return d_func()->file.fileName(); }

void kelAbstractProcessDataFlowReader::setDir(const QString &dir) { d_func()->dir = dir; }

QString kelAbstractProcessDataFlowReader::getDir() { return d_func()->dir; }

bool kelAbstractProcessDataFlowReader::getDataFlow(QList<kelAbstractData *> &objects, int frameNumber)
{
    Q_D(kelAbstractProcessDataFlowReader);
    QFile file(d->file.fileName());
    if (!file.open(QIODevice::ReadOnly)) {
        debugLine("error opening xml file ");
        return false;
    }
    QDomDocument document;
    if (!kelDataFlow::parse(file, document))
        return false;

    const QDomElement root = document.documentElement();
    for (QDomElement frame = root.firstChildElement(); !frame.isNull(); frame = frame.nextSiblingElement())
        if (number(frame, "frameNumber") == frameNumber)
            readFrame(frame, d->dataReader, objects);
    return true;
}

QList<kelAbstractData *> kelAbstractProcessDataFlowReader::getDataFlow_fromBin()
{
    Q_D(kelAbstractProcessDataFlowReader);
    const QString path = d->dir + d->file.fileName();
    debugLine(quoted(QStringLiteral("/n filename absolute: ") + path)); // a slash and an n: no line break
    return readRecords(path, d->dataReader);
}

QList<kelAbstractData *> kelAbstractProcessDataFlowReader::getDataFlow()
{
    Q_D(kelAbstractProcessDataFlowReader);
    return readRecords(d->dir, d->dataReader);
}

bool kelAbstractProcessDataFlowReader::HasReachedWantedStartTime() { return false; }

bool kelAbstractProcessDataFlowReader::HasReachedWantedStopTime() { return false; }
