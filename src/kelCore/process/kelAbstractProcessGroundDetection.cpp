#include <kelCore/process/kelAbstractProcessGroundDetection.h>
#include <kelCore/process/kelAbstractProcessGroundDetection_p.h>

#include <nubCore/nubNotice.h>

kelAbstractProcessGroundDetection::kelAbstractProcessGroundDetection()
    : kelAbstractProcess(*new kelAbstractProcessGroundDetectionPrivate)
{ }

kelAbstractProcessGroundDetection::kelAbstractProcessGroundDetection(
    const kelAbstractProcessGroundDetection &other)
    : kelAbstractProcess(*new kelAbstractProcessGroundDetectionPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessGroundDetection::kelAbstractProcessGroundDetection(
    kelAbstractProcessGroundDetectionPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessGroundDetection::~kelAbstractProcessGroundDetection() = default;

kelAbstractProcessGroundDetection *kelAbstractProcessGroundDetection::clone()
{
    return new kelAbstractProcessGroundDetection(*this);
}

void kelAbstractProcessGroundDetection::copy(const nubAbstractObject &other)
{
    kelAbstractProcess::copy(other);
    nub::sameIdentifierOrWarn(*this, other);
}

QString kelAbstractProcessGroundDetection::identifier() const
{
    return QStringLiteral("kelAbstractProcessGroundDetection");
}

void kelAbstractProcessGroundDetection::setParameterFile(std::string)
{
    nub::defaultBody(this, "virtual void kelAbstractProcessGroundDetection::setParameterFile(std::string)");
}

void kelAbstractProcessGroundDetection::computeGroundPlaneFromDepthMap(cv::Mat)
{
    nub::defaultBody(
        this, "virtual void kelAbstractProcessGroundDetection::computeGroundPlaneFromDepthMap(cv::Mat)");
}

void kelAbstractProcessGroundDetection::setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth)
{
    nub::defaultBody(
        this,
        "virtual void "
        "kelAbstractProcessGroundDetection::setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth)");
}

std::vector<double> kelAbstractProcessGroundDetection::getGroundPlaneEquationCoef()
{
    return nub::defaultBody<std::vector<double>>(
        this, "virtual std::vector<double> kelAbstractProcessGroundDetection::getGroundPlaneEquationCoef()");
}

std::list<cv::Point3f> kelAbstractProcessGroundDetection::getGroundPlanePoints()
{
    return nub::defaultBody<std::list<cv::Point3f>>(
        this,
        "virtual std::list<cv::Point3_<float> > kelAbstractProcessGroundDetection::getGroundPlanePoints()");
}

std::vector<double> kelAbstractProcessGroundDetection::getShiftedGroundPlaneEquationCoef(float)
{
    return nub::defaultBody<std::vector<double>>(
        this,
        "virtual std::vector<double> "
        "kelAbstractProcessGroundDetection::getShiftedGroundPlaneEquationCoef(float)");
}

std::list<cv::Point3f> kelAbstractProcessGroundDetection::getShiftedGroundPlanePoints(float)
{
    return nub::defaultBody<std::list<cv::Point3f>>(
        this,
        "virtual std::list<cv::Point3_<float> > "
        "kelAbstractProcessGroundDetection::getShiftedGroundPlanePoints(float)");
}
