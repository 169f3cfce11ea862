#ifndef KELCORE_KELVIEWEVENTTIMELINE_H
#define KELCORE_KELVIEWEVENTTIMELINE_H

/// \file
/// Recent events on a time axis.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractView.h>

#include <QSharedPointer>
#include <QString>

#include <list>
#include <utility>

class kelDataEvent;
class kelViewEventTimelinePrivate;

/// One row of the timeline: the occurrences of one event with one actor.
struct KELCORE_EXPORT DataEvent
{
    QString
        name; ///< From UTF-8; a name that is none is kept byte by byte: see kelViewEventTimeline::setEvents.
    int actorId = -1;
    std::list<std::pair<CSynchronizer, CSynchronizer>> intervals; ///< Begin and end, oldest first.
    QString alarmLevel; ///< Of the first occurrence.
};

/// Shows the events of the last 64 seconds as bars on a time axis, a row for each event and actor, coloured
/// by alarm level: "NOTURGENT" cyan, "URGENT" green, "VERYURGENT" dark green, "SUPERURGENT" red. Any other
/// level is drawn with the pen that was used last, deliberately: in the first row that of the header's lines,
/// black and two pixels wide, in the rows below it that of the labels, black and one pixel wide. The newest
/// instant is at the right edge; a pixel is 0.1 s.
///
/// Call `init` once, then for each frame `setEvents` and `updateDisplay`. All calls belong to the GUI thread.
/// A view cannot be copied.
class KELCORE_EXPORT kelViewEventTimeline : public nubAbstractView
{
    Q_OBJECT

public:
    static constexpr qint64 timeSpan = 64000; ///< Milliseconds, from the left edge to the right.
    static constexpr int headerHeight = 36; ///< Pixels, above the first row.
    static constexpr int rowHeight = 20; ///< Pixels.

    kelViewEventTimeline();
    ~kelViewEventTimeline() override;

    /// Fixes the widget's size to 640 x 480 and sets its title.
    void init();
    /// Merges the events of a frame into the rows: an event that began when its row's last interval did goes
    /// on, any other is a new interval, and what is too old goes. Null pointers are skipped. Names are the same
    /// when their bytes are: what is no UTF-8 stays apart, though it looks the same in labels.
    /// \param now time stamp of the frame, the right edge of the axis.
    void setEvents(std::list<QSharedPointer<kelDataEvent>> events, CSynchronizer now);
    /// Drops the oldest interval of each row if it ended more than 64 s before the frame, and then the rows
    /// without intervals. One interval of a row goes at each call; the next calls drop the others.
    void removeOldEvents();
    /// Forgets all events and the time of the frame.
    void clear();
    /// Pixels from the widget's upper edge to below the last row: what has to be seen of it. It grows and falls
    /// with `setEvents`.
    int contentHeight() const;
    /// Shows the rows on the widget, at once if it is visible. The widget keeps showing them until the next
    /// call, whatever is set in between; before the first call it is a plain view.
    void updateDisplay();

    /// The `QGraphicsView` to embed. The view owns it, and copes with a parent that deletes it first; from
    /// then on this is null. Nothing of its scene is shown, which may be cleared.
    QWidget *widget() override;

protected:
    /// For a class with a private class of its own, derived from kelViewEventTimelinePrivate; takes `dd` over.
    explicit kelViewEventTimeline(kelViewEventTimelinePrivate &dd, QObject *parent = nullptr);

private:
    Q_DISABLE_COPY(kelViewEventTimeline)
    Q_DECLARE_PRIVATE_D(nub_d, kelViewEventTimeline)

    std::list<DataEvent> dataEvents; ///< In order of first appearance.
    CSynchronizer currentTime; ///< Of the last `setEvents`.
};

/// A new kelViewEventTimeline; the caller owns it.
KELCORE_EXPORT nubAbstractView *createkelViewEventTimeline();

#endif
