#include <kelCore/process/kelAbstractProcessSegmentation.h>
#include <kelCore/process/kelAbstractProcessSegmentation_p.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {

/// Hands its input through.
class Segmentation : public Opened<kelAbstractProcessSegmentation, kelAbstractProcessSegmentationPrivate>
{
public:
    bool segment() override
    {
        getSegmentationImage() = d().acquisitionImage;
        return !d().acquisitionImage.isNull();
    }
};

} // namespace

TEST(kelAbstractProcessSegmentationTest, AFreshStageHasNoImages)
{
    Segmentation stage;
    EXPECT_TRUE(stage.d().acquisitionImage.isNull());
    EXPECT_TRUE(stage.getSegmentationImage().isNull());
    kelAbstractProcessSegmentation &base = stage;
    EXPECT_FALSE(base.segment());
}

TEST(kelAbstractProcessSegmentationTest, SetAcquisitionImageKeepsTheInputAndReleasesThePreviousOne)
{
    Segmentation stage;
    MessageCapture messages;
    expectKeptAndReleased<kelDataImage>(stage.d().acquisitionImage,
                                        [&](auto &object) { stage.setAcquisitionImage(object); });
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessSegmentationTest, ThePlugInsOutputIsReadThroughTheReference)
{
    Segmentation stage;
    QSharedPointer<kelDataImage> image(new kelDataImage);
    stage.setAcquisitionImage(image);
    EXPECT_TRUE(stage.segment());
    EXPECT_EQ(stage.getSegmentationImage(), image);
}

TEST(kelAbstractProcessSegmentationTest, ACopySharesBothImages)
{
    Segmentation stage;
    QSharedPointer<kelDataImage> input(new kelDataImage);
    stage.setAcquisitionImage(input);
    stage.getSegmentationImage().reset(new kelDataImage);
    Segmentation copy(stage);
    EXPECT_EQ(copy.d().acquisitionImage, input);
    EXPECT_EQ(copy.getSegmentationImage(), stage.getSegmentationImage());

    copy.getSegmentationImage().reset();
    EXPECT_FALSE(stage.getSegmentationImage().isNull());
}
