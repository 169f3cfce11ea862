#include <kelCore/recording/internal/kelRecordReader.h>

#include <kelCore/recording/internal/kelValueCodec.h>

void kelRecordReader::readDataType(QString &dataType)
{
    m_in.resetStatus();
    if (!m_in.text(dataType))
        dataType = QString();
}

void kelRecordReader::readProperties(QVariantMap &properties)
{
    if (ok())
        kelValueReader(m_in).readMap(properties);
    else
        properties = QVariantMap();
}

kelRecordStream::kelRecordStream(QDataStream &stream)
    : m_stream(stream), m_version(stream.version()), m_status(stream.status())
{
    stream.setVersion(QDataStream::Qt_4_8); // version 12
    stream.resetStatus();
}

kelRecordStream::~kelRecordStream()
{
    m_stream.setVersion(m_version);
    setStatus(m_status);
}

void kelRecordStream::setStatus(QDataStream::Status status)
{
    if (status == QDataStream::Ok)
        return; // the stream keeps the first error that it meets
    m_stream.resetStatus();
    m_stream.setStatus(status);
}
