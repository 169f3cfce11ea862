#include <kelCore/utils/opencvutils.h>

#include "support/Capture.h"

#include <gmock/gmock.h>
#include <opencv2/core.hpp>
#include <opencv2/highgui.hpp>
#include <opencv2/imgproc.hpp>

#include <QBuffer>
#include <QMetaType>
#include <QVariant>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

Q_DECLARE_METATYPE(cv::Mat)

using namespace OpenCVUtils;

namespace {

/// What was shown, instead of a window.
struct Shown
{
    std::string window;
    cv::Mat image;
    int delay = 0;
    int windows = 0;
    int waits = 0;
};

Shown &shown()
{
    static Shown shown;
    return shown;
}

} // namespace

// The library's calls end here: no test opens a window.
namespace cv {
__attribute__((visibility("default"))) void imshow(const String &window, InputArray image)
{
    shown().window = window;
    shown().image = image.getMat();
    ++shown().windows;
}
__attribute__((visibility("default"))) int waitKey(int delay)
{
    shown().delay = delay;
    ++shown().waits;
    return -1;
}
} // namespace cv

namespace {

const double infinite = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();
const int halfFloat = 7;

bool sameMatrix(const cv::Mat &a, const cv::Mat &b)
{
    if (a.size() != b.size() || a.type() != b.type())
        return false;
    for (int r = 0; r < a.rows; ++r) {
        if (std::memcmp(a.ptr(r), b.ptr(r), static_cast<std::size_t>(a.cols) * a.elemSize()) != 0)
            return false;
    }
    return true;
}

/// Any elements; those of real depths are numbers.
cv::Mat randomMatrix(int rows, int columns, int type, double low = 0, double high = 100)
{
    static cv::RNG random(1);
    cv::Mat matrix(rows, columns, type);
    cv::Mat scalars = matrix.reshape(1);
    random.fill(scalars, cv::RNG::UNIFORM, low, high);
    return matrix;
}

/// `matrix` as a part of a larger one, so that its rows do not follow one another in memory.
cv::Mat asView(const cv::Mat &matrix)
{
    const cv::Mat larger(matrix.rows + 2, matrix.cols + 3, matrix.type());
    larger.reshape(1).setTo(100);
    cv::Mat view = larger(cv::Rect(1, 1, matrix.cols, matrix.rows));
    matrix.copyTo(view);
    return view;
}

template <class Statement> void expectFatal(const char *text, Statement statement)
{
    EXPECT_EXIT(statement(), testing::KilledBySignal(SIGABRT), testing::StrEq(std::string(text) + "\n"));
}

/// The stretching, step by step.
cv::Mat plainUChar(const cv::Mat &source)
{
    std::vector<cv::Mat> channels;
    cv::split(source, channels);
    double min = std::numeric_limits<double>::max();
    double max = std::numeric_limits<double>::lowest();
    for (const cv::Mat &channel : channels) {
        double low, high;
        cv::minMaxIdx(channel, &low, &high);
        min = std::min(min, low);
        max = std::max(max, high);
    }
    const double range = max - min;
    cv::Mat result;
    if (range != 0) {
        const double alpha = 255 / range;
        cv::convertScaleAbs(source, result, alpha, -min * alpha);
    } else {
        result = cv::Mat(source.rows, source.cols, CV_8UC1);
        result.setTo(cv::Scalar(std::clamp((min + max) * 0.5, 0.0, 255.0)));
    }
    return result;
}

void expectPlainUChar(const cv::Mat &source)
{
    cv::Mat result;
    cvtUChar(source, result);
    EXPECT_TRUE(sameMatrix(result, plainUChar(source)))
        << source.rows << " x " << source.cols << " " << typeToString(source).toStdString();
}

/// The text, step by step.
QString plainText(const cv::Mat &matrix)
{
    std::vector<cv::Mat> channels;
    cv::split(matrix, channels);
    QString text = matrix.rows > 1 ? "{ " : "";
    for (int r = 0; r < matrix.rows; ++r) {
        text += r > 0 ? "  " : "";
        text += matrix.cols > 1 ? "[" : "";
        for (int c = 0; c < matrix.cols; ++c) {
            QStringList elements;
            for (const cv::Mat &channel : channels)
                elements.append(elemToString(channel, r, c));
            text += channels.size() > 1 ? "(" + elements.join(", ") + ")" : elements.join("");
            text += c < matrix.cols - 1 ? ", " : "";
        }
        text += matrix.cols > 1 ? "]" : "";
        text += r < matrix.rows - 1 ? "\n" : "";
    }
    return text + (matrix.rows > 1 ? " }" : "");
}

void expectNumberText(double number)
{
    const cv::Mat matrix(1, 1, CV_64F, &number);
    ASSERT_EQ(elemToString(matrix, 0, 0), QString::number(number)) << std::hexfloat << number;
}

double fromBits(std::uint64_t bits)
{
    double number;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

template <class Item> QByteArray streamed(const Item &item)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << item;
    return bytes;
}

QByteArray header(qint32 rows, qint32 columns, qint32 type, qint32 count)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << rows << columns << type << count;
    return bytes;
}

