#ifndef KELCORE_OPENCVUTILS_H
#define KELCORE_OPENCVUTILS_H

/// \file
/// Matrices between OpenCV and Qt: displayable images, lists, text, debug output and byte streams.

#include <kelCore/kelCoreExport.h>

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

#include <QDataStream>
#include <QDebug>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QStringList>

/// Stateless functions around `cv::Mat`; each works on its arguments alone.
///
/// What a function cannot do is reported with `qFatal`, which ends the process; the texts stand with the
/// functions. Depths are those of OpenCV's type codes 0 to 6, named "8U", "8S", "16U", "16S", "32S", "32F"
/// and "64F"; the half float is none of them.
namespace OpenCVUtils {

/// \name Displayable images
/// @{

/// A one-channel image: the grey of a three-channel one (blue, green, red), or a one-channel one itself,
/// whose pixels are shared and not copied. Fatal otherwise: "Invalid channel count".
KELCORE_EXPORT void cvtGray(cv::Mat const &source, cv::Mat &destination);

/// An 8-bit image. An 8U source is shared and not copied. Any other is stretched from its least and greatest
/// value, taken over all channels, to 0 and 255:
///
///     alpha = 255 / (max - min),   destination = |alpha source - alpha min|, saturated
///
/// Not-a-numbers take no part in the range, and give 0. When all values are the same, the result has *one*
/// channel, whatever the source has, and holds that value saturated to 0..255; this is deliberate.
KELCORE_EXPORT void cvtUChar(cv::Mat const &source, cv::Mat &destination);

/// Shows an image, converted with cvtUChar, in a window of that title, which is made when there is none, then
/// waits for a key: without end when `wait`, else for the millisecond that repainting takes. Without data nothing
/// is shown, and a warning says so: "OpenCVUtils::showImage null image.".
///
/// The window is that of OpenCV's highgui, when the program is linked with it; else highgui is loaded at the first
/// call, unless OpenCV was built with another Qt than this library, or without: then the library opens a window of
/// its own, which looks and waits alike (the wait also ends when all of them are closed). Linked with highgui,
/// a program loads highgui's Qt too: link it only where that is the program's own.
///
/// A program without a QApplication gets one, which stays. In an application without widgets, and outside the
/// application's thread, nothing is shown, with the warning
/// "OpenCVUtils::showImage needs a QApplication, and its thread.".
/// \throws cv::Exception when the image has other than 1, 3 or 4 channels.
KELCORE_EXPORT void showImage(cv::Mat const &image, QString const &title, bool wait = false);

/// @}
/// \name Matrices from lists
/// @{

/// The values row by row in a 32F matrix; -1 rows stand for one column. An empty list gives `rows` rows
/// without columns. Fatal when the values do not fill that many rows, or their number is negative otherwise:
/// "Invalid matrix size.".
KELCORE_EXPORT cv::Mat toMat(QList<float> const &values, int rows = -1);
/// The same, with each integer converted to float: the result is 32F, not 32S.
KELCORE_EXPORT cv::Mat toMat(QList<int> const &values, int rows = -1);
/// One row per matrix, each flattened. All must be continuous and have the type and number of elements of the
/// first; fatal otherwise: "Invalid matrix.". An empty list gives an empty matrix.
KELCORE_EXPORT cv::Mat toMat(QList<cv::Mat> const &matrices);
/// The matrices on top of each other. All must be continuous and have the type and columns of the first;
/// fatal otherwise: "Invalid matrix.", which more rows than an int counts are too, or "Columnless matrix!"
/// when the first has none. An empty list gives an empty matrix.
KELCORE_EXPORT cv::Mat toMatByRow(QList<cv::Mat> const &matrices);

/// @}
/// \name Text
/// Integers are decimal, 32F and 64F as `QString::number` writes them by default: six significant digits, in
/// the shorter of fixed and exponent notation. Another depth is fatal: "Unknown matrix depth".
/// @{

/// "8U" to "64F". Another depth is fatal: "Unknown matrix depth!".
KELCORE_EXPORT QString depthToString(cv::Mat const &matrix);
/// Depth, "C" and channel count, as in "8UC3". Fails like depthToString.
KELCORE_EXPORT QString typeToString(cv::Mat const &matrix);
/// Scalar number `column` of a row: in a matrix of several channels, columns count scalars, not pixels. Both
/// must be inside the matrix: this is not checked.
KELCORE_EXPORT QString elemToString(cv::Mat const &matrix, int row, int column);
/// The whole matrix. Several rows stand in braces, several columns in brackets, several channels in
/// parentheses, so that a 2 x 2 matrix is
///
///     { [1, 2]
///       [3, 4] }
KELCORE_EXPORT QString matrixToString(cv::Mat const &matrix);
/// Every scalar: channel by channel, and row by row within each.
KELCORE_EXPORT QStringList matrixToStringList(cv::Mat const &matrix);

/// @}
/// \name Geometry
/// Doubles become floats by rounding to nearest, and integers by truncation towards zero, each of x, y, width
/// and height for itself; not-a-number becomes 0, and what no integer can hold the nearest one.
/// @{

KELCORE_EXPORT cv::Point_<float> toPoint(QPointF const &point);
KELCORE_EXPORT QPointF fromPoint(cv::Point_<float> const &point);
KELCORE_EXPORT cv::Rect_<int> toRect(QRectF const &rect);
KELCORE_EXPORT QRectF fromRect(cv::Rect_<int> const &rect);
KELCORE_EXPORT QList<cv::Point_<float>> toPoints(QList<QPointF> const &points);
KELCORE_EXPORT QList<QPointF> fromPoints(QList<cv::Point_<float>> const &points);
KELCORE_EXPORT QList<cv::Rect_<int>> toRects(QList<QRectF> const &rects);
KELCORE_EXPORT QList<QRectF> fromRects(QList<cv::Rect_<int>> const &rects);

/// @}

} // namespace OpenCVUtils

