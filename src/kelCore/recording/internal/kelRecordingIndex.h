#ifndef KELCORE_KELRECORDINGINDEX_H
#define KELCORE_KELRECORDINGINDEX_H

/// \file
/// The index of a recording: where each frame lies in its two files. Internal.

#include <kelCore/recording/internal/kelFileDescriptor.h>
#include <kelCore/recording/internal/kelFrameText.h>

#include <QByteArray>

#include <optional>

namespace kelDataFlow {

/// Name of the index, beside the document and the records.
inline constexpr const char *indexName = "dataflow.idx";

/// What the index knows of one frame.
struct IndexRow
{
    FrameOutline frame; ///< in the document
    quint32 documentChecksum = 0; ///< of its text
    qint64 recordsOffset = 0;
    qint64 recordsLength = 0; ///< bytes of all its records
    quint32 recordsChecksum = 0;
    qint64 firstObject = 0; ///< data elements, and records, of the frames before it

    qint64 documentEnd() const { return frame.offset + frame.length; }
    qint64 recordsEnd() const { return recordsOffset + recordsLength; }
    qint64 objectsEnd() const { return firstObject + frame.objects; }
};

/// The file is a header and a row a frame, `indexRowSize` bytes each, little-endian:
///
///     header   8 bytes "kelidx\r\n", quint32 version, quint32 size of a row, 0 up to the size of a row
///     row      quint32 number, quint32 objects, qint64 time (ms since the epoch),
///              qint64 offset and quint32 length in the document, quint32 checksum of that text,
///              qint64 offset and qint64 length in the records, qint64 first object,
///              quint32 checksum of those records, quint32 checksum of the row up to here
inline constexpr int indexRowSize = 64;
QByteArray indexHeader();
void appendIndexRow(QByteArray &bytes, const IndexRow &row);
/// Nothing where the bytes are no row.
std::optional<IndexRow> readIndexRow(const char *bytes);

} // namespace kelDataFlow

#endif
