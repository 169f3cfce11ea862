#include <kelCore/utils/opencvutils.h>

#include "support/Capture.h"
#include "utils/matrixTests.h"

#include <gmock/gmock.h>
#include <opencv2/core.hpp>

#include <QIODevice>
#include <QMetaType>
#include <QVariant>

#include <type_traits>

Q_DECLARE_METATYPE(cv::Mat)

using namespace OpenCVUtils;
using namespace matrixTests;

namespace {

template <class Stream, class Item, class = void> struct CanWrite : std::false_type
{ };
template <class Stream, class Item>
struct CanWrite<Stream, Item, std::void_t<decltype(std::declval<Stream>() << std::declval<const Item &>())>>
    : std::true_type
{ };

} // namespace

namespace cv {
/// Code in the namespace of the matrices, whose own operators hide the global ones.
static void writeFromHere(QDataStream &stream, const Mat &matrix, const Rect &rect, const Size &size)
{
    stream << matrix << rect << size;
}
static void readFromHere(QDataStream &stream, Mat &matrix, Rect &rect, Size &size)
{
    stream >> matrix >> rect >> size;
}
static QString debugFromHere(const Rect &rect)
{
    QString text;
    QDebug(&text) << rect;
    return text;
}
} // namespace cv

TEST(opencvutilsTest, ListsOfNumbersFillAMatrixRowByRow)
{
    const QList<float> values{1, 2.5f, 3, 4, 5, 6};
    EXPECT_TRUE(sameMatrix(toMat(values, 2), (cv::Mat_<float>(2, 3) << 1, 2.5f, 3, 4, 5, 6)));
    EXPECT_TRUE(sameMatrix(toMat(values, 6), (cv::Mat_<float>(6, 1) << 1, 2.5f, 3, 4, 5, 6)));
    EXPECT_TRUE(sameMatrix(toMat(values, 1), (cv::Mat_<float>(1, 6) << 1, 2.5f, 3, 4, 5, 6)));
    EXPECT_TRUE(sameMatrix(toMat(values, -1), (cv::Mat_<float>(6, 1) << 1, 2.5f, 3, 4, 5, 6)));
    EXPECT_TRUE(sameMatrix(toMat(values), toMat(values, -1)));
}

TEST(opencvutilsTest, ListsOfIntegersBecomeFloats)
{
    const QList<int> values{1, -2, 16777217, 2147483647};
    EXPECT_TRUE(sameMatrix(toMat(values, 2), (cv::Mat_<float>(2, 2) << 1, -2, 16777216, 2147483648.0f)));
    EXPECT_TRUE(sameMatrix(toMat(values, -1), (cv::Mat_<float>(4, 1) << 1, -2, 16777216, 2147483648.0f)));
    EXPECT_TRUE(sameMatrix(toMat(values), toMat(values, -1)));
}

TEST(opencvutilsTest, AnEmptyListHasRowsWithoutColumns)
{
    for (const int rows : {0, 1, 5, -1}) {
        const cv::Mat floats = toMat(QList<float>(), rows);
        EXPECT_EQ(floats.rows, std::max(rows, 0));
        EXPECT_EQ(floats.cols, 0);
        EXPECT_EQ(floats.type(), CV_32FC1);
        EXPECT_EQ(toMat(QList<int>(), rows).rows, std::max(rows, 0));
    }
}

TEST(opencvutilsDeathTest, RowsThatTheValuesDoNotFillAreFatal)
{
    const QList<float> values{1, 2, 3, 4, 5, 6};
    for (const int rows : {4, 5, 7, 12, 0, -2, -3, -6})
        expectFatal("Invalid matrix size.", [&] { toMat(values, rows); });
    expectFatal("Invalid matrix size.", [] { toMat(QList<int>{1, 2, 3}, 2); });
    expectFatal("Invalid matrix size.", [] { toMat(QList<float>(), -2); });
}

