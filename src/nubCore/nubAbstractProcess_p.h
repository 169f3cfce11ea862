#ifndef NUBCORE_NUBABSTRACTPROCESS_P_H
#define NUBCORE_NUBABSTRACTPROCESS_P_H

/// \file
/// State of nubAbstractProcess. Installed for code that derives from it; not part of the stable interface.

#include <nubCore/nubAbstractObject_p.h>
#include <nubCore/nubAbstractProcess.h>

class NUBCORE_EXPORT nubAbstractProcessPrivate : public nubAbstractObjectPrivate
{ };

#endif
