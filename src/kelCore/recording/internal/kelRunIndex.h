#ifndef KELCORE_KELRUNINDEX_H
#define KELCORE_KELRUNINDEX_H

/// \file
/// Where the frames of a recording on disk are. Internal.

#include <kelCore/kelResult.h>
#include <kelCore/recording/internal/kelByteSource.h>
#include <kelCore/recording/internal/kelRecordingIndex.h>

#include <functional>
#include <memory>
#include <string>

namespace kelDataFlow {

/// The two files of a recording as they are at one moment, and an index of them. Whatever is written or renamed
/// afterwards, it is of these files that rows and bytes are given. Either may be compressed; sizes and places
/// are those of the plain files.
///
/// The index file is used as far as it fits the document; the rest, or everything where there is none, is
/// found in one pass. Memory does not grow with the run: rows that are not in the index file are kept in a
/// temporary one.
class RunIndex
{
public:
    enum class Form
    {
        Canonical, ///< as a recorder writes it
        Torn, ///< canonical at first, then no XML: what a power cut leaves
        Foreign ///< XML of another form: its frames have numbers and times, but no places
    };

    /// \param folder open; \param document its name there. A missing document counts as one without frames, as
    /// do missing records.
    kelResult open(int folder, const std::string &document);

    Form form() const { return m_form; }
    qint64 count() const { return m_count; }
    /// \param i from 0 on, less than `count`. A row that cannot be read any more is empty.
    IndexRow row(qint64 i) const;

    /// Data elements of all frames.
    qint64 objects() const { return m_objects; }
    /// Bytes of the document up to and with its last whole frame; for a foreign one its size.
    qint64 documentEnd() const { return m_documentEnd; }
    qint64 documentSize() const { return m_documentSize; }
    /// Bytes of the records that the frames refer to.
    qint64 recordsEnd() const { return m_recordsEnd; }
    qint64 recordsSize() const { return m_recordsSize; }
    /// Data elements that have a whole record. Less than `objects` in a damaged recording.
    qint64 recordsFound() const { return m_recordsFound; }
    /// Rows of the index file that fit, from the first on.
    qint64 rowsOnDisk() const { return m_rowsOnDisk; }
    /// The index file is there, and is none.
    bool indexIsDamaged() const { return m_indexDamaged; }
    /// What an index takes for granted: how the document begins, and how a compressed one ends.
    bool endsAreWhole() const;

    bool documentExists() const { return bool(m_document); }
    /// What went wrong while bytes of the document or the records were read; empty when nothing did.
    QString problem() const;

    /// `size` bytes at `offset`; fewer at the end of the file.
    QByteArray documentBytes(qint64 offset, qint64 size) const;
    QByteArray recordBytes(qint64 offset, qint64 size) const;

private:
    void useIndexFile(int folder);
    kelResult walk();
    kelResult walkForeign();
    kelResult parse(const std::function<void(const FrameOutline &)> &found, bool &isXml) const;
    kelResult add(const FrameOutline &frame, bool canonical);
    kelResult flush();

    std::unique_ptr<ByteSource> m_document;
    std::unique_ptr<ByteSource> m_records;
    FileDescriptor m_rows; ///< the index file
    FileDescriptor m_tail; ///< temporary: the rows behind `m_rowsOnDisk`
    QByteArray m_pending; ///< rows that are not in the temporary file yet
    QByteArray m_window; ///< of the records, while they are walked
    qint64 m_windowOffset = 0;
    std::string m_name;
    mutable QByteArray m_block; ///< of rows: those read last
    mutable qint64 m_blockBegin = 0; ///< the first of them
    Form m_form = Form::Canonical;
    bool m_indexDamaged = false;
    qint64 m_count = 0;
    qint64 m_rowsOnDisk = 0;
    qint64 m_flushed = 0;
    qint64 m_objects = 0;
    qint64 m_documentSize = 0;
    qint64 m_documentEnd = 0;
    qint64 m_recordsSize = 0;
    qint64 m_recordsEnd = 0;
    qint64 m_recordsFound = 0;
};

} // namespace kelDataFlow

#endif
