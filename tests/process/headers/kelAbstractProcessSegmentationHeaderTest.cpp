#include <kelCore/process/kelAbstractProcessSegmentation.h> // alone

#include <gtest/gtest.h>

namespace {

/// Takes everything for foreground.
class Segmentation : public kelAbstractProcessSegmentation
{
public:
    bool segment() override
    {
        if (!getAcquisitionImage())
            return false;
        getSegmentationImage().reset(new kelDataImage);
        getSegmentationImage()->setImage(
            cv::Mat(getAcquisitionImage()->getImage().size(), CV_8UC1, cv::Scalar(255)));
        return true;
    }
};

} // namespace

TEST(stageHeaderTest, SegmentationNeedsNoOther)
{
    Segmentation stage;
    EXPECT_FALSE(stage.segment());
    QSharedPointer<kelDataImage> frame(new kelDataImage);
    frame->setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setAcquisitionImage(frame);
    EXPECT_TRUE(stage.segment());
    EXPECT_EQ(stage.getSegmentationImage()->getImage().size(), cv::Size(6, 4));
}
