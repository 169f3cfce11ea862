#include <kelCore/geometry/kelGroundPoint.h>

#include <kelCore/geometry/kelProjection.h>

#include "support/Allocations.h"
#include "support/Matrices.h"

#include <gtest/gtest.h>

namespace {

/// Looks along the world's Y axis from (0, 0, 3): row 0 is the horizon, rows above are negative.
const cv::Mat K = (cv::Mat_<double>(3, 4) << 1, 0, 0, 0, /**/ 0, 1, 0, 0, /**/ 0, 0, 1, 0);
const cv::Mat E = (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, /**/ 0, 0, -1, 3, /**/ 0, 1, 0, 0, /**/ 0, 0, 0, 1);

} // namespace

TEST(kelGroundPointTest, APixelBelowTheHorizonShowsThePointOfTheGround)
{
    EXPECT_EQ(kelGeometry::groundPoint(K, E, {0.5, 0.5}), cv::Point3d(3, 6, 0));
    EXPECT_EQ(kelGeometry::groundPoint(asView(K), asView(E), {0.5, 0.5}), cv::Point3d(3, 6, 0));
}

TEST(kelGroundPointTest, APixelOnOrAboveTheHorizonShowsNoGround)
{
    EXPECT_EQ(kelGeometry::groundPoint(K, E, {0.5, 0}), std::nullopt);
    EXPECT_EQ(kelGeometry::groundPoint(K, E, {0.5, -0.5}), std::nullopt);
    cv::Point3d behind;
    ASSERT_TRUE(kelGeometry::imageToWorld(K, E, {0.5, -0.5}, 0, behind));
    EXPECT_LT(behind.y, 0);
}

TEST(kelGroundPointTest, ABoxStandsWhereTheMiddleOfItsLowerEdgeIs)
{
    EXPECT_EQ(kelGeometry::footPoint(K, E, cv::Rect(1, 2, 3, 4)), kelGeometry::groundPoint(K, E, {2.5, 6}));
    EXPECT_NE(kelGeometry::footPoint(K, E, cv::Rect(1, 2, 3, 4)), std::nullopt);
    EXPECT_EQ(kelGeometry::footPoint(K, E, cv::Rect(1, -9, 3, 4)), std::nullopt);
    const cv::Rect lowest(0, 2147483647, 1, 1);
    EXPECT_EQ(kelGeometry::footPoint(K, E, lowest), kelGeometry::groundPoint(K, E, {0.5, 2147483648.0}));
}

TEST(kelGroundPointTest, InFrontIsWhereTheThirdCoordinateIsPositive)
{
    const cv::Mat P = K * E;
    EXPECT_TRUE(kelGeometry::isInFront(P, {0, 1e-300, 3}));
    EXPECT_FALSE(kelGeometry::isInFront(P, {0, 0, 3}));
    EXPECT_FALSE(kelGeometry::isInFront(P, {0, -1, 3}));
    EXPECT_THROW(kelGeometry::isInFront(cv::Mat(), {0, 1, 3}), cv::Exception);
}

TEST(kelGroundPointTest, ThePointsAreThoseOfImageToWorldThatAreInFront)
{
    cv::RNG random(7);
    int shown = 0, hidden = 0;
    for (int i = 0; i < 2000; ++i) {
        const cv::Mat k = randomMatrix(random, 3, 4, 600);
        const cv::Mat e = randomMatrix(random, 4, 4, 10);
        const cv::Point2d pixel(random.uniform(0., 640.), random.uniform(0., 480.));
        const auto point = kelGeometry::groundPoint(k, e, pixel);
        cv::Point3d anywhere;
        const bool expected =
            kelGeometry::imageToWorld(k, e, pixel, 0, anywhere) && kelGeometry::isInFront(k * e, anywhere);
        ASSERT_EQ(point.has_value(), expected) << k << e << pixel;
        ASSERT_TRUE(!point || sameBits(*point, anywhere));
        ++(point ? shown : hidden);
    }
    EXPECT_GT(shown, 500);
    EXPECT_GT(hidden, 500);
}

TEST(kelGroundPointTest, NothingIsAllocated)
{
    const MatrixAllocations matrices;
    const std::size_t before = heapAllocations();
    const auto point = kelGeometry::footPoint(K, E, cv::Rect(1, 2, 3, 4));
    EXPECT_EQ(heapAllocations(), before);
    EXPECT_EQ(matrices.count, 0);
    EXPECT_TRUE(point);
}
