#ifndef APPS_COMMON_PICTURESINK_H
#define APPS_COMMON_PICTURESINK_H

/// \file
/// Where rendered pictures go.

#include <opencv2/core/mat.hpp>
#include <opencv2/videoio.hpp>

#include <QString>

/// Writes a picture of three or four channels, in blue, green, red order, to a PNG file. The file appears
/// whole or not at all. \throws Failure when it cannot be written.
void writePng(const QString &path, const cv::Mat &picture);

/// Takes a run's pictures: one PNG per frame in a folder, or the frames of an .avi.
class PictureSink
{
public:
    /// \param target the folder, which is made where it is missing, or a path that ends in ".avi". The folder
    /// around it must be there.
    /// \param framesPerSecond of the video.
    /// \throws Failure when nothing can be written there.
    PictureSink(const QString &target, double framesPerSecond);

    void add(quint32 frameNumber, const cv::Mat &picture);

private:
    QString pathOf(quint32 frameNumber) const;

    QString m_target;
    double m_framesPerSecond;
    bool m_isVideo;
    cv::VideoWriter m_video; ///< opened with the first picture, which fixes its size
};

#endif
