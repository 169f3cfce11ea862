#ifndef KELCORE_KELABSTRACTPROCESSFRAMETOFRAMETRACKER_P_H
#define KELCORE_KELABSTRACTPROCESSFRAMETOFRAMETRACKER_P_H

/// \file
/// State of kelAbstractProcessFrameToFrameTracker. Installed for code that derives from it; not part of the
/// stable interface.

#include <kelCore/process/kelAbstractProcessFrameToFrameTracker.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessFrameToFrameTrackerPrivate : public kelAbstractProcessPrivate
{ };

#endif
