#include "kelrecord/VideoAcquisition.h"

#include "common/VideoSource.h"

#include <kelCore/process/kelAbstractProcessAcquisition_p.h>

#include <memory>

class VideoAcquisitionPrivate : public kelAbstractProcessAcquisitionPrivate
{
public:
    std::unique_ptr<VideoSource> source;
};

VideoAcquisition::VideoAcquisition() : kelAbstractProcessAcquisition(*new VideoAcquisitionPrivate) { }

void VideoAcquisition::setStream(QSharedPointer<kelAbstractDataStream> &stream)
{
    kelAbstractProcessAcquisition::setStream(stream);
    d_func()->source = std::make_unique<VideoSource>(stream->device());
}

bool VideoAcquisition::acquire()
{
    Q_D(VideoAcquisition);
    cv::Mat frame; // a new buffer each time: the last frame may still be in use
    if (!d->source || !d->source->read(frame))
        return false;
    d->image.reset(new kelDataImage);
    setImage(frame);
    return true;
}

const VideoSource &VideoAcquisition::source() const { return *d_func()->source; }
