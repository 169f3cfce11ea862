#ifndef KELCORE_KELRECORDING_H
#define KELCORE_KELRECORDING_H

/// \file
/// Reads a recorded run of any length.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/kelCoreExport.h>
#include <kelCore/kelResult.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

/// One frame of a recording.
struct KELCORE_EXPORT kelRecordedFrame
{
    qint64 index = -1; ///< among the frames of the run, from 0 on; not the frame's number
    quint32 number = 0; ///< as it was stamped; numbers may repeat
    QDateTime time; ///< its parts, taken as UTC; null when none was recorded
    qint64 firstObject = 0; ///< objects of the frames before it
    int objectCount = 0;

    CSynchronizer stamp() const;
};

/// A recorded run, as it is at the moment when it is opened: what is recorded later is not seen.
///
///     kelRecording run;
///     if (const kelResult opened = run.open("run1"); !opened)
///         return fail(opened.line());
///     for (qint64 i = 0; i < run.frameCount(); ++i)
///         for (const kelDataFlowRecord &record : run.records(run.frame(i)))
///             show(record);
///
/// A run that was recorded in segments is read as one: frames, objects and sizes are those of the whole, in
/// the order of the segments. Each segment can also be opened by itself. Segments may be compressed.
///
/// With an index that fits, opening and reading a frame cost the same at any length, and a segment costs some
/// 20 microseconds when a run is opened; without one, opening costs one pass over the files, and a look into a
/// segment that was not in use lately a pass over that segment. A frame of a compressed segment costs the
/// megabyte that it is in. Memory does not grow with the length of the files, and no more than a few segments
/// are open at once. What is damaged is read as far as it goes, and `state` says what is wrong.
///
/// A recorder that makes room removes segments. Frames of a segment that has gone since the run was opened
/// come back without number, time and objects, and `verify` says so.
///
/// A recording is used from one thread at a time.
class KELCORE_EXPORT kelRecording
{
public:
    kelRecording();
    ~kelRecording();
    kelRecording(kelRecording &&other) noexcept;
    kelRecording &operator=(kelRecording &&other) noexcept;

    /// Names of the files in a recording's folder.
    static QString documentName() { return QStringLiteral("dataflow.xml"); }
    static QString recordsName() { return QStringLiteral("dataflow.dat"); }
    static QString indexName() { return QStringLiteral("dataflow.idx"); }
    /// True when `folder` holds a recording, in segments or not, or a part of one.
    static bool existsIn(const QString &folder);

    /// Opens the recording in `place`: its folder, or the path of its document, whose records are beside it.
    /// Where the folder holds both a document and segments, it is the document that is read.
    kelResult open(const QString &place);

    qint64 frameCount() const;
    /// Objects of all frames, as the document counts them.
    qint64 objectCount() const;
    /// 0 for a run that is not recorded in segments.
    int segmentCount() const;

    /// \param index from 0 on, less than `frameCount`.
    kelRecordedFrame frame(qint64 index) const;
    /// What was recorded of the frame's objects, in order. Fewer where records are missing or cannot be read.
    std::vector<kelDataFlowRecord> records(const kelRecordedFrame &frame) const;

    /// Indices of the frames of that number, in order. Costs a pass over the index.
    std::vector<qint64> framesNumbered(quint32 number) const;
    /// Index of the last frame that is not later than `time`; -1 where there is none. Times of a run are taken
    /// to grow.
    qint64 frameAt(const QDateTime &time) const;

    /// Sizes of the files, in bytes; of compressed ones those of what they were made of.
    qint64 documentSize() const;
    qint64 recordsSize() const;
    /// Bytes of the records behind those of the last frame: what a process that was killed left.
    qint64 leftOverBytes() const;

    /// Whether every frame has its records. Says what is wrong otherwise.
    kelResult state() const;

    /// Reads everything and holds the document against the records and both against the index: kinds, numbers,
    /// boxes and, where there is an index, every byte. \param progress called now and then with the frames done.
    kelResult verify(const std::function<void(qint64 frames)> &progress = {}) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

#endif
