#ifndef KELCORE_KELCLOSEDSEGMENTS_H
#define KELCORE_KELCLOSEDSEGMENTS_H

/// \file
/// The segments of a run that a recorder is through with: those that make room, and are compressed. Internal.

#include <kelCore/recording/internal/kelSegmentCompressor.h>
#include <kelCore/recording/kelRecordingWriter.h>

#include <QElapsedTimer>

#include <deque>
#include <memory>
#include <vector>

namespace kelDataFlow {

class ClosedSegments
{
public:
    /// \param path of the run, which is open and locked as `run`.
    ClosedSegments(const QString &path, int run, const kelRecordingOptions &options)
        : m_path(path), m_run(run), m_options(options)
    { }

    /// Adds a segment that was there before, and removes what a recorder that was killed left in it.
    void addExisting(qint64 number);
    /// Adds the one that was closed last. \param lastTime of its frames.
    void add(qint64 number, qint64 frames, qint64 lastTime);

    qint64 frames() const { return m_frames; }

    /// Removes the oldest as the options want it, before a frame is written. Where all of them would not make
    /// enough room, none is removed for it.
    /// \param openBytes what the open segment takes on the disk
    /// \param frameBytes what it will grow by
    /// \param time of the frame; `FrameOutline::noTime` where it has none
    kelResult makeRoom(qint64 openBytes, qint64 frameBytes, qint64 time);

    /// Compresses a block, where there is something to compress.
    void compressSome();
    /// Compresses what there is. \return what went wrong first, then or before.
    kelResult compressAll();

private:
    struct Segment
    {
        qint64 number = 0;
        qint64 frames = 0;
        qint64 bytes = 0;
        qint64 lastTime = 0;
        qint64 changed = 0; ///< milliseconds since the epoch, by the clock of the machine
    };

    Segment measured(qint64 number) const;
    void append(const Segment &segment);
    kelResult removeOldest(const QString &reason);
    bool isTooOld(const Segment &segment, qint64 time) const;
    kelResult keepFree(qint64 frameBytes);
    void compressNext();
    void notice(const QString &line) const;
    QString pathOf(qint64 number) const;

    QString m_path;
    int m_run;
    const kelRecordingOptions &m_options;
    std::deque<Segment> m_segments; ///< the oldest first
    qint64 m_frames = 0;
    qint64 m_bytes = 0;
    QElapsedTimer m_sinceRemoved; ///< runs while the file system is yet to free what was removed
    std::deque<qint64> m_toCompress;
    std::unique_ptr<SegmentCompressor> m_compressor;
    kelResult m_problem; ///< the first segment that could not be compressed
};

} // namespace kelDataFlow

#endif
