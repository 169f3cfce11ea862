#include "common/VideoSource.h"

#include "common/Program.h"

#include <QFile>
#include <QFileInfo>

VideoSource::VideoSource(const QString &name) : m_name(name)
{
    const QFileInfo file(name);
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (!file.exists() && isNumber && number >= 0)
        m_camera = number;
    else if (file.isDir())
        throw Failure(QStringLiteral("%1 is a folder; give a video file or the index of a camera").arg(name));
    else if (!file.exists() && !name.contains(QLatin1Char('%')) && !name.contains(QLatin1String("://")))
        throw Failure(QStringLiteral("no such video: %1").arg(name));
    else if (file.exists() && !file.isReadable())
        throw Failure(QStringLiteral("%1 cannot be read; check its permissions").arg(name));
    if (!reopen())
        throw Failure(
            isCamera() ? QStringLiteral("camera %1 cannot be opened; is it connected and free?").arg(number)
                       : QStringLiteral("%1 is not a video that can be read").arg(name));
}

bool VideoSource::reopen()
{
    m_next = 0;
    if (isCamera())
        return m_capture.open(m_camera);
    // Named one by one: left to itself, OpenCV also looks for photo cameras on every bus.
    const std::string path = QFile::encodeName(m_name).toStdString();
    for (const int backend : {cv::CAP_FFMPEG, cv::CAP_GSTREAMER, cv::CAP_IMAGES, cv::CAP_OPENCV_MJPEG})
        if (m_capture.open(path, backend))
            return true;
    return false;
}

double VideoSource::framesPerSecond() const
{
    const double fps = m_capture.get(cv::CAP_PROP_FPS);
    return fps > 0 && fps < 100000 ? fps : 25;
}

int VideoSource::frameCount() const
{
    const double count = isCamera() ? 0 : m_capture.get(cv::CAP_PROP_FRAME_COUNT);
    return count > 0 && count < 1e9 ? static_cast<int>(count) : 0;
}

bool VideoSource::read(cv::Mat &frame)
{
    if (!m_capture.read(frame) || frame.empty())
        return false;
    ++m_next;
    return true;
}

cv::Mat VideoSource::frame(int index)
{
    const size_t kept = 64;
    const auto found = m_recent.find(index);
    if (found != m_recent.end())
        return found->second;
    if (index < m_next && !reopen())
        return cv::Mat();
    while (m_next < index) {
        if (!m_capture.grab())
            return cv::Mat();
        ++m_next;
    }
    cv::Mat picture;
    if (!read(picture))
        return cv::Mat();
    if (m_recent.size() >= kept)
        m_recent.erase(m_recent.begin()->first < index ? m_recent.begin() : std::prev(m_recent.end()));
    return m_recent[index] = picture.clone();
}
