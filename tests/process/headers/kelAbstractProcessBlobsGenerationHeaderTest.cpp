#include <kelCore/process/kelAbstractProcessBlobsGeneration.h> // alone

#include <gtest/gtest.h>

namespace {

/// One blob, as wide as the mask and as high as both minimums are together.
class BlobsGeneration : public kelAbstractProcessBlobsGeneration
{
public:
    bool generateBlobs() override
    {
        getBlobs().clear();
        if (!getSegmentationImage())
            return false;
        getBlobs().append(QSharedPointer<kelDataBlob>(new kelDataBlob));
        getBlobs().last()->setBoundingBox2D(
            cv::Rect(0, 0, getSegmentationImage()->getImage().cols, getMinArea() + getMinDimension()));
        return true;
    }
};

} // namespace

TEST(stageHeaderTest, BlobsGenerationNeedsNoOther)
{
    BlobsGeneration stage;
    EXPECT_FALSE(stage.generateBlobs());
    QSharedPointer<kelDataImage> mask(new kelDataImage);
    mask->setImage(cv::Mat(4, 6, CV_8UC1));
    stage.setSegmentationImage(mask);
    EXPECT_TRUE(stage.generateBlobs());
    EXPECT_EQ(stage.getBlobs().first()->getBoundingBox2D(), cv::Rect(0, 0, 6, 2050));
    stage.setMinArea(30);
    stage.setMinDimension(7);
    EXPECT_TRUE(stage.generateBlobs());
    ASSERT_EQ(stage.getBlobs().size(), 1);
    EXPECT_EQ(stage.getBlobs().first()->getBoundingBox2D(), cv::Rect(0, 0, 6, 37));
}
