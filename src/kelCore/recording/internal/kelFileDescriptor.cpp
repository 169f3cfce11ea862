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

bool kelDataFlow::writeAll(int descriptor, const QByteArray &bytes, off_t offset)
{
    const char *at = bytes.constData();
    auto left = static_cast<size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written =
            offset < 0 ? ::write(descriptor, at, left) : ::pwrite(descriptor, at, left, offset);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            if (written == 0)
                errno = ENOSPC;
            return false;
        }
        at += written;
        left -= static_cast<size_t>(written);
        if (offset >= 0)
            offset += written;
    }
    return true;
}

QString kelDataFlow::systemError() { return QString::fromLocal8Bit(std::strerror(errno)); }
