#include "kelrecord/RunWriter.h"

#include "common/Program.h"
#include "common/Recording.h"

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <cstdio>
#include <iostream>
#include <sstream>

#include <fcntl.h>
#include <sys/file.h>
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

qint64 sizeOf(const QString &name) { return QFileInfo(name).size(); }

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

} // namespace

RunWriter::RunWriter(const QString &folder, Mode mode) : m_folder(QFileInfo(folder).absoluteFilePath())
{
    if (QFileInfo(m_folder).exists() && !QFileInfo(m_folder).isDir())
        throw Failure(QStringLiteral("%1 is not a folder; choose another for --out").arg(folder));
    if (!QDir().mkpath(m_folder) || !QDir::setCurrent(m_folder))
        throw Failure(
            QStringLiteral("the folder %1 cannot be made or entered; choose another for --out").arg(folder));
    lock();
    prepare(mode);
    m_writer = makeWriter();
    m_writer->setFilePath(QFile(Recording::documentName()));
}

RunWriter::~RunWriter()
{
    if (m_lock >= 0)
        close(m_lock);
}

void RunWriter::lock()
{
    // On the folder itself: nothing is left behind when the process is killed.
    m_lock = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_lock >= 0 && flock(m_lock, LOCK_EX | LOCK_NB) != 0)
        throw Failure(QStringLiteral("another kelrecord is writing to %1").arg(m_folder));
}

void RunWriter::prepare(Mode mode)
{
    if (mode == Mode::Fresh && Recording::existsIn(m_folder))
        throw Failure(QStringLiteral(
                          "%1 already holds a recording; give --append to go on behind it, or --overwrite to "
                          "replace it")
                          .arg(m_folder));
    if (mode == Mode::Append && Recording::existsIn(m_folder)) {
        m_previous = std::make_unique<Recording>(m_folder);
        m_previous->check();
        trim();
    }
    if (mode == Mode::Overwrite) {
        for (const QString &name : {Recording::documentName(), Recording::recordsName()})
            if (QFileInfo::exists(name) && !QFile::remove(name))
                throw Failure(QStringLiteral("%1 in %2 cannot be removed").arg(name, m_folder));
    }
}

void RunWriter::trim()
{
    const qint64 keep = m_previous->elementBytes();
    if (m_previous->recordsSize() > keep && !QFile::resize(Recording::recordsName(), keep))
        throw Failure(QStringLiteral("%1 in %2 cannot be trimmed to its last complete frame: %3")
                          .arg(Recording::recordsName(), m_folder, reason(m_folder)));
}

void RunWriter::write(const CSynchronizer &stamp, const QList<QSharedPointer<kelAbstractData>> &objects)
{
    const qint64 document = sizeOf(Recording::documentName());
    qint64 records = sizeOf(Recording::recordsName());
    for (const QSharedPointer<kelAbstractData> &object : objects)
        records += kelDataFlowRecord{object->identifier(), object->getMap()}.encoded().size();

    m_writer->setSynchronizer(stamp);
    m_writer->setDataFlow(objects);
    const bool parsed = m_writer->writeDataFlow();

    // The writer loses a frame in silence when it cannot write; whoever records a run must know.
    if (!parsed || sizeOf(Recording::documentName()) <= document
        || sizeOf(Recording::recordsName()) != records)
        throw Failure(
            QStringLiteral("frame %1 could not be written to %2: %3; the frames before it are complete, and "
                           "--append goes on behind them")
                .arg(QString::number(stamp.getFrameNumber()), m_folder, reason(m_folder)));
}
