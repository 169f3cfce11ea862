#ifndef KELCORE_KELFILEDESCRIPTOR_H
#define KELCORE_KELFILEDESCRIPTOR_H

/// \file
/// Files by plain system calls. Internal.

#include <QByteArray>
#include <QString>

#include <utility>

#include <sys/types.h>

namespace kelDataFlow {

/// Owns an open file.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) { }
    FileDescriptor(FileDescriptor &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) { }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor() { reset(); }

    void reset(int descriptor = -1);
    /// False when what was written may be lost.
    bool close();
    int get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

/// Writes until all is written or the system takes no more, at `offset` or, where that is -1, at the end of a file
/// opened for appending. \return how many bytes it took; errno says why not all.
qint64 writeSome(int descriptor, const char *bytes, qint64 size, off_t offset = -1);

/// Writes all bytes at `offset`, or at the end of a file opened for appending where `offset` is -1. False, with
/// errno set, when not all could be written.
bool writeAll(int descriptor, const QByteArray &bytes, off_t offset = -1);

/// What errno says.
QString systemError();

} // namespace kelDataFlow

#endif
