#include <kelCore/recording/kelRecordingWriter.h>

#include <kelCore/recording/internal/kelClosedSegments.h>
#include <kelCore/recording/internal/kelFolderWriter.h>
#include <kelCore/recording/internal/kelSegments.h>

#include <QDir>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kelDataFlow;

namespace {

bool wantsSegments(const kelRecordingOptions &options)
{
    return options.segmentFrames > 0 || options.segmentBytes > 0 || options.segmentTime > 0;
}

kelResult check(const kelRecordingOptions &options)
{
    if (!wantsSegments(options) && (options.keepTime > 0 || options.keepBytes > 0 || options.compress))
        return kelResult::failure(
            QStringLiteral("only a run in segments can be cut at its beginning, or compressed"), QString(),
            QStringLiteral("set segmentFrames, segmentBytes or segmentTime"));
    if (options.keepBytes > 0 && options.keepBytes / 2 < options.segmentBytes)
        return kelResult::failure(
            QStringLiteral("of a run in segments of %1 bytes, more than %2 bytes must be kept")
                .arg(QString::number(options.segmentBytes), QString::number(options.keepBytes)),
            QString(),
            QStringLiteral("keep at least twice the size of a segment: the document of the one that is "
                           "recorded is there twice"));
    return kelResult();
}

} // namespace

class kelRecordingWriter::Private
{
public:
    Private(const QString &folder, const kelRecordingOptions &wanted)
        : options(wanted), place(QFileInfo(folder).absoluteFilePath())
    { }

    kelResult open();
    kelResult openSegments(std::vector<qint64> numbers);
    kelResult openSegment(qint64 wanted);
    kelResult beginSegment();
    bool isFull() const;
    kelResult makeRoom();
    QString pathOf(qint64 segment) const
    {
        return QDir(place).filePath(QString::fromStdString(segmentName(segment)));
    }

    const kelRecordingOptions options;
    const QString place;
    FileDescriptor run; ///< holds the lock
    EncodedFrame frame; ///< in work
    std::unique_ptr<FolderWriter> writer; ///< of the run's folder, or of the last segment
    qint64 number = 0; ///< of the last segment; 0 for a run without segments
    QElapsedTimer sinceBegin; ///< of that segment
    std::unique_ptr<ClosedSegments> closed;
};

kelResult kelRecordingWriter::Private::open()
{
    using Mode = kelRecordingOptions::Mode;
    if (const kelResult possible = check(options); !possible)
        return possible;
    if (const kelResult locked = lockFolder(place, run); !locked)
        return locked;
    const bool segmented = wantsSegments(options);
    const bool isPlain = holdsRecording(run.get());
    std::vector<qint64> numbers = segmentsIn(run.get());
    if (options.mode == Mode::Fresh && (isPlain || !numbers.empty()))
        return kelResult::failure(QStringLiteral("already holds a recording"), place,
                                  QStringLiteral("append to it, overwrite it, or choose another folder"));
    if (options.mode == Mode::Append && segmented && isPlain)
        return kelResult::failure(QStringLiteral("holds a recording that is not in segments"), place,
                                  QStringLiteral("append without segments, or choose another folder"));
    if (options.mode == Mode::Append && !segmented && !isPlain && !numbers.empty())
        return kelResult::failure(
            QStringLiteral("holds a recording in segments"), place,
            QStringLiteral("append with segments (their length may differ), or choose another folder"));
    removeLeftOverSegments(place, run.get());
    if (options.mode == Mode::Overwrite) {
        // The newest first: what is left when that is interrupted begins as the run did.
        for (; !numbers.empty(); numbers.pop_back())
            if (const kelResult removed = removeSegment(place, run.get(), numbers.back()); !removed)
                return removed;
        if (const kelResult removed = removeRecording(place, run.get()); !removed)
            return removed;
    }

    closed = std::make_unique<ClosedSegments>(place, run.get(), options);
    if (segmented)
        return openSegments(std::move(numbers));
    writer = std::make_unique<FolderWriter>();
    return writer->open(place, FileDescriptor(::fcntl(run.get(), F_DUPFD_CLOEXEC, 0)), options);
}

/// Goes on in the last segment, or behind it where it is compressed.
kelResult kelRecordingWriter::Private::openSegments(std::vector<qint64> numbers)
{
    qint64 last = numbers.empty() ? 1 : numbers.back();
    if (!numbers.empty()) {
        if (isCompressed(openFolder(run.get(), segmentName(last)).get()))
            ++last;
        else
            numbers.pop_back();
    }
    for (const qint64 segment : numbers)
        closed->addExisting(segment);
    return openSegment(last);
}

