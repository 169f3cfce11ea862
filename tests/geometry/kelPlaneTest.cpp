#include <kelCore/geometry/kelPlane.h>

#include "support/Allocations.h"
#include "support/Matrices.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Polygon = std::list<cv::Point3d>;

} // namespace

TEST(kelPlaneTest, DistancesAndProjectionsTakeAnyNormal)
{
    EXPECT_EQ(kelGeometry::distanceToPlane({1, 1, 5}, {0, 0, 2, -4}), 3);
    EXPECT_EQ(kelGeometry::distanceToPlane({4, 5, 6}, {1, -2, 2, 3}), 3);
    EXPECT_EQ(kelGeometry::projectOntoPlane({1, 2, 3}, {0, 0, 1, 0}), cv::Point3d(1, 2, 0));
    EXPECT_EQ(kelGeometry::projectOntoPlane({4, 5, 6}, {2, -4, 4, 6}), cv::Point3d(3, 7, 4));
    EXPECT_TRUE(std::isinf(kelGeometry::distanceToPlane({1, 1, 1}, {0, 0, 0, 1})));
}

TEST(kelPlaneTest, FourCornersOfAFloorGiveTheFloorHoweverTheyAreSplit)
{
    const Polygon whole{{0, 0, 2}, {1, 0, 2}, {0, 1, 2}, {1, 1, 2}};
    const Polygon first{{0, 0, 2}, {1, 0, 2}}, none, second{{0, 1, 2}, {1, 1, 2}};
    const kelGeometry::Plane plane = kelGeometry::fitPlane({&whole});
    EXPECT_EQ(std::abs(plane[2]), 1);
    EXPECT_EQ(plane[3], -2 * plane[2]);
    EXPECT_EQ(kelGeometry::fitPlane({&first, &none, &second}), plane);
}

TEST(kelPlaneTest, WithoutVerticesThePlaneHasNoPlace)
{
    const Polygon none;
    EXPECT_TRUE(std::isnan(kelGeometry::fitPlane({})[3]));
    EXPECT_TRUE(std::isnan(kelGeometry::fitPlane({&none})[3]));
}

TEST(kelPlaneTest, NothingIsAllocated)
{
    const Polygon polygon{{0, 0, 2}, {1, 0, 2.5}, {0, 1, 2}, {1, 1, 3}, {5, 2, 1}};
    const std::vector<const Polygon *> polygons{&polygon};
    const MatrixAllocations matrices;
    const std::size_t before = heapAllocations();
    const kelGeometry::Plane plane = kelGeometry::fitPlane(polygons);
    const double distance = kelGeometry::distanceToPlane({1, 1, 5}, plane);
    const cv::Point3d nearest = kelGeometry::projectOntoPlane({1, 1, 5}, plane);
    EXPECT_EQ(heapAllocations(), before);
    EXPECT_EQ(matrices.count, 0);
    EXPECT_NEAR(cv::norm(cv::Point3d(1, 1, 5) - nearest), distance, 1e-5);
}
