#ifndef KELCORE_KELGROUNDPOINT_H
#define KELCORE_KELGROUNDPOINT_H

/// \file
/// Where on the ground stands what the image shows.

#include <kelCore/kelCoreExport.h>

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

#include <optional>

namespace kelGeometry {

// K, E, units, axes and errors are those of kelProjection.h; the ground is the plane Z = 0. Nothing is
// allocated.

/// The point of the ground that a pixel shows; none for a pixel on or above the horizon, whose ray meets the
/// ground nowhere or behind the camera.
KELCORE_EXPORT std::optional<cv::Point3d> groundPoint(const cv::Mat &K, const cv::Mat &E,
                                                      const cv::Point2d &pixel);

/// The point of the ground on which what a box of the image encloses stands: the one that the middle of the
/// box's lower edge shows.
KELCORE_EXPORT std::optional<cv::Point3d> footPoint(const cv::Mat &K, const cv::Mat &E, const cv::Rect &box);

/// Whether the camera of the projection matrix P (three or four rows of four doubles) looks towards the
/// point: r2 of kelProjection.h is positive.
KELCORE_EXPORT bool isInFront(const cv::Mat &P, const cv::Point3d &point);

} // namespace kelGeometry

#endif
