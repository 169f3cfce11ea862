#include <kelCore/recording/kelRecording.h>

#include <kelCore/recording/internal/kelChecksum.h>
#include <kelCore/recording/internal/kelFrameText.h>
#include <kelCore/recording/internal/kelRunIndex.h>
#include <kelCore/recording/internal/kelSegments.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace kelDataFlow;

namespace {

constexpr size_t openAtOnce = 4; ///< segments, beside the last one

/// A recording in today's files: the run itself, or a segment of it.
struct Part
{
    qint64 number = 0; ///< of the segment; 0 for a run without segments
    qint64 firstFrame = 0;
    qint64 firstObject = 0;
};

QString documentOf(const QString &folder, const QString &name) { return QDir(folder).filePath(name); }

kelResult damagedIndex(const QString &where)
{
    return kelResult::failure(QStringLiteral("the index is damaged"), where,
                              QStringLiteral("delete %1: it is not needed").arg(kelRecording::indexName()));
}

/// Whether every frame of a part has its records.
kelResult stateOf(const RunIndex &run, const QString &folder, const QString &document)
{
    const QString where = documentOf(folder, document);
    if (run.recordsFound() < run.objects())
        return kelResult::failure(
            QStringLiteral("the document has %1 data elements, but %2 holds %3 whole records")
                .arg(QString::number(run.objects()), documentOf(folder, kelRecording::recordsName()),
                     QString::number(run.recordsFound())),
            where);
    if (run.form() == RunIndex::Form::Torn)
        return kelResult::failure(
            QStringLiteral("is no XML behind byte %1; the %2 frames before it are whole")
                .arg(QString::number(run.documentEnd()), QString::number(run.count())),
            where);
    return kelResult();
}

std::vector<kelDataFlowRecord> decode(const RunIndex &run, const IndexRow &row)
{
    const QByteArray bytes = run.recordBytes(row.recordsOffset, row.recordsLength);
    std::vector<kelDataFlowRecord> records;
    qint64 at = 0;
    kelDataFlowRecord record;
    while (at < bytes.size() && records.size() < row.frame.objects) {
        const qint64 used = record.decode(bytes.constData() + at, bytes.size() - at);
        if (used == 0)
            break;
        records.push_back(record);
        at += used;
    }
    return records;
}

kelRecordedFrame frameOf(const IndexRow &row)
{
    kelRecordedFrame frame;
    frame.number = row.frame.number;
    if (row.frame.time != FrameOutline::noTime)
        frame.time = QDateTime::fromMSecsSinceEpoch(row.frame.time, Qt::UTC);
    frame.firstObject = row.firstObject;
    frame.objectCount = static_cast<int>(row.frame.objects);
    return frame;
}

} // namespace

CSynchronizer kelRecordedFrame::stamp() const
{
    CSynchronizer stamp;
    stamp.setFrameNumber(number);
    stamp.setDateTime(time);
    return stamp;
}

class kelRecording::Private
{
public:
    kelResult openPlain();
    kelResult openSegments(const std::vector<qint64> &numbers);
    kelResult openPart(qint64 number, RunIndex &run) const;
    void note(const kelResult &found);
    size_t partOf(qint64 frame) const;
    const RunIndex *opened(size_t part) const;
    IndexRow row(qint64 frame) const;
    kelResult verify(size_t part, const std::function<void(qint64)> &progress) const;

    /// The folder that holds the files of a part.
    QString folderOf(qint64 number) const
    {
        return number > 0 ? QDir(place).filePath(QString::fromStdString(segmentName(number))) : place;
    }
    qint64 framesOf(size_t part) const
    {
        return (part + 1 < parts.size() ? parts[part + 1].firstFrame : frames) - parts[part].firstFrame;
    }

    QString place;
    QString document = documentName(); ///< its name in the folder
    FileDescriptor folder;
    std::vector<Part> parts;
    qint64 frames = 0;
    qint64 objects = 0;
    qint64 documentSize = 0;
    qint64 recordsSize = 0;
    qint64 leftOver = 0;
    kelResult state; ///< what was found wrong first

    struct Opened
    {
        size_t part = 0;
        std::unique_ptr<RunIndex> run;
    };
    /// Those used last, the last one of them first. Segments by the thousand would need more files than a
    /// process may open.
    mutable std::vector<Opened> open;
    std::unique_ptr<RunIndex> last; ///< of the parts: it may grow, and what is recorded later is not seen
};

void kelRecording::Private::note(const kelResult &found)
{
    if (state && !found)
        state = found;
}

