#include <kelCore/process/kelAbstractProcessGroupTracker.h>
#include <kelCore/process/kelAbstractProcessGroupTracker_p.h>

#include <utility>

kelAbstractProcessGroupTracker::kelAbstractProcessGroupTracker()
    : kelAbstractProcess(*new kelAbstractProcessGroupTrackerPrivate)
{ }

kelAbstractProcessGroupTracker::kelAbstractProcessGroupTracker(const kelAbstractProcessGroupTracker &other)
    : kelAbstractProcess(*new kelAbstractProcessGroupTrackerPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessGroupTracker::kelAbstractProcessGroupTracker(kelAbstractProcessGroupTrackerPrivate &dd,
                                                               QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessGroupTracker::~kelAbstractProcessGroupTracker() = default;

void kelAbstractProcessGroupTracker::setParameterFile(const std::string &file)
{
    d_func()->parameterFile = file;
}

void kelAbstractProcessGroupTracker::setFrame(QSharedPointer<kelDataImage> frame)
{
    d_func()->frame = std::move(frame);
}

void kelAbstractProcessGroupTracker::setActors(QList<QSharedPointer<kelDataActor>> &actors)
{
    d_func()->actors = actors;
}

QList<QSharedPointer<kelDataActor>> &kelAbstractProcessGroupTracker::getActors() { return d_func()->actors; }

void kelAbstractProcessGroupTracker::setCalibration(QSharedPointer<kelAbstractDataCalibration> &calibration)
{
    d_func()->calibration = calibration;
}

void kelAbstractProcessGroupTracker::setContext(QSharedPointer<kelDataContext> &context)
{
    d_func()->context = context;
}

const QSharedPointer<kelAbstractDataCalibration> &kelAbstractProcessGroupTracker::getCalibration() const
{
    return d_func()->calibration;
}

const QSharedPointer<kelDataContext> &kelAbstractProcessGroupTracker::getContext() const
{
    return d_func()->context;
}

const QSharedPointer<kelDataImage> &kelAbstractProcessGroupTracker::getFrame() const
{
    return d_func()->frame;
}

const std::string &kelAbstractProcessGroupTracker::getParameterFile() const
{
    return d_func()->parameterFile;
}
