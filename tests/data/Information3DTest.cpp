#include <kelCore/data/BoundingBox3D.h>
#include <kelCore/data/Information3D.h>
#include <kelCore/data/SkeletonStructure.h>

#include "support/Capture.h"

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

namespace {

std::vector<float> floatsOf(const Information3D &information)
{
    std::vector<float> floats(sizeof information / sizeof(float));
    std::memcpy(floats.data(), &information, sizeof information);
    return floats;
}

} // namespace

TEST(Information3DTest, AFreshRecordIsAllZero)
{
    const Information3D information;
    EXPECT_EQ(information.getHeight(), 0);
    EXPECT_EQ(information.getWidth(), 0);
    EXPECT_EQ(information.getDepth(), 0);
    EXPECT_EQ(information.getPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(information.getHighestPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(information.getLowestPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(information.getCentroidPosition(), cv::Point3f(0, 0, 0));
}

TEST(Information3DTest, StoresWhatItIsGivenAndInTheStatedOrder)
{
    Information3D information;
    information.setHeight(1);
    information.setWidth(-2);
    information.setDepth(3e30f);
    information.setPosition(cv::Point3f(4, 5, 6));
    information.setHighestPosition(cv::Point3f(7, 8, 9));
    information.setLowestPosition(cv::Point3f(10, 11, 12));
    information.setCentroidPosition(cv::Point3f(13, 14, 15));

    EXPECT_EQ(information.getHeight(), 1);
    EXPECT_EQ(information.getWidth(), -2);
    EXPECT_EQ(information.getDepth(), 3e30f);
    EXPECT_EQ(information.getPosition(), cv::Point3f(4, 5, 6));
    EXPECT_EQ(information.getHighestPosition(), cv::Point3f(7, 8, 9));
    EXPECT_EQ(information.getLowestPosition(), cv::Point3f(10, 11, 12));
    EXPECT_EQ(information.getCentroidPosition(), cv::Point3f(13, 14, 15));
    EXPECT_EQ(floatsOf(information),
              (std::vector<float>{1, -2, 3e30f, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
}

TEST(Information3DTest, CopiesCarryEveryField)
{
    Information3D information;
    information.setHeight(1);
    information.setCentroidPosition(cv::Point3f(13, 14, 15));
    const Information3D copy(information);
    Information3D assigned;
    assigned = information;
    EXPECT_EQ(floatsOf(copy), floatsOf(information));
    EXPECT_EQ(floatsOf(assigned), floatsOf(information));
    EXPECT_EQ(copy.getHeight(), 1);
}

TEST(BoundingBox3DTest, IsSixFloatsThatStartAtZero)
{
    static_assert(sizeof(BoundingBox3D) == 24, "six floats");
    static_assert(std::is_trivially_copyable<BoundingBox3D>::value, "copied as one unit");
    const BoundingBox3D box;
    for (const float value : box.values)
        EXPECT_EQ(value, 0);
}

TEST(SkeletonStructureTest, IsThreeJointsAndFourFieldsOf64Bits)
{
    EXPECT_EQ(sizeof(SkeletonJoint), 20u);
    EXPECT_EQ(offsetof(SkeletonJoint, position2D), 0u);
    EXPECT_EQ(offsetof(SkeletonJoint, position3D), 8u);
    EXPECT_EQ(sizeof(SkeletonStructure), 96u);
    EXPECT_EQ(offsetof(SkeletonStructure, joints), 0u);
    EXPECT_EQ(offsetof(SkeletonStructure, reserved), 64u);
}

TEST(SkeletonStructureTest, StartsWithoutPositions)
{
    const SkeletonStructure skeleton;
    for (const SkeletonJoint &joint : skeleton.joints) {
        EXPECT_EQ(joint.position2D, cv::Point(-1, -1));
        EXPECT_EQ(joint.position3D, cv::Point3f(0, 0, 0));
    }
    for (const std::int64_t field : skeleton.reserved)
        EXPECT_EQ(field, 0);
}

TEST(SkeletonStructureTest, TheHeadIsTheFirstJoint)
{
    SkeletonStructure skeleton;
    skeleton.head().position2D = cv::Point(3, 4);
    EXPECT_EQ(skeleton.joints[0].position2D, cv::Point(3, 4));
    EXPECT_EQ(&static_cast<const SkeletonStructure &>(skeleton).head(), &skeleton.joints[0]);
}
