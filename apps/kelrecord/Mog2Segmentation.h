#ifndef APPS_KELRECORD_MOG2SEGMENTATION_H
#define APPS_KELRECORD_MOG2SEGMENTATION_H

/// \file
/// Segmentation of moving things from a still background.

#include <kelCore/process/kelAbstractProcessSegmentation.h>

class Mog2SegmentationPrivate;

/// Background subtraction by a mixture of Gaussians per pixel (Z. Zivkovic, "Improved adaptive Gaussian
/// mixture model for background subtraction", ICPR 2004, as OpenCV's MOG2). Shadows are dropped, specks
/// removed and gaps closed; the mask holds 0 and 255 alone.
class Mog2Segmentation : public kelAbstractProcessSegmentation
{
    Q_OBJECT

public:
    Mog2Segmentation();

    /// Learns from the acquisition image and segments it. The first image gives an empty mask: nothing has
    /// moved yet.
    bool segment() override;

private:
    Q_DECLARE_PRIVATE_D(nub_d, Mog2Segmentation)
    Q_DISABLE_COPY(Mog2Segmentation) // a copy would need a private object of its own kind
};

#endif
