#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewEventTimeline_p.h>

#include <kelCore/data/kelDataEvent.h>

#include <QGraphicsPixmapItem>
#include <QPainter>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 timeSpan = 64000; ///< Milliseconds.
constexpr qint64 timePerPixel = 100; ///< Milliseconds.
constexpr int rightEdge = 640; ///< Where the time of the frame stands, whatever the widget's width.
constexpr int firstRow = 50; ///< Base line of the labels.
constexpr int rowHeight = 20;

const struct
{
    QLatin1String alarmLevel;
    Qt::GlobalColor color;
} barColors[] = {
    {QLatin1String("NOTURGENT"), Qt::cyan},
    {QLatin1String("URGENT"), Qt::green},
    {QLatin1String("VERYURGENT"), Qt::darkGreen},
    {QLatin1String("SUPERURGENT"), Qt::red},
};

/// Milliseconds from `begin` to `end`. Times too far from the epoch for that are taken to be nearer.
qint64 elapsed(const CSynchronizer &begin, const CSynchronizer &end)
{
    constexpr qint64 limit = std::numeric_limits<qint64>::max() / 2;
    return qBound(-limit, end.toMSecsSinceEpoch(), limit) - qBound(-limit, begin.toMSecsSinceEpoch(), limit);
}

/// Where `time` stands on the axis. Far outside the widget it stops, within what a painter can draw.
int xOf(const CSynchronizer &time, const CSynchronizer &currentTime)
{
    constexpr qint64 limit = 20000;
    return rightEdge - static_cast<int>(qBound(-limit, elapsed(time, currentTime) / timePerPixel, limit));
}

QPen thickPen(Qt::GlobalColor color, double width)
{
    return QPen(QBrush(color), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

void paintTimeline(QPainter &painter, const QRect &area, const kelViewEventTimelinePrivate &d)
{
    QFont smallFont = painter.font();
    smallFont.setPointSize(10);
    smallFont.setWeight(QFont::Normal);
    QFont bigFont = painter.font();
    bigFont.setPointSize(12);
    bigFont.setWeight(QFont::Bold);

    painter.fillRect(area, Qt::white);
    painter.setPen(thickPen(Qt::black, 2.0));
    painter.setFont(bigFont);
    painter.drawText(2, 20, QStringLiteral("Actors/Events"));
    painter.drawText(400, 20, QStringLiteral("Time"));
    painter.drawLine(200, 0, 200, 30);
    painter.drawLine(0, 30, area.width(), 30);

    painter.setFont(smallFont);
    int y = firstRow;
    for (const DataEvent &row : d.shownEvents) {
        // A row of another level keeps the pen that was set last, the header's or the label's: deliberate.
        for (const auto &bar : barColors)
            if (row.alarmLevel == bar.alarmLevel)
                painter.setPen(thickPen(bar.color, 18.0));
        for (const auto &[begin, end] : row.intervals)
            painter.drawLine(xOf(begin, d.shownTime), y - 5, xOf(end, d.shownTime), y - 5);
        painter.setPen(Qt::black);
        painter.drawText(2, y, QString::number(row.actorId) + QLatin1Char('/') + row.name);
        y += rowHeight;
    }
}

/// Paints the timeline in its paint handler: no platform lets `updateDisplay` paint by itself.
class TimelineWidget : public QGraphicsView
{
public:
    explicit TimelineWidget(kelViewEventTimelinePrivate &d) : QGraphicsView(&d.scene), m_d(d)
    {
        setRenderHint(QPainter::Antialiasing);
        // Nothing around the picture.
        setFrameShape(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        if (!m_d.shown) {
            QGraphicsView::paintEvent(event);
            return;
        }
        QPainter painter(viewport());
        paintTimeline(painter, viewport()->rect(), m_d);
    }

private:
    const kelViewEventTimelinePrivate &m_d;
};

} // namespace

kelViewEventTimelinePrivate::kelViewEventTimelinePrivate()
    : view(new TimelineWidget(*this)), pixmapItem(scene.addPixmap(QPixmap()))
{ }

kelViewEventTimelinePrivate::~kelViewEventTimelinePrivate() { delete view; }

kelViewEventTimeline::kelViewEventTimeline() : nubAbstractView(*new kelViewEventTimelinePrivate) { }

kelViewEventTimeline::~kelViewEventTimeline() = default;

void kelViewEventTimeline::init()
{
    Q_D(kelViewEventTimeline);
    if (!d->view)
        return;
    d->view->setFixedSize(640, 480);
    d->view->setWindowTitle(QStringLiteral("Event time line"));
    // WA_PaintOutsidePaintEvent, which has neither a name nor an effect any more.
    d->view->setAttribute(static_cast<Qt::WidgetAttribute>(13));
}

void kelViewEventTimeline::setEvents(std::list<QSharedPointer<kelDataEvent>> events, CSynchronizer now)
{
    currentTime = now;
    for (const QSharedPointer<kelDataEvent> &event : events) {
        if (!event)
            continue;
        // Converted before it is compared: a name that is no UTF-8 would otherwise never find its row again.
        const QString name = QString::fromStdString(event->getSEDName());
        const int actorId = event->getInvolvedActorId();
        const std::pair<CSynchronizer, CSynchronizer> interval(event->getSEDBegin(), event->getSEDEnd());
        const auto row = std::find_if(dataEvents.begin(), dataEvents.end(), [&](const DataEvent &candidate) {
            return candidate.name == name && candidate.actorId == actorId;
        });
        if (row == dataEvents.end())
            dataEvents.push_back(
                {name, actorId, {interval}, QString::fromStdString(event->getSEDAlarmLevel())});
        else if (row->intervals.back().first == interval.first)
            row->intervals.back().second = interval.second;
        else
            row->intervals.push_back(interval);
    }
    removeOldEvents();
}

void kelViewEventTimeline::removeOldEvents()
{
    dataEvents.remove_if([this](DataEvent &row) {
        if (elapsed(row.intervals.front().second, currentTime) > timeSpan)
            row.intervals.pop_front();
        return row.intervals.empty();
    });
}

void kelViewEventTimeline::updateDisplay()
{
    Q_D(kelViewEventTimeline);
    if (!d->view)
        return;
    d->shown = true;
    d->shownEvents = dataEvents;
    d->shownTime = currentTime;
    d->view->viewport()->repaint();
}

QWidget *kelViewEventTimeline::widget() { return d_func()->view; }

nubAbstractView *createkelViewEventTimeline() { return new kelViewEventTimeline; }
