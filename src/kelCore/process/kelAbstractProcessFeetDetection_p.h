#ifndef KELCORE_KELABSTRACTPROCESSFEETDETECTION_P_H
#define KELCORE_KELABSTRACTPROCESSFEETDETECTION_P_H

/// \file
/// State of kelAbstractProcessFeetDetection. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessFeetDetection.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessFeetDetectionPrivate : public kelAbstractProcessPrivate
{ };

#endif