/// What is in one folder. \return a failure when it cannot be read at all; `run` is then empty.
kelResult kelRecording::Private::openPart(qint64 number, RunIndex &run) const
{
    const FileDescriptor segment =
        number > 0 ? openFolder(folder.get(), segmentName(number)) : openFolder(place);
    if (!segment)
        return kelResult::failure(QStringLiteral("cannot be opened: %1").arg(systemError()),
                                  folderOf(number));
    const kelResult opened = run.open(segment.get(), QFile::encodeName(document).toStdString());
    if (opened)
        return opened;
    run = RunIndex();
    return kelResult::failure(opened.what(), documentOf(folderOf(number), opened.where()), opened.advice());
}

kelResult kelRecording::Private::openPlain()
{
    last = std::make_unique<RunIndex>();
    if (const kelResult opened = openPart(0, *last); !opened)
        return opened;
    parts.push_back(Part());
    frames = last->count();
    objects = last->objects();
    documentSize = last->documentSize();
    recordsSize = last->recordsSize();
    leftOver = recordsSize - last->recordsEnd();
    state = stateOf(*last, place, document);
    return kelResult();
}

kelResult kelRecording::Private::openSegments(const std::vector<qint64> &numbers)
{
    for (const qint64 number : numbers) {
        const bool isLast = number == numbers.back();
        auto run = std::make_unique<RunIndex>();
        const kelResult opened = openPart(number, *run);
        if (!opened && !QFileInfo::exists(folderOf(number)))
            continue; // a recorder made room
        note(opened);
        if (!parts.empty() && number != parts.back().number + 1)
            note(kelResult::failure(QStringLiteral("is missing"), folderOf(parts.back().number + 1)));
        if (opened && !run->documentExists() && !isLast)
            note(kelResult::failure(QStringLiteral("has no %1").arg(document), folderOf(number)));
        note(stateOf(*run, folderOf(number), document));
        parts.push_back({number, frames, objects});
        frames += run->count();
        objects += run->objects();
        documentSize += run->documentSize();
        recordsSize += run->recordsSize();
        leftOver += run->recordsSize() - run->recordsEnd();
        last = std::move(run);
    }
    return parts.empty()
        ? kelResult::failure(QStringLiteral("all segments have vanished while it was opened"), place)
        : kelResult();
}

/// The part that holds the frame.
size_t kelRecording::Private::partOf(qint64 frame) const
{
    const auto behind = std::upper_bound(parts.begin(), parts.end(), frame,
                                         [](qint64 at, const Part &part) { return at < part.firstFrame; });
    return static_cast<size_t>(std::max<std::ptrdiff_t>(behind - parts.begin(), 1) - 1);
}

/// Null when the segment can no longer be opened.
const RunIndex *kelRecording::Private::opened(size_t part) const
{
    if (part + 1 >= parts.size())
        return last.get();
    auto found =
        std::find_if(open.begin(), open.end(), [part](const Opened &entry) { return entry.part == part; });
    if (found == open.end()) {
        if (open.size() >= openAtOnce)
            open.pop_back();
        auto run = std::make_unique<RunIndex>();
        if (!openPart(parts[part].number, *run))
            return nullptr;
        found = open.insert(open.end(), {part, std::move(run)});
    }
    std::rotate(open.begin(), found, found + 1);
    return open.front().run.get();
}

/// Empty where it cannot be read. Objects are counted from the beginning of the run.
IndexRow kelRecording::Private::row(qint64 frame) const
{
    if (frame < 0 || frame >= frames)
        return IndexRow();
    const size_t part = partOf(frame);
    const RunIndex *const run = opened(part);
    IndexRow row = run ? run->row(frame - parts[part].firstFrame) : IndexRow();
    row.firstObject += parts[part].firstObject;
    return row;
}

kelResult kelRecording::Private::verify(size_t part, const std::function<void(qint64)> &progress) const
{
    const QString where = documentOf(folderOf(parts[part].number), document);
    const RunIndex *const opened = this->opened(part);
    if (!opened || opened->count() != framesOf(part))
        return kelResult::failure(QStringLiteral("is not what it was when the run was opened"), where);
    const RunIndex &run = *opened;
    if (run.indexIsDamaged())
        return damagedIndex(where);
    if (!run.endsAreWhole())
        return kelResult::failure(QStringLiteral("does not begin and end as a recording does"), where);
    QByteArray made;
    IndexRow before;
    for (qint64 i = 0; i < run.count(); ++i) {
        if (progress && (parts[part].firstFrame + i) % 4096 == 0)
            progress(parts[part].firstFrame + i);
        const IndexRow row = run.row(i);
        const auto wrong = [&](const QString &what) {
            const QString problem = run.problem();
            return kelResult::failure(
                problem.isEmpty() ? what : what + QStringLiteral(": ") + problem,
                QStringLiteral("frame %1 (the %2th of %3)")
                    .arg(QString::number(row.frame.number), QString::number(i + 1), where));
        };
        if (row.recordsOffset != before.recordsEnd() || row.firstObject != before.objectsEnd())
            return damagedIndex(wrong(QString()).where());
        const std::vector<kelDataFlowRecord> recorded = decode(run, row);
        if (recorded.size() != row.frame.objects)
            return wrong(QStringLiteral("a record cannot be read"));
        const QByteArray bytes = run.recordBytes(row.recordsOffset, row.recordsLength);
        if (checksum(bytes.constData(), static_cast<size_t>(bytes.size())) != row.recordsChecksum)
            return wrong(QStringLiteral("the records are not those that were written"));
        before = row;
        if (run.form() == RunIndex::Form::Foreign)
            continue;
        const QByteArray text = run.documentBytes(row.frame.offset, row.frame.length);
        if (checksum(text.constData(), static_cast<size_t>(text.size())) != row.documentChecksum)
            return wrong(QStringLiteral("the text is not the one that was written"));
        // The text is what the records give: the same kinds, keys, types and boxes, in the same order.
        made.resize(0);
        appendFrameText(made, frameOf(row).stamp(), recorded);
        if (made != text)
            return wrong(QStringLiteral("document and records do not agree"));
    }
    return kelResult();
}

