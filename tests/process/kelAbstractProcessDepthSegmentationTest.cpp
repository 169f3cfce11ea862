#include <kelCore/process/kelAbstractProcessDepthSegmentation.h>
#include <kelCore/process/kelAbstractProcessDepthSegmentation_p.h>

#include <kelCore/data/kelDataImage.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {
using DepthSegmentation =
    Opened<kelAbstractProcessDepthSegmentation, kelAbstractProcessDepthSegmentationPrivate>;
}

TEST(kelAbstractProcessDepthSegmentationTest, AFreshStageHoldsNothing)
{
    expectFreshBase<DepthSegmentation>();
    EXPECT_EQ(sizeof(kelAbstractProcessDepthSegmentationPrivate), sizeof(kelAbstractProcessPrivate));
}

TEST(kelAbstractProcessDepthSegmentationTest, ACopyCarriesTheBase) { expectCopiedBase<DepthSegmentation>(); }

TEST(kelAbstractProcessDepthSegmentationTest, TheIdentifierIsTheFrameworks)
{
    kelAbstractProcessDepthSegmentation stage;
    EXPECT_EQ(stage.identifier(), "kelAbstractProcessDepthSegmentation");
    EXPECT_EQ(stage.clone(), nullptr);
}

TEST(kelAbstractProcessDepthSegmentationTest, PlugInsOverrideEachOperation)
{
    struct Segmentation : kelAbstractProcessDepthSegmentation
    {
        void setColorImg(const kelDataImage &) override { calls += "c"; }
        void setDepthImg(const kelDataImage &) override { calls += "d"; }
        void setParameterFile(const std::string &, std::string) override { calls += "p"; }
        void setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth *) override { calls += "k"; }
        void computeEquationPlan(const kelDataContext *) override { calls += "e"; }
        void getPhysicalObjs(PhysicalObjs &) override { calls += "o"; }
        void getBackgroundDepthMap(cv::Mat &) override { calls += "b"; }
        void adjustBoundingBox3d(PhysicalObjs &) override { calls += "a"; }
        void saveBackground(const std::string &) override { calls += "s"; }
        std::string calls;
    } segmentation;
    kelAbstractProcessDepthSegmentation &stage = segmentation;
    PhysicalObjs objects;
    cv::Mat depth;
    stage.setParameterFile("file", "folder");
    stage.setCalibrationWithDepth(nullptr);
    stage.computeEquationPlan(nullptr);
    stage.setColorImg(kelDataImage());
    stage.setDepthImg(kelDataImage());
    stage.getPhysicalObjs(objects);
    stage.adjustBoundingBox3d(objects);
    stage.getBackgroundDepthMap(depth);
    stage.saveBackground("file");
    EXPECT_EQ(segmentation.calls, "pkecdoabs");
}
