#ifndef KELCORE_KELBYTESOURCE_H
#define KELCORE_KELBYTESOURCE_H

/// \file
/// The bytes of a recording's file, whether it is plain or compressed. Internal.

#include <kelCore/kelResult.h>
#include <kelCore/recording/internal/kelFileDescriptor.h>

#include <QByteArray>

#include <memory>
#include <string>

namespace kelDataFlow {

/// What is behind the name of a file that is compressed.
inline const std::string compressedEnding = ".zst";

/// A file as it was when it was opened: what is added later is not seen.
class ByteSource
{
public:
    virtual ~ByteSource() = default;

    /// Bytes that can be read; of a compressed file those that it was made of.
    qint64 size() const { return m_size; }

    /// `size` bytes at `offset`; fewer at the end, or where they cannot be read. At most `most` at once.
    QByteArray bytes(qint64 offset, qint64 size) const;
    static constexpr qint64 most = qint64(1) << 30;

    /// A look at any byte costs a whole block.
    virtual bool isCompressed() const { return false; }

    /// What went wrong first while bytes were read; empty when nothing did.
    const QString &problem() const { return m_problem; }

protected:
    explicit ByteSource(qint64 size) : m_size(size) { }
    ByteSource(const ByteSource &) = delete;
    ByteSource &operator=(const ByteSource &) = delete;

    /// Reads bytes that are there. \return how many, `size` unless they cannot be read.
    virtual qint64 read(qint64 offset, char *to, qint64 size) const = 0;
    void fail(const QString &problem) const;

    qint64 m_size;
    mutable QString m_problem;
};

/// Opens the file of that name in the folder, or where there is none the compressed one. `source` is empty when
/// there is neither.
kelResult openSource(int folder, const std::string &name, std::unique_ptr<ByteSource> &source);

/// Opens a regular file for reading. `file` stays closed when there is none.
kelResult openRegular(int folder, const std::string &name, FileDescriptor &file, qint64 &size);

/// `size` bytes of a file at `offset`; fewer at its end, or where it cannot be read.
QByteArray bytesAt(int file, qint64 offset, qint64 size);
/// The same into memory of the caller. \return how many.
qint64 bytesAt(int file, qint64 offset, char *to, qint64 size);

} // namespace kelDataFlow

#endif
