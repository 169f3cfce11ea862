#include "kelrecord/RunWriter.h"

#include "common/Recording.h"
#include "common/RegularFile.h"
#include "kelrecord/Leftovers.h"

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The library's writer says a word on standard output and waits for a character when it is built; neither is
/// for the users of this program.
std::unique_ptr<kelAbstractProcessDataFlowWriter> makeWriter()
{
    std::ungetc('\n', stdin);
    std::ostringstream nowhere;
    std::streambuf *output = std::cout.rdbuf(nowhere.rdbuf());
    auto writer = std::make_unique<kelAbstractProcessDataFlowWriter>();
    std::cout.rdbuf(output);
    return writer;
}

qint64 sizeOf(const QString &name)
{
    const QFileInfo info(name);
    return info.exists() ? info.size() : -1;
}

QString bytes(qint64 size)
{
    return size < 0 ? QStringLiteral("missing") : QStringLiteral("%1 bytes long").arg(size);
}

/// The likely reason why a file in `folder` could not be written.
QString reason(const QString &folder)
{
    const QStorageInfo storage(folder);
    if (storage.isReadOnly())
        return QStringLiteral("the disk is read-only");
    if (storage.bytesAvailable() < (1 << 20))
        return QStringLiteral("the disk is full");
    return QStringLiteral("the folder or its files cannot be written");
}

/// Room for the next records: the library's writer would name them in the document whether they were written
/// or not.
class Reserved
{
public:
    /// Opens the file of records, which is made where it is missing, and keeps room for `size` bytes behind
    /// `offset`, as far as the disk knows how.
    Reserved(qint64 offset, qint64 size)
        : m_file(open(QFile::encodeName(Recording::recordsName()).constData(), O_WRONLY | O_CREAT | O_CLOEXEC,
                      0666))
    {
        if (m_file < 0 || fallocate(m_file, FALLOC_FL_KEEP_SIZE, offset, size) != 0)
            m_error = errno;
        if (m_error == EOPNOTSUPP || m_error == ENOSYS)
            m_error = 0;
    }
    ~Reserved()
    {
        if (m_file >= 0)
            close(m_file);
    }
    Reserved(const Reserved &) = delete;
    Reserved &operator=(const Reserved &) = delete;

    /// A number of the system's; 0 when there is room, or nobody knows.
    int error() const { return m_error; }
    /// True when the file has been removed since.
    bool isGone() const
    {
        struct stat status = {};
        return fstat(m_file, &status) == 0 && status.st_nlink == 0;
    }

private:
    int m_file;
    int m_error = 0;
};

} // namespace

RunWriter::RunWriter(const QString &folder, Mode mode) : m_folder(QFileInfo(folder).absoluteFilePath())
{
    const PathKind kind = kindOf(m_folder);
    if (kind != PathKind::Missing && kind != PathKind::Folder)
        throw Failure(QStringLiteral("%1 is not a folder; choose another for --out").arg(folder));
    if (!QDir().mkpath(m_folder) || !QDir::setCurrent(m_folder))
        throw Failure(
            QStringLiteral("the folder %1 cannot be made or entered; choose another for --out").arg(folder));
    m_lock.emplace(m_folder);
    prepare(mode);
    m_writer = makeWriter();
    m_writer->setFilePath(QFile(Recording::documentName()));
    m_left = sizesNow();
}

RunWriter::~RunWriter() = default;

RunWriter::Sizes RunWriter::sizesNow()
{
    return {sizeOf(Recording::documentName()), sizeOf(Recording::recordsName())};
}

