#include "kelrecord/LiveView.h"

#include "common/Recording.h"
#include "common/VideoSource.h"
#include "common/ViewFactory.h"
#include "kelrecord/Settings.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include <QApplication>

#include <cmath>

LiveView::LiveView(const Settings &settings, const VideoSource &source)
    : m_settings(settings), m_view(makeView(settings.view)), m_window(settings.show)
{
    if (!settings.render.isEmpty())
        m_sink.emplace(settings.render,
                       settings.framesPerSecond > 0 ? settings.framesPerSecond : source.framesPerSecond());
    if (m_window) {
        m_view->widget()->setWindowTitle(settings.video);
        m_view->widget()->show();
    }
    m_clock.start();
}

void LiveView::goOnBehind(const Recording &recording)
{
    for (const RecordedFrame &frame : recording.frames())
        m_view->add(frame.stamp(), recording.boxesOf(frame));
}

void LiveView::add(const CSynchronizer &stamp, const Shot &shot)
{
    if (!m_window && !m_sink)
        return;
    std::vector<cv::Rect> boxes;
    for (const QSharedPointer<kelDataBlob> &blob : shot.blobs)
        boxes.push_back(blob->getBoundingBox2D());
    const int index = m_view->add(stamp, boxes);
    const int number = static_cast<int>(stamp.getFrameNumber());
    const bool draw = m_sink && number % m_settings.renderEvery == 0;
    if (!draw && !m_window)
        return;
    m_view->setFrameRate(framesPerSecond());
    m_view->showShot(index, shot);
    if (draw)
        m_sink->add(stamp.getFrameNumber(), m_view->picture());
    if (m_window)
        QApplication::processEvents();
}

int LiveView::framesPerSecond()
{
    m_times.push_back(m_clock.elapsed());
    while (m_times.size() > 2 && m_times.back() - m_times.front() > 1000)
        m_times.pop_front();
    const double span = double(m_times.back() - m_times.front());
    return span > 0 ? static_cast<int>(std::lround(double(m_times.size() - 1) * 1000 / span)) : 0;
}
