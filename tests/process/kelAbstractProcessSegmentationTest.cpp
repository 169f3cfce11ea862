#include <kelCore/process/kelAbstractProcessSegmentation.h>
#include <kelCore/process/kelAbstractProcessSegmentation_p.h>

#include "support/Capture.h"

#include <type_traits>

namespace {

/// Hands its input through.
class Segmentation : public kelAbstractProcessSegmentation
{
public:
    kelAbstractProcessSegmentationPrivate &d()
    {
        return static_cast<kelAbstractProcessSegmentationPrivate &>(*nub_d);
    }
    bool segment() override
    {
        getSegmentationImage() = d().acquisitionImage;
        return !d().acquisitionImage.isNull();
    }
};

} // namespace

TEST(kelAbstractProcessSegmentationTest, PlugInsMustSupplyTheSegmentation)
{
    EXPECT_TRUE(std::is_abstract<kelAbstractProcessSegmentation>::value);
    EXPECT_EQ(sizeof(kelAbstractProcessSegmentation), sizeof(nubAbstractObject));
}

TEST(kelAbstractProcessSegmentationTest, AFreshStageHasNoImages)
{
    Segmentation stage;
    EXPECT_TRUE(stage.d().acquisitionImage.isNull());
    EXPECT_TRUE(stage.getSegmentationImage().isNull());
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_EQ(stage.parent(), nullptr);
    kelAbstractProcessSegmentation &base = stage;
    EXPECT_FALSE(base.segment());
}

TEST(kelAbstractProcessSegmentationTest, SetAcquisitionImageKeepsTheInputAndReleasesThePreviousOne)
{
    Segmentation stage;
    QSharedPointer<kelDataImage> first(new kelDataImage);
    QSharedPointer<kelDataImage> second(new kelDataImage);
    MessageCapture messages;
    stage.setAcquisitionImage(first);
    EXPECT_EQ(stage.d().acquisitionImage, first);
    EXPECT_TRUE(stage.getSegmentationImage().isNull());
    stage.setAcquisitionImage(second);
    EXPECT_EQ(stage.d().acquisitionImage, second);
    const QWeakPointer<kelDataImage> watched(first);
    first.reset();
    EXPECT_TRUE(watched.isNull());
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

TEST(kelAbstractProcessSegmentationTest, ACopySharesBothImagesAndCarriesTheBase)
{
    Segmentation stage;
    QSharedPointer<kelDataImage> input(new kelDataImage);
    stage.setAcquisitionImage(input);
    stage.getSegmentationImage().reset(new kelDataImage);
    stage.setSpecificParameters({{"k", 1}});
    Segmentation copy(stage);
    EXPECT_EQ(copy.d().acquisitionImage, input);
    EXPECT_EQ(copy.getSegmentationImage(), stage.getSegmentationImage());
    EXPECT_EQ(copy.getSpecificParameters(), (QVariantMap{{"k", 1}}));

    copy.getSegmentationImage().reset();
    EXPECT_FALSE(stage.getSegmentationImage().isNull());
}

TEST(kelAbstractProcessSegmentationTest, ACopyTakesTheParentOfItsSource)
{
    QObject parent;
    auto *stage = new Segmentation;
    stage->setParent(&parent);
    EXPECT_EQ((new Segmentation(*stage))->parent(), &parent);
}

TEST(kelAbstractProcessSegmentationTest, TheIdentifierIsTheFrameworks)
{
    EXPECT_EQ(Segmentation().identifier(), "kelAbstractProcessSegmentation");
}
