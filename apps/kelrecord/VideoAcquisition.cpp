#include "kelrecord/VideoAcquisition.h"

#include "common/VideoSource.h"

VideoAcquisition::VideoAcquisition() = default;

VideoAcquisition::~VideoAcquisition() = default;

void VideoAcquisition::setStream(QSharedPointer<kelAbstractDataStream> &stream)
{
    kelAbstractProcessAcquisition::setStream(stream);
    m_source = std::make_unique<VideoSource>(stream->device());
}

bool VideoAcquisition::acquire()
{
    cv::Mat frame; // a new buffer each time: the last frame may still be in use
    if (!m_source || !m_source->read(frame))
        return false;
    getImage().reset(new kelDataImage);
    setImage(frame);
    return true;
}

const VideoSource &VideoAcquisition::source() const { return *m_source; }
