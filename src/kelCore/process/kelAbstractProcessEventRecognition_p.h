#ifndef KELCORE_KELABSTRACTPROCESSEVENTRECOGNITION_P_H
#define KELCORE_KELABSTRACTPROCESSEVENTRECOGNITION_P_H

/// \file
/// State of kelAbstractProcessEventRecognition. Installed for code that derives from it; not part of the
/// stable interface.

#include <kelCore/process/kelAbstractProcessEventRecognition.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessEventRecognitionPrivate : public kelAbstractProcessPrivate
{
public:
    ActorList actors; ///< Input.
    EventList events; ///< Output: those of the current frame.
};

#endif
