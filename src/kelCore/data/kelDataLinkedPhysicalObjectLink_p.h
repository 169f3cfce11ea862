#ifndef KELCORE_KELDATALINKEDPHYSICALOBJECTLINK_P_H
#define KELCORE_KELDATALINKEDPHYSICALOBJECTLINK_P_H

/// \file
/// State of kelDataLinkedPhysicalObjectLink. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/data/kelDataLinkedPhysicalObjectLink.h>
#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractData_p.h>

/// Nothing of its own: the ends and the reliability are members of the link itself.
class KELCORE_EXPORT kelDataLinkedPhysicalObjectLinkPrivate : public nubAbstractDataPrivate
{ };

#endif
