#ifndef KELCORE_KELABSTRACTPROCESSGROUNDDETECTION_P_H
#define KELCORE_KELABSTRACTPROCESSGROUNDDETECTION_P_H

/// \file
/// State of kelAbstractProcessGroundDetection. Installed for code that derives from it; not part of the
/// stable interface.

#include <kelCore/process/kelAbstractProcessGroundDetection.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessGroundDetectionPrivate : public kelAbstractProcessPrivate
{ };

#endif
