#include <kelCore/utils/opencvutils.h>

#include <kelCore/utils/internal/kelDecimal.h>

#include <opencv2/core.hpp>

#include <charconv>
#include <cstring>
#include <type_traits>

namespace {

template <class T> char *writeScalar(char *out, const uchar *scalar)
{
    T number;
    std::memcpy(&number, scalar, sizeof number);
    if constexpr (std::is_floating_point<T>::value)
        return kelWriteDecimal(out, static_cast<double>(number));
    else
        return std::to_chars(out, out + kelLongestDecimal, static_cast<int>(number)).ptr;
}

char *writeUnknown(char *out, const uchar *)
{
    qFatal("Unknown matrix depth");
    *out = '?';
    return out + 1;
}

using ScalarWriter = char *(*)(char *out, const uchar *scalar);

ScalarWriter scalarWriter(const cv::Mat &matrix)
{
    static const ScalarWriter byDepth[] = {writeScalar<uchar>,  writeScalar<schar>, writeScalar<ushort>,
                                           writeScalar<short>,  writeScalar<int>,   writeScalar<float>,
                                           writeScalar<double>, writeUnknown};
    return byDepth[matrix.depth()];
}

QString scalarText(ScalarWriter writer, const uchar *scalar)
{
    char text[kelLongestDecimal];
    return QString::fromLatin1(text, static_cast<int>(writer(text, scalar) - text));
}

/// Gathers a text in pieces that stay in the processor's cache.
class TextBuilder
{
public:
    void append(const char *text)
    {
        while (*text)
            *m_end++ = *text++;
        makeRoom();
    }
    void append(ScalarWriter writer, const uchar *scalar)
    {
        m_end = writer(m_end, scalar);
        makeRoom();
    }
    QString take()
    {
        flush();
        return m_text;
    }

private:
    void makeRoom()
    {
        if (m_end > m_piece + sizeof m_piece - kelLongestDecimal)
            flush();
    }
    void flush()
    {
        m_text += QLatin1String(m_piece, static_cast<int>(m_end - m_piece));
        m_end = m_piece;
    }

    char m_piece[8192];
    char *m_end = m_piece;
    QString m_text;
};

} // namespace

namespace OpenCVUtils {

QString depthToString(cv::Mat const &matrix)
{
    static const char *const names[] = {"8U", "8S", "16U", "16S", "32S", "32F", "64F", "?"};
    if (matrix.depth() > CV_64F)
        qFatal("Unknown matrix depth!");
    return QString::fromLatin1(names[matrix.depth()]);
}

QString typeToString(cv::Mat const &matrix)
{
    return depthToString(matrix) + QLatin1Char('C') + QString::number(matrix.channels());
}

QString elemToString(cv::Mat const &matrix, int row, int column)
{
    return scalarText(scalarWriter(matrix), matrix.ptr(row) + column * static_cast<long>(matrix.elemSize1()));
}

QString matrixToString(cv::Mat const &matrix)
{
    const int rows = matrix.rows;
    const int columns = matrix.cols;
    const int channels = matrix.channels();
    const std::size_t step = matrix.elemSize1();
    const ScalarWriter writer = scalarWriter(matrix);

    TextBuilder text;
    if (rows > 1)
        text.append("{ ");
    for (int r = 0; r < rows; ++r) {
        if (rows > 1 && r > 0)
            text.append("  ");
        if (columns > 1)
            text.append("[");
        const uchar *scalar = matrix.ptr(r);
        for (int c = 0; c < columns; ++c) {
            if (channels > 1)
                text.append("(");
            for (int channel = 0; channel < channels; ++channel, scalar += step) {
                if (channel > 0)
                    text.append(", ");
                text.append(writer, scalar);
            }
            if (channels > 1)
                text.append(")");
            if (c < columns - 1)
                text.append(", ");
        }
        if (columns > 1)
            text.append("]");
        if (r < rows - 1)
            text.append("\n");
    }
    if (rows > 1)
        text.append(" }");
    return text.take();
}

QStringList matrixToStringList(cv::Mat const &matrix)
{
    const ScalarWriter writer = scalarWriter(matrix);
    QStringList list;
    for (int channel = 0; channel < matrix.channels(); ++channel) {
        for (int r = 0; r < matrix.rows; ++r) {
            for (int c = 0; c < matrix.cols; ++c)
                list.append(scalarText(
                    writer, matrix.ptr(r, c) + static_cast<std::size_t>(channel) * matrix.elemSize1()));
        }
    }
    return list;
}

} // namespace OpenCVUtils

QDebug operator<<(QDebug debug, cv::Mat const &matrix)
{
    // Written without the escapes that a QString item gets.
    debug.nospace() << '"' << qUtf8Printable(OpenCVUtils::matrixToString(matrix)) << '"';
    return debug.space();
}

QDebug operator<<(QDebug debug, cv::Point_<int> const &point)
{
    debug.nospace() << '(' << point.x << ", " << point.y << ')';
    return debug.space();
}

QDebug operator<<(QDebug debug, cv::Point3_<double> const &point)
{
    debug.nospace() << '(' << point.x << ", " << point.y << ", " << point.z << ')';
    return debug.space();
}

QDebug operator<<(QDebug debug, cv::Rect_<int> const &rect)
{
    debug.nospace() << '(' << rect.x << ", " << rect.y << ',' << rect.width << ',' << rect.height << ')';
    return debug.space();
}
