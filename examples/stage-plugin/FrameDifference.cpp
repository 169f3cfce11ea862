#include "FrameDifference.h"

#include <kelCore/process/kelAbstractProcessSegmentation_p.h>

#include <opencv2/core.hpp>

class FrameDifferencePrivate : public kelAbstractProcessSegmentationPrivate
{
public:
    FrameDifferencePrivate() = default;
    // The frame before stays behind.
    FrameDifferencePrivate(const FrameDifferencePrivate &other)
        : kelAbstractProcessSegmentationPrivate(other), threshold(other.threshold)
    { }

    int threshold = 25;
    cv::Mat previous; ///< The frame before; pixels of its own.
};

FrameDifference::FrameDifference() : kelAbstractProcessSegmentation(*new FrameDifferencePrivate) { }

FrameDifference::FrameDifference(const FrameDifference &other)
    : kelAbstractProcessSegmentation(*new FrameDifferencePrivate(*other.d_func()), other.parent())
{ }

FrameDifference::~FrameDifference() = default;

FrameDifference *FrameDifference::clone() { return new FrameDifference(*this); }

bool FrameDifference::setSpecificParameters(const QVariantMap &parameters)
{
    Q_D(FrameDifference);
    bool isNumber = false;
    const int threshold = parameters.value(QStringLiteral("threshold"), d->threshold).toInt(&isNumber);
    if (!isNumber || threshold < 0 || threshold > 255)
        return false;
    d->threshold = threshold;
    d->specificParameters = parameters;
    return true;
}

bool FrameDifference::segment()
{
    Q_D(FrameDifference);
    if (!d->acquisitionImage || d->acquisitionImage->getImage().empty())
        return false;
    const cv::Mat &frame = d->acquisitionImage->getImage();
    if (frame.depth() != CV_8U)
        return false;

    cv::Mat mask = cv::Mat::zeros(frame.size(), CV_8UC1);
    if (frame.size() == d->previous.size() && frame.type() == d->previous.type()) {
        cv::Mat difference, largest;
        cv::absdiff(frame, d->previous, difference);
        cv::reduce(difference.reshape(1, frame.rows * frame.cols), largest, 1, cv::REDUCE_MAX);
        mask = largest.reshape(1, frame.rows) > d->threshold;
    }
    d->previous = frame.clone(); // the pixels of an image are shared: whoever took it may write into them

    d->segmentationImage.reset(new kelDataImage); // whoever holds the last mask keeps it
    d->segmentationImage->setImage(mask);
    return true;
}
