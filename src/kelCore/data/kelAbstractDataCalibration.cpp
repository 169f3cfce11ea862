#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataCalibration_p.h>
#include <kelCore/geometry/kelProjection.h>

#include <nubCore/nubNotice.h>

#include <opencv2/core.hpp>
#include <opencv2/core/persistence.hpp>

#include <QFile>

#include <cmath>
#include <iostream>

namespace {

cv::Mat readMatrix(const cv::FileStorage &storage, const char *key)
{
    cv::Mat matrix;
    storage[key] >> matrix;
    return matrix;
}

/// World to camera, from the file's pose: rows 1 and 2 exchanged, then inverted.
cv::Mat worldToCamera(cv::Mat pose)
{
    if (pose.empty())
        return pose;
    CV_Assert(pose.dims == 2 && pose.type() == CV_64FC1 && pose.rows == 4 && pose.cols == 4);
    for (int c = 0; c < 4; ++c)
        std::swap(pose.at<double>(1, c), pose.at<double>(2, c));
    return pose.inv(cv::DECOMP_LU);
}

} // namespace

kelAbstractDataCalibration::kelAbstractDataCalibration()
    : kelAbstractDataCalibration(*new kelAbstractDataCalibrationPrivate)
{ }

kelAbstractDataCalibration::kelAbstractDataCalibration(const kelAbstractDataCalibration &other)
    : kelAbstractDataCalibration(*new kelAbstractDataCalibrationPrivate(*other.d_func()), other.parent())
{ }

kelAbstractDataCalibration::kelAbstractDataCalibration(kelAbstractDataCalibrationPrivate &dd, QObject *parent)
    : kelAbstractData(dd, parent)
{ }

kelAbstractDataCalibration::~kelAbstractDataCalibration() = default;

kelAbstractDataCalibration &kelAbstractDataCalibration::operator=(const kelAbstractDataCalibration &other)
{
    copy(other);
    return *this;
}

kelAbstractDataCalibration *kelAbstractDataCalibration::clone()
{
    return new kelAbstractDataCalibration(*this);
}

void kelAbstractDataCalibration::copy(const nubAbstractObject &other)
{
    kelAbstractData::copy(other);
    const auto *calibration = nub::sameKindOrWarnOfForeign<kelAbstractDataCalibration>(*this, other);
    if (!calibration)
        return;
    setReferentialName(calibration->getReferentialName());
    setIntrinsicMatrix(calibration->getIntrinsicMatrix());
    setExtrinsicMatrix(calibration->getExtrinsicMatrix());
    setDistortionMatrix(calibration->getDistortionMatrix());
}

QString kelAbstractDataCalibration::identifier() const
{
    return QStringLiteral("kelAbstractDataCalibration");
}

bool kelAbstractDataCalibration::read(const QString &fileName)
{
    const QByteArray path = QFile::encodeName(fileName);
    const cv::FileStorage storage(path.toStdString(), cv::FileStorage::READ);
    if (!storage.isOpened()) {
        std::cout << path.constData() << std::endl << "Error Opening the file." << std::endl;
        return false;
    }

    // Everything is read before anything is stored: a file that throws half way leaves the object as it was,
    // and reading into a stored matrix would write into the buffer that it shares with its copies.
    const cv::FileNode name = storage["referentialName"];
    const cv::Mat intrinsic = readMatrix(storage, "intrinsicMatrix");
    const cv::Mat extrinsic = worldToCamera(readMatrix(storage, "extrinsicMatrix"));
    const cv::Mat distortion = readMatrix(storage, "distortion");

    setReferentialName(name.isString() ? QString::fromStdString(name.string()) : QString());
    setIntrinsicMatrix(intrinsic);
    setExtrinsicMatrix(extrinsic);
    setDistortionMatrix(distortion);
    return true;
}

void kelAbstractDataCalibration::setReferentialName(const QString &name) { d_func()->referentialName = name; }

void kelAbstractDataCalibration::setIntrinsicMatrix(const cv::Mat &matrix)
{
    d_func()->intrinsicMatrix = matrix;
}

void kelAbstractDataCalibration::setExtrinsicMatrix(const cv::Mat &matrix)
{
    d_func()->extrinsicMatrix = matrix;
}

void kelAbstractDataCalibration::setDistortionMatrix(const cv::Mat &matrix)
{
    d_func()->distortionMatrix = matrix;
}

QString kelAbstractDataCalibration::getReferentialName() const { return d_func()->referentialName; }

const cv::Mat &kelAbstractDataCalibration::getIntrinsicMatrix() const { return d_func()->intrinsicMatrix; }

const cv::Mat &kelAbstractDataCalibration::getExtrinsicMatrix() const { return d_func()->extrinsicMatrix; }

const cv::Mat &kelAbstractDataCalibration::getDistortionMatrix() const { return d_func()->distortionMatrix; }

cv::Mat kelAbstractDataCalibration::getCalibration() const
{
    return getIntrinsicMatrix() * getExtrinsicMatrix();
}

double kelAbstractDataCalibration::compute_3d_height(cv::Point2i pixel, double height,
                                                     double *direction) const
{
    const double referenceLength = 180.0; // world units
    const cv::Point3d foot = imageToWorld(cv::Point2d(pixel.x, pixel.y), height);
    const cv::Point3d d = direction ? cv::Point3d(direction[0], direction[1], direction[2]) : cv::Point3d();
    const double norm = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    const cv::Point3d top(foot.x + referenceLength * (d.x / norm), foot.y + referenceLength * (d.y / norm),
                          foot.z + referenceLength * (d.z / norm));
    const cv::Point2d projected = worldToImage(top);
    return (referenceLength * height) / std::abs(pixel.y - projected.y);
}

cv::Point3d kelAbstractDataCalibration::imageToWorld(cv::Point2d pixel, double height) const
{
    Q_D(const kelAbstractDataCalibration);
    cv::Point3d point;
    if (!kelGeometry::imageToWorld(d->intrinsicMatrix, d->extrinsicMatrix, pixel, height, point))
        throw int(-1);
    return point;
}

cv::Point2d kelAbstractDataCalibration::worldToImage(cv::Point3d point) const
{
    Q_D(const kelAbstractDataCalibration);
    return kelGeometry::worldToImage(d->intrinsicMatrix, d->extrinsicMatrix, point);
}

cv::Point3d kelAbstractDataCalibration::getPosition() const
{
    return kelGeometry::cameraCentre(getExtrinsicMatrix());
}
