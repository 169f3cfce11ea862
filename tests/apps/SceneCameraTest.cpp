#include "common/SceneCamera.h"

#include "common/Program.h"

#include "apps/scenes.h"

#include <kelCore/view/kelViewRGBD.h>

#include <gtest/gtest.h>

namespace {

/// The RGB-D view draws each world point on the pixel of the calibration's own projection.
void expectSamePixels(const Scene &scene, const std::vector<cv::Point3d> &points)
{
    const SceneCamera camera(scene);
    kelViewRGBD view;
    view.setCalibrationWithDepth(camera.viewCalibration());
    for (const cv::Point3d &point : points) {
        const cv::Point2d expected = scene.camera->worldToImage(point);
        const cv::Point2d exact = camera.viewCalibration().worldToImage(camera.inView(point));
        EXPECT_NEAR(exact.x, expected.x, 1e-6) << point;
        EXPECT_NEAR(exact.y, expected.y, 1e-6) << point;
        const cv::Point drawn = view.convertWorld2ImageFixed(cv::Point3f(camera.inView(point)));
        EXPECT_NEAR(drawn.x, expected.x, 0.51) << point;
        EXPECT_NEAR(drawn.y, expected.y, 0.51) << point;
    }
}

const std::vector<cv::Point3d> somePoints{
    {0, 5000, 0}, {-1500, 7000, 0}, {2500, 9000, 1800}, {300, 4000, 900}};

} // namespace

TEST(SceneCameraTest, TheViewDrawsWhereTheCalibrationProjects)
{
    expectSamePixels(levelScene(), somePoints);

    Scene street(QStringLiteral(KEL_SOURCE_DIR "/examples/data/vtest_camera.yml"),
                 QStringLiteral(KEL_SOURCE_DIR "/examples/data/vtest_context.yml"));
    std::vector<cv::Point3d> corners;
    for (const ContextElement &element : street.elements)
        corners.insert(corners.end(), element.polygonVertices.begin(), element.polygonVertices.end());
    ASSERT_EQ(corners.size(), 12u);
    expectSamePixels(street, corners);
}

TEST(SceneCameraTest, SkewAndAFourthColumnAreProjectedToo)
{
    expectSamePixels(levelScene((cv::Mat_<double>(3, 4) << 100, 12, 80, 700, 3, 90, 60, -500, 0, 0, 1, 20)),
                     somePoints);
    expectSamePixels(
        levelScene((cv::Mat_<double>(4, 4) << 100, 0, 80, 0, 0, 100, 60, 0, 0, 0, 1, 0, 9, 9, 9, 9)),
        somePoints);
}

TEST(SceneCameraTest, TheViewsFrameIsTheCamerasInItsUnits)
{
    const SceneCamera camera(levelScene());
    const cv::Point3d point = camera.inView({300, 5000, 500});
    EXPECT_NEAR(point.x, 300, 1e-9); // to the right
    EXPECT_NEAR(point.y, 1500, 1e-9); // down
    EXPECT_NEAR(point.z, 5000, 1e-9); // forward
}

TEST(SceneCameraTest, TheGroundPlaneHoldsTheGround)
{
    const SceneCamera camera(levelScene());
    const std::vector<double> plane = camera.groundPlane();
    ASSERT_EQ(plane.size(), 4u);
    for (const cv::Point3d &ground : {cv::Point3d(0, 5000, 0), {1000, 3000, 0}, {-2000, 9000, 0}}) {
        const cv::Point3d p = camera.inView(ground);
        EXPECT_NEAR(plane[0] * p.x + plane[1] * p.y + plane[2] * p.z + plane[3], 0, 1e-6);
    }
    EXPECT_NEAR(-plane[3] / plane[1], 2000, 1e-6) << "the ground is 2 m below the camera";
}

TEST(SceneCameraTest, FootAndHeightOfABox)
{
    const Scene scene = levelScene();
    const SceneCamera camera(scene);
    EXPECT_TRUE(camera.isCalibrated());
    // 1.5 m at a distance of 5 m: 40 pixels below the horizon to 10 below it.
    const cv::Rect box(90, 70, 20, 30);
    const auto foot = camera.foot(box);
    ASSERT_TRUE(foot);
    EXPECT_NEAR(foot->x, 1000, 1e-6);
    EXPECT_NEAR(foot->y, 5000, 1e-6);
    EXPECT_EQ(foot->z, 0);
    EXPECT_NEAR(camera.height(box, *foot), 1500, 1e-6);
    EXPECT_NEAR(camera.height({90, 30, 20, 70}, *foot), 3500, 1e-6) << "above the horizon";

    EXPECT_FALSE(camera.foot({90, 20, 20, 40})) << "the foot is on the horizon";
    EXPECT_FALSE(camera.foot({90, 20, 20, 30})) << "the foot is above it";
    EXPECT_EQ(camera.height({90, 110, 20, 30}, *foot), 0) << "a top below the foot";
}

TEST(SceneCameraTest, HeightIsSeenFromAboveAsWell)
{
    // 10 m below the camera, 4 m off its axis; the top stands away from the foot as the line to it is
    // shorter.
    const SceneCamera camera(sceneFromAbove());
    const cv::Rect box(75, 10, 10, 10);
    const auto foot = camera.foot(box);
    ASSERT_TRUE(foot);
    EXPECT_NEAR(foot->y, 4000, 1e-6);
    EXPECT_NEAR(camera.height(box, *foot), 2000, 1e-6);
}

TEST(SceneCameraTest, WithoutACalibrationTheWorldIsThePicture)
{
    const SceneCamera camera{Scene()};
    EXPECT_FALSE(camera.isCalibrated());
    const auto foot = camera.foot({10, 20, 5, 40});
    ASSERT_TRUE(foot);
    EXPECT_EQ(*foot, cv::Point3d(12.5, 60, 0));
    EXPECT_EQ(camera.inView(*foot), cv::Point3d(12.5, 60, 1));
    EXPECT_EQ(camera.height({10, 20, 5, 40}, *foot), 0);
    EXPECT_EQ(camera.viewCalibration().worldToImage(camera.inView(*foot)), cv::Point2d(12.5, 60));
    EXPECT_EQ(camera.groundPlane().size(), 4u);
}

TEST(SceneCameraTest, ACameraWithoutFocalLengthsIsRefused)
{
    for (const double bad : {0.0, std::nan("")}) {
        for (const int row : {0, 1}) {
            cv::Mat intrinsic = pinhole();
            intrinsic.at<double>(row, row) = bad;
            EXPECT_THROW(SceneCamera{levelScene(intrinsic)}, Failure) << row << ' ' << bad;
        }
    }
}
