#include "kelreplay/ReplayView.h"

#include "common/Program.h"
#include "common/ViewFactory.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include <QRect>

#include <algorithm>
#include <cmath>

namespace {

/// The smallest picture from the origin that shows every box, within reason.
cv::Size canvasSize(const Recording &recording)
{
    constexpr int largest = 8192, margin = 8;
    const cv::Size usual(640, 480);
    cv::Size size(0, 0);
    for (int i = 0; i < static_cast<int>(recording.records().size()); ++i) {
        const QRect box = boxOf(recording.record(i));
        size.width = std::max(size.width, std::min(box.right(), largest) + margin);
        size.height = std::max(size.height, std::min(box.bottom(), largest) + margin);
    }
    return size.width > margin && size.height > margin ? size : usual;
}

/// Frames per second; 0 when the times do not tell.
int recordedRate(const std::vector<RecordedFrame> &frames)
{
    if (frames.size() < 2 || frames.front().time.isNull() || frames.back().time.isNull())
        return 0;
    const qint64 span = frames.front().time.msecsTo(frames.back().time);
    return span > 0 ? static_cast<int>(std::lround(double(frames.size() - 1) * 1000 / double(span))) : 0;
}

} // namespace

ReplayView::ReplayView(const Recording &recording, const QString &video, const ViewSettings &settings)
    : m_recording(recording), m_view(makeView(settings))
{
    m_view->setFrameRate(recordedRate(recording.frames()));
    if (!video.isEmpty())
        m_video = std::make_unique<VideoSource>(video);
    if (m_video && m_video->isCamera())
        throw Failure(QStringLiteral("a recording is shown over a video file, not over a camera"));
    if (!m_video)
        m_canvas = cv::Mat::zeros(canvasSize(recording), CV_8UC3);
}

cv::Mat ReplayView::background(const RecordedFrame &frame)
{
    if (!m_video)
        return m_canvas;
    const cv::Mat picture = m_video->frame(static_cast<int>(frame.number));
    if (picture.empty())
        throw Failure(
            QStringLiteral("the video has no frame %1; is it the one that was recorded?").arg(frame.number));
    return picture;
}

void ReplayView::show(int index)
{
    const std::vector<RecordedFrame> &frames = m_recording.frames();
    for (auto next = static_cast<size_t>(m_view->frameCount()); next <= static_cast<size_t>(index); ++next)
        m_view->add(frames[next].stamp(), m_recording.boxesOf(frames[next]));

    const RecordedFrame &frame = frames[static_cast<size_t>(index)];
    Shot shot;
    shot.picture.reset(new kelDataImage);
    shot.picture->setImage(background(frame));
    for (const cv::Rect &box : m_recording.boxesOf(frame)) {
        QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D(box);
        shot.blobs.append(blob);
    }
    m_view->showShot(index, shot);
}