// The operators stand at global scope: QDataStream and QDebug live there, so argument-dependent look-up finds
// them from every namespace, cv included, and from Qt's own templates: containers, and the stream operators
// of metatypes (registered with Qt 5, found by themselves with Qt 6).

/// \name Byte streams
/// All integers are 32 bits wide, in the stream's byte order.
/// @{

/// Writes rows, columns, type and byte count, then that many bytes of elements, row by row. A matrix without
/// elements has no bytes. Of a matrix with more than two dimensions nothing useful is written.
///
/// Fatal: "Can't serialize non-continuous matrices." for a part of wider rows (clone it first),
/// "Serialization failure." when the device takes fewer bytes, or the matrix holds 2 GiB or more.
KELCORE_EXPORT QDataStream &operator<<(QDataStream &stream, cv::Mat const &matrix);

/// Reads what the operator above writes. The target is reused, with whoever shares its elements, when it has
/// the size and type already; otherwise it is allocated, whatever size the stream says.
///
/// The stored byte count is taken from the stream, even where it disagrees with the size: missing bytes leave
/// elements as they are, unset in a new matrix, and what does not fit is dropped.
///
/// Fatal: "opencvutils operator>> Mat can't deserialize non-continuous matrices." for a target that is a part
/// of wider rows, "opencvutils operator>> Mat serialization failure." when the stream ends too early.
/// \throws cv::Exception when the size is negative or cannot be allocated. The target is unchanged then.
KELCORE_EXPORT QDataStream &operator>>(QDataStream &stream, cv::Mat &matrix);

/// x, y, width, height.
KELCORE_EXPORT QDataStream &operator<<(QDataStream &stream, cv::Rect_<int> const &rect);
KELCORE_EXPORT QDataStream &operator>>(QDataStream &stream, cv::Rect_<int> &rect);
/// Width, height.
KELCORE_EXPORT QDataStream &operator<<(QDataStream &stream, cv::Size_<int> const &size);
KELCORE_EXPORT QDataStream &operator>>(QDataStream &stream, cv::Size_<int> &size);

/// @}
/// \name Debug output
/// Each leaves the stream in space mode, with one blank behind the item.
/// @{

/// The text of matrixToString between double quotes, line feeds as they are.
KELCORE_EXPORT QDebug operator<<(QDebug debug, cv::Mat const &matrix);
/// "(3, 4)"
KELCORE_EXPORT QDebug operator<<(QDebug debug, cv::Point_<int> const &point);
/// "(1, 2.5, 3)", with six significant digits.
KELCORE_EXPORT QDebug operator<<(QDebug debug, cv::Point3_<double> const &point);
/// "(1, 2,30,40)": a blank behind the first comma only, deliberately.
KELCORE_EXPORT QDebug operator<<(QDebug debug, cv::Rect_<int> const &rect);

/// @}
/// \name Silent conversions that are refused
/// OpenCV's points, sizes and rectangles convert into one another: rounded to integers, or a point to a size.
/// @{

template <class T> QDataStream &operator<<(QDataStream &stream, cv::Rect_<T> const &rect) = delete;
template <class T> QDataStream &operator<<(QDataStream &stream, cv::Size_<T> const &size) = delete;
template <class T> QDataStream &operator<<(QDataStream &stream, cv::Point_<T> const &point) = delete;
template <class T> QDebug operator<<(QDebug debug, cv::Point_<T> const &point) = delete;
template <class T> QDebug operator<<(QDebug debug, cv::Rect_<T> const &rect) = delete;
template <class T> QDebug operator<<(QDebug debug, cv::Size_<T> const &size) = delete;

/// @}

#endif
