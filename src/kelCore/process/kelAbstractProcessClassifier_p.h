#ifndef KELCORE_KELABSTRACTPROCESSCLASSIFIER_P_H
#define KELCORE_KELABSTRACTPROCESSCLASSIFIER_P_H

/// \file
/// State of kelAbstractProcessClassifier. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessClassifier.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessClassifierPrivate : public kelAbstractProcessPrivate
{
public:
    kelAbstractProcessClassifierPrivate() = default;
    /// Leaves the physical objects behind.
    kelAbstractProcessClassifierPrivate(const kelAbstractProcessClassifierPrivate &other)
        : kelAbstractProcessPrivate(other), calibration(other.calibration), blobs(other.blobs)
    { }

    QSharedPointer<kelAbstractDataCalibration> calibration; ///< Input.
    QList<QSharedPointer<kelDataBlob>> blobs; ///< Input.
    QList<QSharedPointer<kelDataPhysicalObject>> physicalObjects; ///< Output.
};

#endif
