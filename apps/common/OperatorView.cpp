#include "common/OperatorView.h"

#include "common/Scene.h"

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/MyQGraphicsScene.h>

#include <opencv2/core.hpp>

#include <QApplication>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// The timeline. Lengths are in pixels.
constexpr qint64 timeSpan = 64000; ///< milliseconds
constexpr QSize timelineSize(640, 480); ///< in a picture
constexpr int headerHeight = 36;
constexpr int rowHeight = 20;
constexpr int shownHeight = 190; ///< in a window, until the user wants more

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

    m_viewWidget = static_cast<QGraphicsView *>(m_view.widget());
    m_switches = static_cast<MyQGraphicsScene *>(m_viewWidget->scene());
    for (const QChar key : keys) {
        QKeyEvent press(QEvent::KeyPress, key.unicode(), Qt::NoModifier, key);
        QCoreApplication::sendEvent(m_switches, &press);
    }

    setFocusPolicy(Qt::StrongFocus);
    m_viewWidget->setFocusPolicy(Qt::NoFocus);
    m_scroll.setFocusPolicy(Qt::NoFocus);
    m_scroll.setWidgetResizable(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_viewWidget);
    layout->addWidget(&m_scroll, 1);
    restartTimeline();
    m_scroll.setMinimumHeight(shownHeight / 2);
}

QSize OperatorView::sizeHint() const
{
    const QSize view = m_viewWidget->sizeHint();
    const int timelineWidth =
        timelineSize.width() + m_scroll.verticalScrollBar()->sizeHint().width() + 2 * m_scroll.frameWidth();
    return {std::max(view.width(), timelineWidth), view.height() + layout()->spacing() + shownHeight};
}

void OperatorView::showShot(const Shot &shot)
{
    const bool isFirst = !m_shot.picture;
    m_shot = shot;
    // Pixels are many: they are taken where they are shown.
    const bool wantsPixels = m_switches->showActors && shot.foreground;
    m_view.setAcquisitionImage(shot.picture);
    m_view.setActors(m_follower.actors(shot.index, wantsPixels ? shot.foreground->getImage() : cv::Mat()));
    m_view.setEvents(m_follower.events(shot.index));
    feedTimeline(shot.index);
    fitTimeline();
    m_timeline->updateDisplay();
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
           && std::abs(now - m_follower.stamp(first - 1).toMSecsSinceEpoch()) <= timeSpan)
        --first;

    if (m_fed < first || m_fed > frame) {
        restartTimeline();
        m_fed = first;
    }
    for (; m_fed <= frame; ++m_fed) {
        const auto events = m_follower.events(m_fed);
        m_timeline->setEvents(events, m_follower.stamp(m_fed));
        for (const auto &event : events)
            m_rows[{event->getInvolvedActorId(), event->getSEDName()}] =
                event->getSEDEnd().toMSecsSinceEpoch();
    }
    for (auto it = m_rows.begin(); it != m_rows.end();)
        it = now - it->second > timeSpan ? m_rows.erase(it) : std::next(it);
}

void OperatorView::fitTimeline()
{
    // The newest rows are the lowest: whoever looks at them goes on to do so.
    QScrollBar &bar = *m_scroll.verticalScrollBar();
    const bool atEnd = bar.value() == bar.maximum();
    m_timeline->widget()->setMinimumHeight(timelineHeight());
    if (atEnd)
        bar.setValue(bar.maximum());
}

int OperatorView::timelineHeight() const
{
    return headerHeight + rowHeight * static_cast<int>(m_rows.size()) + 4;
}

void OperatorView::restartTimeline()
{
    auto timeline = std::make_unique<kelViewEventTimeline>();
    timeline->init();
    QWidget *widget = timeline->widget();
    widget->setFocusPolicy(Qt::NoFocus);
    widget->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX); // as high as it has rows
    if (m_timeline)
        widget->setMinimumHeight(m_timeline->widget()->height());
    const int scrolled = m_scroll.verticalScrollBar()->value();
    m_scroll.setWidget(widget); // deletes the one before it
    m_scroll.verticalScrollBar()->setValue(scrolled);
    m_timeline = std::move(timeline);
    m_fed = 0;
    m_rows.clear();
}

void OperatorView::redraw()
{
    const bool depth = m_switches->showDepth;
    m_view.updateDisplay();
    if (depth) // there is none: the view has left out the background, and turned the switch off
        m_view.updateDisplay();
    // The view has taken the size of its picture; the layout gives it the room that there is.
    m_viewWidget->updateGeometry();
    layout()->activate();
}

cv::Mat OperatorView::picture()
{
    const cv::Mat frame = m_shot.picture->getImage();
    const cv::Mat view = m_switches->displayEnabled
        ? m_view.getDisplay()->getImage()
        : cv::Mat(frame.size(), CV_8UC4, cv::Scalar(0, 0, 0, 255));
    cv::Mat timeline = pictureOf(*m_timeline->widget());
    timeline = timeline(cv::Rect(0, 0, timelineSize.width(), timelineHeight()));
    if (const int tooMany = timeline.rows - timelineSize.height(); tooMany > 0) // the oldest rows go
        cv::vconcat(timeline.rowRange(0, headerHeight),
                    timeline.rowRange(headerHeight + tooMany, timeline.rows), timeline);

    const cv::Size size(std::max(view.cols, timelineSize.width()), view.rows + timelineSize.height());
    cv::Mat picture(size, CV_8UC4, cv::Scalar(255, 255, 255, 255));
    picture.rowRange(0, view.rows) = cv::Scalar(0, 0, 0, 255);
    view.copyTo(picture(cv::Rect({0, 0}, view.size())));
    timeline.copyTo(picture(cv::Rect({0, view.rows}, timeline.size())));
    return picture;
}

void OperatorView::keyPressEvent(QKeyEvent *event)
{
    QCoreApplication::sendEvent(m_switches, event);
    event->accept();
    redraw();
}
