#ifndef APPS_KELRECORD_MOG2SEGMENTATION_H
#define APPS_KELRECORD_MOG2SEGMENTATION_H

/// \file
/// Segmentation of moving things from a still background.

#include <kelCore/process/kelAbstractProcessSegmentation.h>

#include <opencv2/imgproc.hpp>
#include <opencv2/video/background_segm.hpp>

/// Background subtraction by a mixture of Gaussians per pixel (Z. Zivkovic, "Improved adaptive Gaussian
/// mixture model for background subtraction", ICPR 2004, as OpenCV's MOG2). Shadows are dropped, specks
/// removed and gaps closed; the mask holds 0 and 255 alone.
class Mog2Segmentation : public kelAbstractProcessSegmentation
{
    Q_OBJECT

public:
    Mog2Segmentation() = default;

    /// Learns from the acquisition image and segments it. The first image gives an empty mask: nothing has
    /// moved yet.
    bool segment() override;

private:
    Q_DISABLE_COPY(Mog2Segmentation) // a copy would learn into the same background

    cv::Ptr<cv::BackgroundSubtractorMOG2> m_background = cv::createBackgroundSubtractorMOG2(500, 16, true);
    cv::Mat m_speck = cv::getStructuringElement(cv::MORPH_ELLIPSE, {3, 3});
    cv::Mat m_gap = cv::getStructuringElement(cv::MORPH_ELLIPSE, {7, 9}); // people are taller than wide
    bool m_first = true;
};

#endif
