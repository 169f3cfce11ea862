#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewEventTimeline_p.h>

#include <kelCore/data/kelDataEvent.h>
#include <kelCore/view/internal/kelSceneItems.h>

#include <QPainter>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 timePerPixel = 100; ///< Milliseconds.
constexpr int rightEdge = 640; ///< Where the time of the frame stands, whatever the widget's width.

// Pixels. A row reaches from the upper edge of its bar to that of the next; its label stands on the base line.
constexpr int barWidth = 18;
constexpr int barAboveBase = 5;
constexpr int firstBase = kelViewEventTimeline::headerHeight + barWidth / 2 + barAboveBase;
constexpr int belowLastRow = 4; ///< For what reaches under the base line.
constexpr int labelLeft = 2;
constexpr int timeColumn = 200; ///< The header's line between labels and bars.
constexpr int headerLine = 30;
constexpr QPoint labelsHeading(labelLeft, 20);
constexpr QPoint timeHeading(400, 20);

const struct
{
    QLatin1String alarmLevel;
    Qt::GlobalColor color = Qt::black;
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
    painter.drawText(labelsHeading, QStringLiteral("Actors/Events"));
    painter.drawText(timeHeading, QStringLiteral("Time"));
    painter.drawLine(timeColumn, 0, timeColumn, headerLine);
    painter.drawLine(0, headerLine, area.width(), headerLine);

    painter.setFont(smallFont);
    int y = firstBase;
    for (const DataEvent &row : d.shownEvents) {
        // A row of another level keeps the pen that was set last, the header's or the label's: deliberate.
        for (const auto &bar : barColors)
            if (row.alarmLevel == bar.alarmLevel)
                painter.setPen(thickPen(bar.color, barWidth));
        for (const auto &[begin, end] : row.intervals)
            painter.drawLine(xOf(begin, d.shownTime), y - barAboveBase, xOf(end, d.shownTime),
                             y - barAboveBase);
        painter.setPen(Qt::black);
        painter.drawText(labelLeft, y, QString::number(row.actorId) + QLatin1Char('/') + row.name);
        y += kelViewEventTimeline::rowHeight;
    }
}

/// The name as a row keeps it: different for different bytes. The bytes of a name that is no UTF-8 become lone
/// surrogates, which no text holds; painted, each is a replacement character.
QString rowName(const std::string &bytes)
{
    const QString text = QString::fromStdString(bytes);
    if (text.toStdString() == bytes)
        return text;
    QString kept;
    for (const char c : bytes) {
        const auto byte = static_cast<uchar>(c);
        kept += QChar(byte < 0x80 ? byte : 0xdc00 + byte);
    }
    return kept;
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
    : view(new TimelineWidget(*this)),
      sceneItems(std::make_shared<kelSceneItems>(scene, std::vector{&pixmapItem}, std::vector{&items}))
{
    sceneItems->filled(pixmapItem);
}

kelViewEventTimelinePrivate::~kelViewEventTimelinePrivate() { delete view; }

kelViewEventTimeline::kelViewEventTimeline() : nubAbstractView(*new kelViewEventTimelinePrivate) { }

kelViewEventTimeline::kelViewEventTimeline(kelViewEventTimelinePrivate &dd, QObject *parent)
    : nubAbstractView(dd, parent)
{ }

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
        const QString name = rowName(event->getSEDName());
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

void kelViewEventTimeline::clear()
{
    dataEvents.clear();
    currentTime = CSynchronizer();
}

int kelViewEventTimeline::contentHeight() const
{
    return headerHeight + rowHeight * static_cast<int>(dataEvents.size()) + belowLastRow;
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
