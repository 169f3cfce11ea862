#ifndef KELCORE_KELABSTRACTPROCESSREACQUISITION_P_H
#define KELCORE_KELABSTRACTPROCESSREACQUISITION_P_H

/// \file
/// State of kelAbstractProcessReAcquisition. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessReAcquisition.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessReAcquisitionPrivate : public kelAbstractProcessPrivate
{
public:
    kelAbstractProcessReAcquisitionPrivate() = default;
    /// Leaves the path and the output behind.
    kelAbstractProcessReAcquisitionPrivate(const kelAbstractProcessReAcquisitionPrivate &other)
        : kelAbstractProcessPrivate(other), image(other.image), inputActors(other.inputActors)
    { }

    QSharedPointer<kelDataImage> image; ///< Input.
    QList<QSharedPointer<kelDataActor>> inputActors; ///< Input.
    std::string mtsPath; ///< Input.
    QList<QSharedPointer<kelDataActor>> outputActors; ///< Output.
};

#endif
