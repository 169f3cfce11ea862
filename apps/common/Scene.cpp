#include "common/Scene.h"

#include "common/CpuTimeLimit.h"
#include "common/Failure.h"
#include "common/RegularFile.h"

#include <kelCore/data/kelDataContext.h>
#include <kelCore/geometry/kelGroundPoint.h>

#include <opencv2/core.hpp>

namespace {

/// Has `read` parse the file at `path`. The parser throws whatever it meets on damaged files.
/// \param needed what the file must hold, in words.
template <class Read>
void readParsed(const QString &path, const QString &what, const QString &needed, Read read)
{
    mustBeReadableFile(path, what);
    const QString holdsNone = QStringLiteral("%1 holds no %2: it needs %3").arg(path, what, needed);
    const int seconds = 3; // such a file is read in milliseconds
    const CpuTimeLimit limit(seconds, holdsNone + QStringLiteral(", and the parser finds no end in it"));
    try {
        read();
    } catch (const std::exception &) {
        throw Failure(holdsNone);
    }
}

std::list<ContextElement> readContext(const QString &path)
{
    kelDataContext context;
    readParsed(path, QStringLiteral("context"), QStringLiteral("a list of maps named contextList"),
               [&] { context.read(path); });
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
    kelAbstractDataCalibration calibration;
    readParsed(path, QStringLiteral("calibration"),
               QStringLiteral("intrinsicMatrix (3x4) and extrinsicMatrix (4x4), both of doubles"), [&] {
                   calibration.read(path);
                   calibration.worldToImage(cv::Point3d(0, 0, 0)); // throws where it cannot project
               });
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
