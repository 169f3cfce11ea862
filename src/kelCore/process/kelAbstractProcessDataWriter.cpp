#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/process/kelAbstractProcessDataWriter_p.h>

#include <kelCore/recording/internal/kelDebugLine.h>
#include <kelCore/recording/internal/kelFileWriting.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDomDocument>
#include <QRect>

namespace {

/// Distance between inclusive corner coordinates, plus one. Coordinates at the ends of the range wrap around.
int extent(int first, int last)
{
    return static_cast<int>(static_cast<unsigned>(last) - static_cast<unsigned>(first) + 1u);
}

} // namespace

kelAbstractProcessDataWriter::kelAbstractProcessDataWriter()
    : kelAbstractProcess(*new kelAbstractProcessDataWriterPrivate)
{ }

kelAbstractProcessDataWriter::kelAbstractProcessDataWriter(const kelAbstractProcessDataWriter &other)
    : kelAbstractProcess(*new kelAbstractProcessDataWriterPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessDataWriter::kelAbstractProcessDataWriter(kelAbstractProcessDataWriterPrivate &dd,
                                                           QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessDataWriter::~kelAbstractProcessDataWriter() = default;

kelAbstractProcessDataWriter &
kelAbstractProcessDataWriter::operator=(const kelAbstractProcessDataWriter &other)
{
    copy(other);
    return *this;
}

void kelAbstractProcessDataWriter::setData(const QSharedPointer<kelAbstractData> &data)
{
    d_func()->data = data;
}

QDomElement kelAbstractProcessDataWriter::writeData(QDomDocument &doc)
{
    Q_D(kelAbstractProcessDataWriter);
    // The object's own operations may give this stage another object meanwhile.
    const QSharedPointer<kelAbstractData> data = d->data;
    if (!data)
        return QDomElement();

    QDomElement element = doc.createElement(QStringLiteral("Data"));
    element.setAttribute(QStringLiteral("dataType"), data->identifier());
    doc.appendChild(element);

    QVariantMap map = data->getMap();
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
    const QSharedPointer<kelAbstractData> data = d->data;
    if (!data)
        return false;
    const kelDataFlowRecord record{data->identifier(), data->getMap()};
    QString problem;
    const QByteArray bytes = record.encoded(&problem);
    if (bytes.isEmpty()) {
        kelDataFlow::debugLine(problem);
        return false;
    }
    return kelDataFlow::appendToFile("dataflow.dat", bytes);
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
