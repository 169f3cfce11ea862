#ifndef KELCORE_KELABSTRACTPROCESSFAKETRACKER_H
#define KELCORE_KELABSTRACTPROCESSFAKETRACKER_H

/// \file
/// Stage interface: actors without tracking.

#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

class kelAbstractProcessFakeTrackerPrivate;

/// Stands in for a tracker: makes actors straight from the physical objects of a frame, so that the stages
/// behind it can be run alone.
///
/// Set the frame's time stamp with `setSynchronizer`, then call `setPhysicalObjs` and `getActors`, per frame.
/// There is no operation that computes: actors are made by either. Both have defaults that log a notice at
/// level 1; nothing is kept.
class KELCORE_EXPORT kelAbstractProcessFakeTracker : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessFakeTracker();
    /// Carries the base alone: there is nothing else.
    kelAbstractProcessFakeTracker(const kelAbstractProcessFakeTracker &other);
    ~kelAbstractProcessFakeTracker() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessFakeTracker &operator=(const kelAbstractProcessFakeTracker &other) = default;

    /// The objects of the current frame, which stay the caller's.
    virtual void setPhysicalObjs(const PhysicalObjs &objects);
    /// The actors of the current frame. Default: notice, none. The result is const, deliberately: overrides
    /// repeat it as it stands.
    virtual const ActorList getActors() const;

protected:
    explicit kelAbstractProcessFakeTracker(kelAbstractProcessFakeTrackerPrivate &dd,
                                           QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessFakeTracker)
};

#endif
