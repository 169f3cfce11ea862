#include "common/Recording.h"

#include "apps/scenes.h"
#include "support/TemporaryFolder.h"

#include <climits>

class RecordingTest : public TemporaryFolder
{ };

TEST_F(RecordingTest, TheBoxesOfAFrameAreThoseOfItsBlobs)
{
    const QRect box(1, 2, 3, 4);
    const QRect damaged(QPoint(INT_MIN, 2), QPoint(INT_MAX, 4));
    write("dataflow.dat",
          kelDataFlowRecord{"kelDataActor", {{"BoundingBox2D", box}}}.encoded()
              + kelDataFlowRecord{"kelDataBlob", {}}.encoded()
              + kelDataFlowRecord{"kelDataBlob", {{"BoundingBox2D", damaged}}}.encoded()
              + kelDataFlowRecord{"kelDataBlob", {{"BoundingBox2D", box}}}.encoded());
    write("dataflow.xml",
          "<DataFlow><Frame frameNumber=\"7\"><Parameters/>"
          "<Synchronization timeYear=\"2009\" timeMonth=\"6\" timeDay=\"1\" timeHour=\"12\" timeMin=\"0\" "
          "timeSec=\"0\" timeMs=\"300\"/>"
          "<Data dataType=\"kelDataActor\"/><Data dataType=\"kelDataBlob\"/><Data dataType=\"kelDataBlob\"/>"
          "<Data dataType=\"kelDataBlob\"/>"
          "</Frame></DataFlow>");
    const Recording recording(".");
    recording.check();
    ASSERT_EQ(recording.frames().size(), 1u);
    const RecordedFrame &frame = recording.frames().front();
    EXPECT_EQ(recording.boxesOf(frame), std::vector<cv::Rect>{cv::Rect(1, 2, 3, 4)});
    EXPECT_EQ(frame.stamp(), stampOf(3));
    EXPECT_EQ(frame.stamp().getFrameNumber(), 7u);
}

TEST_F(RecordingTest, AYearThatThereIsNotIsNoTime)
{
    write(
        "dataflow.xml",
        "<DataFlow><Frame frameNumber=\"0\"><Parameters/>"
        "<Synchronization timeYear=\"4002692297\" timeMonth=\"6\" timeDay=\"1\" timeHour=\"12\" timeMin=\"0\" "
        "timeSec=\"0\" timeMs=\"300\"/></Frame></DataFlow>");
    EXPECT_TRUE(Recording(".").frames().front().time.isNull());
}
