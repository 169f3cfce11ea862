#include "kelrecord/Mog2Segmentation.h"

#include <kelCore/process/kelAbstractProcessSegmentation_p.h>

#include <opencv2/imgproc.hpp>
#include <opencv2/video/background_segm.hpp>

class Mog2SegmentationPrivate : public kelAbstractProcessSegmentationPrivate
{
public:
    cv::Ptr<cv::BackgroundSubtractorMOG2> background = cv::createBackgroundSubtractorMOG2(500, 16, true);
    cv::Mat speck = cv::getStructuringElement(cv::MORPH_ELLIPSE, {3, 3});
    cv::Mat gap = cv::getStructuringElement(cv::MORPH_ELLIPSE, {7, 9}); // people are taller than wide
    bool first = true;
};

Mog2Segmentation::Mog2Segmentation() : kelAbstractProcessSegmentation(*new Mog2SegmentationPrivate) { }

bool Mog2Segmentation::segment()
{
    Q_D(Mog2Segmentation);
    if (!d->acquisitionImage || d->acquisitionImage->getImage().empty())
        return false;

    cv::Mat mask;
    d->background->apply(d->acquisitionImage->getImage(), mask);
    if (d->first)
        mask.setTo(0);
    d->first = false;
    cv::threshold(mask, mask, 200, 255, cv::THRESH_BINARY); // shadows are 127
    cv::morphologyEx(mask, mask, cv::MORPH_OPEN, d->speck);
    cv::morphologyEx(mask, mask, cv::MORPH_CLOSE, d->gap);

    d->segmentationImage.reset(new kelDataImage);
    d->segmentationImage->setImage(mask);
    return true;
}