void RunWriter::prepare(Mode mode)
{
    const QStringList names{Recording::documentName(), Recording::recordsName()};
    for (const QString &name : names)
        mustBeFileOrFree(QDir(m_folder).filePath(name));
    if (mode == Mode::Fresh && Recording::existsIn(m_folder))
        throw Failure(QStringLiteral(
                          "%1 already holds a recording; give --append to go on behind it, or --overwrite to "
                          "replace it")
                          .arg(m_folder));
    if (mode == Mode::Append && Recording::existsIn(m_folder)) {
        m_previous = std::make_unique<Recording>(m_folder);
        m_previous->check();
        for (const QString &name : names)
            mustBeWritableTarget(QDir(m_folder).filePath(name));
        trim();
    }
    removeTemporaryDocuments(Recording::documentName());
    if (mode == Mode::Overwrite) {
        for (const QString &name : names)
            if (QFileInfo::exists(name) && !QFile::remove(name))
                throw Failure(QStringLiteral("%1 in %2 cannot be removed; check the folder's permissions")
                                  .arg(name, m_folder));
    }
}

void RunWriter::trim()
{
    const qint64 keep = m_previous->elementBytes();
    if (m_previous->recordsSize() > keep && !QFile::resize(Recording::recordsName(), keep))
        throw Failure(QStringLiteral("%1 in %2 cannot be trimmed to its last complete frame: %3")
                          .arg(Recording::recordsName(), m_folder, reason(m_folder)));
}

void RunWriter::mustBeAsLeft(quint32 frame) const
{
    const Sizes now = sizesNow();
    if (now.document != m_left.document)
        throw changed(Recording::documentName(), frame, now.document, m_left.document);
    if (now.records != m_left.records)
        throw changed(Recording::recordsName(), frame, now.records, m_left.records);
}

Failure RunWriter::changed(const QString &name, quint32 frame, qint64 found, qint64 left) const
{
    return Failure(QStringLiteral("%1 in %2 is %3, but frame %4 follows when it is %5: leave the files alone "
                                  "while they are recorded; kelreplay verify says what is left of them")
                       .arg(name, m_folder, bytes(found), QString::number(frame), bytes(left)));
}

Failure RunWriter::notWritten(quint32 frame, const QString &why) const
{
    return Failure(
        QStringLiteral("frame %1 could not be written to %2: %3; the frames before it are complete, "
                       "and --append goes on behind them")
            .arg(QString::number(frame), m_folder, why));
}

void RunWriter::write(const CSynchronizer &stamp, const QList<QSharedPointer<kelAbstractData>> &objects)
{
    const quint32 frame = stamp.getFrameNumber();
    mustBeAsLeft(frame);

    qint64 size = 0;
    for (const QSharedPointer<kelAbstractData> &object : objects) {
        QString problem;
        const QByteArray record = kelDataFlowRecord{object->identifier(), object->getMap()}.encoded(&problem);
        if (record.isEmpty())
            throw notWritten(frame, problem);
        size += record.size();
    }
    const qint64 before = size > 0 ? std::max<qint64>(m_left.records, 0) : m_left.records;
    std::optional<Reserved> reserved;
    if (size > 0)
        reserved.emplace(before, size);
    if (reserved && reserved->error() != 0)
        throw notWritten(
            frame, Recording::recordsName() + QStringLiteral(": ") + qt_error_string(reserved->error()));

    m_writer->setSynchronizer(stamp);
    m_writer->setDataFlow(objects);
    if (!m_writer->writeDataFlow())
        throw notWritten(frame,
                         Recording::documentName() + QStringLiteral(" cannot be parsed by its writer"));

    // The writer loses a frame in silence when it cannot write; whoever records a run must know.
    const Sizes now = sizesNow();
    if (now.document < m_left.document)
        throw changed(Recording::documentName(), frame, now.document, m_left.document);
    if (now.records < before || (reserved && reserved->isGone()))
        throw changed(Recording::recordsName(), frame, now.records, before);
    const bool named = now.document > m_left.document;
    const bool whole = now.records == before + size;
    if (named && !whole && !removeLastFrame(Recording::documentName()))
        throw Failure(
            QStringLiteral("%1 in %2 names the records of frame %3, which could not be written: %4; "
                           "remove that frame from the document by hand before you --append")
                .arg(Recording::documentName(), m_folder, QString::number(frame), reason(m_folder)));
    if (!named || !whole)
        throw notWritten(frame, reason(m_folder));
    m_left = now;
}
