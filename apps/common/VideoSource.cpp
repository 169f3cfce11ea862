#include "common/VideoSource.h"

#include "common/Failure.h"
#include "common/RegularFile.h"

#include <QFile>

#include <climits>
#include <vector>

VideoSource::VideoSource(const QString &name) : m_name(name)
{
    const PathKind kind = kindOf(name);
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (kind == PathKind::Missing && isNumber && number >= 0)
        m_camera = number;
    else if (kind == PathKind::CharacterDevice)
        m_device = true;
    else if (kind != PathKind::Missing)
        mustBeReadableFile(name, QStringLiteral("video"));
    else if (!name.contains(QLatin1Char('%')) && !name.contains(QLatin1String("://")))
        throw Failure(
            QStringLiteral("there is no video %1; check its name, or give the index of a camera").arg(name));
    if (!reopen())
        throw Failure(
            isCamera()
                ? QStringLiteral("camera %1 cannot be opened; is it connected and free?").arg(name)
                : QStringLiteral("%1 is not a video that can be read; does a player show it?").arg(name));
}

bool VideoSource::reopen()
{
    m_next = 0;
    if (isCamera())
        return m_capture.open(m_camera);
    // Named one by one: left to itself, OpenCV also looks for photo cameras on every bus.
    const std::string path = QFile::encodeName(m_name).toStdString();
    const std::vector<int> files{cv::CAP_FFMPEG, cv::CAP_GSTREAMER, cv::CAP_IMAGES, cv::CAP_OPENCV_MJPEG};
    const std::vector<int> devices{cv::CAP_V4L2, cv::CAP_FFMPEG, cv::CAP_GSTREAMER};
    for (const int backend : m_device ? devices : files)
        if (m_capture.open(path, backend))
            return true;
    return false;
}

double VideoSource::framesPerSecond() const
{
    const double fps = m_capture.get(cv::CAP_PROP_FPS);
    return fps >= leastRate && fps <= greatestRate ? fps : 25;
}

int VideoSource::frameCount() const
{
    const double count = isCamera() ? 0 : m_capture.get(cv::CAP_PROP_FRAME_COUNT);
    return count > 0 && count < INT_MAX ? static_cast<int>(count) : 0; // streams claim wild numbers
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
    const size_t kept = 64; // two pages of the replay's steps, and 170 MB of a video of 720 lines
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
