#include <kelCore/recording/kelDataFlowRecord.h>

#include <kelCore/recording/internal/kelRecordReader.h>
#include <kelCore/recording/internal/kelValueCodec.h>

QByteArray kelDataFlowRecord::encoded(QString *problem) const
{
    kelByteWriter bytes;
    bytes.text(dataType);
    kelValueWriter values(bytes);
    if (values.writeMap(properties))
        return bytes.bytes();
    if (problem)
        *problem = values.problem();
    return QByteArray();
}

bool kelDataFlowRecord::read(QDataStream &in)
{
    kelRecordStream stream(in);
    kelRecordReader reader(in);
    reader.readDataType(dataType);
    reader.readProperties(properties);
    stream.setStatus(reader.status());
    return reader.ok();
}

qint64 kelDataFlowRecord::decode(const char *data, qint64 size)
{
    kelRecordReader reader(data, size);
    reader.readDataType(dataType);
    reader.readProperties(properties);
    return reader.ok() ? reader.at() - data : 0;
}
