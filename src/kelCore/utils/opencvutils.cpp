#include <kelCore/utils/opencvutils.h>

#include <kelCore/utils/internal/kelValueRange.h>

#include <opencv2/core.hpp>
#include <opencv2/highgui.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

constexpr std::size_t longestNumber = 16; // -1.23457e-308

char *write(char *out, int number) { return std::to_chars(out, out + longestNumber, number).ptr; }

/// A finite number other than 0 to six significant digits: `digits` (100000 to 999999) x 10^(exponent - 5).
struct SixDigits
{
    int digits;
    int exponent;
};

/// Rounds to nearest, ties away from zero, exactly; false outside 1e-16..1e26, roughly.
///
/// Up to 1e22 a power of ten is a double without error, so one multiplication or division scales the number
/// with one rounding. Such a rounding never carries a value across another double, and a tie, N + 1/2, is
/// one: only a result that is exactly N + 1/2 needs the remainder to tell on which side the number is.
bool toSixDigits(double number, SixDigits &result)
{
    static const double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (!(number > 1e-16 && number < 1e26))
        return false;
    std::uint64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    const int binary = static_cast<int>(bits >> 52) - 1023;
    int exponent = (binary * 1233) >> 12; // binary log10(2), rounded down: right, or one too small

    double power = 0;
    bool multiplied = true;
    const auto scaleTo = [&](int decimals) {
        multiplied = decimals >= 0;
        power = powers[multiplied ? decimals : -decimals];
        return multiplied ? number * power : number / power;
    };
    double scaled = scaleTo(5 - exponent);
    if (scaled >= 1e6)
        scaled = scaleTo(5 - ++exponent);

    int digits = static_cast<int>(scaled);
    const double half = scaled - digits - 0.5;
    if (half > 0
        || (half == 0
            && (multiplied ? std::fma(number, power, -scaled) : std::fma(-scaled, power, number)) >= 0))
        ++digits;
    if (digits == 1000000) {
        digits = 100000;
        ++exponent;
    }
    result = {digits, exponent};
    return true;
}

/// As `QString::number` does, at a fraction of its cost.
char *write(char *out, double number)
{
    SixDigits six;
    if (!toSixDigits(std::abs(number), six)) {
        const QByteArray text = QByteArray::number(number);
        return std::copy(text.begin(), text.end(), out);
    }
    if (std::signbit(number))
        *out++ = '-';

    char digits[6];
    for (int i = 5, rest = six.digits; i >= 0; --i, rest /= 10)
        digits[i] = static_cast<char>('0' + rest % 10);
    int used = 6;
    while (used > 1 && digits[used - 1] == '0')
        --used;

    const int e = six.exponent;
    const auto copy = [&](int from, int to) { out = std::copy(digits + from, digits + to, out); };
    if (e >= 0 && e < 6) {
        copy(0, e + 1);
        if (used > e + 1) {
            *out++ = '.';
            copy(e + 1, used);
        }
    } else if (e < 0 && e >= -4) {
        *out++ = '0';
        *out++ = '.';
        out = std::fill_n(out, -e - 1, '0');
        copy(0, used);
    } else {
        copy(0, 1);
        if (used > 1) {
            *out++ = '.';
            copy(1, used);
        }
        *out++ = 'e';
        *out++ = e < 0 ? '-' : '+';
        *out++ = static_cast<char>('0' + std::abs(e) / 10);
        *out++ = static_cast<char>('0' + std::abs(e) % 10);
    }
    return out;
}