cv::Mat readBack(const QByteArray &bytes, cv::Mat target = cv::Mat())
{
    QDataStream stream(bytes);
    stream >> target;
    return target;
}

template <class Item> QString debugText(const Item &item)
{
    QString text;
    QDebug(&text) << item;
    return text;
}

/// The stream has a size that no matrix can have: reading it throws, and the target stays.
void expectRefused(const QByteArray &bytes)
{
    cv::Mat target(2, 3, CV_16S, cv::Scalar(7));
    const cv::Mat before = target;
    QDataStream stream(bytes);
    EXPECT_THROW(stream >> target, cv::Exception);
    EXPECT_EQ(target.data, before.data);
    EXPECT_EQ(target.size(), cv::Size(3, 2));
    EXPECT_EQ(target.type(), CV_16S);
}

/// A device that takes and gives only a part of what it is asked for.
class ShortDevice : public QIODevice
{
public:
    explicit ShortDevice(qint64 capacity) : m_left(capacity)
    {
        open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const qint64 taken = std::min(size, m_left);
        std::memset(data, 0, static_cast<std::size_t>(taken));
        m_left -= taken;
        return taken;
    }
    qint64 writeData(const char *, qint64 size) override
    {
        const qint64 taken = std::min(size, m_left);
        m_left -= taken;
        return taken;
    }

private:
    qint64 m_left;
};

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

TEST(opencvutilsTest, GreyOfAColourImageIsOpenCVs)
{
    for (const int type : {CV_8UC3, CV_16UC3, CV_32FC3}) {
        const cv::Mat source = randomMatrix(7, 9, type);
        cv::Mat expected, result;
        cv::cvtColor(source, expected, cv::COLOR_BGR2GRAY);
        cvtGray(source, result);
        EXPECT_TRUE(sameMatrix(result, expected));
    }
    const cv::Mat blue(1, 1, CV_8UC3, cv::Scalar(255, 0, 0));
    cv::Mat result;
    cvtGray(blue, result);
    EXPECT_EQ(result.at<uchar>(0, 0), 29);
    cv::Mat same = blue.clone();
    cvtGray(same, same);
    EXPECT_EQ(same.at<uchar>(0, 0), 29);
}

TEST(opencvutilsTest, GreyOfAOneChannelImageIsTheImageItself)
{
    for (const int type : {CV_8U, CV_16S, CV_64F}) {
        const cv::Mat source = randomMatrix(3, 4, type);
        cv::Mat result;
        cvtGray(source, result);
        EXPECT_EQ(result.data, source.data);
        EXPECT_TRUE(sameMatrix(result, source));
    }
}

TEST(opencvutilsDeathTest, GreyOfOtherChannelCountsIsFatal)
{
    for (const int type : {CV_8UC2, CV_8UC4, CV_32FC(5)}) {
        const cv::Mat source(2, 2, type);
        cv::Mat result;
        expectFatal("Invalid channel count", [&] { cvtGray(source, result); });
    }
}

TEST(opencvutilsTest, AnEightBitImageIsShownAsItIs)
{
    for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4}) {
        const cv::Mat source = randomMatrix(3, 4, type);
        cv::Mat result;
        cvtUChar(source, result);
        EXPECT_EQ(result.data, source.data);
        EXPECT_TRUE(sameMatrix(result, source));
    }
}

TEST(opencvutilsTest, OtherImagesAreStretchedToTheWholeRange)
{
    cv::Mat result;
    cvtUChar((cv::Mat_<float>(1, 3) << -1, 0, 1), result);
    EXPECT_TRUE(sameMatrix(result, (cv::Mat_<uchar>(1, 3) << 0, 128, 255)));
    cvtUChar((cv::Mat_<int>(1, 3) << -100, 155, 1), result);
    EXPECT_TRUE(sameMatrix(result, (cv::Mat_<uchar>(1, 3) << 0, 255, 101)));
    // One range for all channels.
    const cv::Mat two(1, 1, CV_16UC2, cv::Scalar(1000, 3000));
    cvtUChar(two, result);
    EXPECT_TRUE(sameMatrix(result, cv::Mat(1, 1, CV_8UC2, cv::Scalar(0, 255))));
    cv::Mat same = (cv::Mat_<float>(1, 2) << 5, 6);
    cvtUChar(same, same);
    EXPECT_TRUE(sameMatrix(same, (cv::Mat_<uchar>(1, 2) << 0, 255)));
}

TEST(opencvutilsTest, AConstantImageGetsOneChannelOfItsSaturatedValue)
{
    const auto constant = [](int type, double value) {
        cv::Mat result;
        cvtUChar(cv::Mat(2, 3, type, cv::Scalar::all(value)), result);
        EXPECT_EQ(result.type(), CV_8UC1);
        EXPECT_EQ(result.size(), cv::Size(3, 2));
        EXPECT_EQ(cv::countNonZero(result != result.at<uchar>(0, 0)), 0);
        return static_cast<int>(result.at<uchar>(0, 0));
    };
    EXPECT_EQ(constant(CV_16UC3, 300), 255);
    EXPECT_EQ(constant(CV_16SC2, -5), 0);
    EXPECT_EQ(constant(CV_32FC1, 7.6), 8);
    EXPECT_EQ(constant(CV_64FC4, 41), 41);
    EXPECT_EQ(constant(CV_32SC1, 0), 0);
    EXPECT_EQ(constant(CV_32FC3, 1e10), 255);
    EXPECT_EQ(constant(CV_32FC1, -1e10), 0);
    EXPECT_EQ(constant(CV_64FC1, std::numeric_limits<double>::max()), 255);
}

