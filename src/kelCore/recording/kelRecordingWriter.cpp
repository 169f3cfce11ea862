#include <kelCore/recording/kelRecordingWriter.h>

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelAbstractData.h>
#include <kelCore/recording/internal/kelChecksum.h>
#include <kelCore/recording/internal/kelDocumentText.h>
#include <kelCore/recording/internal/kelFileWriting.h>
#include <kelCore/recording/internal/kelFolderWatch.h>
#include <kelCore/recording/internal/kelRunIndex.h>
#include <kelCore/recording/internal/kelTwoInodeDocument.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDir>
#include <QDomDocument>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kelDataFlow;

namespace {

const std::string documentName = "dataflow.xml";
const std::string recordsName = "dataflow.dat";
const QString leaveAlone = QStringLiteral("leave the files alone while they are recorded");
constexpr int rowsAtOnce = 64; ///< of the index: it costs a write for so many frames

QString text(const std::string &name) { return QString::fromStdString(name); }

/// What the system said about a file that was being written.
kelResult cannot(const QString &what, const QString &where)
{
    return kelResult::failure(QStringLiteral("%1: %2").arg(what, systemError()), where);
}

} // namespace

class kelRecordingWriter::Private
{
public:
    Private()
    {
        for (QByteArray *bytes : {&recordBytes, &frameText, &rows})
            bytes->reserve(1 << 13); // kept: a byte array gives back what was not asked for
    }

    kelResult take(const QString &place);
    kelResult prepare();
    kelResult goOn();
    kelResult look();
    kelResult checkRecords(bool byName) const;
    bool isAsLeft() const;
    kelResult catchUp();
    void adopt(const RunIndex &run);
    kelResult encode(const CSynchronizer &stamp, const QList<QSharedPointer<kelAbstractData>> &list);
    kelResult addRecords();
    void takeBackRecords();
    kelResult addFrame();
    kelResult begin();
    kelResult rewrite();
    void addRow(const CSynchronizer &stamp);
    void flushIndex();
    bool wantsSync();
    kelResult syncFolder() const;
    QString path(const std::string &name) const { return QDir(place).filePath(text(name)); }
    int documentFolder() const { return linked ? linked.get() : folder.get(); }

    kelRecordingOptions options;
    QString place;
    FileDescriptor folder; ///< holds the lock
    FileDescriptor linked; ///< of the document, where a link leads to another
    std::string documentFile = documentName;
    FileDescriptor records;
    FileDescriptor index;
    qint64 recordsSize = 0;
    qint64 objects = 0; ///< records, and data elements
    qint64 frames = 0;
    TwoInodeDocument document;
    bool canonical = true; ///< the document can grow in constant time
    bool began = false; ///< the document holds a frame
    FileState foreignState; ///< of a document that cannot, as it was left
    FolderWatch watch;
    QElapsedTimer sinceSync;

    // Of the frame in work; kept for their memory.
    std::vector<kelDataFlowRecord> objectsOfFrame;
    QByteArray recordBytes;
    QByteArray frameText;
    QByteArray rows; ///< not written to the index yet
    qint64 indexSize = 0;
};

