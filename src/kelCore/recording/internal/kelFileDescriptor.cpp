#include <kelCore/recording/internal/kelFileDescriptor.h>

#include <cerrno>
#include <cstring>

#include <unistd.h>

void kelDataFlow::FileDescriptor::reset(int descriptor)
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = descriptor;
}

bool kelDataFlow::FileDescriptor::close()
{
    const int descriptor = std::exchange(m_descriptor, -1);
    return descriptor < 0 || ::close(descriptor) == 0;
}

qint64 kelDataFlow::writeSome(int descriptor, const char *bytes, qint64 size, off_t offset)
{
    qint64 done = 0;
    while (done < size) {
        const auto left = static_cast<size_t>(size - done);
        const ssize_t written = offset < 0 ? ::write(descriptor, bytes + done, left)
                                           : ::pwrite(descriptor, bytes + done, left, offset + done);
        if (written > 0) {
            done += written;
        } else if (written == 0 || errno != EINTR) {
            errno = written == 0 ? ENOSPC : errno;
            break;
        }
    }
    return done;
}

bool kelDataFlow::writeAll(int descriptor, const QByteArray &bytes, off_t offset)
{
    return writeSome(descriptor, bytes.constData(), bytes.size(), offset) == bytes.size();
}

QString kelDataFlow::systemError() { return QString::fromLocal8Bit(std::strerror(errno)); }
