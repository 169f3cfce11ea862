#ifndef KELCORE_KELABSTRACTPROCESSACQUISITION_P_H
#define KELCORE_KELABSTRACTPROCESSACQUISITION_P_H

/// \file
/// State of kelAbstractProcessAcquisition. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessAcquisition.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessAcquisitionPrivate : public kelAbstractProcessPrivate
{
public:
    QSharedPointer<kelAbstractDataStream> stream; ///< Input.
    QSharedPointer<kelDataImage> image; ///< Output: the colour frame.
    QSharedPointer<kelDataImage> depth; ///< Output.
};

#endif
