#ifndef KELCORE_KELHIGHGUI_H
#define KELCORE_KELHIGHGUI_H

/// \file
/// Image windows: OpenCV's where they fit into this process, else the library's own. Internal.
///
/// OpenCV's windows may be drawn by another Qt than ours. Two of them in one process bind to each other's
/// inline functions and crash, some before `main`. So no library here is linked with OpenCV's highgui.

#include <opencv2/core/cvstd.hpp>
#include <opencv2/core/mat.hpp>

/// What shows an image and what waits for a key, with the signatures of `cv::imshow` and `cv::waitKey`.
struct kelHighGui
{
    void (*imshow)(const cv::String &title, cv::InputArray image) = nullptr;
    int (*waitKey)(int delay) = nullptr;

    /// In this order: the highgui that the program itself is linked with; the installed one, loaded when first
    /// asked for, where OpenCV was built with our Qt; windows of the library's own. Null where no window can
    /// be opened: in an application without widgets, and outside its thread. Without any application one is
    /// made, as highgui does.
    static kelHighGui find();
};

#endif
