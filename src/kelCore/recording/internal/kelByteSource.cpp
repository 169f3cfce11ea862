#include <kelCore/recording/internal/kelByteSource.h>

#include <kelCore/recording/internal/kelSeekableZstd.h>

#include <algorithm>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace kelDataFlow;

class PlainFile : public ByteSource
{
public:
    PlainFile(FileDescriptor file, qint64 size) : ByteSource(size), m_file(std::move(file)) { }

private:
    qint64 read(qint64 offset, char *to, qint64 size) const override
    {
        const qint64 got = bytesAt(m_file.get(), offset, to, size);
        if (got < size)
            fail(QStringLiteral("%1 bytes at %2 cannot be read").arg(size - got).arg(offset + got));
        return got;
    }

    FileDescriptor m_file;
};

} // namespace

QByteArray kelDataFlow::ByteSource::bytes(qint64 offset, qint64 size) const
{
    if (offset < 0 || offset >= m_size || size <= 0)
        return QByteArray();
    QByteArray bytes(static_cast<int>(std::min({size, m_size - offset, most})), Qt::Uninitialized);
    const qint64 got = read(offset, bytes.data(), bytes.size());
    if (got < bytes.size())
        bytes.truncate(static_cast<int>(got));
    return bytes;
}

void kelDataFlow::ByteSource::fail(const QString &problem) const
{
    if (m_problem.isEmpty())
        m_problem = problem;
}

kelResult kelDataFlow::openRegular(int folder, const std::string &name, FileDescriptor &file, qint64 &size)
{
    size = 0;
    // Not blocking: a pipe of that name would wait for whoever writes to it.
    file.reset(::openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const QString where = QString::fromStdString(name);
    struct stat status = {};
    if (!file && errno == ENOENT)
        return kelResult();
    if (!file || ::fstat(file.get(), &status) != 0)
        return kelResult::failure(QStringLiteral("cannot be read: %1").arg(systemError()), where);
    if (!S_ISREG(status.st_mode))
        return kelResult::failure(QStringLiteral("is no regular file"), where);
    size = status.st_size;
    return kelResult();
}

kelResult kelDataFlow::openSource(int folder, const std::string &name, std::unique_ptr<ByteSource> &source)
{
    source.reset();
    FileDescriptor file;
    qint64 size = 0;
    // The plain file first: when a compressed one takes its place, that is there before the plain one goes.
    if (const kelResult opened = openRegular(folder, name, file, size); !opened)
        return opened;
    if (file) {
        source = std::make_unique<PlainFile>(std::move(file), size);
        return kelResult();
    }
    if (const kelResult opened = openRegular(folder, name + compressedEnding, file, size); !opened || !file)
        return opened;
    const kelResult opened = CompressedFile::open(std::move(file), size, source);
    return opened
        ? opened
        : kelResult::failure(opened.what(), QString::fromStdString(name + compressedEnding), opened.advice());
}

qint64 kelDataFlow::bytesAt(int file, qint64 offset, char *to, qint64 size)
{
    qint64 got = 0;
    while (got < size) {
        const ssize_t part = ::pread(file, to + got, static_cast<size_t>(size - got), offset + got);
        if (part < 0 && errno == EINTR)
            continue;
        if (part <= 0)
            break;
        got += part;
    }
    return got;
}

QByteArray kelDataFlow::bytesAt(int file, qint64 offset, qint64 size)
{
    QByteArray bytes(static_cast<int>(std::clamp(size, qint64(0), ByteSource::most)), Qt::Uninitialized);
    bytes.truncate(static_cast<int>(bytesAt(file, offset, bytes.data(), bytes.size())));
    return bytes;
}
