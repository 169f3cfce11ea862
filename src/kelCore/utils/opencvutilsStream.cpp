#include <kelCore/utils/opencvutils.h>

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace {

/// Whether the rows follow one another in memory. OpenCV's own flag is also down where a matrix has more scalars
/// than an int counts, even if there are no rows at all.
bool rowsFollowOneAnother(const cv::Mat &matrix)
{
    return matrix.rows <= 1 || matrix.step[0] == static_cast<std::size_t>(matrix.cols) * matrix.elemSize();
}

} // namespace

QDataStream &operator<<(QDataStream &stream, cv::Mat const &matrix)
{
    const qint64 bytes =
        matrix.dims == 0 ? 0 : qint64(matrix.rows) * matrix.cols * static_cast<qint64>(matrix.elemSize());
    const int byteCount = static_cast<int>(bytes);
    if (byteCount != bytes)
        qFatal("Serialization failure.");
    stream << qint32(matrix.rows) << qint32(matrix.cols) << qint32(matrix.type()) << qint32(byteCount);
    if (byteCount < 1)
        return stream;
    if (!matrix.isContinuous())
        qFatal("Can't serialize non-continuous matrices.");
    if (stream.writeRawData(reinterpret_cast<const char *>(matrix.data), byteCount) != byteCount)
        qFatal("Serialization failure.");
    return stream;
}

QDataStream &operator>>(QDataStream &stream, cv::Mat &matrix)
{
    qint32 rows, columns, type, byteCount;
    stream >> rows >> columns >> type;
    // OpenCV's product of the sizes wraps around: the matrix would claim more than the memory it has.
    const quint64 most = std::numeric_limits<std::ptrdiff_t>::max() / CV_ELEM_SIZE(type);
    CV_Assert(rows < 0 || columns < 0 || quint64(rows) * quint64(columns) <= most);
    cv::Mat target = matrix; // An allocation that throws leaves half a matrix behind.
    target.create(rows, columns, type);
    matrix = target;
    stream >> byteCount;
    if (byteCount < 1)
        return stream;
    if (!rowsFollowOneAnother(matrix))
        qFatal("opencvutils operator>> Mat can't deserialize non-continuous matrices.");
    const int fitting = static_cast<int>(
        std::min<std::size_t>(static_cast<std::size_t>(byteCount), matrix.total() * matrix.elemSize()));
    const int left = byteCount - fitting;
    if (stream.readRawData(reinterpret_cast<char *>(matrix.data), fitting) != fitting
        || stream.skipRawData(left) != left)
        qFatal("opencvutils operator>> Mat serialization failure.");
    return stream;
}

QDataStream &operator<<(QDataStream &stream, cv::Rect_<int> const &rect)
{
    return stream << qint32(rect.x) << qint32(rect.y) << qint32(rect.width) << qint32(rect.height);
}

QDataStream &operator>>(QDataStream &stream, cv::Rect_<int> &rect)
{
    return stream >> rect.x >> rect.y >> rect.width >> rect.height;
}

QDataStream &operator<<(QDataStream &stream, cv::Size_<int> const &size)
{
    return stream << qint32(size.width) << qint32(size.height);
}

QDataStream &operator>>(QDataStream &stream, cv::Size_<int> &size)
{
    return stream >> size.width >> size.height;
}
