#include <kelCore/geometry/kelDepthMap.h>

#include "support/ChildProcess.h"
#include "support/Matrices.h"
#include "support/TemporaryFolder.h"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <thread>

namespace {

using kelGeometry::DepthFile;

QByteArray rawBytes(std::int32_t rows, std::int32_t columns, const std::vector<float> &elements = {})
{
    const std::int32_t size[] = {rows, columns};
    return QByteArray(reinterpret_cast<const char *>(size), sizeof size)
        + QByteArray(reinterpret_cast<const char *>(elements.data()),
                     static_cast<int>(elements.size() * sizeof(float)));
}

/// The most memory that the process ever held, in megabytes.
long peakMegabytes()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        long kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes)
            return kilobytes / 1024;
    }
    return -1;
}

/// What reading the file adds to the most memory that a process of its own ever held, in megabytes.
bool readsWithin(long megabytes, const std::function<bool()> &read)
{
    return inChild([&] {
        const long before = peakMegabytes();
        return before > 0 && read() && peakMegabytes() - before < megabytes;
    });
}

cv::Mat blank(int rows, int columns, float value)
{
    return cv::Mat(rows, columns, CV_32F, cv::Scalar(value));
}

class kelDepthMapTest : public TemporaryFolder
{ };

} // namespace

TEST_F(kelDepthMapTest, SaysWhatCameOfReading)
{
    cv::Mat map = blank(2, 3, 9);
    EXPECT_EQ(kelGeometry::readDepthFile("missing.raw", map), DepthFile::NotOpened);
    write("depth.raw", "short");
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::NoSize);
    write("depth.raw", rawBytes(-1, 3));
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::NoSize);
    write("depth.raw", rawBytes(1, 4, {1, 2, 3, 4}));
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::DoesNotFit);
    EXPECT_TRUE(sameMatrix(map, blank(2, 3, 9)));
    cv::Mat bytes(2, 3, CV_8U);
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", bytes), DepthFile::DoesNotFit);

    write("depth.raw", rawBytes(1, 3, {1, 2, 3, 4}));
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::Read);
    EXPECT_TRUE(sameMatrix(map, (cv::Mat_<float>(1, 3) << 1, 2, 3)));
    write("depth.raw", rawBytes(1, 3, {1, 2}));
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::Short);
    EXPECT_TRUE(sameMatrix(map, (cv::Mat_<float>(1, 3) << 1, 2, -1)));
    write("depth.raw", rawBytes(0, 3));
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::Read);
    EXPECT_EQ(map.size(), cv::Size(3, 0));
}

TEST_F(kelDepthMapTest, AHeaderAloneClaimsRowsButNoMemory)
{
    write("depth.raw", rawBytes(400000, 640));
    EXPECT_TRUE(readsWithin(50, [] {
        cv::Mat map = blank(480, 640, 0);
        const bool done = kelGeometry::readDepthFile("depth.raw", map) == DepthFile::Short;
        return done && map.size() == cv::Size(640, 400000) && map.isContinuous()
            && kelGeometry::depthAt(map, 0, 0) == -1 && kelGeometry::depthAt(map, 639, 399999) == -1
            && kelGeometry::depthAt(map, 17, 123456) == -1;
    }));
}

TEST_F(kelDepthMapTest, TheSameWithTheWidthsThatLeaveColumnsOut)
{
    for (const int columns : {7, 1, 0, -5}) {
        write("depth.raw", rawBytes(400000, columns, {5, 6, 7}));
        EXPECT_TRUE(readsWithin(50, [columns] {
            cv::Mat map = blank(480, 641, 3);
            if (kelGeometry::readDepthFile("depth.raw", map) == DepthFile::NotOpened || map.rows != 400000)
                return false;
            for (const int r : {1, 479, 480, 399999}) {
                for (int c = 0; c < map.cols; ++c) {
                    const float inFile = 5 + static_cast<float>(r * columns + c);
                    const float kept = r < 480 ? 3.0f : 0.0f;
                    const float expected = c >= columns ? kept : inFile <= 7 ? inFile : -1.0f;
                    if (map.at<float>(r, c) != expected)
                        return false;
                }
            }
            return true;
        })) << columns;
    }
}