TEST(opencvutilsTest, EachMatrixBecomesARow)
{
    const cv::Mat a = randomMatrix(2, 3, CV_16SC2);
    const cv::Mat b = randomMatrix(3, 2, CV_16SC2);
    const cv::Mat c = randomMatrix(1, 6, CV_16SC2);
    const cv::Mat result = toMat(QList<cv::Mat>{a, b, c});
    ASSERT_EQ(result.size(), cv::Size(6, 3));
    EXPECT_TRUE(sameMatrix(result.row(0), a.reshape(0, 1)));
    EXPECT_TRUE(sameMatrix(result.row(1), b.reshape(0, 1)));
    EXPECT_TRUE(sameMatrix(result.row(2), c));
    EXPECT_NE(toMat(QList<cv::Mat>{c}).data, c.data);
    EXPECT_TRUE(toMat(QList<cv::Mat>()).empty());
}

TEST(opencvutilsTest, MatricesOfSeveralDimensionsBecomeRowsToo)
{
    const int sizes[] = {2, 3, 4};
    cv::Mat cube(3, sizes, CV_32F);
    for (int i = 0; i < 24; ++i)
        cube.ptr<float>()[i] = static_cast<float>(i);
    const cv::Mat result = toMat(QList<cv::Mat>{cube, cv::Mat::zeros(4, 6, CV_32F)});
    ASSERT_EQ(result.size(), cv::Size(24, 2));
    EXPECT_EQ(result.at<float>(0, 23), 23);
    EXPECT_EQ(result.at<float>(1, 23), 0);
}

TEST(opencvutilsDeathTest, UnlikeMatricesMakeNoRows)
{
    const cv::Mat first(2, 3, CV_8U, cv::Scalar(1));
    for (const cv::Mat &other : {cv::Mat(2, 2, CV_8U, cv::Scalar(1)), cv::Mat(2, 3, CV_8S, cv::Scalar(1)),
                                 cv::Mat(2, 3, CV_8UC2, cv::Scalar(1)), asView(first), cv::Mat()})
        expectFatal("Invalid matrix.", [&] { toMat(QList<cv::Mat>{first, other}); });
    expectFatal("Invalid matrix.", [&] { toMat(QList<cv::Mat>{asView(first)}); });
}

TEST(opencvutilsTest, MatricesAreStacked)
{
    const cv::Mat a = randomMatrix(2, 3, CV_32FC2);
    const cv::Mat b = randomMatrix(1, 3, CV_32FC2);
    const cv::Mat c = randomMatrix(4, 3, CV_32FC2);
    const cv::Mat result = toMatByRow({a, b, c});
    ASSERT_EQ(result.size(), cv::Size(3, 7));
    EXPECT_TRUE(sameMatrix(result.rowRange(0, 2), a));
    EXPECT_TRUE(sameMatrix(result.rowRange(2, 3), b));
    EXPECT_TRUE(sameMatrix(result.rowRange(3, 7), c));
    EXPECT_NE(toMatByRow({b}).data, b.data);
    EXPECT_TRUE(toMatByRow({}).empty());
    EXPECT_TRUE(sameMatrix(toMatByRow({cv::Mat(0, 3, CV_32FC2), a}), a));
}

TEST(opencvutilsDeathTest, UnlikeMatricesAreNotStacked)
{
    const cv::Mat first(2, 3, CV_8U, cv::Scalar(1));
    for (const cv::Mat &other : {cv::Mat(2, 2, CV_8U, cv::Scalar(1)), cv::Mat(3, 2, CV_8U, cv::Scalar(1)),
                                 cv::Mat(2, 3, CV_8S, cv::Scalar(1)), cv::Mat(2, 3, CV_8UC2, cv::Scalar(1)),
                                 asView(first), cv::Mat()})
        expectFatal("Invalid matrix.", [&] { toMatByRow({first, other}); });
    expectFatal("Invalid matrix.", [&] { toMatByRow({asView(first)}); });
    uchar memory = 0;
    const cv::Mat high(1 << 30, 1, CV_8U, &memory);
    expectFatal("Invalid matrix.", [&] { toMatByRow({high, high}); });
    expectFatal("Invalid matrix.", [&] { toMatByRow({high, high, high, high, high}); });
    expectFatal("Columnless matrix!", [&] { toMatByRow({cv::Mat(), first}); });
    expectFatal("Columnless matrix!", [] { toMatByRow({cv::Mat(3, 0, CV_8U)}); });
}

