#include <kelCore/process/kelAbstractProcessDepthSegmentation.h>
#include <kelCore/process/kelAbstractProcessDepthSegmentation_p.h>

#include <nubCore/nubNotice.h>

kelAbstractProcessDepthSegmentation::kelAbstractProcessDepthSegmentation()
    : kelAbstractProcess(*new kelAbstractProcessDepthSegmentationPrivate)
{ }

kelAbstractProcessDepthSegmentation::kelAbstractProcessDepthSegmentation(
    const kelAbstractProcessDepthSegmentation &other)
    : kelAbstractProcess(*new kelAbstractProcessDepthSegmentationPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessDepthSegmentation::kelAbstractProcessDepthSegmentation(
    kelAbstractProcessDepthSegmentationPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessDepthSegmentation::~kelAbstractProcessDepthSegmentation() = default;

void kelAbstractProcessDepthSegmentation::setColorImg(const kelDataImage &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessDepthSegmentation::setColorImg(const kelDataImage&)");
}

void kelAbstractProcessDepthSegmentation::setDepthImg(const kelDataImage &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessDepthSegmentation::setDepthImg(const kelDataImage&)");
}

void kelAbstractProcessDepthSegmentation::setParameterFile(const std::string &, std::string)
{
    nub::defaultBody(
        this,
        "virtual void kelAbstractProcessDepthSegmentation::setParameterFile(const string&, std::string)");
}

void kelAbstractProcessDepthSegmentation::setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth *)
{
    nub::defaultBody(
        this,
        "virtual void "
        "kelAbstractProcessDepthSegmentation::setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth*)");
}

void kelAbstractProcessDepthSegmentation::computeEquationPlan(const kelDataContext *)
{
    nub::defaultBody(
        this, "virtual void kelAbstractProcessDepthSegmentation::computeEquationPlan(const kelDataContext*)");
}

void kelAbstractProcessDepthSegmentation::getPhysicalObjs(PhysicalObjs &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessDepthSegmentation::getPhysicalObjs(PhysicalObjs&)");
}

void kelAbstractProcessDepthSegmentation::getBackgroundDepthMap(cv::Mat &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessDepthSegmentation::getBackgroundDepthMap(cv::Mat&)");
}

void kelAbstractProcessDepthSegmentation::adjustBoundingBox3d(PhysicalObjs &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessDepthSegmentation::adjustBoundingBox3d(PhysicalObjs&)");
}

void kelAbstractProcessDepthSegmentation::saveBackground(const std::string &)
{
    nub::defaultBody(this, "virtual void kelAbstractProcessDepthSegmentation::saveBackground(const string&)");
}
