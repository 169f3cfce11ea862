#include "kelrecord/Mog2Segmentation.h"

bool Mog2Segmentation::segment()
{
    const QSharedPointer<kelDataImage> &frame = getAcquisitionImage();
    if (!frame || frame->getImage().empty())
        return false;

    cv::Mat mask;
    m_background->apply(frame->getImage(), mask);
    if (m_first)
        mask.setTo(0);
    m_first = false;
    cv::threshold(mask, mask, 200, 255, cv::THRESH_BINARY); // shadows are 127
    cv::morphologyEx(mask, mask, cv::MORPH_OPEN, m_speck);
    cv::morphologyEx(mask, mask, cv::MORPH_CLOSE, m_gap);

    getSegmentationImage().reset(new kelDataImage);
    getSegmentationImage()->setImage(mask);
    return true;
}
