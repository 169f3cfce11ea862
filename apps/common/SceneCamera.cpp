#include "common/SceneCamera.h"

#include "common/Failure.h"
#include "common/Scene.h"

#include <opencv2/core.hpp>

#include <cmath>

namespace {

/// The world is the picture, one unit in front of a camera of focal length 1.
kelAbstractDataCalibration pixelCamera()
{
    kelAbstractDataCalibration camera;
    camera.setIntrinsicMatrix(cv::Mat::eye(3, 4, CV_64F));
    cv::Mat extrinsic = cv::Mat::eye(4, 4, CV_64F);
    extrinsic.at<double>(2, 3) = 1;
    camera.setExtrinsicMatrix(extrinsic);
    return camera;
}

} // namespace

SceneCamera::SceneCamera(const Scene &scene)
    : m_calibration(scene.camera ? *scene.camera : pixelCamera()), m_calibrated(scene.camera != nullptr),
      m_projection(cv::Mat(m_calibration.getCalibration().rowRange(0, 3)))
{
    const cv::Mat &intrinsic = m_calibration.getIntrinsicMatrix();
    m_focal = {intrinsic.at<double>(0, 0), intrinsic.at<double>(1, 1)};
    m_center = {intrinsic.at<double>(0, 2), intrinsic.at<double>(1, 2)};
    if (!std::isnormal(m_focal.x) || !std::isnormal(m_focal.y))
        throw Failure(
            QStringLiteral("--view rgbd needs a camera with focal lengths: elements (0,0) and (1,1) of "
                           "its intrinsicMatrix"));
}

std::optional<cv::Point3d> SceneCamera::foot(const cv::Rect &box) const
{
    return footPoint(m_calibration, box);
}

double SceneCamera::height(const cv::Rect &box, const cv::Point3d &foot) const
{
    if (!m_calibrated)
        return 0;
    // fy y / z = top - cy, with y and z along the vertical line.
    const cv::Point3d start = inView(foot);
    const cv::Point3d up = inView(foot + cv::Point3d(0, 0, 1)) - start;
    const double top = box.y - m_center.y;
    const double height = (top * start.z - m_focal.y * start.y) / (m_focal.y * up.y - top * up.z);
    return std::isfinite(height) && height > 0 && start.z + height * up.z > 0 ? height : 0;
}

cv::Point3d SceneCamera::inView(const cv::Point3d &world) const
{
    const cv::Vec3d p = m_projection * cv::Vec4d(world.x, world.y, world.z, 1);
    return {(p[0] - m_center.x * p[2]) / m_focal.x, (p[1] - m_center.y * p[2]) / m_focal.y, p[2]};
}

kelAbstractDataCalibrationWithDepth SceneCamera::viewCalibration() const
{
    kelAbstractDataCalibrationWithDepth calibration;
    calibration.setIntrinsicMatrix((cv::Mat_<double>(3, 4) << m_focal.x, 0, m_center.x, 0, //
                                    0, m_focal.y, m_center.y, 0, //
                                    0, 0, 1, 0));
    return calibration;
}

std::vector<double> SceneCamera::groundPlane() const
{
    if (!m_calibrated)
        return {0, 1, 0, 1e9};
    const cv::Point3d origin = inView({0, 0, 0});
    const cv::Point3d normal = (inView({1, 0, 0}) - origin).cross(inView({0, 1, 0}) - origin);
    return {normal.x, normal.y, normal.z, -normal.dot(origin)};
}
