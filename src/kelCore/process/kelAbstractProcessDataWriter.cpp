#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/process/kelAbstractProcessDataWriter_p.h>

#include <kelCore/process/kelDataFlowRecord.h>
#include <kelCore/process/kelDebugLine_p.h>

#include <QDomDocument>
#include <QRect>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Distance between inclusive corner coordinates, plus one. Coordinates at the ends of the range wrap around.
int extent(int first, int last)
{
    return static_cast<int>(static_cast<unsigned>(last) - static_cast<unsigned>(first) + 1u);
}

/// Appends `bytes` to the file, whole or not at all. By plain system calls: a file object of the toolkit
/// costs as much again as the append itself.
bool appendToFile(const char *path, const QByteArray &bytes)
{
    const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0)
        return false;
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t written =
            ::write(file, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (written > 0)
            done += written;
        else if (written == 0 || errno != EINTR)
            break;
    }
    const bool whole = done == bytes.size();
    // A full disk may have taken a part: cut it off, or every later record would be misread.
    const bool clean = whole || done == 0 || ::ftruncate(file, ::lseek(file, 0, SEEK_END) - done) == 0;
    return ::close(file) == 0 && whole && clean;
}

} // namespace

kelAbstractProcessDataWriter::kelAbstractProcessDataWriter()
    : kelAbstractProcess(*new kelAbstractProcessDataWriterPrivate)
{ }

kelAbstractProcessDataWriter::kelAbstractProcessDataWriter(const kelAbstractProcessDataWriter &other)
    : kelAbstractProcess(*new kelAbstractProcessDataWriterPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessDataWriter::~kelAbstractProcessDataWriter() = default;

void kelAbstractProcessDataWriter::setData(const QSharedPointer<kelAbstractData> &data)
{
    d_func()->data = data;
}

QDomElement kelAbstractProcessDataWriter::writeData(QDomDocument &doc)
{
    Q_D(kelAbstractProcessDataWriter);
    if (!d->data)
        return QDomElement();

    QDomElement element = doc.createElement(QStringLiteral("Data"));
    element.setAttribute(QStringLiteral("dataType"), d->data->identifier());
    doc.appendChild(element);

    QVariantMap map = d->data->getMap();
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        QString typeName = QString::fromLatin1(it.value().typeName());
        QDomElement entry = doc.createElement(QStringLiteral("entry"));
        entry.setAttribute(QStringLiteral("key"), it.key());
        entry.setAttribute(QStringLiteral("type"), typeName);
        entry.setAttribute(QStringLiteral("value"), QString::fromUtf8(getDataType(map, typeName)));
        element.appendChild(entry);
    }
    kelDataFlow::debugLine("\n xml entry added");
    writeDataBin();
    return element;
}

bool kelAbstractProcessDataWriter::writeDataBin()
{
    Q_D(kelAbstractProcessDataWriter);
    if (!d->data)
        return false;
    const kelDataFlowRecord record{d->data->identifier(), d->data->getMap()};
    QString problem;
    const QByteArray bytes = record.encoded(&problem);
    if (bytes.isEmpty()) {
        kelDataFlow::debugLine(problem);
        return false;
    }
    return appendToFile("dataflow.dat", bytes);
}

const char *kelAbstractProcessDataWriter::getDataType(QVariantMap &map, QString &typeName)
{
    Q_D(kelAbstractProcessDataWriter);
    d->valueText.clear();
    if (typeName == QLatin1String("QRect")) {
        // Always the first entry, whichever is being written: part of the format.
        const QRect box = map.isEmpty() ? QRect() : map.cbegin().value().toRect();
        d->valueText = QByteArray::number(box.left()) + ' ' + QByteArray::number(box.top()) + ' '
            + QByteArray::number(extent(box.left(), box.right())) + ' '
            + QByteArray::number(extent(box.top(), box.bottom()));
    }
    return d->valueText.constData();
}
