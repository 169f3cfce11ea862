#include <kelCore/utils/opencvutils.h>

#include "utils/matrixTests.h"

#include <gmock/gmock.h>
#include <opencv2/core.hpp>

#include <QIODevice>

#include <algorithm>
#include <cstring>
#include <random>

using namespace OpenCVUtils;
using namespace matrixTests;

namespace {

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

} // namespace

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

TEST(opencvutilsTest, RowsThatAreNotThereTakeTheirBytesWhateverTheirLength)
{
    // OpenCV calls none of these continuous: a row has more scalars than an int counts.
    for (const int type : {CV_8UC2, CV_8UC3, CV_64FC(512)}) {
        QDataStream stream(header(0, 2147483647, type, 4) + "abcdef");
        cv::Mat target(3, 3, CV_8U);
        stream >> target;
        EXPECT_TRUE(target.empty());
        EXPECT_EQ(target.cols, 2147483647);
        EXPECT_EQ(target.type(), type);
        EXPECT_EQ(stream.device()->readAll(), "ef");
    }
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
