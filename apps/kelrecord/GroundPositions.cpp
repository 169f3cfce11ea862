#include "kelrecord/GroundPositions.h"

#include "common/SceneOverlay.h"

#include <kelCore/data/kelDataBlob.h>

#include <QPointF>

void addGroundPositions(const QList<QSharedPointer<kelDataBlob>> &blobs,
                        const kelAbstractDataCalibration &calibration)
{
    for (const QSharedPointer<kelDataBlob> &blob : blobs) {
        const cv::Rect box = blob->getBoundingBox2D();
        const auto foot = groundPoint(calibration, {box.x + box.width / 2.0, double(box.y + box.height)});
        if (!foot)
            continue;
        QVariantMap map = blob->getMap();
        map.insert(QStringLiteral("GroundPosition"), QPointF(foot->x, foot->y));
        blob->setMap(map);
    }
}
