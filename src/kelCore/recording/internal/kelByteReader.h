#ifndef KELCORE_KELBYTEREADER_H
#define KELCORE_KELBYTEREADER_H

/// \file
/// Bytes of a recording, taken front to back. Internal.

#include <QByteArray>
#include <QDataStream>
#include <QString>
#include <QtEndian>

/// A cursor over a block of memory, or over what comes out of a stream.
///
/// A stream gives exactly the bytes that are asked for, in its own byte order and floating-point precision; a
/// block of memory is in those of the recording. Each operation is true when it found what it wanted. The
/// first that does not sets the status, and nothing is to be taken after it: what is cut off ends at the end
/// of the bytes, what is corrupt behind the corrupt length.
///
/// No length is believed before its bytes are there.
class kelByteReader
{
public:
    kelByteReader(const char *data, qint64 size) : m_at(data), m_end(data + size) { }
    explicit kelByteReader(QDataStream &stream);
    Q_DISABLE_COPY(kelByteReader)

    bool ok() const { return m_status == QDataStream::Ok; }
    QDataStream::Status status() const { return m_status; }
    /// Keeps the first failure. \return false.
    bool fail(QDataStream::Status status);
    /// Takes whatever comes as if nothing had failed.
    void resetStatus() { m_status = QDataStream::Ok; }

    /// Where a block of memory goes on.
    const char *at() const { return m_at; }
    bool atEnd() const { return m_at == m_end; }
    /// Bytes that may still come: for a stream without an end, as many as there are numbers.
    qint64 left() const;

    template <class Integer> bool number(Integer &value)
    {
        if (!need(sizeof(Integer)))
            return false;
        value = m_bigEndian ? qFromBigEndian<Integer>(m_at) : qFromLittleEndian<Integer>(m_at);
        m_at += sizeof(Integer);
        return true;
    }
    /// Four numbers at once, as the corners of a box.
    bool numbers(qint32 (&values)[4])
    {
        if (!need(sizeof values))
            return false;
        for (qint32 &value : values) {
            value = m_bigEndian ? qFromBigEndian<qint32>(m_at) : qFromLittleEndian<qint32>(m_at);
            m_at += sizeof value;
        }
        return true;
    }
    /// The number that comes next, which is not taken; false when it cannot be seen.
    bool peek(quint32 &value) const;
    /// A number with decimals: 64 bits, or 32 from a stream of single precision.
    bool real(double &value);
    /// A text. Leaves `value` as it is when it already holds what is read: the records of a run mostly repeat
    /// the keys of the one before.
    bool text(QString &value);
    bool bytes(QByteArray &value);
    bool skip(qint64 count);
    /// The number of a type and the null flag behind it.
    bool header(quint32 &type, qint8 &isNull)
    {
        if (!need(5))
            return false;
        type = m_bigEndian ? qFromBigEndian<quint32>(m_at) : qFromLittleEndian<quint32>(m_at);
        isNull = static_cast<qint8>(m_at[4]);
        m_at += 5;
        return true;
    }
    /// The length in front of a text or of bytes; true with a length of -1 for a null one.
    bool length(qint64 &value);

    /// What is taken from here on can be had once more, by `marked`, until `unmark`.
    void mark() { m_mark = m_at; }
    QByteArray marked() const;
    void unmark() { m_mark = nullptr; }

    /// Lets `take` read with a stream of the toolkit, in the recording's version; true when it could.
    template <class Take> bool withStream(const Take &take)
    {
        if (m_stream)
            return take(*m_stream) && goneWell(*m_stream);
        QDataStream stream(QByteArray::fromRawData(m_at, blockSize(left())));
        prepare(stream);
        const bool taken = take(stream);
        m_at += position(stream);
        return taken && goneWell(stream);
    }
    /// Gives a stream the version, byte order and precision of these bytes.
    void prepare(QDataStream &stream) const;

private:
    bool need(qint64 count) { return m_end - m_at >= count || fetch(count); }
    bool fetch(qint64 count);
    bool goneWell(const QDataStream &stream);
    static int blockSize(qint64 size);
    static qint64 position(const QDataStream &stream);

    const char *m_at = nullptr;
    const char *m_end = nullptr;
    const char *m_mark = nullptr;
    QDataStream::Status m_status = QDataStream::Ok;
    bool m_bigEndian = true;
    bool m_single = false;
    QDataStream *m_stream = nullptr;
    QByteArray m_buffer; ///< What was fetched from the stream and not yet let go.
};

#endif
