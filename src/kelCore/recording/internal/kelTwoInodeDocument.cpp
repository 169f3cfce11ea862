#include <kelCore/recording/internal/kelTwoInodeDocument.h>

#include <kelCore/recording/internal/kelFrameText.h>

#include <utility>
#include <vector>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using kelDataFlow::systemError;

/// Copies the first `size` bytes.
bool copyBytes(int from, int to, off_t size)
{
    off_t in = 0, out = 0;
    while (in < size) {
        const ssize_t copied = ::copy_file_range(from, &in, to, &out, static_cast<size_t>(size - in), 0);
        if (copied <= 0)
            break;
    }
    char buffer[1 << 16]; // for file systems that cannot copy
    while (in < size) {
        const ssize_t got = ::pread(from, buffer, sizeof buffer, in);
        if (got <= 0)
            return false;
        if (!kelDataFlow::writeAll(to, QByteArray::fromRawData(buffer, static_cast<int>(got)), in))
            return false;
        in += got;
    }
    return true;
}

void stampChange(int file)
{
    timespec times[2] = {{0, UTIME_OMIT}, {}};
    ::clock_gettime(CLOCK_REALTIME, &times[1]);
    ::futimens(file, times);
}

} // namespace

void kelDataFlow::copyAttributes(int from, int to, const struct stat &status)
{
    if (::fchown(to, status.st_uid, status.st_gid) != 0) { } // only some may
    if (::fchmod(to, status.st_mode & 07777) != 0) { }
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size <= 0)
        return;
    std::vector<char> names(static_cast<size_t>(size));
    std::vector<char> value;
    const ssize_t used = ::flistxattr(from, names.data(), names.size());
    for (ssize_t at = 0; at < used; at += static_cast<ssize_t>(std::string(&names[size_t(at)]).size()) + 1) {
        const char *const name = &names[static_cast<size_t>(at)];
        const ssize_t length = ::fgetxattr(from, name, nullptr, 0);
        if (length < 0)
            continue;
        value.resize(static_cast<size_t>(length));
        if (::fgetxattr(from, name, value.data(), value.size()) == length)
            if (::fsetxattr(to, name, value.data(), value.size(), 0) != 0) { }
    }
}

kelDataFlow::FileState::FileState(const struct stat &status)
    : device(status.st_dev), inode(status.st_ino), size(status.st_size), changed(status.st_mtim),
      mode(status.st_mode), user(status.st_uid), group(status.st_gid)
{ }

bool kelDataFlow::FileState::operator==(const FileState &other) const
{
    return device == other.device && inode == other.inode && size == other.size
        && changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec
        && mode == other.mode && user == other.user && group == other.group;
}