TEST(opencvutilsTest, StretchingIsThatOfTheStatedStepsBitForBit)
{
    for (const int depth : {CV_8S, CV_16U, CV_16S, CV_32S, CV_32F, CV_64F}) {
        for (const int channels : {1, 2, 3, 4, 6}) {
            for (const int columns : {1, 2, 5, 16, 33, 640}) {
                const double low = depth == CV_16U ? 0 : -120;
                const cv::Mat source = randomMatrix(7, columns, CV_MAKETYPE(depth, channels), low, 120);
                expectPlainUChar(source);
                expectPlainUChar(asView(source));
            }
        }
    }
}

TEST(opencvutilsTest, EveryPlaceOfAnExtremeCounts)
{
    for (const int depth : {CV_8S, CV_16U, CV_16S, CV_32S, CV_32F, CV_64F}) {
        for (int place = 0; place < 150; ++place) {
            cv::Mat source(1, 150, CV_MAKETYPE(depth, 1), cv::Scalar(50));
            source.col(place) = 100;
            source.col((place + 70) % 150) = 1;
            cv::Mat result;
            cvtUChar(source, result);
            ASSERT_EQ(result.at<uchar>(0, place), 255);
            ASSERT_EQ(result.at<uchar>(0, (place + 70) % 150), 0);
        }
    }
}

TEST(opencvutilsTest, ExtremeAndInvalidValuesAreStretchedByTheStatedSteps)
{
    const double values[] = {notANumber, -notANumber, infinite, -infinite,  0,
                             -0.0,       1,           -1,       3.5e38,     -3.5e38,
                             1.7e308,    -1.7e308,    1e-310,   2147483647, -2147483648.0};
    std::mt19937 random(1);
    for (int run = 0; run < 2000; ++run) {
        cv::Mat source = randomMatrix(1 + static_cast<int>(random() % 3), 1 + static_cast<int>(random() % 40),
                                      run % 2 ? CV_64FC1 : CV_64FC3, -10, 10);
        double *scalars = source.ptr<double>();
        const std::size_t count = source.total() * static_cast<std::size_t>(source.channels());
        const std::size_t special = run % 5 == 0 ? count : count / 4 + 1; // in every fifth run all of them
        const std::size_t kinds = run % 3 == 0 ? 1 : std::size(values);
        for (std::size_t i = 0; i < special; ++i)
            scalars[run % 5 == 0 ? i : random() % count] =
                values[(run / 5 + random() % kinds) % std::size(values)];
        expectPlainUChar(source);
        cv::Mat floats;
        source.convertTo(floats, CV_32F);
        expectPlainUChar(floats);
        source.convertTo(floats, CV_32S);
        expectPlainUChar(floats);
    }
}

TEST(opencvutilsTest, AnEmptyImageStaysEmpty)
{
    cv::Mat result(2, 2, CV_8U);
    cvtUChar(cv::Mat(0, 3, CV_32F), result);
    EXPECT_TRUE(result.empty());
    cvtUChar(cv::Mat(), result);
    EXPECT_TRUE(result.empty());
}

TEST(opencvutilsTest, AnImageOfHalfFloatsThrows)
{
    cv::Mat result;
    EXPECT_THROW(cvtUChar(cv::Mat(2, 2, halfFloat, cv::Scalar(1)), result), cv::Exception);
}

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

TEST(opencvutilsTest, TypesAreNamedByDepthAndChannels)
{
    const char *const names[] = {"8U", "8S", "16U", "16S", "32S", "32F", "64F"};
    for (int depth = 0; depth < 7; ++depth) {
        EXPECT_EQ(depthToString(cv::Mat(1, 1, CV_MAKETYPE(depth, 1))), names[depth]);
        EXPECT_EQ(depthToString(cv::Mat(1, 1, CV_MAKETYPE(depth, 4))), names[depth]);
        for (const int channels : {1, 3, 512}) {
            EXPECT_EQ(typeToString(cv::Mat(1, 1, CV_MAKETYPE(depth, channels))),
                      QString("%1C%2").arg(names[depth]).arg(channels));
        }
    }
    EXPECT_EQ(typeToString(cv::Mat()), "8UC1");
    EXPECT_EQ(typeToString(cv::Mat(2, 2, CV_8UC3)), "8UC3");
}

TEST(opencvutilsDeathTest, UnknownDepthsAreFatal)
{
    const cv::Mat half(2, 2, halfFloat, cv::Scalar(1));
    expectFatal("Unknown matrix depth!", [&] { depthToString(half); });
    expectFatal("Unknown matrix depth!", [&] { typeToString(half); });
    expectFatal("Unknown matrix depth", [&] { elemToString(half, 0, 0); });
    expectFatal("Unknown matrix depth", [&] { matrixToString(half); });
    expectFatal("Unknown matrix depth", [&] { matrixToStringList(half); });
}

