#include <kelCore/process/kelAbstractProcessFrameToFrameTracker.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker_p.h>

kelAbstractProcessFrameToFrameTracker::kelAbstractProcessFrameToFrameTracker()
    : kelAbstractProcess(*new kelAbstractProcessFrameToFrameTrackerPrivate)
{ }

kelAbstractProcessFrameToFrameTracker::kelAbstractProcessFrameToFrameTracker(
    const kelAbstractProcessFrameToFrameTracker &other)
    : kelAbstractProcess(*new kelAbstractProcessFrameToFrameTrackerPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessFrameToFrameTracker::kelAbstractProcessFrameToFrameTracker(
    kelAbstractProcessFrameToFrameTrackerPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessFrameToFrameTracker::~kelAbstractProcessFrameToFrameTracker() = default;
