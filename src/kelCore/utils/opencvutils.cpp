#include <kelCore/utils/opencvutils.h>

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

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
