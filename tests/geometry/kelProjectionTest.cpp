#include <kelCore/geometry/kelProjection.h>

#include "support/Allocations.h"
#include "support/Matrices.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

/// Looks along the world's Y axis from (0, 0, 3), with unit focal length: (X, Y, Z) is seen at
/// (X / Y, (3 - Z) / Y).
const cv::Mat simpleK = (cv::Mat_<double>(3, 4) << 1, 0, 0, 0, /**/ 0, 1, 0, 0, /**/ 0, 0, 1, 0);
const cv::Mat simpleE =
    (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, /**/ 0, 0, -1, 3, /**/ 0, 1, 0, 0, /**/ 0, 0, 0, 1);

/// The projection as matrix products say it.
cv::Point2d plainWorldToImage(const cv::Mat &K, const cv::Mat &E, const cv::Point3d &w)
{
    const cv::Mat P = K * E;
    const cv::Mat r = P * (cv::Mat_<double>(4, 1) << w.x, w.y, w.z, 1);
    return cv::Point2d(r.at<double>(0) / r.at<double>(2), r.at<double>(1) / r.at<double>(2));
}

std::optional<cv::Point3d> backProject(const cv::Mat &K, const cv::Mat &E, const cv::Point2d &pixel,
                                       double height)
{
    cv::Point3d point(9, 9, 9);
    if (kelGeometry::imageToWorld(K, E, pixel, height, point))
        return point;
    EXPECT_EQ(point, cv::Point3d(9, 9, 9));
    return std::nullopt;
}

} // namespace

TEST(kelProjectionTest, ProjectsThroughThePinholeBothWays)
{
    EXPECT_EQ(kelGeometry::worldToImage(simpleK, simpleE, {2, 4, 1}), cv::Point2d(0.5, 0.5));
    EXPECT_EQ(backProject(simpleK, simpleE, {0.5, 0.5}, 1), cv::Point3d(2, 4, 1));
    EXPECT_EQ(backProject(simpleK, simpleE, {0.5, 0.5}, 0), cv::Point3d(3, 6, 0));
    EXPECT_EQ(kelGeometry::cameraCentre(simpleE), cv::Point3d(0, 0, 3));
}

TEST(kelProjectionTest, ARayThatIsParallelToThePlaneMeetsItNowhere)
{
    EXPECT_EQ(backProject(simpleK, simpleE, {2, 0}, 1), std::nullopt);
    EXPECT_NE(backProject(simpleK, simpleE, {2, 1e-300}, 1), std::nullopt);
}

TEST(kelProjectionTest, GivesTheBitsOfTheMatrixProducts)
{
    cv::RNG random(20240502);
    for (int i = 0; i < 2000; ++i) {
        const cv::Mat K = randomMatrix(random, i % 2 ? 3 : 4, 4, 600);
        const cv::Mat E = randomMatrix(random, 4, 4, 10);
        const cv::Point3d world(random.uniform(-9., 9.), random.uniform(-9., 9.), random.uniform(-9., 9.));
        const cv::Point2d expected = plainWorldToImage(K, E, world);
        ASSERT_TRUE(sameBits(kelGeometry::worldToImage(K, E, world), expected)) << K << E << world;
        ASSERT_TRUE(sameBits(kelGeometry::worldToImage(asView(K), asView(E), world), expected)) << K << E;
    }
}

TEST(kelProjectionTest, MatricesOfAnotherShapeOrTypeThrow)
{
    cv::Mat floats;
    simpleE.convertTo(floats, CV_32F);
    const std::pair<cv::Mat, cv::Mat> bad[] = {{cv::Mat(), simpleE},
                                               {simpleK.colRange(0, 3), simpleE},
                                               {cv::Mat::eye(5, 4, CV_64F), simpleE},
                                               {simpleK, cv::Mat()},
                                               {simpleK, floats},
                                               {simpleK, simpleE.rowRange(0, 3)}};
    for (const auto &[K, E] : bad) {
        EXPECT_THROW(kelGeometry::worldToImage(K, E, {1, 2, 3}), cv::Exception) << K << E;
        EXPECT_THROW(backProject(K, E, {1, 2}, 3), cv::Exception) << K << E;
    }
    EXPECT_THROW(kelGeometry::cameraCentre(floats), cv::Exception);
    EXPECT_THROW(kelGeometry::cameraCentre(cv::Mat()), cv::Exception);
}

TEST(kelProjectionTest, TheCentreHasTheBitsOfTheInverse)
{
    cv::RNG random(5);
    for (int i = 0; i < 500; ++i) {
        const cv::Mat E = randomMatrix(random, 4, 4, 10);
        const cv::Mat pose = E.inv(cv::DECOMP_LU);
        const cv::Point3d expected(pose.at<double>(0, 3), pose.at<double>(1, 3), pose.at<double>(2, 3));
        ASSERT_TRUE(sameBits(kelGeometry::cameraCentre(i % 2 ? E : asView(E)), expected)) << E;
    }
}

TEST(kelProjectionTest, ASingularMatrixThatIsNotZeroHasItsCentreAtZero)
{
    cv::Mat E = simpleE.clone();
    E.row(0).copyTo(E.row(1));
    EXPECT_EQ(kelGeometry::cameraCentre(E), cv::Point3d(0, 0, 0));
}

TEST(kelProjectionTest, TheCamerasOwnFrameGoesThroughFourElementsOfK)
{
    const cv::Mat K = (cv::Mat_<double>(3, 4) << 525, 0.5, 319.5, 7, /**/ 8, 530, 239.5, 9, /**/ 0, 0, 1, 0);
    for (const cv::Mat &matrix : {K, asView(K), K(cv::Rect(0, 0, 3, 2))}) {
        EXPECT_EQ(kelGeometry::cameraToImage(matrix, {0.2, -5.7, 1.9}),
                  cv::Point2d(525.0 * 0.2 / 1.9 + 319.5, 530.0 * -5.7 / 1.9 + 239.5));
        EXPECT_EQ(kelGeometry::cameraToImage(matrix, {5, 6, -0.0}), cv::Point2d(319.5, 239.5));
        EXPECT_EQ(
            kelGeometry::imageToCamera(matrix, {200.75, 100.5}, 1500.25),
            cv::Point3d((200.75 - 319.5) * (1500.25 / 525), (100.5 - 239.5) * (1500.25 / 530), 1500.25));
    }
    EXPECT_EQ(kelGeometry::imageToCamera(cv::Mat(), {1, 2}, 0), cv::Point3d(0, 0, 0));
    EXPECT_THROW(kelGeometry::imageToCamera(cv::Mat(), {1, 2}, 3), cv::Exception);
    EXPECT_THROW(kelGeometry::cameraToImage(cv::Mat(2, 2, CV_64F), {1, 2, 0}), cv::Exception);
}

TEST(kelProjectionTest, NothingIsAllocated)
{
    const MatrixAllocations matrices;
    const std::size_t before = heapAllocations();
    cv::Point3d sum = backProject(simpleK, simpleE, {0.5, 0.5}, 1).value();
    sum += kelGeometry::cameraCentre(simpleE);
    sum += kelGeometry::imageToCamera(simpleK, {1, 2}, 3);
    const cv::Point2d pixels =
        kelGeometry::worldToImage(simpleK, simpleE, sum) + kelGeometry::cameraToImage(simpleK, sum);
    EXPECT_EQ(heapAllocations(), before);
    EXPECT_EQ(matrices.count, 0);
    EXPECT_FALSE(std::isnan(pixels.x));
}
