#ifndef TESTS_SUPPORT_TIMELINEVIEW_H
#define TESTS_SUPPORT_TIMELINEVIEW_H

/// \file
/// An event timeline, the events to set in it, and what is seen of them.

#include <kelCore/data/kelDataEvent.h>
#include <kelCore/view/kelViewEventTimeline.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>

#include <list>
#include <string>
#include <utility>
#include <vector>

namespace timeline {

using Event = QSharedPointer<kelDataEvent>;

inline CSynchronizer at(qint64 msecsSinceEpoch)
{
    CSynchronizer time;
    time.setDateTime(QDateTime::fromMSecsSinceEpoch(msecsSinceEpoch, Qt::UTC));
    return time;
}

inline const qint64 frameTime = 1577836800000; // The beginning of 2020.

inline CSynchronizer now() { return at(frameTime); }
inline CSynchronizer ago(qint64 msecs) { return at(frameTime - msecs); }
inline CSynchronizer after(qint64 msecs) { return at(frameTime + msecs); }

inline Event event(const std::string &name, int actor, const CSynchronizer &begin, const CSynchronizer &end,
                   const std::string &level = "NOTURGENT")
{
    Event result(new kelDataEvent);
    result->setSEDName(name);
    result->setInvolvedActorId(actor);
    result->setSEDBegin(begin);
    result->setSEDEnd(end);
    result->setSEDAlarmLevel(level);
    return result;
}

/// An event from 50 s to 40 s ago: a bar from 140 to 240.
inline Event fall(const std::string &level = "NOTURGENT")
{
    return event("Fall", 4, ago(50000), ago(40000), level);
}

/// A view in use.
struct Timeline : kelViewEventTimeline
{
    Timeline() { init(); }
    Timeline(const std::list<Event> &events, const CSynchronizer &time = now())
    {
        init();
        show(events, time);
    }
    void show(const std::list<Event> &events, const CSynchronizer &time = now())
    {
        setEvents(events, time);
        updateDisplay();
    }
};

inline QImage picture(QWidget *widget)
{
    return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
}
inline QImage picture(kelViewEventTimeline &view) { return picture(view.widget()); }

inline std::string name(const QColor &color)
{
    const std::pair<Qt::GlobalColor, const char *> names[] = {{Qt::black, "black"},
                                                              {Qt::cyan, "cyan"},
                                                              {Qt::green, "green"},
                                                              {Qt::darkGreen, "dark green"},
                                                              {Qt::red, "red"}};
    for (const auto &[known, text] : names)
        if (color == QColor(known))
            return text;
    return color.name().toStdString();
}

/// What is not white on a line of pixels, such as "cyan 131..248": each run of a colour with its first and
/// last pixel.
inline std::vector<std::string> runs(const QImage &line)
{
    std::vector<std::string> result;
    const auto pixel = [&](int i) { return line.height() == 1 ? line.pixel(i, 0) : line.pixel(0, i); };
    const int count = line.width() * line.height();
    for (int first = 0, last = 0; first < count; first = last + 1) {
        last = first;
        while (last + 1 < count && pixel(last + 1) == pixel(first))
            ++last;
        if (QColor(pixel(first)) != QColor(Qt::white))
            result.push_back(name(pixel(first)) + ' ' + std::to_string(first) + ".." + std::to_string(last));
    }
    return result;
}

inline std::vector<std::string> alongRow(const QImage &picture, int y)
{
    return runs(picture.copy(0, y, picture.width(), 1));
}

inline std::vector<std::string> alongColumn(const QImage &picture, int x)
{
    return runs(picture.copy(x, 0, 1, picture.height()));
}

/// The bars of a row, read along their upper edge: above the label.
inline std::vector<std::string> bars(kelViewEventTimeline &view, int row)
{
    return alongRow(picture(view), 50 + 20 * row - 14);
}

/// How many rows there are, by the height that their labels take up.
inline int rows(kelViewEventTimeline &view)
{
    const QImage shown = picture(view);
    int row = 0;
    while (50 + 20 * row < shown.height() && !alongRow(shown, 50 + 20 * row - 5).empty())
        ++row;
    return row;
}

inline testing::AssertionResult samePicture(const QImage &actual, const QImage &expected)
{
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.width() << " x " << actual.height() << " instead of "
                                           << expected.width() << " x " << expected.height();
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x)
            if (actual.pixel(x, y) != expected.pixel(x, y))
                return testing::AssertionFailure()
                    << "at " << x << ", " << y << ": " << name(actual.pixel(x, y)) << " instead of "
                    << name(expected.pixel(x, y));
    return testing::AssertionSuccess();
}

/// A row as it is to look.
struct ExpectedRow
{
    QString label;
    std::optional<Qt::GlobalColor> color; ///< Without one the pen is left as it is.
    std::vector<std::pair<int, int>> bars; ///< From x to x.
};

/// A plain widget that paints what a timeline is to look like.
class ExpectedTimeline : public QWidget
{
public:
    explicit ExpectedTimeline(const std::vector<ExpectedRow> &rows) : m_rows(rows) { setFixedSize(640, 480); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        QFont small(painter.font());
        small.setPointSize(10);
        small.setWeight(QFont::Normal);
        QFont big(painter.font());
        big.setPointSize(12);
        big.setWeight(QFont::Bold);

        painter.fillRect(rect(), Qt::white);
        QPen header(QBrush(Qt::black, Qt::SolidPattern), 2.0);
        header.setCapStyle(Qt::SquareCap);
        header.setJoinStyle(Qt::BevelJoin);
        painter.setPen(header);
        painter.setFont(big);
        painter.drawText(QPoint(2, 20), "Actors/Events");
        painter.drawText(QPoint(400, 20), "Time");
        painter.drawLine(QPoint(200, 0), QPoint(200, 30));
        painter.drawLine(QPoint(0, 30), QPoint(width(), 30));

        painter.setFont(small);
        for (size_t i = 0; i < m_rows.size(); ++i) {
            const int y = 50 + 20 * static_cast<int>(i);
            if (m_rows[i].color) {
                QPen bar(QBrush(*m_rows[i].color, Qt::SolidPattern), 18.0);
                bar.setCapStyle(Qt::SquareCap);
                bar.setJoinStyle(Qt::BevelJoin);
                painter.setPen(bar);
            }
            for (const auto &[from, to] : m_rows[i].bars)
                painter.drawLine(QPoint(from, y - 5), QPoint(to, y - 5));
            painter.setPen(Qt::black);
            painter.drawText(QPoint(2, y), m_rows[i].label);
        }
    }

private:
    const std::vector<ExpectedRow> m_rows;
};

inline testing::AssertionResult looksLike(kelViewEventTimeline &view, const std::vector<ExpectedRow> &rows)
{
    ExpectedTimeline expected(rows);
    return samePicture(picture(view), picture(&expected));
}

inline QGraphicsView *graphicsView(kelViewEventTimeline &view)
{
    return static_cast<QGraphicsView *>(view.widget());
}

/// Counts the paint events of a widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) { widget->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

} // namespace timeline

#endif