kelRecording::kelRecording() : d(std::make_unique<Private>()) { }
kelRecording::~kelRecording() = default;
kelRecording::kelRecording(kelRecording &&other) noexcept = default;
kelRecording &kelRecording::operator=(kelRecording &&other) noexcept = default;

bool kelRecording::existsIn(const QString &folder)
{
    const FileDescriptor opened = openFolder(folder);
    return opened && (holdsRecording(opened.get()) || !segmentsIn(opened.get()).empty());
}

kelResult kelRecording::open(const QString &place)
{
    d = std::make_unique<Private>();
    const QString compressed = QString::fromStdString(compressedEnding);
    QFileInfo info(place);
    if (!info.exists() && !QFileInfo::exists(place + compressed))
        return kelResult::failure(QStringLiteral("no such recording"), place);
    const bool isFolder = info.isDir();
    d->place = isFolder ? place : info.path();
    if (!isFolder) {
        d->document = info.fileName();
        if (d->document.endsWith(compressed))
            d->document.chop(compressed.size());
    }
    d->folder = openFolder(d->place);
    if (!d->folder)
        return kelResult::failure(QStringLiteral("cannot be opened: %1").arg(systemError()), d->place);
    if (!isFolder || holdsRecording(d->folder.get()))
        return d->openPlain();
    const std::vector<qint64> segments = segmentsIn(d->folder.get());
    if (segments.empty())
        return kelResult::failure(
            QStringLiteral("holds no recording (%1 and %2)").arg(documentName(), recordsName()), place);
    return d->openSegments(segments);
}

qint64 kelRecording::frameCount() const { return d->frames; }

qint64 kelRecording::objectCount() const { return d->objects; }

int kelRecording::segmentCount() const
{
    return d->parts.empty() || d->parts.front().number == 0 ? 0 : static_cast<int>(d->parts.size());
}

kelRecordedFrame kelRecording::frame(qint64 index) const
{
    kelRecordedFrame frame = frameOf(d->row(index));
    frame.index = index;
    return frame;
}

std::vector<kelDataFlowRecord> kelRecording::records(const kelRecordedFrame &frame) const
{
    if (frame.index < 0 || frame.index >= d->frames)
        return {};
    const size_t part = d->partOf(frame.index);
    const RunIndex *const run = d->opened(part);
    return run ? decode(*run, run->row(frame.index - d->parts[part].firstFrame))
               : std::vector<kelDataFlowRecord>();
}

std::vector<qint64> kelRecording::framesNumbered(quint32 number) const
{
    std::vector<qint64> indices;
    for (size_t part = 0; part < d->parts.size(); ++part) {
        const RunIndex *const run = d->opened(part);
        for (qint64 i = 0; run && i < d->framesOf(part); ++i)
            if (run->row(i).frame.number == number)
                indices.push_back(d->parts[part].firstFrame + i);
    }
    return indices;
}

qint64 kelRecording::frameAt(const QDateTime &time) const
{
    const qint64 wanted = time.toMSecsSinceEpoch();
    qint64 begin = 0;
    for (qint64 end = d->frames; begin < end;) {
        const qint64 middle = begin + (end - begin) / 2;
        const bool later = d->row(middle).frame.time > wanted;
        (later ? end : begin) = later ? middle : middle + 1;
    }
    return begin - 1;
}

qint64 kelRecording::documentSize() const { return d->documentSize; }

qint64 kelRecording::recordsSize() const { return d->recordsSize; }

qint64 kelRecording::leftOverBytes() const { return d->leftOver; }

kelResult kelRecording::state() const { return d->state; }

kelResult kelRecording::verify(const std::function<void(qint64)> &progress) const
{
    if (!d->state)
        return d->state;
    for (size_t part = 0; part < d->parts.size(); ++part)
        if (const kelResult whole = d->verify(part, progress); !whole)
            return whole;
    return kelResult();
}
