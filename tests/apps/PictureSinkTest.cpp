#include "common/PictureSink.h"

#include "common/Failure.h"

#include "apps/problem.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include <functional>

#include <sys/stat.h>

namespace {

const cv::Mat &picture()
{
    static const cv::Mat picture(24, 32, CV_8UC4, cv::Scalar(10, 20, 30, 40));
    return picture;
}

QString problem(const QString &target)
{
    return ::problem([&target] { PictureSink(target, 10).add(0, picture()); });
}

} // namespace

class PictureSinkTest : public TemporaryFolder
{ };

TEST_F(PictureSinkTest, EachFrameBecomesAPngInTheFolderWhichIsMade)
{
    PictureSink sink("drawn/", 10);
    sink.add(7, picture());
    sink.add(1234567, picture());
    EXPECT_EQ(QDir("drawn").entryList(QDir::Files), (QStringList{"frame_000007.png", "frame_1234567.png"}));
    const cv::Mat read = cv::imread("drawn/frame_000007.png", cv::IMREAD_UNCHANGED);
    ASSERT_EQ(read.type(), CV_8UC3) << "nothing is transparent";
    EXPECT_EQ(read.at<cv::Vec3b>(0, 0), cv::Vec3b(10, 20, 30));
}

TEST_F(PictureSinkTest, ANameThatEndsInAviBecomesAVideo)
{
    {
        PictureSink sink("drawn.AVI", 10);
        for (quint32 i = 0; i < 3; ++i)
            sink.add(i, picture());
    }
    cv::VideoCapture video("drawn.AVI");
    ASSERT_TRUE(video.isOpened());
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_COUNT), 3);
}

TEST_F(PictureSinkTest, FoldersAboveTheTargetAreNotMade)
{
    EXPECT_TRUE(problem("a/b").startsWith("there is no folder a to make b in; make it first"));
    EXPECT_TRUE(
        problem("a/b.avi").startsWith("a/b.avi cannot be written: there is no folder a; make it first"));
    EXPECT_TRUE(
        problem([] { writePng("a/b.png", picture()); }).contains("there is no folder a; make it first"));
    EXPECT_TRUE(QDir().isEmpty());
}

TEST_F(PictureSinkTest, WhatIsNoFileIsNotWrittenTo)
{
    ASSERT_EQ(mkfifo("pipe.avi", 0600), 0);
    write("file", "");
    QDir().mkpath("drawn/frame_000000.png");
    EXPECT_TRUE(problem("pipe.avi").startsWith("pipe.avi is a pipe or a device, where a file is needed"));
    EXPECT_TRUE(problem([] { writePng("pipe.avi", picture()); }).startsWith("pipe.avi is a pipe"));
    EXPECT_TRUE(problem("file").startsWith("the folder file cannot be made"));
    EXPECT_TRUE(problem("drawn").startsWith("drawn/frame_000000.png is a folder, where a file is needed"));
}

TEST_F(PictureSinkTest, AFolderWithoutRightsIsSaidBeforeTheFirstPicture)
{
    QDir().mkdir("drawn");
    ASSERT_EQ(chmod(".", 0755), 0);
    ASSERT_EQ(chmod("drawn", 0555), 0);
    EXPECT_TRUE(inChild([] {
        return becomeNobody() && problem([] {
                                     PictureSink("drawn", 10);
                                 }).endsWith("cannot be written; check the permissions of drawn");
    }));
}
