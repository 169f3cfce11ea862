#ifndef APPS_COMMON_VIDEOSOURCE_H
#define APPS_COMMON_VIDEOSOURCE_H

/// \file
/// The frames of a video file or a camera.

#include <opencv2/core/mat.hpp>
#include <opencv2/videoio.hpp>

#include <QString>

#include <map>

/// Frames per second that a run can have: a picture in eleven days, and more than any camera takes. A file that
/// claims another rate means the ticks of its clock, or nothing.
constexpr double leastRate = 1e-6;
constexpr double greatestRate = 1e5;

/// A video file, or a camera by its index or its device. Colour frames, 8-bit in blue, green, red order.
class VideoSource
{
public:
    /// Opens `name`: a file, a device, or else the index of a camera, an address ("rtsp://...") or numbered
    /// pictures ("frame_%04d.png"). These are opened one after another: the name must outlive a change of the
    /// working directory.
    /// \throws Failure when there is no such file or it is no video.
    explicit VideoSource(const QString &name);

    bool isCamera() const { return m_camera >= 0 || m_device; }
    /// What the file or camera says, or 25 when it says nothing that can be.
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
    int m_camera = -1; ///< index; -1: opened by its name
    bool m_device = false;
    cv::VideoCapture m_capture;
    int m_next = 0; ///< index of the frame that `read` takes
    std::map<int, cv::Mat> m_recent; ///< what `frame` decoded last
};

#endif
