#include <kelCore/geometry/kelGroundPoint.h>

#include <kelCore/geometry/kelProjection.h>

#include <opencv2/core.hpp>

namespace {

/// r2, from the third row of P.
double depthOf(const double *row, const cv::Point3d &p)
{
    return row[0] * p.x + row[1] * p.y + row[2] * p.z + row[3];
}

} // namespace

std::optional<cv::Point3d> kelGeometry::groundPoint(const cv::Mat &K, const cv::Mat &E,
                                                    const cv::Point2d &pixel)
{
    cv::Point3d point;
    if (!imageToWorld(K, E, pixel, 0, point))
        return std::nullopt;
    double row[4] = {}; // of P, added up as the matrix product does
    for (int i = 0; i < 4; ++i) {
        for (int c = 0; c < 4; ++c)
            row[c] += K.ptr<double>(2)[i] * E.ptr<double>(i)[c];
    }
    return depthOf(row, point) > 0 ? std::optional(point) : std::nullopt;
}

std::optional<cv::Point3d> kelGeometry::footPoint(const cv::Mat &K, const cv::Mat &E, const cv::Rect &box)
{
    return groundPoint(K, E, cv::Point2d(box.x + box.width / 2.0, double(box.y) + box.height));
}

bool kelGeometry::isInFront(const cv::Mat &P, const cv::Point3d &point)
{
    CV_Assert(P.dims == 2 && P.type() == CV_64FC1 && P.cols == 4 && P.rows >= 3);
    return depthOf(P.ptr<double>(2), point) > 0;
}
