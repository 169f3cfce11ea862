#include <kelCore/process/kelAbstractProcessGroundDetection.h> // alone

#include <gtest/gtest.h>

namespace {

/// The ground is as far below the camera as the depth map's first value says.
class GroundDetection : public kelAbstractProcessGroundDetection
{
public:
    void setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth calibration) override
    {
        m_kind = calibration.identifier();
    }
    void computeGroundPlaneFromDepthMap(cv::Mat depth) override { m_distance = depth.at<float>(0, 0); }
    std::vector<double> getGroundPlaneEquationCoef() override { return {0, 0, 1, m_distance}; }
    std::list<cv::Point3f> getGroundPlanePoints() override { return {cv::Point3f(0, 0, -m_distance)}; }

    QString m_kind;

private:
    float m_distance = 0;
};

} // namespace

TEST(stageHeaderTest, GroundDetectionNeedsNoOther)
{
    GroundDetection detection;
    kelAbstractProcessGroundDetection &stage = detection;
    stage.setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth());
    EXPECT_EQ(detection.m_kind, "kelAbstractDataCalibrationWithDepth");
    stage.computeGroundPlaneFromDepthMap(cv::Mat(1, 1, CV_32FC1, cv::Scalar(2.5)));
    EXPECT_EQ(stage.getGroundPlaneEquationCoef().back(), 2.5);
    EXPECT_EQ(stage.getGroundPlanePoints().front().z, -2.5f);
    EXPECT_TRUE(stage.getShiftedGroundPlanePoints(1).empty());
    EXPECT_TRUE(stage.getShiftedGroundPlaneEquationCoef(1).empty());
}
