#ifndef KELCORE_KELCONVEXENVELOPE_H
#define KELCORE_KELCONVEXENVELOPE_H

/// \file
/// The polygon around points of an image.

#include <opencv2/core/types.hpp>

#include <list>
#include <vector>

/// The closed convex polygon around the points: it begins and ends with the topmost, and goes on by falling
/// angle. Empty for no points. Computed in double: no coordinate is too large for it. Takes O(n log n).
std::vector<cv::Point> kelConvexEnvelope(std::list<cv::Point> points);

#endif
