#ifndef APPS_KELRECORD_GROUNDPOSITIONS_H
#define APPS_KELRECORD_GROUNDPOSITIONS_H

/// \file
/// Where blobs stand on the ground.

#include <QList>
#include <QSharedPointer>

class kelAbstractDataCalibration;
class kelDataBlob;

/// Adds to each blob's record the entry "GroundPosition": the world point, X and Y, on which its foot stands,
/// the middle of its lower edge. A blob whose foot is seen at no point of the ground gets none.
void addGroundPositions(const QList<QSharedPointer<kelDataBlob>> &blobs,
                        const kelAbstractDataCalibration &calibration);

#endif
