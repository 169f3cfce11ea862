#include <kelCore/process/kelAbstractProcessFakeTracker.h>
#include <kelCore/process/kelAbstractProcessFakeTracker_p.h>

#include <nubCore/nubNotice.h>

kelAbstractProcessFakeTracker::kelAbstractProcessFakeTracker()
    : kelAbstractProcess(*new kelAbstractProcessFakeTrackerPrivate)
{ }

kelAbstractProcessFakeTracker::kelAbstractProcessFakeTracker(const kelAbstractProcessFakeTracker &other)
    : kelAbstractProcess(*new kelAbstractProcessFakeTrackerPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessFakeTracker::kelAbstractProcessFakeTracker(kelAbstractProcessFakeTrackerPrivate &dd,
                                                             QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessFakeTracker::~kelAbstractProcessFakeTracker() = default;

void kelAbstractProcessFakeTracker::setPhysicalObjs(const PhysicalObjs &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessFakeTracker::setPhysicalObjs(const PhysicalObjs&)");
}

const ActorList kelAbstractProcessFakeTracker::getActors() const
{
    return nub::defaultBody<ActorList>(this,
                                       "virtual const std::list<QSharedPointer<const kelDataActor> > "
                                       "kelAbstractProcessFakeTracker::getActors() const");
}