kelResult kelRecordingWriter::Private::take(const QString &where)
{
    place = QFileInfo(where).absoluteFilePath();
    const QByteArray name = QFile::encodeName(place);
    if (::mkdir(name.constData(), 0777) != 0 && errno != EEXIST)
        return kelResult::failure(QStringLiteral("the folder cannot be made: %1").arg(systemError()), place);
    folder.reset(::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return kelResult::failure(QStringLiteral("the folder cannot be opened: %1").arg(systemError()), place,
                                  QStringLiteral("check that you may read and write it"));
    // On the folder itself: nothing is left behind when the process is killed.
    if (::flock(folder.get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK
            ? kelResult::failure(QStringLiteral("another recorder is writing there"), place,
                                 QStringLiteral("choose another folder"))
            : kelResult::failure(QStringLiteral("cannot be locked: %1").arg(systemError()), place);
    return kelResult();
}

kelResult kelRecordingWriter::Private::prepare()
{
    const bool there = ::faccessat(folder.get(), documentName.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0
        || ::faccessat(folder.get(), recordsName.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
    using Mode = kelRecordingOptions::Mode;
    if (options.mode == Mode::Fresh && there)
        return kelResult::failure(QStringLiteral("already holds a recording"), place,
                                  QStringLiteral("append to it, overwrite it, or choose another folder"));
    if (options.mode == Mode::Overwrite)
        for (const std::string &name : {documentName, recordsName, std::string(indexName)})
            if (::unlinkat(folder.get(), name.c_str(), 0) != 0 && errno != ENOENT)
                return cannot(QStringLiteral("cannot be removed"), path(name));
    const QFileInfo link(path(documentName));
    if (link.isSymLink() && link.exists()) { // it stays one: the file that it leads to grows
        const QFileInfo target(link.canonicalFilePath());
        linked.reset(
            ::open(QFile::encodeName(target.path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        documentFile = QFile::encodeName(target.fileName()).toStdString();
    }
    document.setPlace(documentFolder(), documentFile);
    if (options.mode == Mode::Append && there)
        if (const kelResult ready = goOn(); !ready)
            return ready;

    records.reset(
        ::openat(folder.get(), recordsName.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    struct stat status = {};
    if (!records || ::fstat(records.get(), &status) != 0)
        return cannot(QStringLiteral("cannot be written"), path(recordsName));
    if (!S_ISREG(status.st_mode))
        return kelResult::failure(QStringLiteral("is no regular file"), path(recordsName));
    if (status.st_size > recordsSize && ::ftruncate(records.get(), recordsSize) != 0)
        return cannot(QStringLiteral("cannot be trimmed to its last whole frame"), path(recordsName));
    return kelResult();
}

/// Finds the end of the recording that is there.
kelResult kelRecordingWriter::Private::goOn()
{
    RunIndex run;
    if (const kelResult opened = run.open(folder.get(), documentName); !opened)
        return kelResult::failure(opened.what(), QDir(place).filePath(opened.where()), opened.advice());
    if (run.recordsFound() < run.objects())
        return kelResult::failure(
            QStringLiteral("is damaged: the document has %1 data elements, and %2 holds %3 whole records")
                .arg(QString::number(run.objects()), text(recordsName), QString::number(run.recordsFound())),
            place);
    if (run.form() == RunIndex::Form::Torn
        && run.documentBytes(run.documentEnd(), 1 << 26).contains("\n </Frame>\n"))
        return kelResult::failure(
            QStringLiteral("is damaged behind byte %1: whole frames follow what is no XML")
                .arg(run.documentEnd()),
            path(documentName), QStringLiteral("mend it, or record into another folder"));
    adopt(run);
    return kelResult();
}

/// Takes the files as they stand, and brings the index up to them.
void kelRecordingWriter::Private::adopt(const RunIndex &run)
{
    document.release();
    frames = run.count();
    objects = run.objects();
    recordsSize = run.recordsEnd();
    began = frames > 0;
    foreignState = FileState();
    const bool grows = stateOf(documentFolder(), documentFile, foreignState);
    canonical = run.form() != RunIndex::Form::Foreign && (grows || !run.documentExists());
    if (canonical && began)
        document.take(foreignState, run.documentEnd());

    index.reset(canonical ? ::openat(folder.get(), indexName, O_RDWR | O_CREAT | O_CLOEXEC, 0666) : -1);
    rows.resize(0);
    if (run.rowsOnDisk() == 0)
        rows += indexHeader();
    indexSize = run.rowsOnDisk() > 0 ? (run.rowsOnDisk() + 1) * indexRowSize : 0;
    for (qint64 i = run.rowsOnDisk(); index && i < run.count(); ++i) {
        appendIndexRow(rows, run.row(i));
        if (rows.size() > (1 << 20))
            flushIndex();
    }
    flushIndex();
    if (index ? ::ftruncate(index.get(), indexSize) != 0 : ::unlinkat(folder.get(), indexName, 0) != 0)
        index.reset(); // it does not fit, and whoever reads finds that
}

/// What others have done to the files since the last frame.
kelResult kelRecordingWriter::Private::look()
{
    const FolderWatch::Seen seen = watch.take();
    if (seen.opened)
        document.mayBeOpen();
    if (!isAsLeft() || (seen.written && watch.works())) {
        if (const kelResult caughtUp = catchUp(); !caughtUp)
            return caughtUp;
        watch.take(); // of what we have opened ourselves
    }
    return checkRecords(seen.moved);
}

/// The records are the file that was opened, as it was left.
kelResult kelRecordingWriter::Private::checkRecords(bool byName) const
{
    struct stat status = {};
    const bool there = ::fstat(records.get(), &status) == 0 && status.st_nlink > 0;
    const bool same = status.st_size == recordsSize;
    struct stat named = status;
    if (byName && ::fstatat(folder.get(), recordsName.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0)
        named.st_nlink = 0;
    if (!there || named.st_nlink == 0)
        return kelResult::failure(QStringLiteral("has vanished while it was recorded"), path(recordsName),
                                  leaveAlone);
    if (!same || named.st_dev != status.st_dev || named.st_ino != status.st_ino)
        return kelResult::failure(QStringLiteral("was changed by another program while it was recorded"),
                                  path(recordsName), leaveAlone);
    return kelResult();
}

bool kelRecordingWriter::Private::isAsLeft() const
{
    FileState state;
    const bool grows = stateOf(documentFolder(), documentFile, state);
    return state == (canonical && began ? document.state() : foreignState) && (grows || !canonical || !began);
}

/// Somebody else has changed the document: what it is now.
kelResult kelRecordingWriter::Private::catchUp()
{
    RunIndex run;
    if (const kelResult opened = run.open(folder.get(), documentName); !opened)
        return kelResult::failure(opened.what(), QDir(place).filePath(opened.where()), opened.advice());
    if (!run.documentExists())
        return kelResult::failure(QStringLiteral("has vanished while it was recorded"), path(documentName),
                                  leaveAlone);
    if (run.form() == RunIndex::Form::Torn)
        return kelResult::failure(QStringLiteral("was changed while it was recorded, and cannot be parsed"),
                                  path(documentName), leaveAlone);
    if (run.recordsFound() != run.objects() || run.recordsEnd() != run.recordsSize())
        return kelResult::failure(
            QStringLiteral("was changed while it was recorded, and does not agree with %1")
                .arg(text(recordsName)),
            path(documentName), leaveAlone);
    adopt(run);
    return kelResult();
}

kelResult kelRecordingWriter::Private::encode(const CSynchronizer &stamp,
                                              const QList<QSharedPointer<kelAbstractData>> &list)
{
    objectsOfFrame.clear();
    recordBytes.resize(0);
    for (const QSharedPointer<kelAbstractData> &object : list) {
        if (!object)
            continue;
        objectsOfFrame.push_back({object->identifier(), object->getMap()});
        QString problem;
        const QByteArray bytes = objectsOfFrame.back().encoded(&problem);
        if (bytes.isEmpty())
            return kelResult::failure(
                problem,
                QStringLiteral("a %1 of frame %2")
                    .arg(objectsOfFrame.back().dataType, QString::number(stamp.getFrameNumber())));
        recordBytes += bytes;
    }
    frameText.resize(0);
    appendFrameText(frameText, stamp, objectsOfFrame);
    return kelResult();
}

kelResult kelRecordingWriter::Private::addRecords()
{
    if (recordBytes.isEmpty())
        return kelResult();
    if (writeAll(records.get(), recordBytes))
        return kelResult();
    const kelResult failure = cannot(QStringLiteral("could not be written"), path(recordsName));
    takeBackRecords();
    return failure;
}

/// Cuts off what was written of a frame that did not come about. Ours to cut: the folder is locked.
void kelRecordingWriter::Private::takeBackRecords()
{
    if (::ftruncate(records.get(), recordsSize) != 0)
        return; // left over behind the last frame; the next one that appends cuts it off
}

/// Gives the recording its first frame: the document appears whole.
kelResult kelRecordingWriter::Private::begin()
{
    const int parent = documentFolder();
    const std::string shadow = document.shadowName();
    ::unlinkat(parent, shadow.c_str(), 0);
    QByteArray whole(documentHead.data(), static_cast<int>(documentHead.size()));
    whole += frameText;
    whole.append(documentTail.data(), static_cast<int>(documentTail.size()));
    const FileDescriptor file(::openat(parent, shadow.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    const bool wantsSync = options.sync != kelRecordingOptions::Sync::None;
    if (!file || !writeAll(file.get(), whole) || (wantsSync && ::fdatasync(file.get()) != 0)
        || ::renameat(parent, shadow.c_str(), parent, documentFile.c_str()) != 0) {
        const kelResult failure = cannot(QStringLiteral("could not be written"), path(documentName));
        ::unlinkat(parent, shadow.c_str(), 0);
        return failure;
    }
    FileState state;
    stateOf(parent, documentFile, state);
    document.take(state, qint64(documentHead.size()) + frameText.size());
    began = true;
    return kelResult();
}

/// A document that does not look as a recorder writes it: parsed, extended, and written whole.
kelResult kelRecordingWriter::Private::rewrite()
{
    const kelResult failure =
        kelResult::failure(QStringLiteral("could not be parsed and written again"), path(documentName));
    QDomDocument nodes, frame;
    {
        QFile file(path(documentName));
        if (!file.open(QIODevice::ReadOnly) || !setContent(nodes, file.readAll())
            || !frame.setContent(QByteArray(frameText)))
            return failure;
    }
    nodes.documentElement().appendChild(nodes.importNode(frame.documentElement(), true));
    const QByteArray whole = toXml(nodes);
    if (!replaceFile(path(documentName), whole))
        return cannot(QStringLiteral("could not be written"), path(documentName));
    FrameWalker walker;
    qint64 frameCount = 0;
    canonical = walker.add({whole.constData(), static_cast<size_t>(whole.size())},
                           [&frameCount](const FrameOutline &) { ++frameCount; })
        && walker.atEnd();
    canonical = stateOf(documentFolder(), documentFile, foreignState) && canonical;
    if (canonical)
        document.take(foreignState, walker.goodEnd());
    began = true;
    return kelResult();
}

kelResult kelRecordingWriter::Private::addFrame()
{
    if (!canonical)
        return rewrite();
    if (!began)
        return begin();
    using Sync = TwoInodeDocument::Sync;
    const bool everyFrame =
        options.sync == kelRecordingOptions::Sync::Frame; // the other file is synced already
    const kelResult grown = document.grow(frameText,
                                          !wantsSync()     ? Sync::None
                                              : everyFrame ? Sync::Added
                                                           : Sync::Both);
    return grown ? grown : kelResult::failure(grown.what(), path(documentName), grown.advice());
}

bool kelRecordingWriter::Private::wantsSync()
{
    using Sync = kelRecordingOptions::Sync;
    return options.sync == Sync::Frame
        || (options.sync == Sync::Interval && sinceSync.hasExpired(options.syncInterval));
}

kelResult kelRecordingWriter::Private::syncFolder() const
{
    return ::fsync(folder.get()) == 0 ? kelResult() : cannot(QStringLiteral("could not be synced"), place);
}

void kelRecordingWriter::Private::addRow(const CSynchronizer &stamp)
{
    if (!canonical)
        return;
    IndexRow row;
    row.frame.number = stamp.getFrameNumber();
    row.frame.objects = static_cast<quint32>(objectsOfFrame.size());
    const QDateTime time = stamp.getDateTime();
    if (time.isValid())
        row.frame.time = QDateTime(time.date(), time.time(), Qt::UTC).toMSecsSinceEpoch();
    row.frame.length = frameText.size();
    row.frame.offset = document.body() - frameText.size();
    row.documentChecksum = checksum(frameText.constData(), static_cast<size_t>(frameText.size()));
    row.recordsOffset = recordsSize;
    row.recordsLength = recordBytes.size();
    row.recordsChecksum = checksum(recordBytes.constData(), static_cast<size_t>(recordBytes.size()));
    row.firstObject = objects;
    appendIndexRow(rows, row);
    if (rows.size() >= rowsAtOnce * indexRowSize)
        flushIndex();
}

/// An index that cannot be written is given up: it is never needed.
void kelRecordingWriter::Private::flushIndex()
{
    if (index && !writeAll(index.get(), rows, indexSize))
        index.reset();
    if (index)
        indexSize += rows.size();
    rows.resize(0);
}

kelRecordingWriter::kelRecordingWriter() = default;

kelRecordingWriter::~kelRecordingWriter()
{
    if (const kelResult closed = close(); !closed) { } // who wants to know calls it
}

kelResult kelRecordingWriter::open(const QString &folder, const kelRecordingOptions &options)
{
    if (const kelResult closed = close(); !closed)
        return closed;
    auto taken = std::make_unique<Private>();
    taken->options = options;
    if (const kelResult result = taken->take(folder); !result)
        return result;
    if (const kelResult result = taken->prepare(); !result)
        return result;
    if (!taken->index && taken->canonical && !taken->began) {
        taken->index.reset(
            ::openat(taken->folder.get(), indexName, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        taken->rows += indexHeader();
    }
    taken->watch = FolderWatch(taken->documentFolder(), taken->documentFile, taken->document.shadowName());
    taken->watch.addRecords(taken->records.get());
    taken->document.stampChanges(!taken->watch.works());
    taken->sinceSync.start();
    d = std::move(taken);
    return kelResult();
}

kelResult kelRecordingWriter::write(const CSynchronizer &stamp,
                                    const QList<QSharedPointer<kelAbstractData>> &objects)
{
    if (!d)
        return kelResult::failure(QStringLiteral("no recording is open"));
    if (const kelResult encoded = d->encode(stamp, objects); !encoded)
        return encoded;

    if (const kelResult looked = d->look(); !looked)
        return looked;

    const bool sync = d->wantsSync();
    if (const kelResult added = d->addRecords(); !added)
        return added;
    if (sync && ::fdatasync(d->records.get()) != 0)
        return cannot(QStringLiteral("could not be synced"), d->path(recordsName));
    if (const kelResult added = d->addFrame(); !added) {
        d->takeBackRecords();
        return added;
    }
    if (d->document.tookFiles() && d->watch.take().opened)
        d->document.mayBeOpen(); // by us, or by somebody else at that very moment
    d->addRow(stamp);
    d->recordsSize += d->recordBytes.size();
    d->objects += qint64(d->objectsOfFrame.size());
    ++d->frames;
    if (sync) {
        d->sinceSync.restart();
        return d->syncFolder();
    }
    return kelResult();
}

kelResult kelRecordingWriter::close()
{
    if (!d)
        return kelResult();
    const std::unique_ptr<Private> closing = std::move(d);
    closing->flushIndex();
    if (closing->options.sync == kelRecordingOptions::Sync::None)
        return kelResult();
    if (::fdatasync(closing->records.get()) != 0)
        return cannot(QStringLiteral("could not be synced"), closing->path(recordsName));
    const FileDescriptor document(
        ::openat(closing->folder.get(), documentName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (document && ::fdatasync(document.get()) != 0)
        return cannot(QStringLiteral("could not be synced"), closing->path(documentName));
    return closing->syncFolder();
}

bool kelRecordingWriter::isOpen() const { return bool(d); }

qint64 kelRecordingWriter::frameCount() const { return d ? d->frames : 0; }
