#ifndef APPS_COMMON_VIDEOSOURCE_H
#define APPS_COMMON_VIDEOSOURCE_H

/// \file
/// The frames of a video file or a camera.

#include <opencv2/core/mat.hpp>
#include <opencv2/videoio.hpp>

#include <QString>

#include <map>

/// A video file, or a camera by its index. Colour frames, 8-bit in blue, green, red order.
class VideoSource
{
public:
    /// Opens `name`: a file, or else the index of a camera.
    /// \throws Failure when there is no such file or it is no video.
    explicit VideoSource(const QString &name);

    bool isCamera() const { return m_camera >= 0; }
    /// What the file or camera says, or 25 when it says nothing.
    double framesPerSecond() const;
    /// What the file says; 0 when it is not known.
    int frameCount() const;

    /// Takes the next frame; false at the end of the video.
    bool read(cv::Mat &frame);
    /// The frame of that index, wherever the source stands: forward by decoding, back from the few frames
    /// kept or from the start. Empty when there is none.
    cv::Mat frame(int index);

private:
    bool reopen();

    QString m_name;
    int m_camera = -1;
    cv::VideoCapture m_capture;
    int m_next = 0; ///< index of the frame that `read` takes
    std::map<int, cv::Mat> m_recent; ///< what `frame` decoded last
};

#endif
