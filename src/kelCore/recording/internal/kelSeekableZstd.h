#ifndef KELCORE_KELSEEKABLEZSTD_H
#define KELCORE_KELSEEKABLEZSTD_H

/// \file
/// Compressed files that can be read from any place on: zstd's seekable format. Internal.
///
/// The file is a sequence of independent zstd frames, each of `blockSize` bytes of input but for the last, with
/// a checksum. Behind them a frame that decompressors skip says how long each is, so that `zstd -d` gives the
/// plain file back. All numbers are little-endian:
///
///     quint32 0x184D2A5E, quint32 bytes of the table up to the end of the file
///     per frame: quint32 compressed bytes, quint32 plain bytes
///     quint32 number of frames, quint8 0, quint32 0x8F92EAB1

#include <kelCore/recording/internal/kelByteSource.h>

#include <array>
#include <memory>
#include <vector>

struct ZSTD_CCtx_s;
struct ZSTD_DCtx_s;

namespace kelDataFlow {

/// Reads a compressed file. The table, 16 bytes for each frame, and the frames used last are kept in memory. A
/// file that is damaged, or made to do harm, gives a failure or fewer bytes.
class CompressedFile : public ByteSource
{
public:
    static kelResult open(FileDescriptor file, qint64 fileSize, std::unique_ptr<ByteSource> &source);
    ~CompressedFile() override;
    bool isCompressed() const override { return true; }

private:
    struct Frame
    {
        qint64 compressed = 0; ///< offset in the file
        qint64 plain = 0; ///< offset in what it was made of
    };
    struct Block
    {
        qint64 frame = -1;
        std::unique_ptr<char[]> bytes;
    };

    CompressedFile(FileDescriptor file, std::vector<Frame> frames);
    qint64 read(qint64 offset, char *to, qint64 size) const override;
    const char *decompressed(qint64 frame) const;

    FileDescriptor m_file;
    std::vector<Frame> m_frames; ///< and one more, which is the end
    mutable std::array<Block, 2> m_blocks; ///< the one used last first
    mutable ZSTD_DCtx_s *m_context = nullptr;
};

/// Makes a compressed file, a block at a time.
class BlockCompressor
{
public:
    /// Plain bytes of a frame.
    static constexpr qint64 blockSize = qint64(1) << 20;

    BlockCompressor();
    ~BlockCompressor();
    BlockCompressor(const BlockCompressor &) = delete;
    BlockCompressor &operator=(const BlockCompressor &) = delete;

    /// The next frame of the file: `block` compressed. Empty when that fails.
    QByteArray frame(const QByteArray &block);
    /// What ends the file, behind the last frame. The next frame is then the first of another file.
    QByteArray table();

private:
    ZSTD_CCtx_s *m_context;
    QByteArray m_entries;
    quint32 m_count = 0;
};

} // namespace kelDataFlow

#endif
