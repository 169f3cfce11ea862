#include <kelCore/utils/opencvutils.h>

#include "utils/matrixTests.h"

#include <gmock/gmock.h>
#include <opencv2/core.hpp>
#include <opencv2/highgui.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace OpenCVUtils;
using namespace matrixTests;

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

// A program that has these functions is shown images by them: no test opens a window.
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

} // namespace

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
    testing::internal::CaptureStderr();
    const QtMessageHandler previous = qInstallMessageHandler(printWithKind);
    showImage(cv::Mat(), "title", true);
    showImage(cv::Mat(0, 5, CV_8U), "title", true);
    qInstallMessageHandler(previous);
    const std::string warning = "warning: OpenCVUtils::showImage null image.\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), warning + warning);
    EXPECT_EQ(shown().windows, 0);
    EXPECT_EQ(shown().waits, 0);
}
