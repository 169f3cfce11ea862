#ifndef KELCORE_KELABSTRACTPROCESS_P_H
#define KELCORE_KELABSTRACTPROCESS_P_H

/// \file
/// State of kelAbstractProcess. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/process/kelAbstractProcess.h>
#include <nubCore/nubAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessPrivate : public nubAbstractProcessPrivate
{
public:
    CSynchronizer synchronizer; ///< Time stamp of the frame in work.
    QVariantMap specificParameters;
};

#endif
