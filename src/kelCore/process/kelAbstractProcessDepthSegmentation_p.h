#ifndef KELCORE_KELABSTRACTPROCESSDEPTHSEGMENTATION_P_H
#define KELCORE_KELABSTRACTPROCESSDEPTHSEGMENTATION_P_H

/// \file
/// State of kelAbstractProcessDepthSegmentation. Installed for code that derives from it; not part of the
/// stable interface.

#include <kelCore/process/kelAbstractProcessDepthSegmentation.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessDepthSegmentationPrivate : public kelAbstractProcessPrivate
{ };

#endif
