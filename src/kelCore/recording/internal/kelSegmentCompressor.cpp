#include <kelCore/recording/internal/kelSegmentCompressor.h>

#include <kelCore/recording/internal/kelFolderWriter.h>
#include <kelCore/recording/internal/kelSegments.h>

#include <QDir>

#include <algorithm>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

kelDataFlow::SegmentCompressor::~SegmentCompressor() { giveUp(); }

kelResult kelDataFlow::SegmentCompressor::open() { return lockFolder(m_path, m_folder); }

kelResult kelDataFlow::SegmentCompressor::step()
{
    if (m_plain)
        return m_read < m_state.size ? compressBlock() : replace();
    while (!isDone() && !m_plain) {
        const int next = m_next++;
        if (next < 2)
            if (const kelResult begun = begin(next == 0 ? documentName : recordsName); !begun)
                return begun;
    }
    return kelResult();
}

kelResult kelDataFlow::SegmentCompressor::begin(const std::string &name)
{
    m_name = name;
    m_read = m_written = 0;
    if (!stateOf(m_folder.get(), name, m_state))
        return kelResult();
    m_plain.reset(::openat(m_folder.get(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    m_part.reset(
        ::openat(m_folder.get(), partName(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    struct stat status = {};
    if (!m_plain || !m_part || ::fstat(m_plain.get(), &status) != 0)
        return failed(QStringLiteral("could not be compressed"));
    copyAttributes(m_plain.get(), m_part.get(), status);
    return kelResult();
}

kelResult kelDataFlow::SegmentCompressor::compressBlock()
{
    const qint64 wanted = std::min<qint64>(BlockCompressor::blockSize, m_state.size - m_read);
    const QByteArray block = bytesAt(m_plain.get(), m_read, wanted);
    const QByteArray frame = block.size() == wanted ? m_compressor.frame(block) : QByteArray();
    if (frame.isEmpty() || !writeAll(m_part.get(), frame, m_written))
        return failed(QStringLiteral("could not be compressed"));
    // On its way to the disk already, so that the wait at the end is short.
    ::sync_file_range(m_part.get(), m_written, frame.size(), SYNC_FILE_RANGE_WRITE);
    m_read += wanted;
    m_written += frame.size();
    return kelResult();
}

/// The compressed file takes the place of the plain one.
kelResult kelDataFlow::SegmentCompressor::replace()
{
    const QByteArray table = m_compressor.table();
    const timespec times[2] = {{0, UTIME_OMIT}, m_state.changed};
    if (!writeAll(m_part.get(), table, m_written) || ::futimens(m_part.get(), times) != 0
        || ::fdatasync(m_part.get()) != 0)
        return failed(QStringLiteral("could not be compressed"));
    FileState state;
    if (!stateOf(m_folder.get(), m_name, state) || state != m_state) {
        giveUp();
        return kelResult::failure(QStringLiteral("was changed while it was compressed, and stays as it is"),
                                  QDir(m_path).filePath(QString::fromStdString(m_name)));
    }
    const std::string part = partName(m_name);
    if (::renameat(m_folder.get(), part.c_str(), m_folder.get(), (m_name + compressedEnding).c_str()) != 0)
        return failed(QStringLiteral("could not be compressed"));
    m_part.reset();
    if (::fsync(m_folder.get()) != 0 || ::unlinkat(m_folder.get(), m_name.c_str(), 0) != 0)
        return failed(QStringLiteral("could not be replaced by what it was compressed to"));
    m_plain.reset();
    m_written = 0;
    return step();
}

kelResult kelDataFlow::SegmentCompressor::failed(const QString &what)
{
    const kelResult failure = cannot(what, QDir(m_path).filePath(QString::fromStdString(m_name)));
    giveUp();
    return failure;
}

void kelDataFlow::SegmentCompressor::giveUp()
{
    if (m_part)
        ::unlinkat(m_folder.get(), partName(m_name).c_str(), 0);
    m_part.reset();
    m_plain.reset();
    m_written = 0;
    m_next = 3;
}
