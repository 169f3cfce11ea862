#ifndef KELCORE_KELDATALINKEDPHYSICALOBJECT_P_H
#define KELCORE_KELDATALINKEDPHYSICALOBJECT_P_H

/// \file
/// State of kelDataLinkedPhysicalObject. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataLinkedPhysicalObject.h>

/// Nothing of its own: the four lists are members of the object itself.
class KELCORE_EXPORT kelDataLinkedPhysicalObjectPrivate : public kelAbstractDataPrivate
{ };

#endif
