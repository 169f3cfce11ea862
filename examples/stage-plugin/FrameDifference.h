#ifndef FRAMEDIFFERENCE_H
#define FRAMEDIFFERENCE_H

/// \file
/// Segmentation by frame difference.

#include <kelCore/process/kelAbstractProcessSegmentation.h>

/// Takes for foreground every pixel that changed since the frame before.
///
/// A pixel has changed when one of its channels differs by more than the parameter "threshold", an integer
/// from 0 to 255; 25 until set.
class FrameDifference : public kelAbstractProcessSegmentation
{
    Q_OBJECT

public:
    FrameDifference() = default;
    /// Carries what segmentation stages carry, and the threshold; the copy has not seen a frame yet.
    FrameDifference(const FrameDifference &other);
    FrameDifference &operator=(const FrameDifference &) = delete;

    /// Made by the copy constructor; the caller owns it.
    FrameDifference *clone() override;

    /// Keeps the parameters and takes the threshold from them; without one it stays as it is. False, and
    /// nothing is kept, when the threshold is no integer from 0 to 255.
    bool setSpecificParameters(const QVariantMap &parameters) override;

    /// Segments the acquisition image. The mask is empty for the first frame, and for one whose size or
    /// number of channels differs from those of the frame before. False when there is no image, or its
    /// channels are not 8 bits deep; the frame before is then remembered.
    bool segment() override;

private:
    int m_threshold = 25;
    cv::Mat m_previous; ///< The frame before; pixels of its own.
};

#endif
