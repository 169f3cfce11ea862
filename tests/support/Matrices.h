#ifndef TESTS_SUPPORT_MATRICES_H
#define TESTS_SUPPORT_MATRICES_H

/// \file
/// Matrices to compare bit by bit, and how many are allocated.

#include <opencv2/core.hpp>

#include <cmath>
#include <cstring>

/// Same size, same type, same bytes.
inline bool sameMatrix(const cv::Mat &a, const cv::Mat &b)
{
    if (a.size() != b.size() || a.type() != b.type())
        return false;
    for (int r = 0; r < a.rows; ++r) {
        if (std::memcmp(a.ptr(r), b.ptr(r), static_cast<std::size_t>(a.cols) * a.elemSize()) != 0)
            return false;
    }
    return true;
}

/// The same bits, or both not a number.
inline bool sameBits(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

inline bool sameBits(const cv::Point2d &a, const cv::Point2d &b)
{
    return sameBits(a.x, b.x) && sameBits(a.y, b.y);
}

inline bool sameBits(const cv::Point3d &a, const cv::Point3d &b)
{
    return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

/// `matrix` as a part of a larger one, so that its rows do not follow one another in memory.
inline cv::Mat asView(const cv::Mat &matrix)
{
    const cv::Mat larger(matrix.rows + 2, matrix.cols + 3, matrix.type());
    larger.reshape(1).setTo(100);
    cv::Mat view = larger(cv::Rect(1, 1, matrix.cols, matrix.rows));
    matrix.copyTo(view);
    return view;
}

/// Any numbers, some of them zeros of either sign.
inline cv::Mat randomMatrix(cv::RNG &random, int rows, int cols, double range)
{
    cv::Mat matrix(rows, cols, CV_64F);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < cols; ++c) {
            const int choice = random.uniform(0, 8);
            matrix.at<double>(r, c) = choice == 0 ? 0.0 : choice == 1 ? -0.0 : random.uniform(-range, range);
        }
    }
    return matrix;
}

#endif
