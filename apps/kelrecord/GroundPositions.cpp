#include "kelrecord/GroundPositions.h"

#include "common/Program.h"

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelDataBlob.h>

#include <opencv2/core.hpp>

#include <QFileInfo>
#include <QPointF>

kelAbstractDataCalibration readCalibration(const QString &path)
{
    if (!QFileInfo(path).isFile() || !QFileInfo(path).isReadable())
        throw Failure(QStringLiteral("the calibration file %1 cannot be read").arg(path));
    kelAbstractDataCalibration calibration;
    try {
        calibration.read(path);
        calibration.worldToImage(cv::Point3d(0, 0, 0));
    } catch (const cv::Exception &) {
        throw Failure(
            QStringLiteral(
                "%1 holds no camera: it needs intrinsicMatrix (3x4) and extrinsicMatrix (4x4), both of "
                "doubles")
                .arg(path));
    }
    return calibration;
}

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