kelResult kelRecordingWriter::Private::openSegment(qint64 wanted)
{
    kelRecordingOptions ofSegment = options;
    ofSegment.mode = kelRecordingOptions::Mode::Append;
    FileDescriptor folder;
    if (const kelResult locked = lockFolder(pathOf(wanted), folder); !locked)
        return locked;
    auto next = std::make_unique<FolderWriter>();
    if (const kelResult opened = next->open(pathOf(wanted), std::move(folder), ofSegment); !opened)
        return opened;
    if (options.sync != kelRecordingOptions::Sync::None && ::fsync(run.get()) != 0)
        return cannot(QStringLiteral("could not be synced"), place);
    writer = std::move(next);
    number = wanted;
    sinceBegin.start();
    return kelResult();
}

/// Closes the segment and begins the next one. When it fails, the one before is still open.
kelResult kelRecordingWriter::Private::beginSegment()
{
    if (const kelResult finished = writer->finish(); !finished)
        return finished;
    const qint64 before = number;
    const qint64 frames = writer->frames();
    const qint64 lastTime = writer->lastTime();
    if (::mkdirat(run.get(), segmentName(before + 1).c_str(), 0777) != 0)
        return cannot(QStringLiteral("the folder cannot be made"), pathOf(before + 1));
    if (const kelResult opened = openSegment(before + 1); !opened) {
        if (const kelResult removed = removeSegment(place, run.get(), before + 1); !removed) { }
        return opened;
    }
    closed->add(before, frames, lastTime);
    return kelResult();
}

/// Whether the frame belongs into the next segment.
bool kelRecordingWriter::Private::isFull() const
{
    if (number == 0 || writer->frames() == 0)
        return false;
    const qint64 first = writer->firstTime();
    const bool stamped =
        first != FrameOutline::noTime && frame.time != FrameOutline::noTime && frame.time >= first;
    const qint64 lasted = stamped ? frame.time - first : sinceBegin.elapsed();
    return (options.segmentFrames > 0 && writer->frames() >= options.segmentFrames)
        || (options.segmentBytes > 0 && writer->bytes() + frame.bytes() > options.segmentBytes)
        || (options.segmentTime > 0 && lasted >= options.segmentTime);
}

kelResult kelRecordingWriter::Private::makeRoom()
{
    if (options.keepTime <= 0 && options.keepBytes <= 0 && options.minFree <= 0)
        return kelResult();
    // The document is there twice while it grows.
    return closed->makeRoom(writer->bytes() + writer->documentBytes(), frame.bytes() + frame.text.size(),
                            frame.time);
}

kelRecordingWriter::kelRecordingWriter() = default;

kelRecordingWriter::~kelRecordingWriter()
{
    if (const kelResult finished = close(); !finished) { } // who wants to know calls it
}

kelResult kelRecordingWriter::open(const QString &folder, const kelRecordingOptions &options)
{
    if (const kelResult finished = close(); !finished)
        return finished;
    auto taken = std::make_unique<Private>(folder, options);
    if (const kelResult result = taken->open(); !result)
        return result;
    d = std::move(taken);
    return kelResult();
}

kelResult kelRecordingWriter::write(const CSynchronizer &stamp,
                                    const QList<QSharedPointer<kelAbstractData>> &objects)
{
    if (!d)
        return kelResult::failure(QStringLiteral("no recording is open"));
    if (const kelResult encoded = d->frame.encode(stamp, objects); !encoded)
        return encoded;
    if (d->isFull())
        if (const kelResult begun = d->beginSegment(); !begun)
            return begun;
    if (const kelResult room = d->makeRoom(); !room)
        return room;
    if (const kelResult added = d->writer->add(d->frame); !added)
        return added;
    d->closed->compressSome();
    return kelResult();
}

kelResult kelRecordingWriter::close()
{
    if (!d)
        return kelResult();
    const std::unique_ptr<Private> closing = std::move(d);
    const kelResult finished = closing->writer->finish();
    closing->writer.reset();
    const kelResult compressed = closing->closed->compressAll();
    return finished ? compressed : finished;
}

bool kelRecordingWriter::isOpen() const { return bool(d); }

qint64 kelRecordingWriter::frameCount() const { return d ? d->closed->frames() + d->writer->frames() : 0; }
