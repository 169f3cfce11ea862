#include "kelrecord/StampClock.h"

#include "common/Failure.h"
#include "common/Recording.h"
#include "common/VideoSource.h"
#include "kelrecord/Settings.h"

#include "apps/scenes.h"
#include "support/TemporaryFolder.h"

#include <kelCore/recording/kelDataFlowRecord.h>

#include <opencv2/videoio.hpp>

/// A video of ten frames per second, and settings that name it.
class StampClockTest : public TemporaryFolder
{
protected:
    void SetUp() override
    {
        cv::VideoWriter video("video.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10, {32, 32});
        ASSERT_TRUE(video.isOpened());
        video.write(cv::Mat::zeros(32, 32, CV_8UC3));
        video.release();
        settings.video = "video.avi";
        settings.start = stampOf(0).getDateTime();
    }

    CSynchronizer stamp(int number) const
    {
        return StampClock(settings, VideoSource("video.avi"), nullptr).stamp(number);
    }

    /// A recording whose two frames have these numbers and milliseconds past noon.
    static void writeRecording(int first, int firstMs, int last, int lastMs)
    {
        QByteArray frames;
        for (const auto &[number, ms] : {std::pair(first, firstMs), std::pair(last, lastMs)})
            frames +=
                QStringLiteral("<Frame frameNumber=\"%1\"><Parameters/><Synchronization timeYear=\"2009\" "
                               "timeMonth=\"6\" timeDay=\"1\" timeHour=\"12\" timeMin=\"0\" timeSec=\"%2\" "
                               "timeMs=\"%3\"/></Frame>")
                    .arg(QString::number(number), QString::number(ms / 1000), QString::number(ms % 1000))
                    .toUtf8();
        write("dataflow.xml", "<DataFlow>" + frames + "</DataFlow>");
    }

    Settings settings;
};

TEST_F(StampClockTest, FramesAreStampedByTheirIndexAtTheVideosRate)
{
    EXPECT_EQ(stamp(0), stampOf(0));
    EXPECT_EQ(stamp(25), stampOf(25));
    EXPECT_EQ(stamp(25).getFrameNumber(), 25u);
    settings.framesPerSecond = 20;
    EXPECT_EQ(stamp(50), stampOf(25));
}

TEST_F(StampClockTest, WithoutAStartItIsTheTimeOfTheFile)
{
    settings.start = QDateTime();
    EXPECT_EQ(stamp(0).getDateTime(), QFileInfo("video.avi").lastModified());
    EXPECT_EQ(stamp(0).getDateTime().timeSpec(), Qt::UTC);
}

TEST_F(StampClockTest, AnAddressWithoutATimeBeginsNow)
{
    settings.start = QDateTime();
    settings.video = "rtsp://somewhere";
    EXPECT_LT(std::abs(stamp(0).getDateTime().secsTo(QDateTime::currentDateTimeUtc())), 60);
}

TEST_F(StampClockTest, TimesThatNoRecordingHoldsAreAFailure)
{
    settings.framesPerSecond = leastRate; // 11.6 days a frame
    EXPECT_EQ(stamp(252000).getDateTime().date().year(), 9994);
    EXPECT_THROW(stamp(253000), Failure);
    settings.framesPerSecond = 1e-320;
    EXPECT_EQ(stamp(0), stampOf(0));
    EXPECT_THROW(stamp(1), Failure);
    settings.framesPerSecond = 10;
    settings.start = QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59, 950), Qt::UTC);
    EXPECT_NO_THROW(stamp(0));
    EXPECT_THROW(stamp(1), Failure);
}

TEST_F(StampClockTest, AnAppendedRunGoesOnAtTheRateThatWasRecorded)
{
    settings.start = QDateTime();
    writeRecording(3, 200, 6, 400); // 15 frames per second, from frame 0 at noon
    const Recording recording(".");
    const StampClock clock(settings, VideoSource("video.avi"), &recording);
    EXPECT_EQ(clock.stamp(9).getDateTime(), stampOf(6).getDateTime());
}
