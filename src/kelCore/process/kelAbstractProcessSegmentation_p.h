#ifndef KELCORE_KELABSTRACTPROCESSSEGMENTATION_P_H
#define KELCORE_KELABSTRACTPROCESSSEGMENTATION_P_H

/// \file
/// State of kelAbstractProcessSegmentation. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessSegmentation.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessSegmentationPrivate : public kelAbstractProcessPrivate
{
public:
    QSharedPointer<kelDataImage> acquisitionImage; ///< Input.
    QSharedPointer<kelDataImage> segmentationImage; ///< Output.
};

#endif
