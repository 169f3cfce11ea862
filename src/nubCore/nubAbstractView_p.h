#ifndef NUBCORE_NUBABSTRACTVIEW_P_H
#define NUBCORE_NUBABSTRACTVIEW_P_H

/// \file
/// State of nubAbstractView. Installed for code that derives from it; not part of the stable interface.

#include <nubCore/nubAbstractObject_p.h>
#include <nubCore/nubAbstractView.h>

class NUBCORE_EXPORT nubAbstractViewPrivate : public nubAbstractObjectPrivate
{ };

#endif
