#include <kelCore/process/kelAbstractProcessClassifier.h> // alone

#include <gtest/gtest.h>

namespace {

/// One object for each blob, with its box, in the units of the calibration.
class Classifier : public kelAbstractProcessClassifier
{
public:
    bool classify() override
    {
        getPhysicalObjects().clear();
        if (!getCalibration())
            return false;
        for (const QSharedPointer<kelDataBlob> &blob : getBlobs()) {
            getPhysicalObjects().append(QSharedPointer<kelDataPhysicalObject>(new kelDataPhysicalObject));
            getPhysicalObjects().last()->setBoundingBox2D(blob->getBoundingBox2D());
        }
        return getCalibration()->identifier() == "kelAbstractDataCalibration";
    }
};

} // namespace

TEST(stageHeaderTest, ClassifierNeedsNoOther)
{
    Classifier stage;
    EXPECT_FALSE(stage.classify());
    QSharedPointer<kelAbstractDataCalibration> calibration(new kelAbstractDataCalibration);
    QList<QSharedPointer<kelDataBlob>> blobs{QSharedPointer<kelDataBlob>(new kelDataBlob)};
    blobs.first()->setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    stage.setCalibration(calibration);
    stage.setBlobs(blobs);
    EXPECT_TRUE(stage.classify());
    ASSERT_EQ(stage.getPhysicalObjects().size(), 1);
    EXPECT_EQ(stage.getPhysicalObjects().first()->getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
}