bool kelDataFlow::stateOf(int folder, const std::string &name, FileState &state)
{
    struct stat status = {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    state = FileState(status);
    return S_ISREG(status.st_mode) && status.st_nlink == 1;
}

kelDataFlow::TwoInodeDocument::TwoInodeDocument()
{
    m_text.reserve(1 << 14); // kept: a byte array gives back what was not asked for
    m_behind.reserve(1 << 13);
}

kelDataFlow::TwoInodeDocument::~TwoInodeDocument() { release(); }

void kelDataFlow::TwoInodeDocument::setPlace(int folder, const std::string &name)
{
    release();
    m_folder = folder;
    m_name = name;
    ::unlinkat(m_folder, shadowName().c_str(), 0);
    ::unlinkat(m_folder, asideName().c_str(), 0);
}

void kelDataFlow::TwoInodeDocument::take(const FileState &state, qint64 body)
{
    release();
    m_state = state;
    m_body = body;
}

void kelDataFlow::TwoInodeDocument::release()
{
    dropShadow();
    m_document.reset();
    m_state = FileState();
    m_body = 0;
}

bool kelDataFlow::TwoInodeDocument::isCurrent() const
{
    FileState state;
    return m_state.size >= 0 && stateOf(m_folder, m_name, state) && state == m_state;
}

kelResult kelDataFlow::TwoInodeDocument::grow(const QByteArray &frame, Sync sync)
{
    if (m_shadow && m_shadowMayBeOpen && !holdShadow())
        dropShadow();
    if (!m_shadow)
        if (const kelResult made = makeShadow(); !made)
            return made;

    m_text.resize(0);
    m_text += m_behind;
    m_text += frame;
    m_text.append(documentTail.data(), static_cast<int>(documentTail.size()));
    if (!writeAll(m_shadow.get(), m_text, m_shadowBody))
        return failed(QStringLiteral("the document could not be written: %1"));
    letGoOfShadow();
    if (m_stampsChanges)
        stampChange(m_shadow.get());
    if ((sync != Sync::None && ::fdatasync(m_shadow.get()) != 0)
        || (sync == Sync::Both && ::fdatasync(m_document.get()) != 0))
        return failed(QStringLiteral("the document could not be synced: %1"));
    if (!exchange())
        return failed(QStringLiteral("the document could not be put in its place: %1"));

    std::swap(m_document, m_shadow);
    m_shadowMayBeOpen = std::exchange(m_documentMayBeOpen, false);
    const qint64 shadowBody = m_body;
    m_body = m_shadowBody + m_text.size() - qint64(documentTail.size());
    m_shadowBody = shadowBody;
    m_behind.resize(0);
    m_behind += frame;
    struct stat status = {};
    if (::fstat(m_document.get(), &status) == 0)
        m_state = FileState(status);
    return kelResult();
}

kelResult kelDataFlow::TwoInodeDocument::makeShadow()
{
    const std::string name = shadowName();
    m_tookFiles = true;
    ::unlinkat(m_folder, name.c_str(), 0);
    m_document.reset(::openat(m_folder, m_name.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    m_shadow.reset(::openat(m_folder, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    struct stat status = {};
    if (!m_document || !m_shadow || ::fstat(m_document.get(), &status) != 0)
        return failed(QStringLiteral("the document cannot be opened for writing: %1"));
    copyAttributes(m_document.get(), m_shadow.get(), status);
    if (!copyBytes(m_document.get(), m_shadow.get(), m_body))
        return failed(QStringLiteral("the document could not be copied: %1"));
    for (const FileDescriptor *file : {&m_document, &m_shadow})
        ::fcntl(file->get(), F_SETSIG, SIGURG); // see holdShadow
    m_shadowBody = m_body;
    m_behind.resize(0);
    m_documentMayBeOpen = true;
    m_shadowMayBeOpen = false;
    return kelResult();
}

/// The shadow goes: who knows what is in it.
kelResult kelDataFlow::TwoInodeDocument::failed(const QString &what)
{
    const QString reason = systemError();
    dropShadow();
    return kelResult::failure(what.arg(reason), QString::fromStdString(m_name));
}

/// Takes the shadow for ourselves; false where somebody else has it open. A lease to write is given to the only
/// one, and who opens the file while it lasts waits for its end. The kernel has the signal of F_SETSIG tell us of
/// that, one that is ignored unless the program wants it. Where there are no leases, readers that mean well hold
/// a lock.
bool kelDataFlow::TwoInodeDocument::holdShadow()
{
    const int file = m_shadow.get();
    m_leased = ::fcntl(file, F_SETLEASE, F_WRLCK) == 0;
    if (m_leased || errno == EAGAIN)
        return m_leased;
    const bool locked = ::flock(file, LOCK_EX | LOCK_NB) == 0;
    if (locked)
        ::flock(file, LOCK_UN);
    return locked;
}

void kelDataFlow::TwoInodeDocument::letGoOfShadow()
{
    if (m_leased)
        ::fcntl(m_shadow.get(), F_SETLEASE, F_UNLCK);
    m_leased = false;
}

void kelDataFlow::TwoInodeDocument::dropShadow()
{
    letGoOfShadow();
    m_tookFiles = true;
    if (m_shadow)
        ::unlinkat(m_folder, shadowName().c_str(), 0);
    m_shadow.reset();
    m_behind.resize(0);
}

bool kelDataFlow::TwoInodeDocument::exchange() const
{
    const std::string shadow = shadowName();
    if (::renameat2(m_folder, shadow.c_str(), m_folder, m_name.c_str(), RENAME_EXCHANGE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return false;
    // A file system that cannot exchange: the document's name leads to a whole document all the time.
    const std::string aside = asideName();
    ::unlinkat(m_folder, aside.c_str(), 0);
    return ::linkat(m_folder, m_name.c_str(), m_folder, aside.c_str(), 0) == 0
        && ::renameat(m_folder, shadow.c_str(), m_folder, m_name.c_str()) == 0
        && ::renameat(m_folder, aside.c_str(), m_folder, shadow.c_str()) == 0;
}
