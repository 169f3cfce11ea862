#ifndef KELCORE_KELVIEW_P_H
#define KELCORE_KELVIEW_P_H

/// \file
/// State of kelView. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/kelView.h>
#include <nubCore/nubAbstractView_p.h>

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPointer>

#include <memory>

class kelSceneItems;

class KELCORE_EXPORT kelViewPrivate : public nubAbstractViewPrivate
{
public:
    kelViewPrivate();
    /// A scene and a widget of its own, with the other's two items moved into it.
    kelViewPrivate(const kelViewPrivate &other);
    ~kelViewPrivate() override;

    QGraphicsScene scene;
    QPointer<QGraphicsView> view; ///< Owned, but a parent that the application gave it may delete it first.
    // Null, or gone from the list, as soon as somebody has deleted them; the scene owns them.
    QGraphicsPixmapItem *acquisitionItem = nullptr; ///< The frame, underneath all others.
    QGraphicsPixmapItem *segmentationItem = nullptr; ///< The mask, over the frame.
    QList<QGraphicsItem *> blobItems;
    QList<QGraphicsItem *> physicalObjectItems;
    QSharedPointer<kelDataImage> display;

    std::shared_ptr<kelSceneItems> items; ///< Looks after the items.
};

#endif
