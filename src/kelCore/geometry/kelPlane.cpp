#include <kelCore/geometry/kelPlane.h>

#include <opencv2/core.hpp>

#include <cmath>

namespace {

double dot(const kelGeometry::Plane &plane, const cv::Point3d &p)
{
    return plane[0] * p.x + plane[1] * p.y + plane[2] * p.z;
}

double squaredNorm(const kelGeometry::Plane &plane)
{
    return plane[0] * plane[0] + plane[1] * plane[1] + plane[2] * plane[2];
}

using Polygons = std::vector<const std::list<cv::Point3d> *>;

cv::Point3d meanOf(const Polygons &polygons)
{
    cv::Point3d sum;
    double count = 0;
    for (const auto *polygon : polygons) {
        for (const cv::Point3d &vertex : *polygon) {
            sum += vertex;
            ++count;
        }
    }
    return cv::Point3d(sum.x / count, sum.y / count, sum.z / count);
}

/// Direction of least scatter. Products and sums are rounded to floats one by one, as 3 x 1 times 1 x 3
/// matrix products added to a matrix of floats are.
cv::Point3d normalOf(const Polygons &polygons, const cv::Point3d &mean)
{
    float xx = 0, xy = 0, xz = 0, yy = 0, yz = 0, zz = 0;
    for (const auto *polygon : polygons) {
        for (const cv::Point3d &vertex : *polygon) {
            const float x = static_cast<float>(vertex.x - mean.x);
            const float y = static_cast<float>(vertex.y - mean.y);
            const float z = static_cast<float>(vertex.z - mean.z);
            xx += x * x;
            xy += x * y;
            xz += x * z;
            yy += y * y;
            yz += y * z;
            zz += z * z;
        }
    }
    const cv::Matx33f scatter(xx, xy, xz, xy, yy, yz, xz, yz, zz);
    cv::Matx31f values;
    cv::Matx33f vectors;
    cv::eigen(scatter, values, vectors);
    return cv::Point3d(vectors(2, 0), vectors(2, 1), vectors(2, 2));
}

} // namespace

double kelGeometry::distanceToPlane(const cv::Point3d &point, const Plane &plane)
{
    return std::abs(dot(plane, point) + plane[3]) / std::sqrt(squaredNorm(plane));
}

cv::Point3d kelGeometry::projectOntoPlane(const cv::Point3d &point, const Plane &plane)
{
    const double t = -(dot(plane, point) + plane[3]) / squaredNorm(plane);
    return cv::Point3d(point.x + t * plane[0], point.y + t * plane[1], point.z + t * plane[2]);
}

kelGeometry::Plane kelGeometry::fitPlane(const std::vector<const std::list<cv::Point3d> *> &polygons)
{
    const cv::Point3d mean = meanOf(polygons);
    const cv::Point3d n = normalOf(polygons, mean);
    return Plane(n.x, n.y, n.z, -(n.x * mean.x + n.y * mean.y + n.z * mean.z));
}
