#ifndef KELCORE_KELDEPTHMAP_H
#define KELCORE_KELDEPTHMAP_H

/// \file
/// Depth maps, and the raw files of depth sensors.

#include <kelCore/kelCoreExport.h>

#include <opencv2/core/mat.hpp>

#include <string>

namespace kelGeometry {

/// Depth of the pixel in column (int) u and row (int) v of a map of 32-bit floats, in the units of the map; 0
/// means none. The pixel must be inside the map: this is not checked. A map of another type has no depth
/// anywhere.
inline float depthAt(const cv::Mat &map, double u, double v)
{
    const bool holdsDepth = map.dims <= 2 && map.type() == CV_32FC1;
    return holdsDepth ? map.ptr<float>(static_cast<int>(v))[static_cast<int>(u)] : 0.0f;
}

/// What came of reading a depth file.
enum class DepthFile
{
    Read, ///< The map holds the file.
    Short, ///< So it does, and -1 where the file ended.
    NotOpened, ///< The map is as it was.
    NoSize, ///< The file is too short for a header, or counts rows below 0. The map is as it was.
    DoesNotFit ///< The file is wider than the map, or the map does not hold 32-bit floats: it is as it was.
};

/// Reads a raw depth file into `map`: two 32-bit integers, H rows and W columns, then H W 32-bit floats row by
/// row, in the machine's byte order. There is no magic number, and what follows is ignored.
///
/// The map gets H rows and keeps its columns: columns from W on keep what they held, new rows of them are 0.
/// It gets a buffer of its own unless it has one of the right size that nobody shares.
///
/// Costs little more than reading the file at once. The header is not believed: where it claims over 16 MB
/// more than the file holds, the elements that are left out share a little memory until somebody writes to
/// them.
/// \param path  as the file system takes it.
/// \throws cv::Exception when memory does not suffice; the map is as it was.
KELCORE_EXPORT DepthFile readDepthFile(const std::string &path, cv::Mat &map);

} // namespace kelGeometry

#endif
