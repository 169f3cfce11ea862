#ifndef KELCORE_KELABSTRACTPROCESSFAKETRACKER_P_H
#define KELCORE_KELABSTRACTPROCESSFAKETRACKER_P_H

/// \file
/// State of kelAbstractProcessFakeTracker. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessFakeTracker.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessFakeTrackerPrivate : public kelAbstractProcessPrivate
{ };

#endif
