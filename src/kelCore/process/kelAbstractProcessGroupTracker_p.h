#ifndef KELCORE_KELABSTRACTPROCESSGROUPTRACKER_P_H
#define KELCORE_KELABSTRACTPROCESSGROUPTRACKER_P_H

/// \file
/// State of kelAbstractProcessGroupTracker. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessGroupTracker.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessGroupTrackerPrivate : public kelAbstractProcessPrivate
{
public:
    QSharedPointer<kelAbstractDataCalibration> calibration; ///< Input.
    QSharedPointer<kelDataContext> context; ///< Input.
    QList<QSharedPointer<kelDataActor>> actors; ///< Input and output.
    QSharedPointer<kelDataImage> frame; ///< Input.
    std::string parameterFile; ///< Input: a path.
};

#endif
