#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/process/kelAbstractProcessDataReader_p.h>

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/internal/kelRecordedObject.h>
#include <kelCore/recording/internal/kelDebugLine.h>
#include <kelCore/recording/internal/kelRecordReader.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDomElement>
#include <QRect>
#include <QStringList>

namespace {
kelAbstractData *newObject(const QString &dataType)
{
    if (dataType == QLatin1String("kelDataBlob"))
        return new kelDataBlob;
    if (dataType == QLatin1String("kelDataImage"))
        return new kelDataImage;
    return nullptr;
}
} // namespace

kelAbstractData *kelReadRecordedObject(kelRecordReader &reader, kelDataFlowRecord &record)
{
    reader.readDataType(record.dataType);
    if (kelDataFlow::debugShown())
        kelDataFlow::debugLine("\n this is the datatype: ", kelDataFlow::quoted(record.dataType));
    reader.readProperties(record.properties);
    kelAbstractData *data = newObject(record.dataType);
    if (data)
        data->setMap(record.properties);
    return data;
}

kelAbstractProcessDataReader::kelAbstractProcessDataReader()
    : kelAbstractProcess(*new kelAbstractProcessDataReaderPrivate)
{ }

kelAbstractProcessDataReader::kelAbstractProcessDataReader(const kelAbstractProcessDataReader &other)
    : kelAbstractProcess(*new kelAbstractProcessDataReaderPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessDataReader::kelAbstractProcessDataReader(kelAbstractProcessDataReaderPrivate &dd,
                                                           QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessDataReader::~kelAbstractProcessDataReader() = default;

kelAbstractProcessDataReader &
kelAbstractProcessDataReader::operator=(const kelAbstractProcessDataReader &other)
{
    copy(other);
    return *this;
}

kelAbstractData *kelAbstractProcessDataReader::readData(QDataStream &in)
{
    kelRecordStream stream(in);
    kelRecordReader reader(in);
    kelDataFlowRecord record;
    kelAbstractData *data = kelReadRecordedObject(reader, record);
    stream.setStatus(reader.status());
    return data;
}

kelAbstractData *kelAbstractProcessDataReader::readData(const QDomElement &element)
{
    kelAbstractData *data = newObject(element.attribute(QStringLiteral("dataType")));
    auto *blob = qobject_cast<kelDataBlob *>(data);
    if (!blob)
        return data;

    const QDomElement entry = element.firstChild().toElement();
    const QString value = entry.attribute(QStringLiteral("value"));
    if (kelDataFlow::debugShown())
        kelDataFlow::debugLine("\n content of xml data entry: ", kelDataFlow::quoted(value));
    const QStringList parts = value.split(QLatin1Char(' '));
    const QRect box(QPoint(parts.value(0).toInt(), parts.value(1).toInt()),
                    QPoint(parts.value(2).toInt(), parts.value(3).toInt()));
    QVariantMap map{{entry.attribute(QStringLiteral("key"), QStringLiteral("noKey")), box}};
    blob->setMap(map);
    return blob;
}
