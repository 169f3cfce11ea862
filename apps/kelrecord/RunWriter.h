#ifndef APPS_KELRECORD_RUNWRITER_H
#define APPS_KELRECORD_RUNWRITER_H

/// \file
/// Writes a run into a folder.

#include "common/Failure.h"
#include "kelrecord/FolderLock.h"

#include <kelCore/data/CSynchronizer.h>

#include <QList>
#include <QSharedPointer>
#include <QString>

#include <memory>
#include <optional>

class Recording;
class kelAbstractData;
class kelAbstractProcessDataFlowWriter;

/// The data-flow writer, at work in the recording's folder, with every frame checked on disk.
///
/// The library appends records to a file in the working directory, so the program's working directory is the
/// recording's folder from the construction on.
class RunWriter
{
public:
    enum class Mode
    {
        Fresh, ///< the folder must hold no recording
        Overwrite, ///< one that is there is removed
        Append ///< goes on behind the last complete frame; what an interrupted run left unfinished is trimmed
    };

    /// Makes the folder where it is missing, takes it for this process alone, and prepares it for the mode.
    /// \throws Failure when that cannot be done, or when the recording to append to is damaged.
    RunWriter(const QString &folder, Mode mode);
    ~RunWriter();

    /// What an append goes on behind; null where there is nothing.
    const Recording *previous() const { return m_previous.get(); }

    /// Writes one frame.
    /// \throws Failure when it is not on disk afterwards, or the files are not as the frame before left them.
    /// The frames before it are on disk then, as far as nobody else has removed them.
    void write(const CSynchronizer &stamp, const QList<QSharedPointer<kelAbstractData>> &objects);

private:
    /// Sizes in bytes; -1 for a file that is not there.
    struct Sizes
    {
        qint64 document;
        qint64 records;
    };
    static Sizes sizesNow();

    void prepare(Mode mode);
    void trim();
    void mustBeAsLeft(quint32 frame) const;
    Failure changed(const QString &name, quint32 frame, qint64 found, qint64 left) const;
    Failure notWritten(quint32 frame, const QString &why) const;

    QString m_folder;
    std::optional<FolderLock> m_lock;
    std::unique_ptr<Recording> m_previous;
    std::unique_ptr<kelAbstractProcessDataFlowWriter> m_writer;
    Sizes m_left = {}; ///< after the last frame
};

#endif