TEST(opencvutilsTest, ElementsAreWrittenByDepth)
{
    EXPECT_EQ(elemToString((cv::Mat_<uchar>(1, 2) << 0, 255), 0, 1), "255");
    EXPECT_EQ(elemToString((cv::Mat_<schar>(1, 2) << -128, 127), 0, 0), "-128");
    EXPECT_EQ(elemToString((cv::Mat_<ushort>(1, 2) << 0, 65535), 0, 1), "65535");
    EXPECT_EQ(elemToString((cv::Mat_<short>(1, 2) << -32768, 0), 0, 0), "-32768");
    EXPECT_EQ(elemToString((cv::Mat_<int>(1, 2) << 0, -2147483647 - 1), 0, 1), "-2147483648");
    EXPECT_EQ(elemToString((cv::Mat_<float>(1, 2) << 0.1f, 3.14159265f), 0, 1), "3.14159");
    EXPECT_EQ(elemToString((cv::Mat_<double>(1, 2) << 0.0000001, 0.5), 0, 0), "1e-07");
    EXPECT_EQ(elemToString((cv::Mat_<double>(1, 2) << 0.0000001, 0.5), 0, 1), "0.5");
}

TEST(opencvutilsTest, ColumnsOfSeveralChannelsCountScalars)
{
    cv::Mat matrix(2, 2, CV_16SC3);
    for (int i = 0; i < 12; ++i)
        matrix.ptr<short>()[i] = static_cast<short>(-i);
    for (const cv::Mat &m : {matrix, asView(matrix)}) {
        for (int r = 0; r < 2; ++r) {
            for (int c = 0; c < 6; ++c)
                EXPECT_EQ(elemToString(m, r, c), QString::number(-(r * 6 + c)));
        }
    }
}

TEST(opencvutilsTest, SpecialNumbersAreWrittenAsQtWritesThem)
{
    const double limits[] = {0.0,
                             -0.0,
                             infinite,
                             -infinite,
                             notANumber,
                             -notANumber,
                             5e-324,
                             std::numeric_limits<double>::min(),
                             std::numeric_limits<double>::max(),
                             -std::numeric_limits<double>::max(),
                             12345.25,
                             -12345.25,
                             0.5,
                             999999.5,
                             9999995,
                             999999.4999999999,
                             0.00001,
                             1e-5,
                             123456,
                             1234567,
                             1e5,
                             1e6,
                             100000.5,
                             0.0001,
                             0.00009999995,
                             1e15,
                             1e16,
                             1e22,
                             1e23,
                             1e26,
                             1e27};
    for (const double number : limits)
        ASSERT_NO_FATAL_FAILURE(expectNumberText(number));
    for (int exponent = -330; exponent <= 310; ++exponent) {
        const double power = std::pow(10.0, exponent);
        for (const double factor : {1.0, 9.999995, 9.9999949999, 5.0, 1.000005, 1.0000049999}) {
            double number = power * factor;
            for (int step = 0; step < 4; ++step) {
                ASSERT_NO_FATAL_FAILURE(expectNumberText(number));
                ASSERT_NO_FATAL_FAILURE(expectNumberText(-number));
                number = std::nextafter(number, step < 2 ? infinite : 0);
            }
        }
    }
}

TEST(opencvutilsTest, AMillionRandomNumbersAreWrittenAsQtWritesThem)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<> mantissa(-1, 1);
    for (int i = 0; i < 250000; ++i) {
        ASSERT_NO_FATAL_FAILURE(expectNumberText(fromBits(random())));
        const std::uint32_t bits = static_cast<std::uint32_t>(random());
        float single;
        std::memcpy(&single, &bits, sizeof single);
        ASSERT_EQ(elemToString(cv::Mat(1, 1, CV_32F, &single), 0, 0), QString::number(double(single)));
        const double number = mantissa(random);
        ASSERT_NO_FATAL_FAILURE(
            expectNumberText(number * std::pow(10.0, static_cast<int>(random() % 50) - 20)));
        ASSERT_NO_FATAL_FAILURE(expectNumberText(number * 1000));
    }
}

TEST(opencvutilsTest, AHundredThousandDyadicNumbersAreWrittenAsQtWritesThem)
{
    // Those have ties: their seventh digit is an exact 5.
    std::mt19937_64 random(1);
    for (int i = 0; i < 100000; ++i) {
        const double integer = static_cast<double>(random() % 20000001) - 10000000;
        ASSERT_NO_FATAL_FAILURE(expectNumberText(std::ldexp(integer, -static_cast<int>(random() % 24))));
    }
    for (int digits = 100000; digits < 1000000; digits += 37) {
        for (int exponent = -8; exponent <= 16; ++exponent) {
            const double tie = exponent < 0 ? (digits + 0.5) / std::pow(10.0, -exponent)
                                            : (digits + 0.5) * std::pow(10.0, exponent);
            ASSERT_NO_FATAL_FAILURE(expectNumberText(tie));
            ASSERT_NO_FATAL_FAILURE(expectNumberText(std::nextafter(tie, 0)));
            ASSERT_NO_FATAL_FAILURE(expectNumberText(std::nextafter(-tie, -infinite)));
        }
    }
}

