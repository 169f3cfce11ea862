#include "kelrecord/GroundPositions.h"

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelDataBlob.h>

#include <QPointF>

void addGroundPositions(const QList<QSharedPointer<kelDataBlob>> &blobs,
                        const kelAbstractDataCalibration &calibration)
{
    for (const QSharedPointer<kelDataBlob> &blob : blobs) {
        const cv::Rect box = blob->getBoundingBox2D();
        try {
            const cv::Point3d foot =
                calibration.imageToWorld({box.x + box.width / 2.0, double(box.y + box.height)}, 0);
            QVariantMap map = blob->getMap();
            map.insert(QStringLiteral("GroundPosition"), QPointF(foot.x, foot.y));
            blob->setMap(map);
        } catch (int) {
            // The ray is parallel to the ground: the blob stands nowhere on it.
        }
    }
}
