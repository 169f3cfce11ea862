#include <kelCore/recording/internal/kelRecordingIndex.h>

#include <kelCore/recording/internal/kelChecksum.h>

#include <QtEndian>

namespace {

constexpr quint32 version = 1;

template <class Integer> void put(QByteArray &bytes, Integer value)
{
    char raw[sizeof value];
    qToLittleEndian(value, raw);
    bytes.append(raw, sizeof value);
}

template <class Integer> Integer take(const char *&at)
{
    const auto value = qFromLittleEndian<Integer>(at);
    at += sizeof value;
    return value;
}

} // namespace

QByteArray kelDataFlow::indexHeader()
{
    QByteArray bytes("kelidx\r\n");
    put(bytes, version);
    put(bytes, static_cast<quint32>(indexRowSize));
    bytes.append(indexRowSize - bytes.size(), '\0');
    return bytes;
}

void kelDataFlow::appendIndexRow(QByteArray &bytes, const IndexRow &row)
{
    const auto begin = bytes.size();
    put(bytes, row.frame.number);
    put(bytes, row.frame.objects);
    put(bytes, row.frame.time);
    put(bytes, row.frame.offset);
    put(bytes, static_cast<quint32>(row.frame.length));
    put(bytes, row.documentChecksum);
    put(bytes, row.recordsOffset);
    put(bytes, row.recordsLength);
    put(bytes, row.firstObject);
    put(bytes, row.recordsChecksum);
    put(bytes, checksum(bytes.constData() + begin, static_cast<size_t>(bytes.size() - begin)));
}

std::optional<kelDataFlow::IndexRow> kelDataFlow::readIndexRow(const char *bytes)
{
    const quint32 own = checksum(bytes, indexRowSize - sizeof(quint32));
    IndexRow row;
    row.frame.number = take<quint32>(bytes);
    row.frame.objects = take<quint32>(bytes);
    row.frame.time = take<qint64>(bytes);
    row.frame.offset = take<qint64>(bytes);
    row.frame.length = take<quint32>(bytes);
    row.documentChecksum = take<quint32>(bytes);
    row.recordsOffset = take<qint64>(bytes);
    row.recordsLength = take<qint64>(bytes);
    row.firstObject = take<qint64>(bytes);
    row.recordsChecksum = take<quint32>(bytes);
    if (take<quint32>(bytes) != own)
        return std::nullopt;
    return row;
}