TEST(opencvutilsTest, MatricesAreWrittenInBracesBracketsAndParentheses)
{
    EXPECT_EQ(matrixToString((cv::Mat_<uchar>(1, 1) << 5)), "5");
    EXPECT_EQ(matrixToString((cv::Mat_<int>(2, 2) << 1, 2, 3, 4)), "{ [1, 2]\n  [3, 4] }");
    EXPECT_EQ(matrixToString((cv::Mat_<float>(3, 1) << 1, 2, 3)), "{ 1\n  2\n  3 }");
    EXPECT_EQ(matrixToString((cv::Mat_<cv::Vec3b>(1, 2) << cv::Vec3b(1, 2, 3), cv::Vec3b(4, 5, 6))),
              "[(1, 2, 3), (4, 5, 6)]");
    EXPECT_EQ(matrixToString(cv::Mat(1, 1, CV_8UC2, cv::Scalar(1, 2))), "(1, 2)");
    cv::Mat two(2, 3, CV_8UC2);
    for (int i = 0; i < 12; ++i)
        two.data[i] = static_cast<uchar>(i);
    EXPECT_EQ(matrixToString(two), "{ [(0, 1), (2, 3), (4, 5)]\n  [(6, 7), (8, 9), (10, 11)] }");
    EXPECT_EQ(matrixToString(cv::Mat(2, 1, CV_16SC3, cv::Scalar(-1, 0, 1))), "{ (-1, 0, 1)\n  (-1, 0, 1) }");
}

TEST(opencvutilsTest, AMatrixWithoutRowsHasNoText)
{
    EXPECT_EQ(matrixToString(cv::Mat()), "");
    EXPECT_EQ(matrixToString(cv::Mat(0, 3, CV_32F)), "");
    const int sizes[] = {2, 2, 2};
    EXPECT_EQ(matrixToString(cv::Mat(3, sizes, CV_32F, cv::Scalar(1))), "");
    EXPECT_TRUE(matrixToStringList(cv::Mat()).isEmpty());
    EXPECT_TRUE(matrixToStringList(cv::Mat(3, sizes, CV_32F, cv::Scalar(1))).isEmpty());
    EXPECT_TRUE(matrixToStringList(cv::Mat(3, 0, CV_32FC3)).isEmpty());
}

TEST(opencvutilsTest, AMatrixWithoutColumnsHasItsRowsOnly)
{
    EXPECT_EQ(matrixToString(cv::Mat(1, 0, CV_32F)), "");
    EXPECT_EQ(matrixToString(cv::Mat(3, 0, CV_32FC3)), "{ \n  \n   }");
    EXPECT_EQ(matrixToString(cv::Mat(2, 0, halfFloat)), "{ \n   }");
}

TEST(opencvutilsTest, TextsOfAllTypesAndSizesAreTheStatedOnes)
{
    for (int depth = 0; depth < 7; ++depth) {
        for (const int channels : {1, 2, 4}) {
            for (const cv::Size size : {cv::Size(1, 1), cv::Size(5, 1), cv::Size(1, 5), cv::Size(40, 30)}) {
                const cv::Mat matrix =
                    randomMatrix(size.height, size.width, CV_MAKETYPE(depth, channels), -30000, 70000);
                ASSERT_EQ(matrixToString(matrix), plainText(matrix)) << depth << " " << channels;
                ASSERT_EQ(matrixToString(asView(matrix)), plainText(matrix));
            }
        }
    }
    // Longer than anything gathered at once, of the longest numbers.
    const cv::Mat large(300, 200, CV_64F, cv::Scalar(-1.234567e-300));
    EXPECT_EQ(matrixToString(large), plainText(large));
}

