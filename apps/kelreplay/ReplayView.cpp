#include "kelreplay/ReplayView.h"

#include "common/Program.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include <QRect>

#include <algorithm>

namespace {

QRect recordedBox(const kelDataFlowRecord &record)
{
    return record.properties.value(QStringLiteral("BoundingBox2D")).toRect();
}

/// The smallest picture from the origin that shows every box, within reason.
cv::Size canvasSize(const Recording &recording)
{
    const int largest = 8192;
    cv::Size size(0, 0);
    for (int i = 0; i < static_cast<int>(recording.records().size()); ++i) {
        const QRect box = recordedBox(recording.record(i));
        size.width = std::max(size.width, std::min(box.right(), largest) + 8);
        size.height = std::max(size.height, std::min(box.bottom(), largest) + 8);
    }
    return size.width > 8 && size.height > 8 ? size : cv::Size(640, 480);
}

} // namespace

ReplayView::ReplayView(const Recording &recording, const QString &video) : m_recording(recording)
{
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
    const RecordedFrame &frame = m_recording.frames()[static_cast<size_t>(index)];
    QSharedPointer<kelDataImage> image(new kelDataImage);
    image->setImage(background(frame));
    QList<QSharedPointer<kelDataBlob>> blobs;
    for (const kelDataFlowRecord &record : m_recording.recordsOf(frame)) {
        const QRect box = recordedBox(record);
        if (record.dataType != QLatin1String("kelDataBlob") || box.isNull())
            continue;
        QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D(cv::Rect(box.x(), box.y(), box.width(), box.height()));
        blobs.append(blob);
    }
    m_view.setAcquisitionImage(image);
    m_view.setBlobs(blobs);
}

cv::Mat ReplayView::picture(const SceneOverlay &overlay)
{
    m_view.updateDisplay();
    cv::Mat picture = m_view.getDisplay()->getImage(); // made anew by each update, so free to be drawn on
    overlay.draw(picture);
    return picture;
}
