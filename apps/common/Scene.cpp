#include "common/Scene.h"

#include "common/Program.h"

#include <kelCore/data/kelDataContext.h>

#include <opencv2/core.hpp>

#include <QFileInfo>

namespace {

void mustBeReadable(const QString &path, const char *what)
{
    if (!QFileInfo(path).isFile() || !QFileInfo(path).isReadable())
        throw Failure(QStringLiteral("the %1 file %2 cannot be read").arg(QLatin1String(what), path));
}

std::list<ContextElement> readContext(const QString &path)
{
    mustBeReadable(path, "context");
    kelDataContext context;
    try {
        context.read(path);
    } catch (const cv::Exception &) {
        throw Failure(
            QStringLiteral("%1 holds no context: it needs a list of maps named contextList").arg(path));
    }
    return context.getContext();
}

} // namespace

Scene::Scene(const QString &calibration, const QString &context)
{
    if (calibration.isEmpty() && !context.isEmpty())
        throw misuse(QStringLiteral("--context is drawn with the help of --calibration"));
    if (!calibration.isEmpty())
        camera = std::make_shared<const kelAbstractDataCalibration>(readCalibration(calibration));
    if (!context.isEmpty())
        elements = readContext(context);
}

kelAbstractDataCalibration readCalibration(const QString &path)
{
    mustBeReadable(path, "calibration");
    kelAbstractDataCalibration calibration;
    try {
        calibration.read(path);
        calibration.worldToImage(cv::Point3d(0, 0, 0));
    } catch (const cv::Exception &) {
        throw Failure(
            QStringLiteral(
                "%1 holds no camera: it needs intrinsicMatrix (3x4) and extrinsicMatrix (4x4), both of "
                "doubles")
                .arg(path));
    }
    return calibration;
}

std::optional<cv::Point3d> groundPoint(const kelAbstractDataCalibration &camera, const cv::Point2d &pixel)
{
    try {
        const cv::Point3d point = camera.imageToWorld(pixel, 0);
        return isInFront(camera.getCalibration(), point) ? std::optional(point) : std::nullopt;
    } catch (int) { // the ray is parallel to the ground
        return std::nullopt;
    }
}

std::optional<cv::Point3d> footPoint(const kelAbstractDataCalibration &camera, const cv::Rect &box)
{
    return groundPoint(camera, {box.x + box.width / 2.0, double(box.y) + box.height});
}

bool isInFront(const cv::Mat &projection, const cv::Point3d &p)
{
    const double *row = projection.ptr<double>(2);
    return row[0] * p.x + row[1] * p.y + row[2] * p.z + row[3] > 0;
}
