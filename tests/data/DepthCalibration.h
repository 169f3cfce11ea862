#ifndef TESTS_DATA_DEPTHCALIBRATION_H
#define TESTS_DATA_DEPTHCALIBRATION_H

/// \file
/// A camera and depth maps for the tests of calibrations with depth.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>

#include <opencv2/core.hpp>

using Depth = kelAbstractDataCalibrationWithDepth;

inline cv::Mat someIntrinsic()
{
    return (cv::Mat_<double>(3, 4) << 525, 0.5, 319.5, 0, /**/ 0, 530, 239.5, 0, /**/ 0, 0, 1, 0);
}

/// Looks along the world's Y axis from (0, 0, 3).
inline cv::Mat someExtrinsic()
{
    return (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, /**/ 0, 0, -1, 3, /**/ 0, 1, 0, 0, /**/ 0, 0, 0, 1);
}

/// A map whose elements all differ.
inline cv::Mat numbered(int rows, int columns, float first = 1)
{
    cv::Mat map(rows, columns, CV_32F);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c)
            map.at<float>(r, c) = first + static_cast<float>(r * columns + c);
    }
    return map;
}

#endif
