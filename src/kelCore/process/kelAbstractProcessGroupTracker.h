#ifndef KELCORE_KELABSTRACTPROCESSGROUPTRACKER_H
#define KELCORE_KELABSTRACTPROCESSGROUPTRACKER_H

/// \file
/// Stage interface: following groups of people.

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

#include <string>

class kelAbstractProcessGroupTrackerPrivate;

/// Finds out which actors walk together.
///
/// Call `setParameterFile`, `setCalibration`, `setContext` and `init` once; then, per frame, `setFrame`,
/// `setActors` and `trackGroups`, in the order of the frames. After it `getActors` gives the actors, groups
/// among them.
class KELCORE_EXPORT kelAbstractProcessGroupTracker : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessGroupTracker();
    /// Carries everything; calibration, context, actors and frame are shared.
    kelAbstractProcessGroupTracker(const kelAbstractProcessGroupTracker &other);
    ~kelAbstractProcessGroupTracker() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessGroupTracker &operator=(const kelAbstractProcessGroupTracker &other) = default;

    /// Keeps the path; `init` reads the file.
    virtual void setParameterFile(const std::string &file);
    /// The frame that the actors stand in.
    virtual void setFrame(QSharedPointer<kelDataImage> frame);
    /// Replaces the list by the caller's. The actors are shared, and updated in place.
    virtual void setActors(QList<QSharedPointer<kelDataActor>> &actors);
    /// Makes the stage ready for the first frame, with parameters, calibration and context; false when it
    /// cannot work with them.
    virtual bool init() = 0;
    /// Updates the stage's list of actors from the frame; false when there is no frame.
    virtual bool trackGroups() = 0;
    /// The stage's own list: what `setActors` was given, and what `trackGroups` made of it in place.
    virtual QList<QSharedPointer<kelDataActor>> &getActors();

    void setCalibration(QSharedPointer<kelAbstractDataCalibration> &calibration);
    void setContext(QSharedPointer<kelDataContext> &context);

protected:
    /// Null until set.
    const QSharedPointer<kelAbstractDataCalibration> &getCalibration() const;
    /// Null until set.
    const QSharedPointer<kelDataContext> &getContext() const;
    /// Null until set.
    const QSharedPointer<kelDataImage> &getFrame() const;
    /// A path; empty until set.
    const std::string &getParameterFile() const;

    explicit kelAbstractProcessGroupTracker(kelAbstractProcessGroupTrackerPrivate &dd,
                                            QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessGroupTracker)
};

#endif
