#ifndef KELCORE_SKELETONSTRUCTURE_H
#define KELCORE_SKELETONSTRUCTURE_H

/// \file
/// The skeleton of a person, as physical objects and actors carry it.

#include <opencv2/core/types.hpp>

#include <cstdint>

/// One joint: where it is in the image (pixels) and in the scene.
struct SkeletonJoint
{
    cv::Point position2D{-1, -1};
    cv::Point3f position3D;
};

/// Three joints, copied as one unit. The first is the head; the library interprets nothing else.
struct SkeletonStructure
{
    SkeletonJoint joints[3];
    std::int64_t reserved[4] = {};

    const SkeletonJoint &head() const { return joints[0]; }
    SkeletonJoint &head() { return joints[0]; }
};

#endif
