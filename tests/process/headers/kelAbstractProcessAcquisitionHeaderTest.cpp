#include <kelCore/process/kelAbstractProcessAcquisition.h> // alone

#include <gtest/gtest.h>

namespace {

/// Frames as wide as the stream's name is long.
class Acquisition : public kelAbstractProcessAcquisition
{
public:
    bool acquire() override
    {
        if (!getStream())
            return false;
        cv::Mat frame(2, getStream()->device().size(), CV_8UC3);
        getImage().reset(new kelDataImage);
        setImage(frame);
        return true;
    }
};

} // namespace

TEST(stageHeaderTest, AcquisitionNeedsNoOther)
{
    Acquisition stage;
    EXPECT_FALSE(stage.acquire());
    QSharedPointer<kelAbstractDataStream> stream(new kelAbstractDataStream);
    stream->device("camera");
    stage.setStream(stream);
    EXPECT_TRUE(stage.acquire());
    EXPECT_EQ(stage.getImage()->getImage().cols, 6);

    cv::Mat depth(2, 3, CV_16UC1);
    stage.setDepth(depth);
    EXPECT_EQ(stage.getDepth()->getImage().cols, 3);
}
