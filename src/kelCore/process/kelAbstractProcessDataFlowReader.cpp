#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader_p.h>

#include <kelCore/process/internal/kelRecordedObject.h>
#include <kelCore/recording/internal/kelDebugLine.h>
#include <kelCore/recording/internal/kelDocumentText.h>
#include <kelCore/recording/internal/kelRecordReader.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDataStream>
#include <QDomDocument>
#include <QFileInfo>
#include <QTime>

#include <utility>

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

/// Objects that nobody owns yet: an exception of an application's stream operator leaves none behind.
class NewObjects
{
public:
    NewObjects() = default;
    ~NewObjects() { qDeleteAll(m_list); }
    Q_DISABLE_COPY(NewObjects)

    void append(kelAbstractData *object) { m_list.append(object); }
    QList<kelAbstractData *> take() { return std::exchange(m_list, {}); }

private:
    QList<kelAbstractData *> m_list;
};

/// Rebuilds every object of a file of records. What is cut off or foreign is read as far as it goes.
QList<kelAbstractData *> readRecords(const QString &path, kelAbstractProcessDataReader &reader)
{
    NewObjects objects;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (file.size() > largestInMemory) {
        QDataStream in(&file);
        while (!in.atEnd())
            objects.append(reader.readData(in));
        return objects.take();
    }
    const QByteArray bytes = file.readAll();
    kelRecordReader records(bytes.constData(), bytes.size());
    kelDataFlowRecord record;
    while (!records.atEnd())
        objects.append(kelReadRecordedObject(records, record));
    return objects.take();
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

kelAbstractProcessDataFlowReader::kelAbstractProcessDataFlowReader(
    kelAbstractProcessDataFlowReaderPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessDataFlowReader::~kelAbstractProcessDataFlowReader() = default;

kelAbstractProcessDataFlowReader &
kelAbstractProcessDataFlowReader::operator=(const kelAbstractProcessDataFlowReader &other)
{
    copy(other);
    return *this;
}

bool kelAbstractProcessDataFlowReader::setFile(const QString &fileName)
{
    Q_D(kelAbstractProcessDataFlowReader);
    d->file.setFileName(fileName);
    const QFileInfo info(fileName);
    if (info.exists() && !info.isDir())
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
            readFrame(frame, *d->dataReader, objects);
    return true;
}

QList<kelAbstractData *> kelAbstractProcessDataFlowReader::getDataFlow_fromBin()
{
    Q_D(kelAbstractProcessDataFlowReader);
    const QString path = d->dir + d->file.fileName();
    debugLine(quoted(QStringLiteral("/n filename absolute: ") + path)); // a slash and an n: no line break
    return readRecords(path, *d->dataReader);
}

QList<kelAbstractData *> kelAbstractProcessDataFlowReader::getDataFlow()
{
    Q_D(kelAbstractProcessDataFlowReader);
    return readRecords(d->dir, *d->dataReader);
}

bool kelAbstractProcessDataFlowReader::HasReachedWantedStartTime() { return false; }

bool kelAbstractProcessDataFlowReader::HasReachedWantedStopTime() { return false; }
