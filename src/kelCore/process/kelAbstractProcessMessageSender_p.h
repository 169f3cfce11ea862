#ifndef KELCORE_KELABSTRACTPROCESSMESSAGESENDER_P_H
#define KELCORE_KELABSTRACTPROCESSMESSAGESENDER_P_H

/// \file
/// State of kelAbstractProcessMessageSender. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessMessageSender.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessMessageSenderPrivate : public kelAbstractProcessPrivate
{ };

#endif