template <class T> char *writeScalar(char *out, const uchar *scalar)
{
    T number;
    std::memcpy(&number, scalar, sizeof number);
    return write(out, static_cast<std::conditional_t<std::is_floating_point<T>::value, double, int>>(number));
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
    char text[longestNumber];
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
        if (m_end > m_piece + sizeof m_piece - longestNumber)
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

template <class Value> cv::Mat matrixOf(const QList<Value> &values, int rows)
{
    const int count = static_cast<int>(values.size());
    if (rows == -1)
        rows = count;
    const bool fits = count == 0 ? rows >= 0 : rows > 0 && count % rows == 0;
    if (!fits)
        qFatal("Invalid matrix size.");
    cv::Mat matrix(rows, count == 0 ? 0 : count / rows, CV_32FC1);
    std::transform(values.begin(), values.end(), matrix.ptr<float>(),
                   [](Value value) { return static_cast<float>(value); });
    return matrix;
}

/// Copies all elements of a continuous matrix.
void copyElements(const cv::Mat &from, uchar *to)
{
    std::copy_n(from.data, from.total() * from.elemSize(), to);
}

template <class To, class From> QList<To> converted(const QList<From> &list, To (*convert)(const From &))
{
    QList<To> result;
    result.reserve(list.size());
    for (const From &item : list)
        result.append(convert(item));
    return result;
}

int truncated(double number)
{
    using Limits = std::numeric_limits<int>;
    if (std::isnan(number))
        return 0;
    return static_cast<int>(
        std::clamp(number, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

} // namespace

namespace OpenCVUtils {

void cvtGray(cv::Mat const &source, cv::Mat &destination)
{
    if (source.channels() == 3)
        cv::cvtColor(source, destination, cv::COLOR_BGR2GRAY);
    else if (source.channels() == 1)
        destination = source;
    else
        qFatal("Invalid channel count");
}

void cvtUChar(cv::Mat const &source, cv::Mat &destination)
{
    if (source.depth() == CV_8U) {
        destination = source;
        return;
    }
    const kelValueRange range = kelValueRangeOf(source);
    const double extent = range.max - range.min;
    if (extent == 0) {
        destination = cv::Mat(source.rows, source.cols, CV_8UC1,
                              cv::Scalar(std::clamp((range.min + range.max) * 0.5, 0.0, 255.0)));
        return;
    }
    const double alpha = 255 / extent;
    cv::convertScaleAbs(source, destination, alpha, -range.min * alpha);
}

void showImage(cv::Mat const &image, QString const &title, bool wait)
{
    if (image.empty()) {
        qWarning("OpenCVUtils::showImage null image.");
        return;
    }
    cv::Mat shown;
    cvtUChar(image, shown);
    cv::imshow(title.toStdString(), shown);
    cv::waitKey(wait ? -1 : 1);
}

cv::Mat toMat(QList<float> const &values, int rows) { return matrixOf(values, rows); }

cv::Mat toMat(QList<int> const &values, int rows) { return matrixOf(values, rows); }

cv::Mat toMat(QList<cv::Mat> const &matrices)
{
    if (matrices.isEmpty())
        return cv::Mat();
    const cv::Mat &first = matrices.first();
    cv::Mat result(static_cast<int>(matrices.size()), static_cast<int>(first.total()), first.type());
    int row = 0;
    for (const cv::Mat &matrix : matrices) {
        if (matrix.total() != first.total() || matrix.type() != first.type() || !matrix.isContinuous())
            qFatal("Invalid matrix.");
        copyElements(matrix, result.ptr(row++));
    }
    return result;
}

cv::Mat toMatByRow(QList<cv::Mat> const &matrices)
{
    if (matrices.isEmpty())
        return cv::Mat();
    const cv::Mat &first = matrices.first();
    if (first.cols == 0)
        qFatal("Columnless matrix!");
    qint64 rows = 0;
    for (const cv::Mat &matrix : matrices) {
        rows += matrix.rows;
        if (matrix.cols != first.cols || matrix.type() != first.type() || !matrix.isContinuous()
            || rows > std::numeric_limits<int>::max())
            qFatal("Invalid matrix.");
    }
    cv::Mat result(static_cast<int>(rows), first.cols, first.type());
    uchar *end = result.data;
    for (const cv::Mat &matrix : matrices) {
        copyElements(matrix, end);
        end += matrix.total() * matrix.elemSize();
    }
    return result;
}

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

cv::Point_<float> toPoint(QPointF const &point)
{
    return cv::Point_<float>(static_cast<float>(point.x()), static_cast<float>(point.y()));
}

QPointF fromPoint(cv::Point_<float> const &point)
{
    return QPointF(static_cast<double>(point.x), static_cast<double>(point.y));
}

cv::Rect_<int> toRect(QRectF const &rect)
{
    return cv::Rect_<int>(truncated(rect.x()), truncated(rect.y()), truncated(rect.width()),
                          truncated(rect.height()));
}

QRectF fromRect(cv::Rect_<int> const &rect) { return QRectF(rect.x, rect.y, rect.width, rect.height); }

QList<cv::Point_<float>> toPoints(QList<QPointF> const &points) { return converted(points, toPoint); }

QList<QPointF> fromPoints(QList<cv::Point_<float>> const &points) { return converted(points, fromPoint); }

QList<cv::Rect_<int>> toRects(QList<QRectF> const &rects) { return converted(rects, toRect); }

QList<QRectF> fromRects(QList<cv::Rect_<int>> const &rects) { return converted(rects, fromRect); }

} // namespace OpenCVUtils

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
    if (!matrix.isContinuous())
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
