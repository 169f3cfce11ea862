#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataCalibration_p.h>

#include <nubCore/nubNotice.h>

#include <opencv2/core.hpp>
#include <opencv2/core/persistence.hpp>

#include <QFile>

#include <cmath>
#include <iostream>

namespace {

bool isTransform(const cv::Mat &matrix)
{
    return matrix.dims == 2 && matrix.type() == CV_64FC1 && matrix.rows == 4 && matrix.cols == 4;
}

/// The first three rows of P = K E. Terms are added to 0 from left to right, as the matrix product adds them,
/// so that both give the same bits (a sum of negative zeros is a positive one).
struct Projection
{
    double p[3][4];

    Projection(const cv::Mat &K, const cv::Mat &E)
    {
        CV_Assert(K.dims == 2 && K.type() == CV_64FC1 && K.cols == 4 && (K.rows == 3 || K.rows == 4));
        CV_Assert(isTransform(E));
        const double *e[4] = {E.ptr<double>(0), E.ptr<double>(1), E.ptr<double>(2), E.ptr<double>(3)};
        for (int r = 0; r < 3; ++r) {
            const double *k = K.ptr<double>(r);
            for (int c = 0; c < 4; ++c)
                p[r][c] = 0.0 + k[0] * e[0][c] + k[1] * e[1][c] + k[2] * e[2][c] + k[3] * e[3][c];
        }
    }

    double operator()(int r, int c) const { return p[r][c]; }

    /// Row r times (X, Y, Z, 1).
    double row(int r, const cv::Point3d &w) const
    {
        return p[r][0] * w.x + p[r][1] * w.y + p[r][2] * w.z + p[r][3];
    }
};

/// Not inlined on purpose: a pixel that arrives as two numbers stays in registers, while one that arrives as
/// a struct would go through memory, on which each call would wait.
__attribute__((noinline)) cv::Point3d backProject(const cv::Mat &K, const cv::Mat &E, double u, double v,
                                                  double height)
{
    const Projection P(K, E);

    // The two equations of the projection, linear in X and Y once Z is the height, by Cramer's rule.
    const double D = (P(2, 1) * P(1, 0) - P(2, 0) * P(1, 1)) * u + (P(0, 1) * P(2, 0) - P(0, 0) * P(2, 1)) * v
        + P(0, 0) * P(1, 1) - P(0, 1) * P(1, 0);
    if (D == 0.0)
        throw int(-1);

    const double a0 = P(0, 2) * height + P(0, 3);
    const double a1 = P(1, 2) * height + P(1, 3);
    const double a2 = P(2, 2) * height + P(2, 3);
    const double b0 = a0 - a2 * u;
    const double b1 = a1 - a2 * v;
    const double X = ((v * P(2, 1) - P(1, 1)) * b0 - (u * P(2, 1) - P(0, 1)) * b1) / D;
    const double Y = ((u * P(2, 0) - P(0, 0)) * b1 - (v * P(2, 0) - P(1, 0)) * b0) / D;
    return cv::Point3d(X, Y, height);
}

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
    CV_Assert(isTransform(pose));
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
    const auto *calibration = nub::sameKind<kelAbstractDataCalibration>(*this, other);
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
    const cv::Point3d d(direction[0], direction[1], direction[2]);
    const double norm = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    const cv::Point3d top(foot.x + referenceLength * (d.x / norm), foot.y + referenceLength * (d.y / norm),
                          foot.z + referenceLength * (d.z / norm));
    const cv::Point2d projected = worldToImage(top);
    return (referenceLength * height) / std::abs(pixel.y - projected.y);
}

cv::Point3d kelAbstractDataCalibration::imageToWorld(cv::Point2d pixel, double height) const
{
    Q_D(const kelAbstractDataCalibration);
    return backProject(d->intrinsicMatrix, d->extrinsicMatrix, pixel.x, pixel.y, height);
}

cv::Point2d kelAbstractDataCalibration::worldToImage(cv::Point3d point) const
{
    Q_D(const kelAbstractDataCalibration);
    const Projection P(d->intrinsicMatrix, d->extrinsicMatrix);
    const double depth = P.row(2, point);
    return cv::Point2d(P.row(0, point) / depth, P.row(1, point) / depth);
}

cv::Point3d kelAbstractDataCalibration::getPosition() const
{
    CV_Assert(isTransform(getExtrinsicMatrix()));
    const cv::Mat pose = getExtrinsicMatrix().inv(cv::DECOMP_LU);
    return cv::Point3d(pose.at<double>(0, 3), pose.at<double>(1, 3), pose.at<double>(2, 3));
}
