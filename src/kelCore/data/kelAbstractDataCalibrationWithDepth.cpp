#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth_p.h>
#include <kelCore/data/kelDataContext_p.h>
#include <kelCore/geometry/internal/kelNameFilter.h>
#include <kelCore/geometry/kelDepthMap.h>
#include <kelCore/geometry/kelPlane.h>
#include <kelCore/geometry/kelProjection.h>

#include <nubCore/nubNotice.h>

#include <opencv2/core.hpp>

#include <QFile>

#include <cmath>
#include <iostream>
#include <utility>

namespace {

kelGeometry::Plane toPlane(const std::vector<double> &plane)
{
    return kelGeometry::Plane(plane[0], plane[1], plane[2], plane[3]);
}

} // namespace

kelAbstractDataCalibrationWithDepth::kelAbstractDataCalibrationWithDepth()
    : kelAbstractDataCalibrationWithDepth(*new kelAbstractDataCalibrationWithDepthPrivate)
{ }

kelAbstractDataCalibrationWithDepth::kelAbstractDataCalibrationWithDepth(
    const kelAbstractDataCalibrationWithDepth &other)
    : kelAbstractDataCalibrationWithDepth(*new kelAbstractDataCalibrationWithDepthPrivate(*other.d_func()),
                                          other.parent())
{ }

kelAbstractDataCalibrationWithDepth::kelAbstractDataCalibrationWithDepth(
    kelAbstractDataCalibrationWithDepthPrivate &dd, QObject *parent)
    : kelAbstractDataCalibration(dd, parent)
{ }

kelAbstractDataCalibrationWithDepth::~kelAbstractDataCalibrationWithDepth() = default;

kelAbstractDataCalibrationWithDepth &
kelAbstractDataCalibrationWithDepth::operator=(const kelAbstractDataCalibrationWithDepth &other)
{
    copy(static_cast<const kelAbstractDataCalibration &>(other));
    return *this;
}

kelAbstractDataCalibrationWithDepth *kelAbstractDataCalibrationWithDepth::clone()
{
    return new kelAbstractDataCalibrationWithDepth(*this);
}

QString kelAbstractDataCalibrationWithDepth::identifier() const
{
    return QStringLiteral("kelAbstractDataCalibrationWithDepth");
}

void kelAbstractDataCalibrationWithDepth::copy(const kelAbstractDataCalibration &other)
{
    kelAbstractDataCalibration::copy(other);
    if (const auto *depth = nub::sameKindOrWarn<kelAbstractDataCalibrationWithDepth>(*this, other))
        setDepthInformation(depth->getDepthInformation());
}

cv::Point3d kelAbstractDataCalibrationWithDepth::imageToWorld(const cv::Point2d &pixel)
{
    return kelGeometry::imageToCamera(d_func()->intrinsicMatrix, pixel, depthVal(pixel.x, pixel.y));
}

cv::Point2d kelAbstractDataCalibrationWithDepth::worldToImage(const cv::Point3d &point)
{
    return kelGeometry::cameraToImage(d_func()->intrinsicMatrix, point);
}

void kelAbstractDataCalibrationWithDepth::setDepthInformation(const cv::Mat &depth)
{
    d_func()->depthInformation = depth;
}

void kelAbstractDataCalibrationWithDepth::setDepthInformation(const QString &fileName)
{
    const auto found =
        kelGeometry::readDepthFile(QFile::encodeName(fileName).toStdString(), d_func()->depthInformation);
    CV_Assert(found != kelGeometry::DepthFile::NoSize);
    std::cout << "Depth RAW file read successfully" << std::endl;
}

const cv::Mat &kelAbstractDataCalibrationWithDepth::getDepthInformation() const
{
    return d_func()->depthInformation;
}

float kelAbstractDataCalibrationWithDepth::depthVal(double u, double v)
{
    return kelGeometry::depthAt(d_func()->depthInformation, u, v);
}

void kelAbstractDataCalibrationWithDepth::setListContextObjectsForbiddenInPlanComputation(std::string list)
{
    d_func()->contextObjectsForbidden = std::move(list);
}

std::string kelAbstractDataCalibrationWithDepth::getListContextObjectsForbiddenInPlanComputation()
{
    return d_func()->contextObjectsForbidden;
}

double kelAbstractDataCalibrationWithDepth::computePointDistanceToPlane(cv::Point3d p,
                                                                        std::vector<double> &plane)
{
    if (plane.size() < 3)
        return 0.0;
    static_cast<void>(plane.at(3)); // Three coefficients pass the test above, and throw here.
    return kelGeometry::distanceToPlane(p, toPlane(plane));
}

double kelAbstractDataCalibrationWithDepth::vectorMagnitude(cv::Point3d v)
{
    return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

cv::Point3d kelAbstractDataCalibrationWithDepth::pointProjectionOntoPlane(cv::Point3d p,
                                                                          std::vector<double> &plane)
{
    return kelGeometry::projectOntoPlane(p, toPlane(plane));
}

std::vector<double>
kelAbstractDataCalibrationWithDepth::computePlaneEquationFromContextualObjects(const kelDataContext *context)
{
    if (!context)
        return {};
    kelNameFilter forbidden(d_func()->contextObjectsForbidden);
    std::vector<const std::list<cv::Point3d> *> polygons;
    for (const ContextElement &element : kelDataContextPrivate::elementsOf(*context)) {
        if (forbidden.takes(element.name))
            continue;
        element.displayObject();
        polygons.push_back(&element.polygonVertices);
    }
    if (polygons.empty())
        return {};
    const kelGeometry::Plane plane = kelGeometry::fitPlane(polygons);
    return {plane[0], plane[1], plane[2], plane[3]};
}
