#ifndef KELCORE_KELTWOINODEDOCUMENT_H
#define KELCORE_KELTWOINODEDOCUMENT_H

/// \file
/// A document that grows by a frame in constant time, and is whole at every instant. Internal.

#include <kelCore/kelResult.h>
#include <kelCore/recording/internal/kelFileDescriptor.h>

#include <QByteArray>
#include <QString>

#include <string>
#include <utility>

#include <sys/stat.h>

namespace kelDataFlow {

/// What tells one state of a file from another.
struct FileState
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = -1;
    timespec changed{};
    mode_t mode = 0;
    uid_t user = 0;
    gid_t group = 0;

    FileState() = default;
    explicit FileState(const struct stat &status);
    bool operator==(const FileState &other) const;
    bool operator!=(const FileState &other) const { return !(*this == other); }
};

/// Names of the files that stand beside a document while it grows.
inline std::string shadowOf(const std::string &document) { return "." + document + ".shadow"; }
/// For an instant, where the file system cannot exchange two names.
inline std::string asideOf(const std::string &document) { return "." + document + ".aside"; }

/// The document of a recording while a writer adds frames to it.
///
/// Overwriting a document's last line in place would tear it: a process may be killed between two pages of one
/// write. So there are two files: the document and, hidden beside it, a shadow that is one frame behind. A
/// frame is added to the shadow, whose names are then exchanged. What was the document is the shadow of the
/// next frame. Whoever opens the document by its name finds the old text or the new one, whole.
///
/// A reader may still hold what has become the shadow. It is then left to that reader, and a new shadow is
/// made, which copies the document once.
class TwoInodeDocument
{
public:
    enum class Sync
    {
        None, ///< what was added survives the death of the process
        Added, ///< the bytes added are on the disk before the document's name leads to them
        Both ///< and those of the file that becomes the shadow
    };

    TwoInodeDocument();
    ~TwoInodeDocument();
    TwoInodeDocument(const TwoInodeDocument &) = delete;
    TwoInodeDocument &operator=(const TwoInodeDocument &) = delete;

    /// Removes what a process that was killed left beside the document.
    /// \param folder of the document; it must stay open. \param name of the document in it.
    void setPlace(int folder, const std::string &name);

    /// Takes the document as it stands on disk: canonical, and `body` bytes long without its last line. It is
    /// looked at again before each frame.
    void take(const FileState &state, qint64 body);
    /// Lets go of the document, and removes the shadow.
    void release();
    /// Somebody may have opened one of the two files since the last frame. Until this is said, nobody has.
    void mayBeOpen() { m_documentMayBeOpen = m_shadowMayBeOpen = true; }
    /// Gives each document a time of last change of its own. The kernel's clock for it ticks every few
    /// milliseconds: a change by somebody else right after ours would go unseen otherwise.
    void stampChanges(bool on) { m_stampsChanges = on; }

    /// Whether the document on disk is the one that was taken or grown last.
    bool isCurrent() const;

    /// Adds the lines of a frame in front of the last line. The document must be current.
    kelResult grow(const QByteArray &frame, Sync sync);

    /// Whether files were opened or closed here since this was asked last: whoever watches has seen it.
    bool tookFiles() { return std::exchange(m_tookFiles, false); }

    /// Name of the file that takes turns with the document.
    std::string shadowName() const { return shadowOf(m_name); }

    /// Bytes of the document in front of its last line.
    qint64 body() const { return m_body; }
    const FileState &state() const { return m_state; }

private:
    kelResult makeShadow();
    bool holdShadow();
    void letGoOfShadow();
    void dropShadow();
    bool exchange() const;
    std::string asideName() const { return asideOf(m_name); }
    kelResult failed(const QString &what);

    int m_folder = -1;
    std::string m_name;
    FileState m_state; ///< of the document, as it was left
    qint64 m_body = 0;
    FileDescriptor m_document; ///< the file that has the name; open so that it can become the shadow
    FileDescriptor m_shadow;
    qint64 m_shadowBody = 0; ///< bytes of the shadow that stay
    bool m_documentMayBeOpen = true;
    bool m_shadowMayBeOpen = true;
    bool m_leased = false; ///< the shadow, to us
    bool m_stampsChanges = true;
    bool m_tookFiles = false;
    QByteArray m_behind; ///< what the shadow lacks of the document
    QByteArray m_text; ///< the tail of the next document; kept for its memory
};

/// The document in `folder`. False where it does not exist, or is no regular file with one name.
bool stateOf(int folder, const std::string &name, FileState &state);

/// Gives `to` what `from`, whose status it is, has beside its bytes. What the process may not give is left out.
void copyAttributes(int from, int to, const struct stat &status);

} // namespace kelDataFlow

#endif
