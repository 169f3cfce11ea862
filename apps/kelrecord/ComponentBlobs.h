#ifndef APPS_KELRECORD_COMPONENTBLOBS_H
#define APPS_KELRECORD_COMPONENTBLOBS_H

/// \file
/// Blobs from connected components.

#include <kelCore/process/kelAbstractProcessBlobsGeneration.h>

/// One blob for each 8-connected component of the mask that is large enough: its area in pixels is at least
/// the minimum area, its box at least the minimum dimension wide and high. Blobs carry both boxes, and come
/// from top to bottom and left to right.
class ComponentBlobs : public kelAbstractProcessBlobsGeneration
{
    Q_OBJECT

public:
    bool generateBlobs() override;
};

#endif
