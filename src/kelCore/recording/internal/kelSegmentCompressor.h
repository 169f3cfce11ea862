#ifndef KELCORE_KELSEGMENTCOMPRESSOR_H
#define KELCORE_KELSEGMENTCOMPRESSOR_H

/// \file
/// Compresses a segment that is closed. Internal.

#include <kelCore/recording/internal/kelSeekableZstd.h>
#include <kelCore/recording/internal/kelTwoInodeDocument.h>

namespace kelDataFlow {

/// Compresses the document and the records of a segment, a block at a time: first into a hidden file, which
/// then takes the name of the compressed one, and then the plain one goes. So either of them is there at every
/// instant, and a power cut finds the compressed one on the disk before the plain one goes.
///
/// A file that is no regular one, or has several names, stays as it is.
class SegmentCompressor
{
public:
    /// What an interrupted one may leave.
    static std::string partName(const std::string &name) { return "." + name + compressedEnding + ".part"; }

    explicit SegmentCompressor(const QString &path) : m_path(path) { }
    /// What is not done is given up.
    ~SegmentCompressor();
    SegmentCompressor(const SegmentCompressor &) = delete;
    SegmentCompressor &operator=(const SegmentCompressor &) = delete;

    /// Locks the folder.
    kelResult open();
    /// Compresses the next block, or puts a file into its place. A failure leaves the plain file.
    kelResult step();
    bool isDone() const { return m_next > 2; }
    /// Bytes of the hidden file.
    qint64 bytes() const { return m_written; }

private:
    kelResult begin(const std::string &name);
    kelResult compressBlock();
    kelResult replace();
    kelResult failed(const QString &what);
    void giveUp();

    QString m_path;
    FileDescriptor m_folder; ///< holds the lock
    int m_next = 0; ///< of the files, the first of which is the document
    std::string m_name; ///< of the file in work
    FileDescriptor m_plain;
    FileDescriptor m_part;
    FileState m_state; ///< of the plain file, as it was found
    qint64 m_read = 0;
    qint64 m_written = 0;
    BlockCompressor m_compressor;
};

} // namespace kelDataFlow

#endif
