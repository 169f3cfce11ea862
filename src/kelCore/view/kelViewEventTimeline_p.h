#ifndef KELCORE_KELVIEWEVENTTIMELINE_P_H
#define KELCORE_KELVIEWEVENTTIMELINE_P_H

/// \file
/// State of kelViewEventTimeline. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/view/kelViewEventTimeline.h>
#include <nubCore/nubAbstractView_p.h>

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPointer>

#include <memory>

class kelSceneItems;

class KELCORE_EXPORT kelViewEventTimelinePrivate : public nubAbstractViewPrivate
{
public:
    kelViewEventTimelinePrivate();
    ~kelViewEventTimelinePrivate() override;

    // Nothing draws into the scene: the view paints the timeline instead of it.
    QGraphicsScene scene;
    QPointer<QGraphicsView> view; ///< Owned, but a parent that the application gave it may delete it first.
    QGraphicsPixmapItem *pixmapItem = nullptr; ///< The scene's; null when somebody has deleted it.
    QList<QGraphicsItem *> items;

    // What the widget paints, whenever it does: the state at the last `updateDisplay`.
    bool shown = false; ///< Until the first one it paints as a plain view.
    std::list<DataEvent> shownEvents;
    CSynchronizer shownTime;

    std::shared_ptr<kelSceneItems> sceneItems; ///< Looks after the items.
};

#endif
