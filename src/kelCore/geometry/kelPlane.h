#ifndef KELCORE_KELPLANE_H
#define KELCORE_KELPLANE_H

/// \file
/// Planes in space: distance, projection, and the plane that fits points best.

#include <kelCore/kelCoreExport.h>

#include <opencv2/core/matx.hpp>
#include <opencv2/core/types.hpp>

#include <list>
#include <vector>

namespace kelGeometry {

/// (a, b, c, d) of the plane a x + b y + c z + d = 0, in the units of the points. The normal (a, b, c) may
/// have any length but 0, which gives infinities and not-a-numbers.
using Plane = cv::Vec4d;

/// |a x + b y + c z + d| / |(a, b, c)|.
KELCORE_EXPORT double distanceToPlane(const cv::Point3d &point, const Plane &plane);

/// The point of the plane that is nearest to `point`.
KELCORE_EXPORT cv::Point3d projectOntoPlane(const cv::Point3d &point, const Plane &plane);

/// The plane of least squares of distances through the vertices of all polygons: its normal is the direction
/// of least scatter about the mean m,
///
///     S = sum (p - m) (p - m)^T,   S n = smallest eigenvalue x n,   plane = (n, -n . m)
///
/// S is summed up in 32-bit floats. The normal has unit length, and the sign that `cv::eigen` gives it.
/// Without any vertex, d is not a number.
///
/// The polygons are read twice and not copied; nothing is allocated. A point costs less than `cv::PCA` of all
/// of them in one matrix takes for it.
KELCORE_EXPORT Plane fitPlane(const std::vector<const std::list<cv::Point3d> *> &polygons);

} // namespace kelGeometry

#endif