TEST(opencvutilsTest, ListsOfTextsGoChannelByChannel)
{
    cv::Mat matrix(2, 3, CV_32FC2);
    for (int i = 0; i < 12; ++i)
        matrix.ptr<float>()[i] = static_cast<float>(i) + 0.5f;
    const QStringList expected{"0.5", "2.5", "4.5", "6.5", "8.5", "10.5",
                               "1.5", "3.5", "5.5", "7.5", "9.5", "11.5"};
    EXPECT_EQ(matrixToStringList(matrix), expected);
    EXPECT_EQ(matrixToStringList(asView(matrix)), expected);
    EXPECT_EQ(matrixToStringList((cv::Mat_<schar>(1, 2) << -1, 2)), (QStringList{"-1", "2"}));
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

TEST(opencvutilsTest, AnImageIsConvertedShownAndWaitedFor)
{
    shown() = Shown();
    const cv::Mat image = randomMatrix(4, 5, CV_32FC3);
    showImage(image, "some title", false);
    EXPECT_EQ(shown().window, "some title");
    EXPECT_TRUE(sameMatrix(shown().image, plainUChar(image)));
    EXPECT_EQ(shown().delay, 1);

    showImage(cv::Mat(2, 2, CV_8U, cv::Scalar(3)), QString::fromUtf8("\xc3\xa9t\xc3\xa9"), true);
    EXPECT_EQ(shown().window, "\xc3\xa9t\xc3\xa9");
    EXPECT_LT(shown().delay, 0);
    EXPECT_EQ(shown().windows, 2);
    EXPECT_EQ(shown().waits, 2);
}

TEST(opencvutilsTest, AnImageWithoutDataIsOnlyWarnedAbout)
{
    shown() = Shown();
    MessageCapture messages;
    showImage(cv::Mat(), "title", true);
    EXPECT_EQ(messages.take(), QStringList{"OpenCVUtils::showImage null image."});
    showImage(cv::Mat(0, 5, CV_8U), "title", true);
    EXPECT_EQ(messages.take(), QStringList{"OpenCVUtils::showImage null image."});
    EXPECT_EQ(shown().windows, 0);
    EXPECT_EQ(shown().waits, 0);
}

TEST(opencvutilsTest, AMatrixIsWrittenAsHeaderAndBytes)
{
    const cv::Mat matrix = (cv::Mat_<uchar>(2, 3) << 1, 2, 3, 4, 5, 6);
    const char expected[] = "\0\0\0\2\0\0\0\3\0\0\0\0\0\0\0\6\1\2\3\4\5\6";
    EXPECT_EQ(streamed(matrix), QByteArray(expected, sizeof expected - 1));
    EXPECT_EQ(streamed(cv::Mat(1, 1, CV_32FC3, cv::Scalar(0, 0, 0))),
              header(1, 1, 21, 12) + QByteArray(12, '\0'));

    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    EXPECT_EQ(&(stream << matrix), &stream);
    const char little[] = "\2\0\0\0\3\0\0\0\0\0\0\0\6\0\0\0\1\2\3\4\5\6";
    EXPECT_EQ(bytes, QByteArray(little, sizeof little - 1));
}

TEST(opencvutilsTest, AnEmptyMatrixIsSixteenBytes)
{
    EXPECT_EQ(streamed(cv::Mat()), header(0, 0, 0, 0));
    cv::Mat typed(2, 2, CV_32FC2);
    typed.release();
    EXPECT_EQ(streamed(typed), header(0, 0, CV_32FC2, 0));
    EXPECT_EQ(streamed(cv::Mat(0, 3, CV_16U)), header(0, 3, CV_16U, 0));
    EXPECT_EQ(streamed(cv::Mat(3, 0, CV_16U)), header(3, 0, CV_16U, 0));

    QDataStream stream(header(0, 0, CV_32FC2, 0) + "rest");
    cv::Mat target(3, 3, CV_8U);
    stream >> target;
    EXPECT_EQ(target.rows, 0);
    EXPECT_EQ(target.cols, 0);
    EXPECT_EQ(target.type(), CV_32FC2);
    EXPECT_EQ(stream.device()->pos(), 16);
}

TEST(opencvutilsTest, MatricesOfAllTypesComeBack)
{
    for (int depth = 0; depth <= halfFloat; ++depth) {
        for (const int channels : {1, 3, 512}) {
            cv::Mat matrix(3, 5, CV_MAKETYPE(depth, channels));
            for (std::size_t i = 0; i < matrix.total() * matrix.elemSize(); ++i)
                matrix.data[i] = static_cast<uchar>(i * 7);
            const QByteArray bytes = streamed(matrix);
            EXPECT_EQ(bytes.size(), 16 + static_cast<int>(matrix.total() * matrix.elemSize()));
            EXPECT_TRUE(sameMatrix(readBack(bytes), matrix));
        }
    }
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    const cv::Mat matrix = randomMatrix(2, 3, CV_64F);
    out << matrix << cv::Mat() << matrix;
    QDataStream in(bytes);
    cv::Mat a, b, c;
    EXPECT_EQ(&(in >> a), &in);
    in >> b >> c;
    EXPECT_TRUE(sameMatrix(a, matrix));
    EXPECT_TRUE(b.empty());
    EXPECT_TRUE(sameMatrix(c, matrix));
    EXPECT_TRUE(in.atEnd());
}

TEST(opencvutilsTest, OneRowOfALargerMatrixIsContinuous)
{
    const cv::Mat larger = randomMatrix(3, 5, CV_8U);
    const cv::Mat part = larger(cv::Rect(1, 1, 3, 1));
    EXPECT_TRUE(sameMatrix(readBack(streamed(part)), part));
}

TEST(opencvutilsTest, ATargetThatFitsIsReused)
{
    const cv::Mat matrix = randomMatrix(2, 3, CV_16S);
    cv::Mat target(2, 3, CV_16S, cv::Scalar(0));
    const cv::Mat sharing = target;
    EXPECT_EQ(readBack(streamed(matrix), target).data, sharing.data);
    EXPECT_TRUE(sameMatrix(sharing, matrix));

    cv::Mat other(3, 2, CV_16S, cv::Scalar(0));
    EXPECT_NE(readBack(streamed(matrix), other).data, other.data);
    EXPECT_EQ(cv::countNonZero(other), 0);
}

TEST(opencvutilsTest, AStoredCountBelowOneLeavesTheElements)
{
    for (const int count : {0, -1, -2147483647 - 1}) {
        cv::Mat target(2, 2, CV_8U, cv::Scalar(7));
        QDataStream stream(header(2, 2, CV_8U, count) + "abcd");
        stream >> target;
        EXPECT_EQ(cv::countNonZero(target == 7), 4);
        EXPECT_EQ(stream.device()->pos(), 16);
        EXPECT_EQ(readBack(header(3, 2, CV_8U, count)).size(), cv::Size(2, 3));
    }
}

TEST(opencvutilsTest, ASmallerStoredCountFillsTheBeginning)
{
    const cv::Mat target = readBack(header(2, 2, CV_8U, 3) + "abc", cv::Mat(2, 2, CV_8U, cv::Scalar(7)));
    EXPECT_TRUE(sameMatrix(target, (cv::Mat_<uchar>(2, 2) << 'a', 'b', 'c', 7)));
}

TEST(opencvutilsTest, ALargerStoredCountIsTakenFromTheStreamAndDropped)
{
    QDataStream stream(header(1, 2, CV_8U, 5) + "abcdefg");
    cv::Mat target;
    stream >> target;
    EXPECT_TRUE(sameMatrix(target, (cv::Mat_<uchar>(1, 2) << 'a', 'b')));
    EXPECT_EQ(stream.device()->readAll(), "fg");

    QDataStream none(header(0, 0, CV_8U, 3) + "abcd");
    none >> target;
    EXPECT_TRUE(target.empty());
    EXPECT_EQ(none.device()->readAll(), "d");
}

TEST(opencvutilsTest, AnUnfinishedHeaderReadsAsZeros)
{
    const QByteArray whole = header(2, 3, CV_8U, 6);
    for (int length = 0; length < 8; ++length)
        EXPECT_TRUE(readBack(whole.left(length), cv::Mat(4, 4, CV_8U)).empty()) << length;
    EXPECT_EQ(readBack(whole.left(12)).size(), cv::Size(3, 2));
}

TEST(opencvutilsTest, NegativeSizesThrow)
{
    for (const QByteArray &bytes :
         {header(-1, 3, 0, 0), header(3, -1, 0, 3), header(-1, -1, 0, 1), header(-2147483647 - 1, 1, 0, 5)})
        expectRefused(bytes);
}

TEST(opencvutilsTest, SizesThatWrapAroundThrow)
{
    // Their bytes, modulo 2^64, are none or few.
    expectRefused(header(1 << 24, 1 << 30, CV_64FC(512), 0));
    expectRefused(header(1 << 30, 1 << 24, CV_64FC(512), 5));
    expectRefused(header(2147483647, 2147483647, CV_64FC(512), 0));
    expectRefused(header(308761441, 14586017, CV_64FC(512), 0));
}

TEST(opencvutilsTest, SizesThatNoMemoryHoldsThrow)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer ends the process for such an allocation";
#endif
    expectRefused(header(2147483647, 2147483647, CV_8U, 5));
}

