#include "kelrecord/GroundPositions.h"

#include "common/Scene.h"

#include <kelCore/data/kelDataBlob.h>

#include <QPointF>

void addGroundPositions(const QList<QSharedPointer<kelDataBlob>> &blobs,
                        const kelAbstractDataCalibration &calibration)
{
    for (const QSharedPointer<kelDataBlob> &blob : blobs) {
        const auto foot = footPoint(calibration, blob->getBoundingBox2D());
        if (!foot)
            continue;
        QVariantMap map = blob->getMap();
        map.insert(QStringLiteral("GroundPosition"), QPointF(foot->x, foot->y));
        blob->setMap(map);
    }
}
