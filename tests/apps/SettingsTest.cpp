#include "kelrecord/Settings.h"

#include "support/TemporaryFolder.h"

namespace {

Settings settings(const QStringList &more = {})
{
    return *readSettings(QStringList{"street.avi", "--out", "run"} + more);
}

/// What is said of a command line that is not understood; empty for one that is.
QString misunderstood(const QStringList &more)
{
    try {
        settings(more);
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.code(), Misused);
        return QString::fromUtf8(failure.what());
    }
    return QString();
}

} // namespace

class SettingsTest : public TemporaryFolder
{ };

TEST_F(SettingsTest, WhatIsNotSaidIsLeftOpen)
{
    const Settings read = settings();
    EXPECT_EQ(read.folder, "run");
    EXPECT_EQ(read.mode, RunWriter::Mode::Fresh);
    EXPECT_TRUE(read.start.isNull());
    EXPECT_EQ(read.framesPerSecond, 0);
    EXPECT_EQ(read.maxFrames, INT_MAX);
    EXPECT_EQ(read.view.scene.camera, nullptr);
    EXPECT_TRUE(read.render.isEmpty());
    EXPECT_EQ(read.renderEvery, 1);
    EXPECT_FALSE(read.minArea || read.minDimension || read.show || read.quiet);
}

TEST_F(SettingsTest, PathsOutliveAChangeOfTheWorkingDirectory)
{
    const Settings read = settings({"--render", "frames"});
    EXPECT_EQ(read.video, QDir::current().filePath("street.avi"));
    const auto video = [](const QString &name) { return readSettings({name, "--out", "run"})->video; };
    EXPECT_EQ(video("picture_%03d.png"), QDir::current().filePath("picture_%03d.png"));
    EXPECT_EQ(video("rtsp://camera/1"), "rtsp://camera/1");
    EXPECT_EQ(video("0"), "0") << "a camera";
    write("0", "");
    EXPECT_EQ(video("0"), QDir::current().filePath("0")) << "a file of that name";
    EXPECT_EQ(read.render, QDir::current().filePath("frames"));
}

TEST_F(SettingsTest, TimesAreUtcUnlessTheyNameAZone)
{
    const QDateTime noon(QDate(2009, 6, 1), QTime(12, 0), Qt::UTC);
    EXPECT_EQ(settings({"--start", "2009-06-01T12:00:00"}).start, noon);
    EXPECT_EQ(settings({"--start", "2009-06-01T14:00:00+02:00"}).start, noon);
    EXPECT_EQ(settings({"--start", "2009-06-01T12:00:00Z"}).start.timeSpec(), Qt::UTC);
}

TEST_F(SettingsTest, TimesThatNoRecordingHoldsAreRefused)
{
    for (const char *time : {"9999-12-31T23:59:59-05:00", "0001-01-01T00:00:00+05:00"})
        EXPECT_TRUE(misunderstood({"--start", time}).contains("years 1 to 9999")) << time;
    EXPECT_EQ(misunderstood({"--start", "9999-12-31T23:59:59Z"}), QString());
}

TEST_F(SettingsTest, RatesThatNoRunCanHaveAreRefused)
{
    for (const char *rate : {"1e-320", "0", "-1", "1e300", "nan"})
        EXPECT_TRUE(misunderstood({"--fps", rate}).startsWith("--fps takes a number from 0.000001 to 100000"))
            << rate;
}

TEST_F(SettingsTest, NoOptionTakesAnEmptyValue)
{
    for (const char *option :
         {"--out", "--start", "--fps", "--max-frames", "--calibration", "--context", "--view", "--keys",
          "--render", "--render-every", "--min-area", "--min-dimension"})
        EXPECT_TRUE(
            misunderstood({option, ""}).startsWith(QStringLiteral("the value of %1 is empty").arg(option)))
            << option;
}

TEST_F(SettingsTest, TheVideoItselfIsNotDrawnOver)
{
    write("street.avi", "");
    EXPECT_TRUE(misunderstood({"--render", "./street.avi"}).contains("would write over the video"));
    EXPECT_EQ(misunderstood({"--render", "drawn.avi"}), QString());
    EXPECT_EQ(readSettings({"0", "--out", "run", "--render", "frames"})->video, "0") << "neither is there";
}