TEST(opencvutilsTest, OnlyTheTypeBitsOfAStoredTypeCount)
{
    const cv::Mat target = readBack(header(1, 1, 0x7fff0000 | CV_8UC3, 3) + "abc");
    EXPECT_EQ(target.type(), CV_8UC3);
    EXPECT_EQ(target.at<cv::Vec3b>(0, 0), cv::Vec3b('a', 'b', 'c'));
}

TEST(opencvutilsTest, RandomStreamsDoNoHarm)
{
    std::mt19937 random(1);
    for (int run = 0; run < 20000; ++run) {
        const qint32 count = static_cast<qint32>(random() % 300) - 5;
        QByteArray bytes =
            header(static_cast<qint32>(random() % 12) - 1, static_cast<qint32>(random() % 12) - 1,
                   static_cast<qint32>(random()), count);
        bytes += QByteArray(std::max(count, 0) + 3, 'x');
        cv::Mat target(3, 3, CV_8U);
        QDataStream stream(bytes);
        try {
            stream >> target;
            EXPECT_EQ(stream.device()->pos(), 16 + std::max(count, 0));
        } catch (const cv::Exception &) {
            EXPECT_EQ(stream.device()->pos(), 12);
        }
    }
}

TEST(opencvutilsTest, OfSeveralDimensionsNothingUsefulIsWritten)
{
    const int sizes[] = {2, 3, 4};
    EXPECT_EQ(streamed(cv::Mat(3, sizes, CV_16U, cv::Scalar(0))),
              header(-1, -1, CV_16U, 2) + QByteArray(2, '\0'));
}

TEST(opencvutilsDeathTest, MatricesThatCannotBeWrittenAreFatal)
{
    const cv::Mat matrix(2, 3, CV_8U, cv::Scalar(1));
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    expectFatal("Can't serialize non-continuous matrices.", [&] { stream << asView(matrix); });
    for (const int capacity : {0, 15, 16, 21}) {
        ShortDevice device(capacity);
        QDataStream shortStream(&device);
        expectFatal("Serialization failure.", [&] { shortStream << matrix; });
    }
    ShortDevice device(22);
    QDataStream fitting(&device);
    fitting << matrix;
    uchar memory = 0;
    expectFatal("Serialization failure.", [&] { stream << cv::Mat(50000, 50000, CV_8U, &memory); });
}

