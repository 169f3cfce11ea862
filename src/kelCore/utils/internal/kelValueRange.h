#ifndef KELCORE_KELVALUERANGE_H
#define KELCORE_KELVALUERANGE_H

/// \file
/// The range of a matrix's values. Internal.

#include <opencv2/core/mat.hpp>

#include <limits>

struct kelValueRange
{
    double min = std::numeric_limits<double>::max();
    double max = std::numeric_limits<double>::lowest();
};

/// The least and the greatest scalar of all channels, not-a-numbers aside. `cv::minMaxIdx` finds the same,
/// but looks for their places too, which takes most of its time.
kelValueRange kelValueRangeOf(const cv::Mat &matrix);

#endif
