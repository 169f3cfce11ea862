#ifndef KELCORE_KELABSTRACTPROCESSPEOPLEDETECTOR_P_H
#define KELCORE_KELABSTRACTPROCESSPEOPLEDETECTOR_P_H

/// \file
/// State of kelAbstractProcessPeopleDetector. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessPeopleDetector.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessPeopleDetectorPrivate : public kelAbstractProcessPrivate
{
public:
    kelAbstractProcessPeopleDetectorPrivate() = default;
    /// Leaves the image behind.
    kelAbstractProcessPeopleDetectorPrivate(const kelAbstractProcessPeopleDetectorPrivate &other)
        : kelAbstractProcessPrivate(other)
    { }

    kelDataImage image; ///< Input.
};

#endif