TEST_F(kelDepthMapTest, WhatAFileHoldsBeforeItEndsIsReadAndTheRestIsMinusOne)
{
    std::vector<float> elements(3000);
    for (std::size_t i = 0; i < elements.size(); ++i)
        elements[i] = 1 + static_cast<float>(i);
    write("depth.raw", rawBytes(20000, 640, elements) + "abc");
    cv::Mat map = blank(480, 640, 0);
    ASSERT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::Short);
    cv::Mat expected = blank(20000, 640, -1);
    std::copy(elements.begin(), elements.end(), expected.ptr<float>());
    EXPECT_TRUE(sameMatrix(map, expected));
}

TEST_F(kelDepthMapTest, AMapOfRowsThatAreLeftOutIsAMatrixAsAnyOther)
{
    write("depth.raw", rawBytes(20000, 640));
    cv::Mat map = blank(480, 640, 0);
    ASSERT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::Short);
    const cv::Mat shared = map;
    map.at<float>(5000, 3) = 7;
    EXPECT_EQ(shared.at<float>(5000, 3), 7);
    EXPECT_EQ(cv::countNonZero(map != -1), 1) << "writing into one row changes no other";
    const cv::Mat cloned = map.clone();
    map.create(2, 2, CV_8U);
    EXPECT_TRUE(sameMatrix(cloned, shared));

    write("depth.raw", rawBytes(20000, 640));
    cv::Mat again = shared;
    ASSERT_EQ(kelGeometry::readDepthFile("depth.raw", again), DepthFile::Short);
    EXPECT_EQ(shared.at<float>(5000, 3), 7) << "a map that is shared stays as it is";
    EXPECT_EQ(again.at<float>(5000, 3), -1);
}

TEST_F(kelDepthMapTest, ALargeFileIsReadWhole)
{
    const cv::Mat large = blank(8000, 640, 2.5f);
    const std::vector<float> elements(large.ptr<float>(), large.ptr<float>() + large.total());
    write("depth.raw", rawBytes(8000, 640, elements));
    cv::Mat map = blank(1, 640, 0);
    EXPECT_EQ(kelGeometry::readDepthFile("depth.raw", map), DepthFile::Read);
    EXPECT_TRUE(sameMatrix(map, large));
}

TEST_F(kelDepthMapTest, APipeThatTellsNoSizeIsReadToItsEnd)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const QByteArray bytes = rawBytes(20000, 640, {1, 2, 3});
    std::thread writer([&] { write("pipe", bytes); });
    cv::Mat map = blank(480, 640, 0);
    EXPECT_EQ(kelGeometry::readDepthFile("pipe", map), DepthFile::Short);
    writer.join();
    EXPECT_EQ(map.rows, 20000);
    EXPECT_EQ(map.at<float>(0, 2), 3);
    EXPECT_EQ(map.at<float>(0, 3), -1);
    EXPECT_EQ(map.at<float>(19999, 639), -1);
}

TEST_F(kelDepthMapTest, RowsThatNoMemoryHoldsThrowAndTheMapStays)
{
    write("depth.raw", rawBytes(2147483647, 100000));
    cv::Mat map = blank(1, 100000, 9);
    EXPECT_THROW(kelGeometry::readDepthFile("depth.raw", map), cv::Exception);
    EXPECT_TRUE(sameMatrix(map, blank(1, 100000, 9)));
}

TEST(kelDepthTest, DepthIsThatOfTheRowAndTheColumnTruncated)
{
    const cv::Mat map = (cv::Mat_<float>(2, 3) << 1, 2, 3, 4, 5, 6);
    EXPECT_EQ(kelGeometry::depthAt(map, 2.9, 1.9), 6);
    EXPECT_EQ(kelGeometry::depthAt(map, -0.9, -0.9), 1);
    EXPECT_EQ(kelGeometry::depthAt(cv::Mat(2, 3, CV_16U, cv::Scalar(7)), 1, 1), 0);
}
