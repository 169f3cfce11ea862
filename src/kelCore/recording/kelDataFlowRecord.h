#ifndef KELCORE_KELDATAFLOWRECORD_H
#define KELCORE_KELDATAFLOWRECORD_H

/// \file
/// One record of the binary file of a recording.

#include <kelCore/kelCoreExport.h>

#include <QByteArray>
#include <QString>
#include <QVariantMap>

class QDataStream;

/// What the recording stores of one data object: its type identifier and its map.
///
/// A file of records is their plain concatenation, in the encoding of `QDataStream` version 12 (big-endian):
///
///     QString      data type: 32-bit byte count, then UTF-16
///     quint32      number of entries
///     per entry, greatest key first:
///         QString  key
///         QVariant 32-bit type, 8-bit null flag, then the value in its type's own encoding
///
/// Maps inside a map follow the same order. The bytes are the same whichever version of Qt writes them.
struct KELCORE_EXPORT kelDataFlowRecord
{
    QString dataType;
    QVariantMap properties;

    /// The record's bytes. Empty when a value's type has no stream operators, which would corrupt the file;
    /// `problem`, where given, then names the entry and the type.
    QByteArray encoded(QString *problem = nullptr) const;

    /// Reads one record from `in`, whatever version `in` is set to, and takes no byte behind it. A record that
    /// is cut off or corrupt leaves `in` in its error state and the record filled as far as it was read.
    ///
    /// What bytes claim costs no more than the bytes warrant: lengths end at the end of the bytes, values in
    /// values at 1,000 levels, the pixels of a record's pictures at 64 MiB and 16 times their recorded bytes.
    /// Pixmaps, cursors and icons are corrupt where no application with windows runs.
    ///
    /// A value of a type of the application's own is read by the type's stream operator, whose exceptions
    /// pass.
    /// \return true when the record was read whole.
    bool read(QDataStream &in);

    /// Reads one record from the `size` bytes at `data`, as `read` does.
    /// \return the number of bytes used, or 0 when the record is not whole.
    qint64 decode(const char *data, qint64 size);
};

#endif
