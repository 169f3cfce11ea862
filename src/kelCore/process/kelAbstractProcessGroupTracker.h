#ifndef KELCORE_KELABSTRACTPROCESSGROUPTRACKER_H
#define KELCORE_KELABSTRACTPROCESSGROUPTRACKER_H

/// \file
/// Stage interface: following groups of people.

#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

#include <string>

class kelAbstractDataCalibration;
class kelAbstractProcessGroupTrackerPrivate;
class kelDataActor;
class kelDataContext;
class kelDataImage;

/// Finds out which actors walk together.
///
/// Call `setParameterFile`, `setCalibration`, `setContext` and `init` once; then, per frame, `setFrame`,
/// `setActors` and `trackGroups`. After it `getActors` gives the actors, groups among them.
class KELCORE_EXPORT kelAbstractProcessGroupTracker : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessGroupTracker();
    /// Carries everything; calibration, context, actors and frame are shared.
    kelAbstractProcessGroupTracker(const kelAbstractProcessGroupTracker &other);
    ~kelAbstractProcessGroupTracker() override;

    virtual void setParameterFile(const std::string &file);
    virtual void setFrame(QSharedPointer<kelDataImage> frame);
    /// Replaces the list by the caller's. The actors are shared, and updated in place.
    virtual void setActors(QList<QSharedPointer<kelDataActor>> &actors);
    /// Makes the stage ready for the first frame, with parameters, calibration and context; false when it
    /// cannot work with them.
    virtual bool init() = 0;
    /// Updates the stage's list of actors from the frame; false when there is no frame.
    virtual bool trackGroups() = 0;
    /// The stage's own list, which `trackGroups` updates in place.
    virtual QList<QSharedPointer<kelDataActor>> &getActors();

    void setCalibration(QSharedPointer<kelAbstractDataCalibration> &calibration);
    void setContext(QSharedPointer<kelDataContext> &context);

protected:
    explicit kelAbstractProcessGroupTracker(kelAbstractProcessGroupTrackerPrivate &dd,
                                            QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessGroupTracker)
};

#endif
