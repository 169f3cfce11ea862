#ifndef KELCORE_KELRECORDREADER_H
#define KELCORE_KELRECORDREADER_H

/// \file
/// Records, one after the other. Internal.

#include <kelCore/recording/internal/kelByteReader.h>

#include <QVariantMap>

/// Reads a file of records, in two steps for each: its type, then its values. Both fill what they are given
/// as far as the record can be read.
class kelRecordReader
{
public:
    kelRecordReader(const char *data, qint64 size) : m_in(data, size) { }
    /// Takes the stream as it is: its error is not looked at, and its version does not matter.
    explicit kelRecordReader(QDataStream &in) : m_in(in) { }

    /// The first step. Forgets what went wrong with the record before.
    void readDataType(QString &dataType);
    /// The second step. `properties` may hold those of the record before, whose keys it reuses.
    void readProperties(QVariantMap &properties);

    /// Whether the record is whole so far.
    bool ok() const { return m_in.ok(); }
    QDataStream::Status status() const { return m_in.status(); }

    /// Where a block of memory goes on.
    const char *at() const { return m_in.at(); }
    bool atEnd() const { return m_in.atEnd(); }

private:
    kelByteReader m_in;
};

/// A stream in the recording's version and without an error, for as long as it lives. What a caller had set
/// is there again afterwards, whatever happens in between; an error it had before stays its error.
class kelRecordStream
{
public:
    explicit kelRecordStream(QDataStream &stream);
    ~kelRecordStream();
    Q_DISABLE_COPY(kelRecordStream)

    /// Reports how a record went.
    void setStatus(QDataStream::Status status);

private:
    QDataStream &m_stream;
    int m_version;
    QDataStream::Status m_status;
};

#endif
