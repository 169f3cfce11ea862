#ifndef KELCORE_KELABSTRACTPROCESSFRAMETOFRAMETRACKER_H
#define KELCORE_KELABSTRACTPROCESSFRAMETOFRAMETRACKER_H

/// \file
/// Stage interface: following objects from one frame to the next.

#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

#include <QList>
#include <QSharedPointer>

class kelAbstractProcessFrameToFrameTrackerPrivate;

/// Turns the physical objects of successive frames into actors.
///
/// Set the frame's time stamp with `setSynchronizer`; then call `setPhysicalObjects`, `track` and
/// `getActors`, per frame and in the order of the frames.
class KELCORE_EXPORT kelAbstractProcessFrameToFrameTracker : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessFrameToFrameTracker();
    /// Carries the base alone: there is nothing else.
    kelAbstractProcessFrameToFrameTracker(const kelAbstractProcessFrameToFrameTracker &other);
    ~kelAbstractProcessFrameToFrameTracker() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessFrameToFrameTracker &
    operator=(const kelAbstractProcessFrameToFrameTracker &other) = default;

    /// The objects of the current frame, which stay the caller's: a stage copies what it needs by `push_back`
    /// or construction, because assigning physical objects prints a line for each.
    virtual void setPhysicalObjects(const PhysicalObjs &objects) = 0;
    /// Matches the objects with those of the frame before: known actors get their new position, objects that
    /// match none become new actors. False when the frame cannot be matched; the actors then stay as they
    /// were.
    virtual bool track() = 0;
    /// The actors of the current frame, shared: the stages behind update them in place.
    virtual QList<QSharedPointer<kelDataActor>> getActors() = 0;

protected:
    explicit kelAbstractProcessFrameToFrameTracker(kelAbstractProcessFrameToFrameTrackerPrivate &dd,
                                                   QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessFrameToFrameTracker)
};

#endif
