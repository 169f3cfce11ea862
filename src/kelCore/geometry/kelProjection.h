#ifndef KELCORE_KELPROJECTION_H
#define KELCORE_KELPROJECTION_H

/// \file
/// The pinhole camera: from the world to the image and back, and from the camera's own frame.

#include <kelCore/kelCoreExport.h>

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

namespace kelGeometry {

// The world and the image.
//
// With K the intrinsic matrix (3 x 4, or 4 x 4 of which the fourth row takes part in nothing) and E the
// extrinsic matrix (4 x 4, world to camera), P = K E projects the world point (X, Y, Z):
//
//     (r0, r1, r2) = P (X, Y, Z, 1),   (u, v) = (r0 / r2, r1 / r2)
//
// See R. Hartley and A. Zisserman, Multiple View Geometry in Computer Vision, 2nd ed., section 6.1. A pixel
// (u, v) is (column, row), with the origin at the top left. The world's Z axis is vertical, the ground is
// Z = 0; lengths are in whatever unit E has. There is no lens distortion.
//
// Matrices hold doubles and may be parts of larger ones. One of another size or type throws cv::Exception, as
// the matrix product would. P is formed anew in each call, on the stack, with the bits of the matrix product:
// nothing is allocated, and a call costs about half of what cv::projectPoints takes for a point of a batch.

/// Projection of a world point; infinite or not-a-number for a point in the camera's own plane.
KELCORE_EXPORT cv::Point2d worldToImage(const cv::Mat &K, const cv::Mat &E, const cv::Point3d &point);

/// Back-projection: sets `point` to the point (X, Y, `height`) whose projection is `pixel`. False, and `point`
/// as it was, when the viewing ray is parallel to the plane of that height. For a pixel above the horizon the
/// point lies behind the camera: see groundPoint.
[[nodiscard]] KELCORE_EXPORT bool imageToWorld(const cv::Mat &K, const cv::Mat &E, const cv::Point2d &pixel,
                                               double height, cv::Point3d &point);

/// The camera's centre in the world: the translation column of the inverse of E, zero for a singular E.
KELCORE_EXPORT cv::Point3d cameraCentre(const cv::Mat &E);

// The camera's own frame and the image: X along columns, Y along rows, Z along the optical axis, in the unit
// of the depth; with fx = K(0,0), cx = K(0,2), fy = K(1,1), cy = K(1,2):
//
//     u = fx X / Z + cx,     v = fy Y / Z + cy
//     X = (u - cx) Z / fx,   Y = (v - cy) Z / fy
//
// K must hold doubles, in two rows and three columns at least, or cv::Exception is thrown.

/// The four elements.
struct Pinhole
{
    double fx, cx, fy, cy;

    explicit Pinhole(const cv::Mat &K)
    {
        CV_Assert(K.dims == 2 && K.type() == CV_64FC1 && K.rows >= 2 && K.cols >= 3);
        fx = K.ptr<double>(0)[0];
        cx = K.ptr<double>(0)[2];
        fy = K.ptr<double>(1)[1];
        cy = K.ptr<double>(1)[2];
    }
};

/// The pixel that shows a point; (cx, cy) for a point with Z = 0.
inline cv::Point2d cameraToImage(const cv::Mat &K, const cv::Point3d &point)
{
    const Pinhole k(K);
    if (point.z == 0.0)
        return cv::Point2d(k.cx, k.cy);
    return cv::Point2d(k.fx * point.x / point.z + k.cx, k.fy * point.y / point.z + k.cy);
}

/// The point that a pixel shows at that depth Z. Depth 0 means none and gives (0, 0, 0), whatever K is.
inline cv::Point3d imageToCamera(const cv::Mat &K, const cv::Point2d &pixel, double depth)
{
    if (depth == 0.0)
        return cv::Point3d(0, 0, 0);
    const Pinhole k(K);
    return cv::Point3d((pixel.x - k.cx) * (depth / k.fx), (pixel.y - k.cy) * (depth / k.fy), depth);
}

} // namespace kelGeometry

#endif
