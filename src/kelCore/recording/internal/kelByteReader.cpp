#include <kelCore/recording/internal/kelByteReader.h>

#include <QIODevice>

#include <algorithm>
#include <climits>
#include <cstring>
#include <limits>

namespace {

/// Longest text or block of bytes, in bytes: the toolkit's containers hold no more.
constexpr quint32 longest = 0x7fffff00;
constexpr quint32 nullLength = 0xffffffff;

/// How much memory is taken for bytes that a stream may not have.
constexpr qint64 step = 1 << 20;

} // namespace

kelByteReader::kelByteReader(QDataStream &stream)
    : m_bigEndian(stream.byteOrder() == QDataStream::BigEndian),
      m_single(stream.floatingPointPrecision() == QDataStream::SinglePrecision), m_stream(&stream)
{
    m_buffer.reserve(256);
    m_at = m_end = m_buffer.constData();
}

bool kelByteReader::fail(QDataStream::Status status)
{
    if (ok())
        m_status = status;
    return false;
}

qint64 kelByteReader::left() const
{
    const qint64 here = m_end - m_at;
    if (!m_stream)
        return here;
    const QIODevice *device = m_stream->device();
    if (!device)
        return here;
    return device->isSequential() ? std::numeric_limits<qint64>::max() : here + device->bytesAvailable();
}

bool kelByteReader::fetch(qint64 count)
{
    if (m_stream && m_stream->device()) {
        const char *first = m_mark ? m_mark : m_at;
        const int used = static_cast<int>(m_at - first);
        m_buffer.remove(0, static_cast<int>(first - m_buffer.constData()));
        qint64 missing = used + count - m_buffer.size();
        while (missing > 0 && m_buffer.size() < INT_MAX - step) {
            const int before = static_cast<int>(m_buffer.size());
            const int wanted = static_cast<int>(std::min(missing, step));
            m_buffer.resize(before + wanted);
            const int got =
                std::max(0, static_cast<int>(m_stream->readRawData(m_buffer.data() + before, wanted)));
            m_buffer.resize(before + got);
            missing -= got;
            if (got < wanted)
                break;
        }
        m_at = m_buffer.constData() + used;
        m_end = m_buffer.constData() + m_buffer.size();
        if (m_mark)
            m_mark = m_buffer.constData();
        if (missing <= 0)
            return true;
    }
    m_at = m_end;
    return fail(QDataStream::ReadPastEnd);
}

bool kelByteReader::peek(quint32 &value) const
{
    QByteArray bytes = QByteArray::fromRawData(m_at, blockSize(std::min<qint64>(m_end - m_at, sizeof value)));
    if (m_stream && bytes.isEmpty() && m_stream->device())
        bytes = m_stream->device()->peek(sizeof value);
    if (bytes.size() < int(sizeof value))
        return false;
    value = m_bigEndian ? qFromBigEndian<quint32>(bytes.constData())
                        : qFromLittleEndian<quint32>(bytes.constData());
    return true;
}

bool kelByteReader::real(double &value)
{
    if (m_single) {
        quint32 bits = 0;
        if (!number(bits))
            return false;
        float single;
        std::memcpy(&single, &bits, sizeof single);
        value = single;
        return true;
    }
    quint64 bits = 0;
    if (!number(bits))
        return false;
    std::memcpy(&value, &bits, sizeof value);
    return true;
}

bool kelByteReader::length(qint64 &value)
{
    quint32 count = 0;
    if (!number(count))
        return false;
    value = count == nullLength ? -1 : qint64(count);
    return count == nullLength || count <= longest || fail(QDataStream::ReadCorruptData);
}

bool kelByteReader::text(QString &value)
{
    qint64 size = 0;
    if (!length(size))
        return false;
    if (size < 0) {
        value = QString();
        return true;
    }
    if (size % 2 != 0)
        return fail(QDataStream::ReadCorruptData);
    if (!need(size))
        return false;
    const int length = static_cast<int>(size / 2);
    const char *characters = m_at;
    m_at += size;
    if (m_bigEndian && !value.isNull() && value.size() == length) {
        const QChar *old = value.constData();
        int difference = 0;
        for (int i = 0; i < length; ++i)
            difference |= old[i].unicode() ^ qFromBigEndian<quint16>(characters + 2 * qint64(i));
        if (difference == 0)
            return true;
    }
    value = QString(length, Qt::Uninitialized);
    if (m_bigEndian)
        qFromBigEndian<quint16>(characters, length, value.data());
    else
        qFromLittleEndian<quint16>(characters, length, value.data());
    return true;
}

bool kelByteReader::bytes(QByteArray &value)
{
    qint64 size = 0;
    if (!length(size))
        return false;
    if (size < 0) {
        value = QByteArray();
        return true;
    }
    if (!need(size))
        return false;
    value = QByteArray(m_at, static_cast<int>(size));
    m_at += size;
    return true;
}

bool kelByteReader::skip(qint64 count)
{
    // What nobody will want again need not be in memory at once.
    while (m_stream && !m_mark && count > step) {
        if (!need(step))
            return false;
        m_at += step;
        count -= step;
    }
    if (!need(count))
        return false;
    m_at += count;
    return true;
}

QByteArray kelByteReader::marked() const { return QByteArray::fromRawData(m_mark, blockSize(m_at - m_mark)); }

void kelByteReader::prepare(QDataStream &stream) const
{
    stream.setVersion(QDataStream::Qt_4_8);
    stream.setByteOrder(m_bigEndian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(m_single ? QDataStream::SinglePrecision : QDataStream::DoublePrecision);
}

bool kelByteReader::goneWell(const QDataStream &stream)
{
    return stream.status() == QDataStream::Ok || fail(stream.status());
}

int kelByteReader::blockSize(qint64 size) { return static_cast<int>(std::min<qint64>(size, INT_MAX)); }

qint64 kelByteReader::position(const QDataStream &stream) { return stream.device()->pos(); }
