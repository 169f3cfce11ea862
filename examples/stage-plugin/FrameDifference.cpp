#include "FrameDifference.h"

#include <opencv2/core.hpp>

FrameDifference::FrameDifference(const FrameDifference &other)
    : kelAbstractProcessSegmentation(other), m_threshold(other.m_threshold)
{ }

FrameDifference *FrameDifference::clone() { return new FrameDifference(*this); }

bool FrameDifference::setSpecificParameters(const QVariantMap &parameters)
{
    bool isNumber = false;
    const int threshold = parameters.value(QStringLiteral("threshold"), m_threshold).toInt(&isNumber);
    if (!isNumber || threshold < 0 || threshold > 255)
        return false;
    m_threshold = threshold;
    keepSpecificParameters(parameters);
    return true;
}

bool FrameDifference::segment()
{
    if (!getAcquisitionImage() || getAcquisitionImage()->getImage().empty())
        return false;
    const cv::Mat &frame = getAcquisitionImage()->getImage();
    if (frame.depth() != CV_8U)
        return false;

    cv::Mat mask = cv::Mat::zeros(frame.size(), CV_8UC1);
    if (frame.size() == m_previous.size() && frame.type() == m_previous.type()) {
        cv::Mat difference, largest;
        cv::absdiff(frame, m_previous, difference);
        cv::reduce(difference.reshape(1, frame.rows * frame.cols), largest, 1, cv::REDUCE_MAX);
        mask = largest.reshape(1, frame.rows) > m_threshold;
    }
    m_previous = frame.clone(); // the pixels of an image are shared: whoever took it may write into them

    getSegmentationImage().reset(new kelDataImage); // whoever holds the last mask keeps it
    getSegmentationImage()->setImage(mask);
    return true;
}