TEST(opencvutilsTest, AMatrixWithoutElementsNeedNotBeContinuous)
{
    const cv::Mat larger(4, 4, CV_8U);
    const cv::Mat nothing = larger(cv::Rect(1, 1, 0, 2));
    EXPECT_FALSE(nothing.isContinuous());
    EXPECT_EQ(streamed(nothing), header(nothing.rows, nothing.cols, CV_8U, 0));
}

TEST(opencvutilsDeathTest, StreamsThatEndTooEarlyAreFatal)
{
    const char text[] = "opencvutils operator>> Mat serialization failure.";
    expectFatal(text, [] { readBack(header(2, 3, CV_8U, 6) + "abcde"); });
    expectFatal(text, [] { readBack(header(2, 3, CV_8U, 6)); });
    expectFatal(text, [] { readBack(header(2, 3, CV_8U, 8) + "abcdefg"); });
    expectFatal(text, [] { readBack(header(1, 1, CV_8U, 2147483647) + "abcdefg"); });
    expectFatal(text, [] { readBack(header(0, 0, CV_8U, 1)); });
}

TEST(opencvutilsDeathTest, ATargetThatIsAPartOfALargerMatrixIsFatal)
{
    cv::Mat view = asView(cv::Mat(2, 3, CV_8U, cv::Scalar(1)));
    expectFatal("opencvutils operator>> Mat can't deserialize non-continuous matrices.",
                [&] { readBack(header(2, 3, CV_8U, 6) + "abcdef", view); });
    EXPECT_EQ(readBack(header(2, 3, CV_8U, 0), view).data, view.data);
}

TEST(opencvutilsTest, RectanglesAndSizesAreIntegersInOrder)
{
    EXPECT_EQ(streamed(cv::Rect(1, -2, 30, 40)), header(1, -2, 30, 40));
    EXPECT_EQ(streamed(cv::Size(30, -40)), header(30, -40, 0, 0).left(8));
    QDataStream in(header(1, -2, 30, 40) + header(5, 6, 0, 0).left(8));
    cv::Rect rect;
    cv::Size size;
    EXPECT_EQ(&(in >> rect), &in);
    EXPECT_EQ(&(in >> size), &in);
    EXPECT_EQ(rect, cv::Rect(1, -2, 30, 40));
    EXPECT_EQ(size, cv::Size(5, 6));
    EXPECT_TRUE(in.atEnd());

    QByteArray bytes;
    QDataStream little(&bytes, QIODevice::WriteOnly);
    little.setByteOrder(QDataStream::LittleEndian);
    EXPECT_EQ(&(little << cv::Size(1, 2)), &little);
    EXPECT_EQ(&(little << cv::Rect()), &little);
    EXPECT_EQ(bytes.left(8), QByteArray("\1\0\0\0\2\0\0\0", 8));
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

TEST(opencvutilsTest, DebugOutputIsAsStated)
{
    EXPECT_EQ(debugText(cv::Point(3, -4)), "(3, -4) ");
    EXPECT_EQ(debugText(cv::Point3d(1, 2.5, 1234567)), "(1, 2.5, 1.23457e+06) ");
    EXPECT_EQ(debugText(cv::Point3d(-1e300, 1e-50, 0.1)), "(-1e+300, 1e-50, 0.1) ");
    EXPECT_EQ(debugText(cv::Rect(1, 2, 30, 40)), "(1, 2,30,40) ");
    EXPECT_EQ(debugText((cv::Mat_<int>(2, 2) << 1, 2, 3, 4)), "\"{ [1, 2]\n  [3, 4] }\" ");
    EXPECT_EQ(debugText(cv::Mat()), "\"\" ");
}

TEST(opencvutilsTest, DebugOutputEndsInSpaceMode)
{
    QString text;
    QDebug(&text).nospace() << cv::Point(3, 4) << 1 << 2;
    EXPECT_EQ(text, "(3, 4) 1 2 ");
    text.clear();
    QDebug(&text).nospace() << cv::Point3d(1, 2, 3) << 1 << 2;
    EXPECT_EQ(text, "(1, 2, 3) 1 2 ");
    text.clear();
    QDebug(&text).nospace() << cv::Rect(1, 2, 3, 4) << 1 << 2;
    EXPECT_EQ(text, "(1, 2,3,4) 1 2 ");
    text.clear();
    QDebug(&text).nospace() << cv::Mat(1, 1, CV_8U, cv::Scalar(5)) << QString("a\nb") << 2;
    EXPECT_EQ(text, "\"5\" \"a\\nb\" 2 ");
    text.clear();
    QDebug(&text) << "a" << cv::Point(3, 4) << cv::Rect(1, 2, 30, 40) << "b";
    EXPECT_EQ(text, "a (3, 4) (1, 2,30,40) b ");
    text.clear();
    QDebug(&text).noquote() << cv::Mat(1, 1, CV_8U, cv::Scalar(5)) << QString("x");
    EXPECT_EQ(text, "\"5\" x ");
}

TEST(opencvutilsTest, DebugMessagesLoseTheLastBlank)
{
    MessageCapture messages;
    qDebug() << cv::Point(3, 4);
    EXPECT_EQ(messages.lines(), QStringList{"(3, 4)"});
}
