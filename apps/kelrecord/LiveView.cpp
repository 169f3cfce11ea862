#include "kelrecord/LiveView.h"

#include "common/Program.h"
#include "common/VideoSource.h"
#include "kelrecord/Settings.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include <QApplication>
#include <QWidget>

LiveView::LiveView(const Settings &settings, const VideoSource &source)
    : m_settings(settings), m_overlay(settings.calibration, settings.context)
{
    if (settings.show && !hasDisplay() && !settings.quiet)
        say(QStringLiteral("there is no display, so --show shows nothing; --render draws without one"));
    m_window = settings.show && hasDisplay();
    if (!settings.render.isEmpty())
        m_sink.emplace(settings.render,
                       settings.framesPerSecond > 0 ? settings.framesPerSecond : source.framesPerSecond());
    if (m_window) {
        m_view.widget()->setWindowTitle(settings.video);
        m_view.widget()->show();
    }
}

void LiveView::add(int number, const QSharedPointer<kelDataImage> &frame,
                   const QSharedPointer<kelDataImage> &mask, const QList<QSharedPointer<kelDataBlob>> &blobs)
{
    const bool draw = m_sink && number % m_settings.renderEvery == 0;
    if (!draw && !m_window)
        return;
    m_view.setAcquisitionImage(frame);
    if (m_settings.mask)
        m_view.setSegmentationImage(mask);
    m_view.setBlobs(blobs);
    if (draw) {
        m_view.updateDisplay();
        cv::Mat picture = m_view.getDisplay()->getImage(); // made anew by each update, so free to be drawn on
        m_overlay.draw(picture);
        m_sink->add(static_cast<quint32>(number), picture);
    }
    if (m_window)
        QApplication::processEvents();
}
