#ifndef APPS_KELRECORD_VIDEOACQUISITION_H
#define APPS_KELRECORD_VIDEOACQUISITION_H

/// \file
/// Acquisition from a video file or a camera.

#include <kelCore/process/kelAbstractProcessAcquisition.h>

#include <memory>

class VideoSource;

/// Opens what its stream's device names, and hands out its frames one after another.
class VideoAcquisition : public kelAbstractProcessAcquisition
{
    Q_OBJECT

public:
    VideoAcquisition();
    ~VideoAcquisition() override;

    /// Opens the stream's device. \throws Failure when it is no video.
    void setStream(QSharedPointer<kelAbstractDataStream> &stream) override;
    bool acquire() override;

    /// The open video; there is one after `setStream`.
    const VideoSource &source() const;

private:
    Q_DISABLE_COPY(VideoAcquisition) // a copy would take frames from the same video

    std::unique_ptr<VideoSource> m_source;
};

#endif
