#include "common/Scene.h"

#include "common/Program.h"

#include <kelCore/data/kelDataContext.h>
#include <kelCore/geometry/kelGroundPoint.h>

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
    return kelGeometry::groundPoint(camera.getIntrinsicMatrix(), camera.getExtrinsicMatrix(), pixel);
}

std::optional<cv::Point3d> footPoint(const kelAbstractDataCalibration &camera, const cv::Rect &box)
{
    return kelGeometry::footPoint(camera.getIntrinsicMatrix(), camera.getExtrinsicMatrix(), box);
}

bool isInFront(const cv::Mat &projection, const cv::Point3d &p)
{
    return kelGeometry::isInFront(projection, p);
}