TEST(opencvutilsTest, PointsConvertBothWays)
{
    EXPECT_EQ(toPoint(QPointF(0.1, -2.5)), cv::Point2f(0.1f, -2.5f));
    EXPECT_EQ(toPoint(QPointF(16777217, 16777219)), cv::Point2f(16777216, 16777220));
    EXPECT_EQ(fromPoint(cv::Point2f(0.1f, -2.5f)), QPointF(static_cast<double>(0.1f), -2.5));
    EXPECT_EQ(toPoints({QPointF(1, 2), QPointF(3, 4)}), (QList<cv::Point2f>{{1, 2}, {3, 4}}));
    EXPECT_EQ(fromPoints({{1, 2}, {3, 4}}), (QList<QPointF>{QPointF(1, 2), QPointF(3, 4)}));
    EXPECT_TRUE(toPoints({}).isEmpty());
    EXPECT_TRUE(fromPoints({}).isEmpty());
}

TEST(opencvutilsTest, RectanglesConvertByTruncation)
{
    EXPECT_EQ(toRect(QRectF(1.9, -1.9, 2.9, 3.999)), cv::Rect(1, -1, 2, 3));
    EXPECT_EQ(toRect(QRectF(0.6, 0.6, -0.6, -1.5)), cv::Rect(0, 0, 0, -1));
    EXPECT_EQ(fromRect(cv::Rect(1, -2, 2147483647, 4)), QRectF(1, -2, 2147483647, 4));
    EXPECT_EQ(toRects({QRectF(1, 2, 3, 4), QRectF(5.5, 6.5, 7.5, 8.5)}),
              (QList<cv::Rect>{cv::Rect(1, 2, 3, 4), cv::Rect(5, 6, 7, 8)}));
    EXPECT_EQ(fromRects({cv::Rect(1, 2, 3, 4), cv::Rect(5, 6, 7, 8)}),
              (QList<QRectF>{QRectF(1, 2, 3, 4), QRectF(5, 6, 7, 8)}));
    EXPECT_TRUE(toRects({}).isEmpty());
    EXPECT_TRUE(fromRects({}).isEmpty());
}

TEST(opencvutilsTest, RectanglesThatNoIntegerHoldsAreClamped)
{
    EXPECT_EQ(toRect(QRectF(1e10, -1e10, infinite, notANumber)),
              cv::Rect(2147483647, -2147483647 - 1, 2147483647, 0));
}

TEST(opencvutilsTest, NothingIsLogged)
{
    const LogLevel everything(0);
    const MessageCapture messages;
    const cv::Mat matrix(2, 3, CV_32FC1, cv::Scalar(1));
    cv::Mat result;
    cvtGray(matrix, result);
    cvtUChar(matrix, result);
    toMat(QList<float>{1, 2});
    toMat(QList<int>{1, 2});
    toMat(QList<cv::Mat>{matrix});
    toMatByRow({matrix});
    typeToString(matrix);
    elemToString(matrix, 0, 0);
    matrixToString(matrix);
    matrixToStringList(matrix);
    fromPoints(toPoints({QPointF(1, 2)}));
    fromRects(toRects({QRectF(1, 2, 3, 4)}));
    QDataStream stream(streamed(matrix));
    stream >> result;
    debugText(matrix);
    EXPECT_EQ(messages.lines(), QStringList());
}

