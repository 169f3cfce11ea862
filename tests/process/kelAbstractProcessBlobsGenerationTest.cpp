#include <kelCore/process/kelAbstractProcessBlobsGeneration.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration_p.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {

/// Makes one blob of every mask.
class BlobsGeneration
    : public Opened<kelAbstractProcessBlobsGeneration, kelAbstractProcessBlobsGenerationPrivate>
{
public:
    bool generateBlobs() override
    {
        getBlobs() = {QSharedPointer<kelDataBlob>(new kelDataBlob)};
        return true;
    }
};

} // namespace

TEST(kelAbstractProcessBlobsGenerationTest, AFreshStageHasTheStatedMinimums)
{
    BlobsGeneration stage;
    EXPECT_TRUE(stage.d().segmentationImage.isNull());
    EXPECT_EQ(stage.d().minArea, 2000);
    EXPECT_EQ(stage.d().minDimension, 50);
    EXPECT_TRUE(stage.getBlobs().isEmpty());
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
    expectKeptAndReleased<kelDataImage>(stage.d().segmentationImage,
                                        [&](auto &object) { stage.setSegmentationImage(object); });
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

TEST(kelAbstractProcessBlobsGenerationTest, ACopyTakesAllFourMembers)
{
    BlobsGeneration stage;
    QSharedPointer<kelDataImage> mask(new kelDataImage);
    stage.setSegmentationImage(mask);
    stage.setMinArea(3);
    stage.setMinDimension(4);
    stage.generateBlobs();
    BlobsGeneration copy(stage);
    EXPECT_EQ(copy.d().segmentationImage, mask);
    EXPECT_EQ(copy.d().minArea, 3);
    EXPECT_EQ(copy.d().minDimension, 4);
    EXPECT_EQ(copy.getBlobs(), stage.getBlobs());

    copy.getBlobs().clear();
    EXPECT_EQ(stage.getBlobs().size(), 1);
}
