#include <kelCore/process/kelAbstractProcessFeetDetection.h>
#include <kelCore/process/kelAbstractProcessFeetDetection_p.h>

#include <nubCore/nubNotice.h>

kelAbstractProcessFeetDetection::kelAbstractProcessFeetDetection()
    : kelAbstractProcess(*new kelAbstractProcessFeetDetectionPrivate)
{ }

kelAbstractProcessFeetDetection::kelAbstractProcessFeetDetection(const kelAbstractProcessFeetDetection &other)
    : kelAbstractProcess(*new kelAbstractProcessFeetDetectionPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessFeetDetection::kelAbstractProcessFeetDetection(kelAbstractProcessFeetDetectionPrivate &dd,
                                                                 QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessFeetDetection::~kelAbstractProcessFeetDetection() = default;

kelAbstractProcessFeetDetection *kelAbstractProcessFeetDetection::clone()
{
    return new kelAbstractProcessFeetDetection(*this);
}

void kelAbstractProcessFeetDetection::copy(const nubAbstractObject &other)
{
    kelAbstractProcess::copy(other);
    nub::sameIdentifierOrWarn(*this, other);
}

QString kelAbstractProcessFeetDetection::identifier() const
{
    return QStringLiteral("kelAbstractProcessFeetDetection");
}

void kelAbstractProcessFeetDetection::init()
{
    nub::defaultBody(this, "virtual void kelAbstractProcessFeetDetection::init()");
}

void kelAbstractProcessFeetDetection::setParameterFile(std::string)
{
    nub::defaultBody(this, "virtual void kelAbstractProcessFeetDetection::setParameterFile(std::string)");
}

void kelAbstractProcessFeetDetection::setActorList(ActorList)
{
    nub::defaultBody(
        this,
        "virtual void kelAbstractProcessFeetDetection::setActorList(std::list<QSharedPointer<const "
        "kelDataActor> >)");
}

std::map<int, std::pair<std::list<cv::Point3f> *, std::list<cv::Point3f> *>>
kelAbstractProcessFeetDetection::getLegsPoints()
{
    return nub::defaultBody<std::map<int, std::pair<std::list<cv::Point3f> *, std::list<cv::Point3f> *>>>(
        this,
        "virtual std::map<int, std::pair<std::list<cv::Point3_<float> >*, std::list<cv::Point3_<float> >*> > "
        "kelAbstractProcessFeetDetection::getLegsPoints()");
}

std::map<int, std::pair<cv::Point3f, cv::Point3f>> kelAbstractProcessFeetDetection::getFeetPositions()
{
    return nub::defaultBody<std::map<int, std::pair<cv::Point3f, cv::Point3f>>>(
        this,
        "virtual std::map<int, std::pair<cv::Point3_<float>, cv::Point3_<float> > > "
        "kelAbstractProcessFeetDetection::getFeetPositions()");
}

std::map<int, double> kelAbstractProcessFeetDetection::getSpeed()
{
    return nub::defaultBody<std::map<int, double>>(
        this, "virtual std::map<int, double> kelAbstractProcessFeetDetection::getSpeed()");
}

void kelAbstractProcessFeetDetection::computeFeetPositions(std::vector<double>)
{
    nub::defaultBody(
        this, "virtual void kelAbstractProcessFeetDetection::computeFeetPositions(std::vector<double>)");
}

void kelAbstractProcessFeetDetection::computeSpeeds(float)
{
    nub::defaultBody(this, "virtual void kelAbstractProcessFeetDetection::computeSpeeds(float)");
}
