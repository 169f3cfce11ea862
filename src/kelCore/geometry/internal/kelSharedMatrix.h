#ifndef KELCORE_KELSHAREDMATRIX_H
#define KELCORE_KELSHAREDMATRIX_H

/// \file
/// Who else holds a matrix's elements. Internal.

#include <opencv2/core/mat.hpp>

/// True when somebody else may see what is written into the matrix: another header holds its elements, or
/// they stand in memory that OpenCV does not count references of.
inline bool kelIsShared(const cv::Mat &matrix)
{
    return !matrix.u || matrix.u->refcount != 1 || matrix.u->urefcount != 0;
}

#endif
