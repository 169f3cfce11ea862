#ifndef KELCORE_KELRECORDINGWRITER_H
#define KELCORE_KELRECORDINGWRITER_H

/// \file
/// Records a run into a folder, for as long as it lasts.

#include <kelCore/kelCoreExport.h>
#include <kelCore/kelResult.h>

#include <QList>
#include <QSharedPointer>
#include <QString>

#include <functional>
#include <memory>

class CSynchronizer;
class kelAbstractData;

/// How a recording is written.
struct KELCORE_EXPORT kelRecordingOptions
{
    /// What is in the folder already.
    enum class Mode
    {
        Fresh, ///< must not be a recording
        Overwrite, ///< is removed
        Append ///< is gone on with, behind its last whole frame
    };
    /// What survives when the machine loses power. The death of the process, at any instant and by any signal,
    /// loses nothing that `write` reported saved, whatever the policy.
    enum class Sync
    {
        None, ///< what the system has written by then: the last seconds may be missing, and the document's end
        ///< torn; kelRecording reads the frames before it
        Interval, ///< as None, but for what is older than the interval
        Frame ///< every frame that `write` reported saved, and the document parses
    };

    Mode mode = Mode::Fresh;
    Sync sync = Sync::None;
    int syncInterval = 1000; ///< milliseconds

    /// When the next segment begins: before the frame that would be one too many, or take the files of the
    /// segment, its index among them, beyond that size, or comes so much later than the segment's first one.
    /// Whichever comes first; 0 for no such limit, and a run without any is not recorded in segments.
    qint64 segmentFrames = 0;
    qint64 segmentBytes = 0;
    qint64 segmentTime =
        0; ///< milliseconds by the frames' times; for a frame without one, or with an earlier
    ///< one than the segment's first, by the clock since the segment was begun

    /// What is kept of a run in segments; 0 for everything. Before a frame is written, the oldest segments go
    /// that are in its way; the one that is recorded never goes. Where all that may go would not make room
    /// enough, nothing goes and `write` fails.
    qint64 keepTime = 0; ///< milliseconds from a segment's last frame to the newest frame, by their times; by
    ///< the clock of the machine where frames have none. A single frame with a time far ahead makes all
    ///< segments old.
    qint64 keepBytes = 0; ///< of all files together, those that are there for a while only among them
    qint64 minFree = 0; ///< bytes that stay free on the file system for users without privileges; without
    ///< segments `write` fails when they are not

    /// Whether segments that are closed are compressed: documents to a sixteenth of their size or so. At most
    /// 1 MiB is read and compressed in a call of `write`, and the rest in `close`. What cannot be compressed
    /// stays as it is, and `close` says why.
    bool compress = false;

    /// Called, in `open`, `write` and `close`, with a line for each segment that is removed, or cannot be
    /// compressed. It must not use the writer.
    std::function<void(const QString &line)> notice;
};

/// Records a run into a folder: the files that kelAbstractProcessDataFlowWriter writes, byte for byte, at a
/// cost of a frame that does not grow with the run.
///
///     kelRecordingWriter writer;
///     kelResult result = writer.open("run1");
///     while (result && nextFrame())
///         result = writer.write(stamp, objects);
///     if (!result)
///         std::cerr << result.line().toStdString() << std::endl;
///
/// **Whole at every instant.** Whenever the process ends, the document parses and holds every frame that was
/// reported saved, and each of them has its records: they are written first, and a frame whose records are not
/// whole never reaches the document. Records behind the last frame are what a process that was killed left; the
/// next one that appends cuts them off. Under the policy Sync::Frame the same holds for power cuts.
///
/// **Files.** `dataflow.xml`, `dataflow.dat` and an index, `dataflow.idx`, that can be deleted at any time:
/// see docs/recording-format.md. While a run is recorded a hidden file beside the document takes as much room
/// as the document does.
///
/// **Segments.** With a limit in the options the files stand in `000001/`, `000002/` and so on, each a
/// recording of its own, and kelRecording reads all of them as one run. Everything above holds for such a run:
/// a new segment is a folder without frames until its first one is whole. Whoever appends goes on in the last
/// segment. Old segments may be removed as new ones come, and closed ones compressed into `dataflow.xml.zst` and
/// `dataflow.dat.zst`: see docs/recordings.md.
///
/// **Others.** The folder is locked: one writer at a time, in this process or another. Readers read at any
/// time. A document that somebody edits between two frames is gone on with as it is then, at the cost of a
/// whole rewrite for each frame if it does not look as a recorder writes it. Files that vanish, and records
/// that change, end the recording: `write` says so.
///
/// The working directory, standard input and standard output are left alone, so that a process can record
/// several runs at once. A writer is used from one thread at a time.
class KELCORE_EXPORT kelRecordingWriter
{
public:
    kelRecordingWriter();
    /// Closes the recording.
    ~kelRecordingWriter();
    kelRecordingWriter(const kelRecordingWriter &) = delete;
    kelRecordingWriter &operator=(const kelRecordingWriter &) = delete;

    /// Takes the folder, which is made where it is missing (its parent is not). To append costs a pass over what
    /// is there; with an index that fits, only over what it lacks. A run in segments can only be appended to in
    /// segments, and one without them only without.
    kelResult open(const QString &folder, const kelRecordingOptions &options = kelRecordingOptions());

    /// Adds a frame: the identifier and the map of each object. Null pointers are skipped. When it fails, the
    /// recording is as it was before, and a later call may succeed.
    ///
    /// An object whose map holds a value without stream operators is refused, and the frame with it.
    kelResult write(const CSynchronizer &stamp, const QList<QSharedPointer<kelAbstractData>> &objects);

    /// Ends the recording: everything is handed to the system, and under a policy other than Sync::None to the
    /// disk. What is yet to be compressed is: some milliseconds a megabyte. Without an open recording nothing happens.
    kelResult close();

    bool isOpen() const;
    /// Frames of the recording, those that were there before among them; not those of segments that were
    /// removed.
    qint64 frameCount() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

#endif
