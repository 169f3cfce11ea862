#include <kelCore/process/kelAbstractProcessClassifier.h>
#include <kelCore/process/kelAbstractProcessClassifier_p.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {

/// Makes one physical object of each blob.
class Classifier : public Opened<kelAbstractProcessClassifier, kelAbstractProcessClassifierPrivate>
{
public:
    bool classify() override
    {
        d().physicalObjects.clear();
        for (int i = 0; i < d().blobs.size(); ++i)
            d().physicalObjects.append(QSharedPointer<kelDataPhysicalObject>(new kelDataPhysicalObject));
        return true;
    }
};

using Blobs = QList<QSharedPointer<kelDataBlob>>;

Blobs twoBlobs()
{
    return {QSharedPointer<kelDataBlob>(new kelDataBlob), QSharedPointer<kelDataBlob>(new kelDataBlob)};
}

} // namespace

TEST(kelAbstractProcessClassifierTest, AFreshStageHoldsNothing)
{
    Classifier stage;
    EXPECT_TRUE(stage.d().calibration.isNull());
    EXPECT_TRUE(stage.d().blobs.isEmpty());
    EXPECT_TRUE(stage.getPhysicalObjects().isEmpty());
}

TEST(kelAbstractProcessClassifierTest, TheSettersKeepWhatTheyAreGivenSilently)
{
    const LogLevel level(0);
    MessageCapture messages;
    Classifier stage;
    expectKeptAndReleased<kelAbstractDataCalibration>(stage.d().calibration,
                                                      [&](auto &object) { stage.setCalibration(object); });
    Blobs blobs = twoBlobs();
    stage.setBlobs(blobs);
    EXPECT_EQ(stage.d().blobs, blobs);
    Blobs others = twoBlobs();
    stage.setBlobs(others);
    EXPECT_EQ(stage.d().blobs, others);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessClassifierTest, ThePlugInsObjectsAreReadThroughTheReference)
{
    Classifier stage;
    kelAbstractProcessClassifier &base = stage;
    Blobs blobs = twoBlobs();
    base.setBlobs(blobs);
    EXPECT_TRUE(base.classify());
    EXPECT_EQ(base.getPhysicalObjects().size(), 2);
    base.getPhysicalObjects().clear();
    EXPECT_TRUE(stage.d().physicalObjects.isEmpty());
}

TEST(kelAbstractProcessClassifierTest, ACopySharesCalibrationAndBlobsAndHasNoObjects)
{
    Classifier stage;
    QSharedPointer<kelAbstractDataCalibration> calibration(new kelAbstractDataCalibration);
    Blobs blobs = twoBlobs();
    stage.setCalibration(calibration);
    stage.setBlobs(blobs);
    stage.classify();
    Classifier copy(stage);
    EXPECT_EQ(copy.d().calibration, calibration);
    EXPECT_EQ(copy.d().blobs, blobs);
    EXPECT_TRUE(copy.getPhysicalObjects().isEmpty());
    EXPECT_EQ(stage.getPhysicalObjects().size(), 2);
}
