#include <kelCore/process/kelAbstractProcessBlobsGeneration.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration_p.h>

#include "support/Capture.h"

#include <type_traits>

namespace {

/// Makes one blob of every mask.
class BlobsGeneration : public kelAbstractProcessBlobsGeneration
{
public:
    kelAbstractProcessBlobsGenerationPrivate &d()
    {
        return static_cast<kelAbstractProcessBlobsGenerationPrivate &>(*nub_d);
    }
    bool generateBlobs() override
    {
        getBlobs() = {QSharedPointer<kelDataBlob>(new kelDataBlob)};
        return true;
    }
};

} // namespace

TEST(kelAbstractProcessBlobsGenerationTest, PlugInsMustSupplyTheGeneration)
{
    EXPECT_TRUE(std::is_abstract<kelAbstractProcessBlobsGeneration>::value);
    EXPECT_EQ(sizeof(kelAbstractProcessBlobsGeneration), sizeof(nubAbstractObject));
}

TEST(kelAbstractProcessBlobsGenerationTest, AFreshStageHasTheStatedMinimums)
{
    BlobsGeneration stage;
    EXPECT_TRUE(stage.d().segmentationImage.isNull());
    EXPECT_EQ(stage.d().minArea, 2000);
    EXPECT_EQ(stage.d().minDimension, 50);
    EXPECT_TRUE(stage.getBlobs().isEmpty());
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_EQ(stage.parent(), nullptr);
}

TEST(kelAbstractProcessBlobsGenerationTest, EachMinimumIsSetOnItsOwn)
{
    BlobsGeneration stage;
    MessageCapture messages;
    stage.setMinArea(-3);
    EXPECT_EQ(stage.d().minArea, -3);
    EXPECT_EQ(stage.d().minDimension, 50);
    stage.setMinDimension(7);
    EXPECT_EQ(stage.d().minArea, -3);
    EXPECT_EQ(stage.d().minDimension, 7);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessBlobsGenerationTest, SetSegmentationImageKeepsTheMaskAndReleasesThePreviousOne)
{
    BlobsGeneration stage;
    QSharedPointer<kelDataImage> first(new kelDataImage);
    QSharedPointer<kelDataImage> second(new kelDataImage);
    stage.setSegmentationImage(first);
    EXPECT_EQ(stage.d().segmentationImage, first);
    stage.setSegmentationImage(second);
    EXPECT_EQ(stage.d().segmentationImage, second);
    const QWeakPointer<kelDataImage> watched(first);
    first.reset();
    EXPECT_TRUE(watched.isNull());
}

TEST(kelAbstractProcessBlobsGenerationTest, ThePlugInsBlobsAreReadThroughTheReference)
{
    BlobsGeneration stage;
    kelAbstractProcessBlobsGeneration &base = stage;
    EXPECT_TRUE(base.generateBlobs());
    EXPECT_EQ(base.getBlobs().size(), 1);
    base.getBlobs().clear();
    EXPECT_TRUE(stage.d().blobs.isEmpty());
}

TEST(kelAbstractProcessBlobsGenerationTest, ACopyTakesAllFourMembersAndTheBase)
{
    BlobsGeneration stage;
    QSharedPointer<kelDataImage> mask(new kelDataImage);
    stage.setSegmentationImage(mask);
    stage.setMinArea(3);
    stage.setMinDimension(4);
    stage.generateBlobs();
    stage.setSpecificParameters({{"k", 1}});
    BlobsGeneration copy(stage);
    EXPECT_EQ(copy.d().segmentationImage, mask);
    EXPECT_EQ(copy.d().minArea, 3);
    EXPECT_EQ(copy.d().minDimension, 4);
    EXPECT_EQ(copy.getBlobs(), stage.getBlobs());
    EXPECT_EQ(copy.getSpecificParameters(), (QVariantMap{{"k", 1}}));

    copy.getBlobs().clear();
    EXPECT_EQ(stage.getBlobs().size(), 1);
}

TEST(kelAbstractProcessBlobsGenerationTest, ACopyTakesTheParentOfItsSource)
{
    QObject parent;
    auto *stage = new BlobsGeneration;
    stage->setParent(&parent);
    EXPECT_EQ((new BlobsGeneration(*stage))->parent(), &parent);
}

TEST(kelAbstractProcessBlobsGenerationTest, TheIdentifierIsTheFrameworks)
{
    EXPECT_EQ(BlobsGeneration().identifier(), "kelAbstractProcessBlobsGeneration");
}
