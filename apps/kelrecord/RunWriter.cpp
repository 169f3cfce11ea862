#include "kelrecord/RunWriter.h"

#include "common/Recording.h"
#include "common/RegularFile.h"
#include "kelrecord/Leftovers.h"

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/recording/kelRecording.h>

#include <QDir>
#include <QFileInfo>

RunWriter::RunWriter(const QString &folder, Mode mode) : m_folder(QFileInfo(folder).absoluteFilePath())
{
    const PathKind kind = kindOf(m_folder);
    if (kind != PathKind::Missing && kind != PathKind::Folder)
        throw Failure(QStringLiteral("%1 is not a folder; choose another for --out").arg(folder));
    if (!QDir().mkpath(m_folder))
        throw Failure(QStringLiteral("the folder %1 cannot be made; choose another for --out").arg(folder));
    const QStringList files{QDir(m_folder).filePath(kelRecording::documentName()),
                            QDir(m_folder).filePath(kelRecording::recordsName())};
    for (const QString &file : files)
        mustBeFileOrFree(file);
    const bool exists = kelRecording::existsIn(m_folder);
    if (mode == Mode::Fresh && exists)
        throw Failure(QStringLiteral("%1 already holds a recording; give --append to go on behind it, or "
                                     "--overwrite to replace it")
                          .arg(m_folder));
    if (mode == Mode::Append && exists)
        for (const QString &file : files)
            mustBeWritableTarget(file);

    kelRecordingOptions options;
    options.mode = mode;
    if (const kelResult opened = m_writer.open(m_folder, options); !opened)
        throw Failure(opened.line());
    removeTemporaryDocuments(files.front());
    if (mode == Mode::Append && exists) {
        m_previous = std::make_unique<Recording>(m_folder);
        m_previous->check();
    }
}

RunWriter::~RunWriter() = default;

void RunWriter::write(const CSynchronizer &stamp, const QList<QSharedPointer<kelAbstractData>> &objects)
{
    const kelResult written = m_writer.write(stamp, objects);
    if (written)
        return;
    QString line = QStringLiteral("frame %1 could not be written: %2")
                       .arg(QString::number(stamp.getFrameNumber()), written.line());
    if (written.advice().isEmpty())
        line += QStringLiteral("; the frames before it are complete, and --append goes on behind them");
    throw Failure(line);
}
