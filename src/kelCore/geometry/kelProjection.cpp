#include <kelCore/geometry/kelProjection.h>

#include <opencv2/core.hpp>

#include <cstring>

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

KEL_ROW_FUNCTION bool backProject(const cv::Mat &K, const cv::Mat &E, double u, double v, double height,
                                  cv::Point3d &point)
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
        return false;

    const Pair leftDiagonal = pixel * third - diagonal;
    const Pair leftAntidiagonal = pixel * swapped(third) - antidiagonal;
    const Pair right = P.column(2) * height + P.column(3) - pixel * (P(2, 2) * height + P(2, 3));
    const Pair ground = (swapped(leftDiagonal) * right - leftAntidiagonal * swapped(right)) / D;
    point = cv::Point3d(ground[0], ground[1], height);
    return true;
}

KEL_ROW_FUNCTION cv::Point2d project(const cv::Mat &K, const cv::Mat &E, double X, double Y, double Z)
{
    const Projection P(K, E);
    const double depth = P(2, 0) * X + P(2, 1) * Y + P(2, 2) * Z + P(2, 3);
    const Pair pixel = (P.column(0) * X + P.column(1) * Y + P.column(2) * Z + P.column(3)) / depth;
    return cv::Point2d(pixel[0], pixel[1]);
}

} // namespace

cv::Point2d kelGeometry::worldToImage(const cv::Mat &K, const cv::Mat &E, const cv::Point3d &point)
{
    return project(K, E, point.x, point.y, point.z);
}

bool kelGeometry::imageToWorld(const cv::Mat &K, const cv::Mat &E, const cv::Point2d &pixel, double height,
                               cv::Point3d &point)
{
    return backProject(K, E, pixel.x, pixel.y, height, point);
}

cv::Point3d kelGeometry::cameraCentre(const cv::Mat &E)
{
    CV_Assert(isTransform(E));
    cv::Matx44d pose;
    cv::invert(E, pose, cv::DECOMP_LU);
    return cv::Point3d(pose(0, 3), pose(1, 3), pose(2, 3));
}
