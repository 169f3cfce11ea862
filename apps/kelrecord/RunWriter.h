#ifndef APPS_KELRECORD_RUNWRITER_H
#define APPS_KELRECORD_RUNWRITER_H

/// \file
/// Writes a run into a folder.

#include "common/Failure.h"

#include <kelCore/recording/kelRecordingWriter.h>

#include <memory>

class Recording;

/// The library's writer, with the program's words for what goes wrong.
class RunWriter
{
public:
    using Mode = kelRecordingOptions::Mode;

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
    QString m_folder;
    std::unique_ptr<Recording> m_previous;
    kelRecordingWriter m_writer;
};

#endif
