#ifndef KELCORE_KELFOLDERWRITER_H
#define KELCORE_KELFOLDERWRITER_H

/// \file
/// Writes the files of one folder: of a run, or of a segment of one. Internal.

#include <kelCore/recording/internal/kelFolderWatch.h>
#include <kelCore/recording/internal/kelFrameText.h>
#include <kelCore/recording/internal/kelTwoInodeDocument.h>
#include <kelCore/recording/kelDataFlowRecord.h>
#include <kelCore/recording/kelRecordingWriter.h>

#include <QElapsedTimer>

#include <vector>

namespace kelDataFlow {

class RunIndex;

/// What is written of a frame.
struct EncodedFrame
{
    quint32 number = 0;
    qint64 time = FrameOutline::noTime; ///< milliseconds since the epoch, its parts taken as UTC
    quint32 objects = 0;
    QByteArray records;
    QByteArray text;

    EncodedFrame();
    kelResult encode(const CSynchronizer &stamp, const QList<QSharedPointer<kelAbstractData>> &list);

    /// What the files grow by, the index among them.
    qint64 bytes() const;

private:
    std::vector<kelDataFlowRecord> m_objects; ///< kept for its memory
};

/// Makes the folder where it is missing, and locks it for as long as `folder` is open.
kelResult lockFolder(const QString &path, FileDescriptor &folder);

/// Removes the recording of the folder itself.
kelResult removeRecording(const QString &path, int folder);

/// What the system said about a file that was being written.
kelResult cannot(const QString &what, const QString &where);

class FolderWriter
{
public:
    /// \param folder locked; at `path`. \param options for the mode and the policy of syncing.
    kelResult open(const QString &path, FileDescriptor folder, const kelRecordingOptions &options);

    /// Adds a frame. When it fails, the files are as they were before, and a later call may succeed.
    kelResult add(const EncodedFrame &frame);

    /// Hands everything to the system, and where that is the policy to the disk. Frames may follow.
    kelResult finish();

    qint64 frames() const { return m_frames; }
    /// Bytes of the files, the index among them.
    qint64 bytes() const;
    /// Bytes of the document, and of the hidden file beside it.
    qint64 documentBytes() const;
    /// Times of the first frame and of the last that have one; `FrameOutline::noTime` where none has.
    qint64 firstTime() const { return m_firstTime; }
    qint64 lastTime() const { return m_lastTime; }

private:
    kelResult prepare(kelRecordingOptions::Mode mode);
    kelResult checkPlain();
    kelResult goOn();
    void adopt(const RunIndex &run);
    kelResult look();
    kelResult checkRecords(bool byName) const;
    bool isAsLeft() const;
    kelResult catchUp();
    kelResult addRecords(const EncodedFrame &frame);
    void takeBackRecords();
    kelResult addText(const EncodedFrame &frame, bool sync);
    kelResult begin(const EncodedFrame &frame);
    kelResult rewrite(const EncodedFrame &frame);
    void addRow(const EncodedFrame &frame);
    void flushIndex();
    bool wantsSync() const;
    kelResult syncFolder() const;
    QString pathOf(const std::string &name) const;
    int documentFolder() const { return m_linked ? m_linked.get() : m_folder.get(); }

    kelRecordingOptions::Sync m_sync = kelRecordingOptions::Sync::None;
    int m_syncInterval = 0;
    QString m_path;
    FileDescriptor m_folder; ///< holds the lock
    FileDescriptor m_linked; ///< of the document, where a link leads to another
    std::string m_documentFile;
    FileDescriptor m_records;
    FileDescriptor m_index;
    qint64 m_recordsSize = 0;
    qint64 m_objects = 0; ///< records, and data elements
    qint64 m_frames = 0;
    qint64 m_firstTime = FrameOutline::noTime;
    qint64 m_lastTime = FrameOutline::noTime;
    TwoInodeDocument m_document;
    bool m_canonical = true; ///< the document can grow in constant time
    bool m_began = false; ///< the document holds a frame
    FileState m_foreignState; ///< of a document that cannot, as it was left
    FolderWatch m_watch;
    QElapsedTimer m_sinceSync;
    QByteArray m_rows; ///< not written to the index yet
    qint64 m_indexSize = 0;
};

} // namespace kelDataFlow

#endif
