#ifndef KELCORE_KELBYTEWRITER_H
#define KELCORE_KELBYTEWRITER_H

/// \file
/// Bytes of a recording, put down front to back. Internal.

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <cstring>

/// Appends to a block of bytes, in the encoding of the recording. Values are put down straight away: the
/// toolkit's stream costs as much as appending the record to a file.
class kelByteWriter
{
public:
    kelByteWriter() { m_bytes.reserve(256); }

    const QByteArray &bytes() const { return m_bytes; }

    template <class Integer> void number(Integer value)
    {
        char bytes[sizeof value];
        qToBigEndian(value, bytes);
        m_bytes.append(bytes, sizeof value);
    }
    void real(double value)
    {
        quint64 bits;
        std::memcpy(&bits, &value, sizeof bits);
        number(bits);
    }
    void text(const QString &value)
    {
        if (value.isNull())
            return number(quint32(0xffffffff));
        number(static_cast<quint32>(value.size() * 2));
        const auto at = m_bytes.size();
        m_bytes.resize(at + value.size() * 2);
        qToBigEndian<quint16>(value.constData(), value.size(), m_bytes.data() + at);
    }
    void bytes(const QByteArray &value)
    {
        if (value.isNull())
            return number(quint32(0xffffffff));
        number(static_cast<quint32>(value.size()));
        m_bytes.append(value);
    }
    /// What is encoded already.
    void raw(const QByteArray &value) { m_bytes.append(value); }

private:
    QByteArray m_bytes;
};

#endif
