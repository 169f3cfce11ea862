#include <kelCore/utils/opencvutils.h>

#include "support/Capture.h"
#include "utils/matrixTests.h"

#include <gmock/gmock.h>
#include <opencv2/core.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <ios>
#include <limits>
#include <random>
#include <vector>

using namespace OpenCVUtils;
using namespace matrixTests;

namespace {

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

} // namespace

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
