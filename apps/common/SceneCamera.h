#ifndef APPS_COMMON_SCENECAMERA_H
#define APPS_COMMON_SCENECAMERA_H

/// \file
/// The camera of a scene, as the RGB-D view projects.

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>

#include <opencv2/core/matx.hpp>
#include <opencv2/core/types.hpp>

#include <optional>
#include <vector>

struct Scene;

/// Says where boxes stand, and carries the world into the frame in which kelViewRGBD projects: that of a
/// pinhole camera, x to the right, y down, z forward.
///
/// The view then draws a world point on the pixel that the calibration's own `worldToImage` gives. With an
/// intrinsic matrix of focal lengths and a principal point alone, its frame is the camera's, in the units of
/// the calibration; a skew or a fourth column becomes a part of the way into the frame.
///
/// A scene without a camera has one whose world is the picture: pixel (u, v) shows (u, v, 0), which is
/// (u, v, 1) in the view's frame.
class SceneCamera
{
public:
    /// \throws Failure when the camera has no focal lengths.
    explicit SceneCamera(const Scene &scene);

    /// True when the world is more than the picture.
    bool isCalibrated() const { return m_calibrated; }

    /// Where what the box encloses stands, in world coordinates with Z = 0; none above the horizon.
    std::optional<cv::Point3d> foot(const cv::Rect &box) const;
    /// How high it stands above its foot, in the units of the calibration: as high as the vertical line over
    /// the foot goes until it passes the box's top. 0 when that is not known.
    double height(const cv::Rect &box, const cv::Point3d &foot) const;

    /// A world point in the view's frame.
    cv::Point3d inView(const cv::Point3d &world) const;
    /// What the view is to project by.
    kelAbstractDataCalibrationWithDepth viewCalibration() const;
    /// a, b, c, d of the ground in the view's frame. Where there is no ground, a plane that is out of the
    /// picture.
    std::vector<double> groundPlane() const;

private:
    kelAbstractDataCalibration m_calibration;
    bool m_calibrated;
    cv::Matx34d m_projection; ///< world to homogeneous pixels
    cv::Point2d m_focal; ///< of the view's pinhole, in pixels
    cv::Point2d m_center; ///< its principal point
};

#endif
