#include <kelCore/recording/internal/kelSeekableZstd.h>

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <utility>

#include <zstd.h>

namespace {

constexpr quint32 tableMagic = 0x184D2A5E;
constexpr quint32 endMagic = 0x8F92EAB1;
constexpr qint64 headSize = 8; ///< of the table
constexpr qint64 footSize = 9;
constexpr quint8 hasChecksums = 0x80; ///< other programs may put one into each entry
constexpr quint8 reservedBits = 0x7c;
constexpr qint64 mostFrames = 1 << 20; ///< a file of 1 TiB
constexpr qint64 mostPlain = 8 << 20; ///< bytes of a frame; other programs may make larger ones than we do
constexpr int level = 3;

quint32 numberAt(const char *at) { return qFromLittleEndian<quint32>(at); }

void put(QByteArray &bytes, quint32 value)
{
    char raw[sizeof value];
    qToLittleEndian(value, raw);
    bytes.append(raw, sizeof value);
}

kelResult damaged(const QString &what)
{
    return kelResult::failure(QStringLiteral("is damaged, or no seekable zstd file: %1").arg(what), QString(),
                              QStringLiteral("\"zstd -d\" may give its content back"));
}

} // namespace

kelDataFlow::CompressedFile::CompressedFile(FileDescriptor file, std::vector<Frame> frames)
    : ByteSource(frames.back().plain), m_file(std::move(file)), m_frames(std::move(frames))
{ }

kelDataFlow::CompressedFile::~CompressedFile() { ZSTD_freeDCtx(m_context); }

kelResult kelDataFlow::CompressedFile::open(FileDescriptor file, qint64 fileSize,
                                            std::unique_ptr<ByteSource> &source)
{
    const QByteArray foot = bytesAt(file.get(), fileSize - footSize, footSize);
    if (fileSize < headSize + footSize || foot.size() != footSize
        || numberAt(foot.constData() + 5) != endMagic)
        return damaged(QStringLiteral("its table is missing"));
    const qint64 count = numberAt(foot.constData());
    const auto flags = static_cast<quint8>(foot.at(4));
    const qint64 entrySize = flags & hasChecksums ? 12 : 8;
    const qint64 tableSize = headSize + count * entrySize + footSize;
    if (count > mostFrames || (flags & reservedBits) != 0 || tableSize > fileSize)
        return damaged(QStringLiteral("its table is too long"));
    const QByteArray table = bytesAt(file.get(), fileSize - tableSize, tableSize);
    if (table.size() != tableSize || numberAt(table.constData()) != tableMagic
        || numberAt(table.constData() + 4) != tableSize - headSize)
        return damaged(QStringLiteral("its table does not begin where it should"));

    std::vector<Frame> frames(static_cast<size_t>(count) + 1);
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const char *const entry = table.constData() + headSize + qint64(i) * entrySize;
        const qint64 compressed = numberAt(entry), plain = numberAt(entry + 4);
        if (plain > mostPlain || compressed > static_cast<qint64>(ZSTD_compressBound(mostPlain)))
            return damaged(QStringLiteral("frame %1 is too large").arg(i));
        frames[i + 1] = {frames[i].compressed + compressed, frames[i].plain + plain};
    }
    if (frames.back().compressed != fileSize - tableSize)
        return damaged(QStringLiteral("its frames do not end where its table begins"));
    source.reset(new CompressedFile(std::move(file), std::move(frames)));
    return kelResult();
}

qint64 kelDataFlow::CompressedFile::read(qint64 offset, char *to, qint64 size) const
{
    const auto behind = std::upper_bound(m_frames.begin(), m_frames.end(), offset,
                                         [](qint64 at, const Frame &frame) { return at < frame.plain; });
    qint64 got = 0;
    for (auto i = static_cast<size_t>(behind - m_frames.begin()); got < size && i < m_frames.size(); ++i) {
        const char *const bytes = decompressed(static_cast<qint64>(i) - 1);
        if (!bytes)
            break;
        const qint64 from = offset + got - m_frames[i - 1].plain;
        const qint64 part = std::min(size - got, m_frames[i].plain - m_frames[i - 1].plain - from);
        std::memcpy(to + got, bytes + from, static_cast<size_t>(part));
        got += part;
    }
    return got;
}

const char *kelDataFlow::CompressedFile::decompressed(qint64 frame) const
{
    auto &[last, other] = m_blocks;
    if (last.frame != frame)
        std::swap(last, other);
    if (last.frame == frame)
        return last.bytes.get();

    const Frame &begin = m_frames[static_cast<size_t>(frame)];
    const Frame &end = m_frames[static_cast<size_t>(frame) + 1];
    const QByteArray bytes = bytesAt(m_file.get(), begin.compressed, end.compressed - begin.compressed);
    const auto size = static_cast<size_t>(end.plain - begin.plain);
    last.frame = -1;
    last.bytes.reset(new char[std::max(size, size_t(1))]);
    if (!m_context)
        m_context = ZSTD_createDCtx();
    const size_t made = bytes.size() == end.compressed - begin.compressed
        ? ZSTD_decompressDCtx(m_context, last.bytes.get(), size, bytes.constData(),
                              static_cast<size_t>(bytes.size()))
        : 0;
    if (made != size) {
        fail(QStringLiteral("frame %1, %2 bytes at %3, cannot be decompressed")
                 .arg(QString::number(frame), QString::number(end.compressed - begin.compressed),
                      QString::number(begin.compressed)));
        last.bytes.reset();
        return nullptr;
    }
    last.frame = frame;
    return last.bytes.get();
}

kelDataFlow::BlockCompressor::BlockCompressor() : m_context(ZSTD_createCCtx())
{
    ZSTD_CCtx_setParameter(m_context, ZSTD_c_compressionLevel, level);
    ZSTD_CCtx_setParameter(m_context, ZSTD_c_checksumFlag, 1);
}

kelDataFlow::BlockCompressor::~BlockCompressor() { ZSTD_freeCCtx(m_context); }

QByteArray kelDataFlow::BlockCompressor::frame(const QByteArray &block)
{
    const auto size = static_cast<size_t>(block.size());
    QByteArray bytes(static_cast<int>(ZSTD_compressBound(size)), Qt::Uninitialized);
    const size_t made =
        ZSTD_compress2(m_context, bytes.data(), static_cast<size_t>(bytes.size()), block.constData(), size);
    if (ZSTD_isError(made) || m_count >= mostFrames)
        return QByteArray();
    bytes.truncate(static_cast<int>(made));
    put(m_entries, static_cast<quint32>(made));
    put(m_entries, static_cast<quint32>(size));
    ++m_count;
    return bytes;
}

QByteArray kelDataFlow::BlockCompressor::table()
{
    QByteArray bytes;
    put(bytes, tableMagic);
    put(bytes, static_cast<quint32>(m_entries.size() + footSize));
    bytes += m_entries;
    put(bytes, std::exchange(m_count, 0));
    bytes += '\0';
    put(bytes, endMagic);
    m_entries.clear();
    return bytes;
}
