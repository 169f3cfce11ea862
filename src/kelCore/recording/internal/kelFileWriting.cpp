#include <kelCore/recording/internal/kelFileWriting.h>

#include <kelCore/recording/internal/kelFileDescriptor.h>

#include <QFile>
#include <QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Writes once: what goes on may stand behind what somebody else has appended meanwhile.
qint64 writeOnce(int file, const char *data, qint64 size)
{
    ssize_t written = 0;
    do
        written = ::write(file, data, static_cast<size_t>(size));
    while (written < 0 && errno == EINTR);
    return written > 0 ? written : 0;
}

/// File systems without locks are written to without.
void lock(int file, int how)
{
    while (::flock(file, how) != 0 && errno == EINTR) { }
}

/// Completes what was written of `bytes`, or cuts it off; false when it is not whole. The lock that this
/// takes lets every other appender finish first and keeps them out until the file is closed.
bool finishAppending(int file, const QByteArray &bytes, qint64 done)
{
    const off_t end = ::lseek(file, 0, SEEK_CUR);
    const bool canBeCut = end >= done;
    if (canBeCut) {
        lock(file, LOCK_EX);
        struct stat status = {};
        if (::fstat(file, &status) != 0 || status.st_size != end)
            return false; // somebody's bytes stand behind ours
    }
    const qint64 more = kelDataFlow::writeSome(file, bytes.constData() + done, bytes.size() - done);
    if (done + more == bytes.size())
        return true;
    // Or every later record would be misread. Should this fail too, nothing is left to try.
    if (canBeCut)
        (void)!::ftruncate(file, end - done);
    return false;
}

bool isOneRegularFile(const struct stat &status) { return S_ISREG(status.st_mode) && status.st_nlink <= 1; }

/// Writes over what the file holds. The space is taken first, so that a full disk costs nothing.
bool writeInto(const QByteArray &path, const QByteArray &content)
{
    kelDataFlow::FileDescriptor opened(::open(path.constData(), O_WRONLY | O_CLOEXEC));
    const int file = opened.get();
    struct stat status = {};
    if (!opened || ::fstat(file, &status) != 0)
        return false;
    const off_t size = static_cast<off_t>(content.size());
    const bool isRegular = S_ISREG(status.st_mode);
    if (isRegular && size > status.st_size
        && ::posix_fallocate(file, status.st_size, size - status.st_size) != 0) {
        (void)!::ftruncate(file, status.st_size);
        return false;
    }
    bool whole = kelDataFlow::writeSome(file, content.constData(), size) == size;
    if (whole && isRegular && size < status.st_size)
        whole = ::ftruncate(file, size) == 0;
    return opened.close() && whole;
}

} // namespace

bool kelDataFlow::replaceFile(const QString &path, const QByteArray &content)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (::stat(name.constData(), &status) == 0 && !isOneRegularFile(status))
        return writeInto(name, content);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return writeInto(name, content);
    // Flushed by hand: the toolkit would commit a file whose last block met a full disk.
    return file.write(content) == content.size() && file.flush() && file.commit();
}

bool kelDataFlow::appendToFile(const char *path, const QByteArray &bytes)
{
    FileDescriptor opened(::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    if (!opened)
        return false;
    const int file = opened.get();
    lock(file, LOCK_SH);
    const qint64 done = writeOnce(file, bytes.constData(), bytes.size());
    const bool whole = done == bytes.size() || (done > 0 && finishAppending(file, bytes, done));
    return opened.close() && whole;
}
