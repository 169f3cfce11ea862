#ifndef KELCORE_KELABSTRACTPROCESSBLOBSGENERATION_P_H
#define KELCORE_KELABSTRACTPROCESSBLOBSGENERATION_P_H

/// \file
/// State of kelAbstractProcessBlobsGeneration. Installed for code that derives from it; not part of the
/// stable interface.

#include <kelCore/process/kelAbstractProcessBlobsGeneration.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessBlobsGenerationPrivate : public kelAbstractProcessPrivate
{
public:
    QSharedPointer<kelDataImage> segmentationImage; ///< Input.
    int minArea = 2000; ///< pixels
    int minDimension = 50; ///< pixels
    QList<QSharedPointer<kelDataBlob>> blobs; ///< Output.
};

#endif
