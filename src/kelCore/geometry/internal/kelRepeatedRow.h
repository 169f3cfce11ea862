#ifndef KELCORE_KELREPEATEDROW_H
#define KELCORE_KELREPEATEDROW_H

/// \file
/// A large matrix of equal rows that costs little memory. Internal.

#include <opencv2/core/mat.hpp>

/// A matrix of `rows` rows, each of which holds what `row` holds, in memory that OpenCV counts references of
/// as of any other. The system commits memory for what is written to later; what is only read shares a few
/// pages. `row` and `rows` must not be empty.
/// \throws cv::Exception when the system would not give that much memory at all.
cv::Mat kelRepeatedRow(int rows, const cv::Mat &row);

#endif
