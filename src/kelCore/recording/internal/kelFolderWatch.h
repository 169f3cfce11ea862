#ifndef KELCORE_KELFOLDERWATCH_H
#define KELCORE_KELFOLDERWATCH_H

/// \file
/// Tells whether somebody has touched the files of a recording. Internal.

#include <kelCore/recording/internal/kelFileDescriptor.h>

#include <string>

namespace kelDataFlow {

/// Watches the two files of a recording, so that what others may have done to them is looked at only where
/// somebody was there at all: to ask costs one system call, to look costs several.
///
/// Where the system watches nothing for us, everything counts as touched, always.
class FolderWatch
{
public:
    struct Seen
    {
        bool opened = true; ///< the document, or the file beside it that takes turns with it
        bool written = true; ///< the document was closed by somebody who could write
        bool moved = true; ///< the records lost or changed their name
    };

    FolderWatch() = default;
    /// \param folder of the document, open. \param document, \param shadow names there.
    FolderWatch(int folder, const std::string &document, const std::string &shadow);
    /// Watches the records, too.
    void addRecords(int file);

    /// Whether anything is watched.
    bool works() const { return bool(m_events); }
    /// What happened since the last call.
    Seen take();

private:
    FileDescriptor m_events;
    int m_folderWatch = -1;
    int m_recordsWatch = -1;
    std::string m_document;
    std::string m_shadow;
};

} // namespace kelDataFlow

#endif
