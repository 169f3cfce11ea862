#include "common/OperatorView.h"

#include "common/Scene.h"

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>

#include <opencv2/core.hpp>

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace {

/// Pixels of the timeline that a window shows, until the user wants more.
constexpr int shownHeight = 190;

/// What a widget looks like, on or off the screen.
cv::Mat pictureOf(QWidget &widget)
{
    cv::Mat picture(widget.height(), widget.width(), CV_8UC4);
    QImage image(picture.data, picture.cols, picture.rows, static_cast<int>(picture.step),
                 QImage::Format_RGB32);
    widget.render(&image);
    return picture;
}

} // namespace

OperatorView::OperatorView(const Scene &scene, const QString &keys) : m_follower(scene)
{
    const SceneCamera &camera = m_follower.camera();
    std::list<ContextElement> elements = scene.elements;
    for (ContextElement &element : elements)
        for (cv::Point3d &vertex : element.polygonVertices)
            vertex = camera.inView(vertex);
    m_view.setCalibrationWithDepth(camera.viewCalibration());
    m_view.setGroundPlaneCoef(camera.groundPlane());
    m_view.setContextInfo(elements);

    for (const QChar key : keys)
        m_view.switches().press(key.unicode());

    m_timeline.init();
    QWidget *timeline = m_timeline.widget();
    m_timelineSize = timeline->size();
    timeline->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX); // as high as it has rows
    fitTimeline();

    setFocusPolicy(Qt::StrongFocus);
    for (QWidget *part : {m_viewWidget, timeline, static_cast<QWidget *>(&m_scroll)})
        part->setFocusPolicy(Qt::NoFocus);
    m_scroll.setWidgetResizable(true);
    m_scroll.setWidget(timeline);
    m_scroll.setMinimumHeight(shownHeight / 2);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_viewWidget);
    layout->addWidget(&m_scroll, 1);
}

QSize OperatorView::sizeHint() const
{
    const QSize view = m_viewWidget->sizeHint();
    const int timelineWidth =
        m_timelineSize.width() + m_scroll.verticalScrollBar()->sizeHint().width() + 2 * m_scroll.frameWidth();
    return {std::max(view.width(), timelineWidth), view.height() + layout()->spacing() + shownHeight};
}

void OperatorView::showShot(int index, const Shot &shot)
{
    const bool isFirst = !m_shot.picture;
    m_shot = shot;
    // Pixels are many: they are taken where they are shown.
    const bool wantsPixels = m_view.switches().showActors && shot.foreground;
    m_view.setAcquisitionImage(shot.picture);
    m_view.setActors(m_follower.actors(index, wantsPixels ? shot.foreground->getImage() : cv::Mat()));
    m_view.setEvents(m_follower.events(index));
    feedTimeline(index);
    fitTimeline();
    m_timeline.updateDisplay();
    redraw();
    if (isFirst && isWindow())
        resize(sizeHint());
}

void OperatorView::feedTimeline(int frame)
{
    // The first of the frames in the timeline's span, one after another.
    int first = frame;
    const qint64 now = m_follower.stamp(frame).toMSecsSinceEpoch();
    while (first > 0 && !m_follower.stamp(first - 1).getDateTime().isNull()
           && std::abs(now - m_follower.stamp(first - 1).toMSecsSinceEpoch())
               <= kelViewEventTimeline::timeSpan)
        --first;

    if (m_fed < first || m_fed > frame) {
        m_timeline.clear();
        m_fed = first;
    }
    for (; m_fed <= frame; ++m_fed)
        m_timeline.setEvents(m_follower.events(m_fed), m_follower.stamp(m_fed));
}

void OperatorView::fitTimeline()
{
    // The newest rows are the lowest: whoever looks at them goes on to do so.
    QScrollBar &bar = *m_scroll.verticalScrollBar();
    const bool atEnd = bar.value() == bar.maximum();
    m_timeline.widget()->setMinimumHeight(m_timeline.contentHeight());
    if (atEnd)
        bar.setValue(bar.maximum());
}

void OperatorView::redraw()
{
    m_view.switches().showDepth = false; // there is none
    m_view.updateDisplay();
    // The view has taken the size of its picture; the layout gives it the room that there is.
    m_viewWidget->updateGeometry();
    layout()->activate();
}

cv::Mat OperatorView::picture()
{
    const cv::Mat frame = m_shot.picture->getImage();
    const cv::Mat view = m_view.switches().displayEnabled
        ? m_view.getDisplay()->getImage()
        : cv::Mat(frame.size(), CV_8UC4, cv::Scalar(0, 0, 0, 255));
    cv::Mat timeline = pictureOf(*m_timeline.widget());
    timeline = timeline(cv::Rect(0, 0, m_timelineSize.width(), m_timeline.contentHeight()));
    constexpr int header = kelViewEventTimeline::headerHeight;
    if (const int tooMany = timeline.rows - m_timelineSize.height(); tooMany > 0) // the oldest rows go
        cv::vconcat(timeline.rowRange(0, header), timeline.rowRange(header + tooMany, timeline.rows),
                    timeline);

    const cv::Size size(std::max(view.cols, m_timelineSize.width()), view.rows + m_timelineSize.height());
    cv::Mat picture(size, CV_8UC4, cv::Scalar(255, 255, 255, 255));
    picture.rowRange(0, view.rows) = cv::Scalar(0, 0, 0, 255);
    view.copyTo(picture(cv::Rect({0, 0}, view.size())));
    timeline.copyTo(picture(cv::Rect({0, view.rows}, timeline.size())));
    return picture;
}

void OperatorView::keyPressEvent(QKeyEvent *event)
{
    m_view.switches().press(event->key());
    event->accept();
    redraw();
}
