#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataCalibration_p.h>

#include <nubCore/nubNotice.h>

#include <opencv2/core.hpp>
#include <opencv2/core/persistence.hpp>

#include <QFile>

#include <cmath>
#include <cstring>
#include <iostream>

/// For functions that compute with rows. They are compiled with and without AVX; which is called is settled
/// when the library is loaded, too early for the thread sanitizer. Both give the same bits.
///
/// They are not inlined, and take points as numbers: these stay in registers, while a struct would go through
/// memory, on which each call would wait.
#if defined(__x86_64__) && defined(__gnu_linux__) && !defined(__clang__) && !defined(__SANITIZE_THREAD__)
#define KEL_ROW_FUNCTION __attribute__((noinline, target_clones("avx", "default")))
#else
#define KEL_ROW_FUNCTION __attribute__((noinline))
#endif

namespace {

/// Numbers that are computed at once.
using Row = double __attribute__((vector_size(32)));
using Pair = double __attribute__((vector_size(16)));

Pair swapped(Pair pair) { return Pair{pair[1], pair[0]}; }

bool isTransform(const cv::Mat &matrix)
{
    return matrix.dims == 2 && matrix.type() == CV_64FC1 && matrix.rows == 4 && matrix.cols == 4;
}

/// The first three rows of P = K E. Terms are added to 0 from left to right, as the matrix product adds them,
/// so that both give the same bits (a sum of negative zeros is a positive one).
struct Projection
{
    Row rows[3] = {};

    /// Inlined, so that it has AVX where its caller has.
    __attribute__((always_inline)) Projection(const cv::Mat &K, const cv::Mat &E)
    {
        CV_Assert(K.dims == 2 && K.type() == CV_64FC1 && K.cols == 4 && (K.rows == 3 || K.rows == 4));
        CV_Assert(isTransform(E));
        const double *k[] = {K.ptr<double>(0), K.ptr<double>(1), K.ptr<double>(2)};
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i) {
            Row e;
            std::memcpy(&e, E.ptr<double>(i), sizeof e);
            rows[0] += k[0][i] * e;
            rows[1] += k[1][i] * e;
            rows[2] += k[2][i] * e;
        }
    }

    double operator()(int r, int c) const { return rows[r][c]; }

    /// Column c above the third row.
    Pair column(int c) const { return Pair{rows[0][c], rows[1][c]}; }
};

KEL_ROW_FUNCTION cv::Point3d backProject(const cv::Mat &K, const cv::Mat &E, double u, double v,
                                         double height)
{
    const Projection P(K, E);
    const Pair pixel{u, v};
    const Pair diagonal{P(0, 0), P(1, 1)};
    const Pair antidiagonal{P(0, 1), P(1, 0)};
    const Pair third{P(2, 0), P(2, 1)};

    // The two equations of the projection, linear in X and Y once Z is the height, by Cramer's rule:
    //     (u P20 - P00) X + (u P21 - P01) Y = P02 Z + P03 - u (P22 Z + P23)
    //     (v P20 - P10) X + (v P21 - P11) Y = P12 Z + P13 - v (P22 Z + P23)
    // In their determinant D the products of u and v cancel.
    const Pair slopes = antidiagonal * third - diagonal * swapped(third); // of D, in v and in u
    const double D = slopes[1] * u + slopes[0] * v + P(0, 0) * P(1, 1) - P(0, 1) * P(1, 0);
    if (D == 0.0)
        throw int(-1);

    const Pair leftDiagonal = pixel * third - diagonal;
    const Pair leftAntidiagonal = pixel * swapped(third) - antidiagonal;
    const Pair right = P.column(2) * height + P.column(3) - pixel * (P(2, 2) * height + P(2, 3));
    const Pair ground = (swapped(leftDiagonal) * right - leftAntidiagonal * swapped(right)) / D;
    return cv::Point3d(ground[0], ground[1], height);
}

KEL_ROW_FUNCTION cv::Point2d project(const cv::Mat &K, const cv::Mat &E, double X, double Y, double Z)
{
    const Projection P(K, E);
    const double depth = P(2, 0) * X + P(2, 1) * Y + P(2, 2) * Z + P(2, 3);
    const Pair pixel = (P.column(0) * X + P.column(1) * Y + P.column(2) * Z + P.column(3)) / depth;
    return cv::Point2d(pixel[0], pixel[1]);
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
    return project(d->intrinsicMatrix, d->extrinsicMatrix, point.x, point.y, point.z);
}

cv::Point3d kelAbstractDataCalibration::getPosition() const
{
    CV_Assert(isTransform(getExtrinsicMatrix()));
    const cv::Mat pose = getExtrinsicMatrix().inv(cv::DECOMP_LU);
    return cv::Point3d(pose.at<double>(0, 3), pose.at<double>(1, 3), pose.at<double>(2, 3));
}