TEST(opencvutilsTest, OperatorsAreFoundFromEverywhere)
{
    const cv::Mat matrix = randomMatrix(2, 3, CV_8U);
    QByteArray plain, here, list;
    {
        QDataStream stream(&plain, QIODevice::WriteOnly);
        ::operator<<(stream, matrix);
        ::operator<<(stream, cv::Rect(1, 2, 3, 4));
        ::operator<<(stream, cv::Size(5, 6));
    }
    {
        QDataStream stream(&here, QIODevice::WriteOnly);
        cv::writeFromHere(stream, matrix, cv::Rect(1, 2, 3, 4), cv::Size(5, 6));
    }
    EXPECT_EQ(here, plain);
    {
        QDataStream stream(here);
        cv::Mat back;
        cv::Rect rect;
        cv::Size size;
        cv::readFromHere(stream, back, rect, size);
        EXPECT_TRUE(sameMatrix(back, matrix));
        EXPECT_EQ(rect, cv::Rect(1, 2, 3, 4));
        EXPECT_EQ(size, cv::Size(5, 6));
    }
    {
        QDataStream stream(here);
        cv::Mat back;
        cv::Rect rect;
        cv::Size size;
        ::operator>>(stream, back);
        ::operator>>(stream, rect);
        ::operator>>(stream, size);
        EXPECT_TRUE(sameMatrix(back, matrix));
        EXPECT_EQ(size, cv::Size(5, 6));
    }
    EXPECT_EQ(cv::debugFromHere(cv::Rect(1, 2, 30, 40)), "(1, 2,30,40) ");

    QDataStream out(&list, QIODevice::WriteOnly);
    out << QList<cv::Mat>{matrix, matrix};
    QDataStream stream(list);
    QList<cv::Mat> back;
    stream >> back;
    ASSERT_EQ(back.size(), 2);
    EXPECT_TRUE(sameMatrix(back.at(1), matrix));
}

TEST(opencvutilsTest, VariantsOfMatricesAreStreamed)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaType<cv::Mat>("cv::Mat");
    qRegisterMetaTypeStreamOperators<cv::Mat>("cv::Mat");
#else
    EXPECT_TRUE(QMetaType::fromType<cv::Mat>().hasRegisteredDataStreamOperators());
    qRegisterMetaType<cv::Mat>("cv::Mat");
#endif
    const cv::Mat matrix = randomMatrix(2, 3, CV_32F);
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QVariant::fromValue(matrix);
    EXPECT_TRUE(bytes.endsWith(streamed(matrix)));
    QDataStream in(bytes);
    QVariant variant;
    in >> variant;
    EXPECT_TRUE(sameMatrix(variant.value<cv::Mat>(), matrix));
}

TEST(opencvutilsTest, ExpressionsAndTypedMatricesAreMatricesToo)
{
    const cv::Mat one = cv::Mat::ones(1, 2, CV_8U);
    EXPECT_EQ(streamed(cv::Mat_<uchar>(one)), streamed(one));
    EXPECT_EQ(debugText(one + one), "\"[2, 2]\" ");
}

TEST(opencvutilsTest, SilentConversionsAreRefused)
{
    static_assert(CanWrite<QDataStream &, cv::Rect>::value && CanWrite<QDataStream &, cv::Size>::value, "");
    static_assert(!CanWrite<QDataStream &, cv::Rect2f>::value && !CanWrite<QDataStream &, cv::Rect2d>::value,
                  "");
    static_assert(!CanWrite<QDataStream &, cv::Size2f>::value && !CanWrite<QDataStream &, cv::Size2d>::value,
                  "");
    static_assert(!CanWrite<QDataStream &, cv::Point>::value && !CanWrite<QDataStream &, cv::Point2f>::value,
                  "");
    static_assert(CanWrite<QDebug, cv::Point>::value && CanWrite<QDebug, cv::Rect>::value, "");
    static_assert(!CanWrite<QDebug, cv::Point2f>::value && !CanWrite<QDebug, cv::Point2d>::value, "");
    static_assert(!CanWrite<QDebug, cv::Rect2f>::value && !CanWrite<QDebug, cv::Rect2d>::value, "");
    static_assert(!CanWrite<QDebug, cv::Size>::value && !CanWrite<QDebug, cv::Size2f>::value, "");
}
