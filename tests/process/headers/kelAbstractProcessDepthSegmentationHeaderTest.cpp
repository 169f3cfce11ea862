#include <kelCore/process/kelAbstractProcessDepthSegmentation.h> // alone

#include <gtest/gtest.h>

namespace {

/// One object as large as the colour frame; the depth frame is the background.
class DepthSegmentation : public kelAbstractProcessDepthSegmentation
{
public:
    void setColorImg(const kelDataImage &image) override { m_color = image.getImage(); }
    void setDepthImg(const kelDataImage &image) override { m_depth = image.getImage(); }
    void setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth *calibration) override
    {
        m_kind = calibration->identifier();
    }
    void computeEquationPlan(const kelDataContext *context) override { m_kind += context->identifier(); }
    void getPhysicalObjs(PhysicalObjs &objects) override
    {
        objects.clear();
        objects.emplace_back();
        objects.back().setBoundingBox2D(cv::Rect(0, 0, m_color.cols, m_color.rows));
    }
    void getBackgroundDepthMap(cv::Mat &depth) override { depth = m_depth.clone(); }

    QString m_kind;

private:
    cv::Mat m_color;
    cv::Mat m_depth;
};

} // namespace

TEST(stageHeaderTest, DepthSegmentationNeedsNoOther)
{
    DepthSegmentation plugin;
    kelAbstractProcessDepthSegmentation &stage = plugin;
    kelAbstractDataCalibrationWithDepth calibration;
    const kelDataContext context;
    stage.setCalibrationWithDepth(&calibration);
    stage.computeEquationPlan(&context);
    EXPECT_EQ(plugin.m_kind, "kelAbstractDataCalibrationWithDepthkelDataContext");

    kelDataImage image;
    image.setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setColorImg(image);
    image.setImage(cv::Mat(2, 3, CV_32FC1));
    stage.setDepthImg(image);
    PhysicalObjs objects;
    stage.getPhysicalObjs(objects);
    ASSERT_EQ(objects.size(), 1u);
    EXPECT_EQ(objects.front().getBoundingBox2D(), cv::Rect(0, 0, 6, 4));
    cv::Mat depth;
    stage.getBackgroundDepthMap(depth);
    EXPECT_EQ(depth.size(), cv::Size(3, 2));
}
