#include <kelCore/recording/internal/kelFolderWriter.h>

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelAbstractData.h>
#include <kelCore/recording/internal/kelChecksum.h>
#include <kelCore/recording/internal/kelDocumentText.h>
#include <kelCore/recording/internal/kelFileWriting.h>
#include <kelCore/recording/internal/kelRunIndex.h>
#include <kelCore/recording/internal/kelSegments.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString leaveAlone = QStringLiteral("leave the files alone while they are recorded");
constexpr int rowsAtOnce = 64; ///< of the index: it costs a write for so many frames

QString text(const std::string &name) { return QString::fromStdString(name); }

} // namespace

kelResult kelDataFlow::cannot(const QString &what, const QString &where)
{
    return kelResult::failure(QStringLiteral("%1: %2").arg(what, systemError()), where);
}

kelResult kelDataFlow::lockFolder(const QString &path, FileDescriptor &folder)
{
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), 0777) != 0 && errno != EEXIST)
        return kelResult::failure(QStringLiteral("the folder cannot be made: %1").arg(systemError()), path);
    folder = openFolder(path);
    if (!folder)
        return kelResult::failure(QStringLiteral("the folder cannot be opened: %1").arg(systemError()), path,
                                  QStringLiteral("check that you may read and write it"));
    // On the folder itself: nothing is left behind when the process is killed.
    if (::flock(folder.get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK
            ? kelResult::failure(QStringLiteral("another recorder is writing there"), path,
                                 QStringLiteral("choose another folder"))
            : kelResult::failure(QStringLiteral("cannot be locked: %1").arg(systemError()), path);
    return kelResult();
}

kelResult kelDataFlow::removeRecording(const QString &path, int folder)
{
    for (const std::string &name : {documentName, recordsName, documentName + compressedEnding,
                                    recordsName + compressedEnding, std::string(indexName)})
        if (::unlinkat(folder, name.c_str(), 0) != 0 && errno != ENOENT)
            return cannot(QStringLiteral("cannot be removed"), QDir(path).filePath(text(name)));
    return kelResult();
}

kelDataFlow::EncodedFrame::EncodedFrame()
{
    records.reserve(1 << 13); // what is reserved is kept from frame to frame
    text.reserve(1 << 13);
}

kelResult kelDataFlow::EncodedFrame::encode(const CSynchronizer &stamp,
                                            const QList<QSharedPointer<kelAbstractData>> &list)
{
    number = stamp.getFrameNumber();
    const QDateTime stamped = stamp.getDateTime();
    time = stamped.isValid() ? QDateTime(stamped.date(), stamped.time(), Qt::UTC).toMSecsSinceEpoch()
                             : FrameOutline::noTime;
    m_objects.clear();
    records.resize(0);
    for (const QSharedPointer<kelAbstractData> &object : list) {
        if (!object)
            continue;
        m_objects.push_back({object->identifier(), object->getMap()});
        QString problem;
        const QByteArray bytes = m_objects.back().encoded(&problem);
        if (bytes.isEmpty())
            return kelResult::failure(
                problem,
                QStringLiteral("a %1 of frame %2").arg(m_objects.back().dataType, QString::number(number)));
        records += bytes;
    }
    objects = static_cast<quint32>(m_objects.size());
    text.resize(0);
    appendFrameText(text, stamp, m_objects);
    return kelResult();
}

qint64 kelDataFlow::EncodedFrame::bytes() const { return text.size() + records.size() + indexRowSize; }

kelResult kelDataFlow::FolderWriter::open(const QString &path, FileDescriptor folder,
                                          const kelRecordingOptions &options)
{
    m_path = path;
    m_folder = std::move(folder);
    m_sync = options.sync;
    m_syncInterval = options.syncInterval;
    m_documentFile = documentName;
    m_rows.reserve(1 << 13);
    if (const kelResult ready = prepare(options.mode); !ready)
        return ready;
    if (!m_index && m_canonical && !m_began) {
        m_index.reset(::openat(m_folder.get(), indexName, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        m_rows += indexHeader();
    }
    m_watch = FolderWatch(documentFolder(), m_documentFile, m_document.shadowName());
    m_watch.addRecords(m_records.get());
    m_document.stampChanges(!m_watch.works());
    m_sinceSync.start();
    return kelResult();
}

kelResult kelDataFlow::FolderWriter::add(const EncodedFrame &frame)
{
    if (const kelResult looked = look(); !looked)
        return looked;

    const bool sync = wantsSync();
    if (const kelResult added = addRecords(frame); !added)
        return added;
    if (sync && ::fdatasync(m_records.get()) != 0) {
        const kelResult failure = cannot(QStringLiteral("could not be synced"), pathOf(recordsName));
        takeBackRecords();
        return failure;
    }
    if (const kelResult added = addText(frame, sync); !added) {
        takeBackRecords();
        return added;
    }
    if (m_document.tookFiles() && m_watch.take().opened)
        m_document.mayBeOpen(); // by us, or by somebody else at that very moment
    addRow(frame);
    m_recordsSize += frame.records.size();
    m_objects += frame.objects;
    ++m_frames;
    if (m_firstTime == FrameOutline::noTime)
        m_firstTime = frame.time;
    if (frame.time != FrameOutline::noTime)
        m_lastTime = frame.time;
    if (!sync)
        return kelResult();
    m_sinceSync.restart();
    return syncFolder();
}

kelResult kelDataFlow::FolderWriter::finish()
{
    flushIndex();
    if (m_sync == kelRecordingOptions::Sync::None)
        return kelResult();
    if (::fdatasync(m_records.get()) != 0)
        return cannot(QStringLiteral("could not be synced"), pathOf(recordsName));
    const FileDescriptor document(
        ::openat(m_folder.get(), documentName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (document && ::fdatasync(document.get()) != 0)
        return cannot(QStringLiteral("could not be synced"), pathOf(documentName));
    return syncFolder();
}

qint64 kelDataFlow::FolderWriter::documentBytes() const
{
    const bool grows = m_canonical && m_began;
    return grows ? m_document.body() + qint64(documentTail.size()) : std::max<qint64>(m_foreignState.size, 0);
}

qint64 kelDataFlow::FolderWriter::bytes() const
{
    return documentBytes() + m_recordsSize + (m_frames + 1) * indexRowSize;
}

QString kelDataFlow::FolderWriter::pathOf(const std::string &name) const
{
    return QDir(m_path).filePath(text(name));
}

/// Whether the recording that is there can be gone on with: what is compressed cannot.
kelResult kelDataFlow::FolderWriter::checkPlain()
{
    for (const std::string &name : {documentName, recordsName}) {
        const std::string compressed = name + compressedEnding;
        if (::faccessat(m_folder.get(), compressed.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (::faccessat(m_folder.get(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0)
            return kelResult::failure(QStringLiteral("is compressed, and cannot be appended to"),
                                      pathOf(compressed),
                                      QStringLiteral("decompress it (zstd -d --rm), or record elsewhere"));
        // Whoever compressed it was interrupted before the plain file went, which is what counts.
        if (::unlinkat(m_folder.get(), compressed.c_str(), 0) != 0)
            return cannot(QStringLiteral("cannot be removed"), pathOf(compressed));
    }
    return kelResult();
}

kelResult kelDataFlow::FolderWriter::prepare(kelRecordingOptions::Mode mode)
{
    using Mode = kelRecordingOptions::Mode;
    const bool there = holdsRecording(m_folder.get());
    if (mode == Mode::Fresh && there)
        return kelResult::failure(QStringLiteral("already holds a recording"), m_path,
                                  QStringLiteral("append to it, overwrite it, or choose another folder"));
    if (mode == Mode::Overwrite)
        if (const kelResult removed = removeRecording(m_path, m_folder.get()); !removed)
            return removed;
    if (mode == Mode::Append && there)
        if (const kelResult plain = checkPlain(); !plain)
            return plain;
    const QFileInfo link(pathOf(documentName));
    if (link.isSymLink() && link.exists()) { // it stays one: the file that it leads to grows
        const QFileInfo target(link.canonicalFilePath());
        m_linked.reset(
            ::open(QFile::encodeName(target.path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        m_documentFile = QFile::encodeName(target.fileName()).toStdString();
    }
    m_document.setPlace(documentFolder(), m_documentFile);
    if (mode == Mode::Append && there)
        if (const kelResult ready = goOn(); !ready)
            return ready;

    m_records.reset(
        ::openat(m_folder.get(), recordsName.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    struct stat status = {};
    if (!m_records || ::fstat(m_records.get(), &status) != 0)
        return cannot(QStringLiteral("cannot be written"), pathOf(recordsName));
    if (!S_ISREG(status.st_mode))
        return kelResult::failure(QStringLiteral("is no regular file"), pathOf(recordsName));
    if (status.st_size > m_recordsSize && ::ftruncate(m_records.get(), m_recordsSize) != 0)
        return cannot(QStringLiteral("cannot be trimmed to its last whole frame"), pathOf(recordsName));
    return kelResult();
}

/// Finds the end of the recording that is there.
kelResult kelDataFlow::FolderWriter::goOn()
{
    RunIndex run;
    if (const kelResult opened = run.open(m_folder.get(), documentName); !opened)
        return kelResult::failure(opened.what(), QDir(m_path).filePath(opened.where()), opened.advice());
    if (run.recordsFound() < run.objects())
        return kelResult::failure(
            QStringLiteral("is damaged: the document has %1 data elements, and %2 holds %3 whole records")
                .arg(QString::number(run.objects()), text(recordsName), QString::number(run.recordsFound())),
            m_path);
    if (run.form() == RunIndex::Form::Torn
        && run.documentBytes(run.documentEnd(), 1 << 26).contains("\n </Frame>\n"))
        return kelResult::failure(
            QStringLiteral("is damaged behind byte %1: whole frames follow what is no XML")
                .arg(run.documentEnd()),
            pathOf(documentName), QStringLiteral("mend it, or record into another folder"));
    adopt(run);
    return kelResult();
}

/// Takes the files as they stand, and brings the index up to them.
void kelDataFlow::FolderWriter::adopt(const RunIndex &run)
{
    m_document.release();
    m_frames = run.count();
    m_objects = run.objects();
    m_recordsSize = run.recordsEnd();
    m_began = m_frames > 0;
    m_firstTime = m_began ? run.row(0).frame.time : FrameOutline::noTime;
    m_lastTime = m_began ? run.row(m_frames - 1).frame.time : FrameOutline::noTime;
    m_foreignState = FileState();
    const bool grows = stateOf(documentFolder(), m_documentFile, m_foreignState);
    m_canonical = run.form() != RunIndex::Form::Foreign && (grows || !run.documentExists());
    if (m_canonical && m_began)
        m_document.take(m_foreignState, run.documentEnd());

    m_index.reset(m_canonical ? ::openat(m_folder.get(), indexName, O_RDWR | O_CREAT | O_CLOEXEC, 0666) : -1);
    m_rows.resize(0);
    if (run.rowsOnDisk() == 0)
        m_rows += indexHeader();
    m_indexSize = run.rowsOnDisk() > 0 ? (run.rowsOnDisk() + 1) * indexRowSize : 0;
    for (qint64 i = run.rowsOnDisk(); m_index && i < run.count(); ++i) {
        appendIndexRow(m_rows, run.row(i));
        if (m_rows.size() > (1 << 20))
            flushIndex();
    }
    flushIndex();
    if (m_index ? ::ftruncate(m_index.get(), m_indexSize) != 0
                : ::unlinkat(m_folder.get(), indexName, 0) != 0)
        m_index.reset(); // it does not fit, and whoever reads finds that
}

/// What others have done to the files since the last frame.
kelResult kelDataFlow::FolderWriter::look()
{
    const FolderWatch::Seen seen = m_watch.take();
    if (seen.opened)
        m_document.mayBeOpen();
    if (!isAsLeft() || (seen.written && m_watch.works())) {
        if (const kelResult caughtUp = catchUp(); !caughtUp)
            return caughtUp;
        m_watch.take(); // of what we have opened ourselves
    }
    return checkRecords(seen.moved);
}

/// The records are the file that was opened, as it was left.
kelResult kelDataFlow::FolderWriter::checkRecords(bool byName) const
{
    struct stat status = {};
    const bool there = ::fstat(m_records.get(), &status) == 0 && status.st_nlink > 0;
    const bool same = status.st_size == m_recordsSize;
    struct stat named = status;
    if (byName && ::fstatat(m_folder.get(), recordsName.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0)
        named.st_nlink = 0;
    if (!there || named.st_nlink == 0)
        return kelResult::failure(QStringLiteral("has vanished while it was recorded"), pathOf(recordsName),
                                  leaveAlone);
    if (!same || named.st_dev != status.st_dev || named.st_ino != status.st_ino)
        return kelResult::failure(QStringLiteral("was changed by another program while it was recorded"),
                                  pathOf(recordsName), leaveAlone);
    return kelResult();
}

bool kelDataFlow::FolderWriter::isAsLeft() const
{
    FileState state;
    const bool grows = stateOf(documentFolder(), m_documentFile, state);
    return state == (m_canonical && m_began ? m_document.state() : m_foreignState)
        && (grows || !m_canonical || !m_began);
}

/// Somebody else has changed the document: what it is now.
kelResult kelDataFlow::FolderWriter::catchUp()
{
    RunIndex run;
    if (const kelResult opened = run.open(m_folder.get(), documentName); !opened)
        return kelResult::failure(opened.what(), QDir(m_path).filePath(opened.where()), opened.advice());
    if (!run.documentExists())
        return kelResult::failure(QStringLiteral("has vanished while it was recorded"), pathOf(documentName),
                                  leaveAlone);
    if (run.form() == RunIndex::Form::Torn)
        return kelResult::failure(QStringLiteral("was changed while it was recorded, and cannot be parsed"),
                                  pathOf(documentName), leaveAlone);
    if (run.recordsFound() != run.objects() || run.recordsEnd() != run.recordsSize())
        return kelResult::failure(
            QStringLiteral("was changed while it was recorded, and does not agree with %1")
                .arg(text(recordsName)),
            pathOf(documentName), leaveAlone);
    adopt(run);
    return kelResult();
}

kelResult kelDataFlow::FolderWriter::addRecords(const EncodedFrame &frame)
{
    if (frame.records.isEmpty())
        return kelResult();
    if (writeAll(m_records.get(), frame.records))
        return kelResult();
    const kelResult failure = cannot(QStringLiteral("could not be written"), pathOf(recordsName));
    takeBackRecords();
    return failure;
}

/// Cuts off what was written of a frame that did not come about. Ours to cut: the folder is locked.
void kelDataFlow::FolderWriter::takeBackRecords()
{
    if (::ftruncate(m_records.get(), m_recordsSize) != 0)
        return; // left over behind the last frame; the next one that appends cuts it off
}

/// Gives the recording its first frame: the document appears whole.
kelResult kelDataFlow::FolderWriter::begin(const EncodedFrame &frame)
{
    const int parent = documentFolder();
    const std::string shadow = shadowOf(m_documentFile);
    ::unlinkat(parent, shadow.c_str(), 0);
    QByteArray whole(documentHead.data(), static_cast<int>(documentHead.size()));
    whole += frame.text;
    whole.append(documentTail.data(), static_cast<int>(documentTail.size()));
    const FileDescriptor file(::openat(parent, shadow.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    const bool syncs = m_sync != kelRecordingOptions::Sync::None;
    if (!file || !writeAll(file.get(), whole) || (syncs && ::fdatasync(file.get()) != 0)
        || ::renameat(parent, shadow.c_str(), parent, m_documentFile.c_str()) != 0) {
        const kelResult failure = cannot(QStringLiteral("could not be written"), pathOf(documentName));
        ::unlinkat(parent, shadow.c_str(), 0);
        return failure;
    }
    FileState state;
    stateOf(parent, m_documentFile, state);
    m_document.take(state, qint64(documentHead.size()) + frame.text.size());
    m_began = true;
    return kelResult();
}

/// A document that does not look as a recorder writes it: parsed, extended, and written whole.
kelResult kelDataFlow::FolderWriter::rewrite(const EncodedFrame &frame)
{
    const kelResult failure =
        kelResult::failure(QStringLiteral("could not be parsed and written again"), pathOf(documentName));
    QDomDocument nodes, added;
    {
        QFile file(pathOf(documentName));
        if (!file.open(QIODevice::ReadOnly) || !setContent(nodes, file.readAll())
            || !added.setContent(QByteArray(frame.text)))
            return failure;
    }
    nodes.documentElement().appendChild(nodes.importNode(added.documentElement(), true));
    const QByteArray whole = toXml(nodes);
    if (!replaceFile(pathOf(documentName), whole))
        return cannot(QStringLiteral("could not be written"), pathOf(documentName));
    FrameWalker walker;
    qint64 frameCount = 0;
    m_canonical = walker.add({whole.constData(), static_cast<size_t>(whole.size())},
                             [&frameCount](const FrameOutline &) { ++frameCount; })
        && walker.atEnd();
    m_canonical = stateOf(documentFolder(), m_documentFile, m_foreignState) && m_canonical;
    if (m_canonical)
        m_document.take(m_foreignState, walker.goodEnd());
    m_began = true;
    return kelResult();
}

kelResult kelDataFlow::FolderWriter::addText(const EncodedFrame &frame, bool sync)
{
    if (!m_canonical)
        return rewrite(frame);
    if (!m_began)
        return begin(frame);
    using Sync = TwoInodeDocument::Sync;
    const bool everyFrame = m_sync == kelRecordingOptions::Sync::Frame; // the other file is synced already
    const kelResult grown = m_document.grow(frame.text,
                                            !sync            ? Sync::None
                                                : everyFrame ? Sync::Added
                                                             : Sync::Both);
    return grown ? grown : kelResult::failure(grown.what(), pathOf(documentName), grown.advice());
}

bool kelDataFlow::FolderWriter::wantsSync() const
{
    using Sync = kelRecordingOptions::Sync;
    return m_sync == Sync::Frame || (m_sync == Sync::Interval && m_sinceSync.hasExpired(m_syncInterval));
}

kelResult kelDataFlow::FolderWriter::syncFolder() const
{
    return ::fsync(m_folder.get()) == 0 ? kelResult() : cannot(QStringLiteral("could not be synced"), m_path);
}

void kelDataFlow::FolderWriter::addRow(const EncodedFrame &frame)
{
    if (!m_canonical)
        return;
    IndexRow row;
    row.frame.number = frame.number;
    row.frame.objects = frame.objects;
    row.frame.time = frame.time;
    row.frame.length = frame.text.size();
    row.frame.offset = m_document.body() - frame.text.size();
    row.documentChecksum = checksum(frame.text.constData(), static_cast<size_t>(frame.text.size()));
    row.recordsOffset = m_recordsSize;
    row.recordsLength = frame.records.size();
    row.recordsChecksum = checksum(frame.records.constData(), static_cast<size_t>(frame.records.size()));
    row.firstObject = m_objects;
    appendIndexRow(m_rows, row);
    if (m_rows.size() >= rowsAtOnce * indexRowSize)
        flushIndex();
}

/// An index that cannot be written is given up: it is never needed.
void kelDataFlow::FolderWriter::flushIndex()
{
    if (m_index && !writeAll(m_index.get(), m_rows, m_indexSize))
        m_index.reset();
    if (m_index)
        m_indexSize += m_rows.size();
    m_rows.resize(0);
}
