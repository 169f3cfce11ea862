#include <kelCore/recording/kelRecording.h>

#include <kelCore/recording/internal/kelChecksum.h>
#include <kelCore/recording/internal/kelFrameText.h>
#include <kelCore/recording/internal/kelRunIndex.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <fcntl.h>

using namespace kelDataFlow;

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
    RunIndex run;
    QString documentPath;
    QString recordsPath;

    QString describe(const IndexRow &row, qint64 index) const
    {
        return QStringLiteral("frame %1 (the %2th of %3)")
            .arg(QString::number(row.frame.number), QString::number(index + 1), documentPath);
    }
};

kelRecording::kelRecording() : d(std::make_unique<Private>()) { }
kelRecording::~kelRecording() = default;
kelRecording::kelRecording(kelRecording &&other) noexcept = default;
kelRecording &kelRecording::operator=(kelRecording &&other) noexcept = default;

bool kelRecording::existsIn(const QString &folder)
{
    const QDir dir(folder);
    return dir.exists(documentName()) || dir.exists(recordsName());
}

kelResult kelRecording::open(const QString &place)
{
    d = std::make_unique<Private>();
    const QFileInfo info(place);
    if (!info.exists())
        return kelResult::failure(QStringLiteral("no such recording"), place);
    const QDir folder = info.isDir() ? QDir(place) : info.dir();
    const QString document = info.isDir() ? documentName() : info.fileName();
    d->documentPath = folder.filePath(document);
    d->recordsPath = folder.filePath(recordsName());
    if (!folder.exists(document) && !folder.exists(recordsName()))
        return kelResult::failure(
            QStringLiteral("holds no recording (%1 and %2)").arg(documentName(), recordsName()), place);
    const FileDescriptor opened(
        ::open(QFile::encodeName(folder.path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened)
        return kelResult::failure(QStringLiteral("cannot be opened: %1").arg(systemError()), folder.path());
    const kelResult result = d->run.open(opened.get(), QFile::encodeName(document).toStdString());
    return result ? result
                  : kelResult::failure(result.what(), folder.filePath(result.where()), result.advice());
}

qint64 kelRecording::frameCount() const { return d->run.count(); }

qint64 kelRecording::objectCount() const { return d->run.objects(); }

kelRecordedFrame kelRecording::frame(qint64 index) const
{
    const IndexRow row = d->run.row(index);
    kelRecordedFrame frame;
    frame.index = index;
    frame.number = row.frame.number;
    if (row.frame.time != FrameOutline::noTime)
        frame.time = QDateTime::fromMSecsSinceEpoch(row.frame.time, Qt::UTC);
    frame.firstObject = row.firstObject;
    frame.objectCount = static_cast<int>(row.frame.objects);
    return frame;
}

std::vector<kelDataFlowRecord> kelRecording::records(const kelRecordedFrame &frame) const
{
    const IndexRow row = d->run.row(frame.index);
    const QByteArray bytes = d->run.recordBytes(row.recordsOffset, row.recordsLength);
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

std::vector<qint64> kelRecording::framesNumbered(quint32 number) const
{
    std::vector<qint64> indices;
    for (qint64 i = 0; i < d->run.count(); ++i)
        if (d->run.row(i).frame.number == number)
            indices.push_back(i);
    return indices;
}

qint64 kelRecording::frameAt(const QDateTime &time) const
{
    const qint64 wanted = time.toMSecsSinceEpoch();
    qint64 begin = 0;
    for (qint64 end = d->run.count(); begin < end;) {
        const qint64 middle = begin + (end - begin) / 2;
        const bool later = d->run.row(middle).frame.time > wanted;
        (later ? end : begin) = later ? middle : middle + 1;
    }
    return begin - 1;
}

qint64 kelRecording::documentSize() const { return d->run.documentSize(); }

qint64 kelRecording::recordsSize() const { return d->run.recordsSize(); }

qint64 kelRecording::leftOverBytes() const { return d->run.recordsSize() - d->run.recordsEnd(); }

kelResult kelRecording::state() const
{
    if (d->run.recordsFound() < d->run.objects())
        return kelResult::failure(
            QStringLiteral("the document has %1 data elements, but %2 holds %3 whole records")
                .arg(QString::number(d->run.objects()), d->recordsPath,
                     QString::number(d->run.recordsFound())),
            d->documentPath);
    if (d->run.form() == RunIndex::Form::Torn)
        return kelResult::failure(
            QStringLiteral("is no XML behind byte %1; the %2 frames before it are whole")
                .arg(QString::number(d->run.documentEnd()), QString::number(d->run.count())),
            d->documentPath);
    return kelResult();
}

kelResult kelRecording::verify(const std::function<void(qint64)> &progress) const
{
    if (const kelResult whole = state(); !whole)
        return whole;
    const RunIndex &run = d->run;
    if (run.indexIsDamaged())
        return kelResult::failure(QStringLiteral("the index is damaged"), d->documentPath,
                                  QStringLiteral("delete %1: it is not needed").arg(indexName()));
    if (!run.headIsWhole())
        return kelResult::failure(QStringLiteral("does not begin as a recording does"), d->documentPath);
    QByteArray made;
    IndexRow before;
    for (qint64 i = 0; i < run.count(); ++i) {
        if (progress && i % 4096 == 0)
            progress(i);
        const IndexRow row = run.row(i);
        const QString where = d->describe(row, i);
        if (row.recordsOffset != before.recordsEnd() || row.firstObject != before.objectsEnd())
            return kelResult::failure(QStringLiteral("the index is damaged"), where,
                                      QStringLiteral("delete %1: it is not needed").arg(indexName()));
        const kelRecordedFrame frame = this->frame(i);
        const std::vector<kelDataFlowRecord> recorded = records(frame);
        if (recorded.size() != row.frame.objects)
            return kelResult::failure(QStringLiteral("a record cannot be read"), where);
        const QByteArray bytes = run.recordBytes(row.recordsOffset, row.recordsLength);
        if (checksum(bytes.constData(), static_cast<size_t>(bytes.size())) != row.recordsChecksum)
            return kelResult::failure(QStringLiteral("the records are not those that were written"), where);
        before = row;
        if (run.form() == RunIndex::Form::Foreign)
            continue;
        const QByteArray text = run.documentBytes(row.frame.offset, row.frame.length);
        if (checksum(text.constData(), static_cast<size_t>(text.size())) != row.documentChecksum)
            return kelResult::failure(QStringLiteral("the text is not the one that was written"), where);
        // The text is what the records give: the same kinds, keys, types and boxes, in the same order.
        made.resize(0);
        appendFrameText(made, frame.stamp(), recorded);
        if (made != text)
            return kelResult::failure(QStringLiteral("document and records do not agree"), where);
    }
    return kelResult();
}
