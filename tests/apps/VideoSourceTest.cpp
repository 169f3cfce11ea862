#include "common/VideoSource.h"

#include "common/Failure.h"

#include "support/TemporaryFolder.h"

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include <sys/stat.h>

/// A video whose frame i has the brightness 10 i.
class VideoSourceTest : public TemporaryFolder
{
protected:
    static constexpr int frames = 20;

    void SetUp() override
    {
        cv::VideoWriter video("video.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10, {32, 32});
        ASSERT_TRUE(video.isOpened());
        for (int i = 0; i < frames; ++i)
            video.write(cv::Mat(32, 32, CV_8UC3, cv::Scalar::all(10 * i)));
    }

    static int indexOf(const cv::Mat &frame) { return cvRound(cv::mean(frame)[0] / 10); }

    static QString problem(const QString &name)
    {
        try {
            VideoSource source(name);
        } catch (const Failure &failure) {
            EXPECT_EQ(failure.code(), Failed);
            return QString::fromUtf8(failure.what());
        }
        return QString();
    }
};

TEST_F(VideoSourceTest, FramesComeInOrderUntilTheEnd)
{
    VideoSource source("video.avi");
    EXPECT_FALSE(source.isCamera());
    EXPECT_EQ(source.framesPerSecond(), 10);
    EXPECT_EQ(source.frameCount(), frames);
    cv::Mat frame;
    for (int i = 0; i < frames; ++i) {
        ASSERT_TRUE(source.read(frame));
        EXPECT_EQ(indexOf(frame), i);
    }
    EXPECT_FALSE(source.read(frame));
}

TEST_F(VideoSourceTest, AnyFrameIsFoundForwardAndBack)
{
    VideoSource source("video.avi");
    for (const int index : {3, 15, 3, 0, 19, 14})
        EXPECT_EQ(indexOf(source.frame(index)), index);
    EXPECT_TRUE(source.frame(frames).empty());
    EXPECT_EQ(indexOf(source.frame(7)), 7) << "also behind the end";
}

TEST_F(VideoSourceTest, ASymbolicLinkIsItsFile)
{
    ASSERT_TRUE(QFile::link("video.avi", "link.avi"));
    EXPECT_EQ(VideoSource("link.avi").frameCount(), frames);
}

TEST_F(VideoSourceTest, NumberedPicturesAreReadToTheLast)
{
    const int count = 150;
    for (int i = 0; i < count; ++i)
        cv::imwrite(cv::format("picture_%03d.png", i), cv::Mat(32, 32, CV_8UC3, cv::Scalar::all(i)));
    VideoSource source("picture_%03d.png");
    EXPECT_EQ(source.frameCount(), count);
    cv::Mat frame;
    int read = 0;
    while (source.read(frame))
        EXPECT_EQ(frame.at<cv::Vec3b>(0, 0)[0], read++);
    EXPECT_EQ(read, count);
}

TEST_F(VideoSourceTest, WhatIsNoVideoIsNamed)
{
    ASSERT_EQ(mkfifo("pipe.avi", 0600), 0);
    write("text.avi", "no video\n");
    EXPECT_EQ(problem("pipe.avi"), "pipe.avi is a pipe or a device; give a video file");
    EXPECT_EQ(problem("."), ". is a folder; give a video file");
    EXPECT_TRUE(problem("none.avi").startsWith("there is no video none.avi"));
    EXPECT_TRUE(problem("text.avi").startsWith("text.avi is not a video"));
    EXPECT_EQ(problem("/dev/null"), "camera /dev/null cannot be opened; is it connected and free?");
    EXPECT_EQ(problem("4711"), "camera 4711 cannot be opened; is it connected and free?");
}
