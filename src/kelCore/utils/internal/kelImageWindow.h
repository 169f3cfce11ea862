#ifndef KELCORE_KELIMAGEWINDOW_H
#define KELCORE_KELIMAGEWINDOW_H

/// \file
/// Windows that show a matrix, for programs that OpenCV's cannot be loaded into. Internal.
///
/// They are used as OpenCV's are, and behave like them: a title names one window, which stays until its user
/// closes it, has the size of its image and takes the next one of that title. Call from the thread of the
/// QApplication.

#include <opencv2/core/cvstd.hpp>
#include <opencv2/core/mat.hpp>

/// As `cv::imshow` does, for 8-bit images.
/// \throws cv::Exception when the image has other than 1, 3 or 4 channels.
void kelShowInWindow(const cv::String &title, cv::InputArray image);

/// As `cv::waitKey` does: waits until a key is pressed in one of these windows or the last of them is closed,
/// for `delay` milliseconds at most, or without end when that is not positive. The result is the key, or -1.
int kelWaitForKey(int delay);

#endif
