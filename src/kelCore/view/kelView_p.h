#ifndef KELCORE_KELVIEW_P_H
#define KELCORE_KELVIEW_P_H

/// \file
/// State of kelView. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/kelPixmapItem_p.h>
#include <kelCore/view/kelView.h>
#include <nubCore/nubAbstractView_p.h>

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPointer>

class KELCORE_EXPORT kelViewPrivate : public nubAbstractViewPrivate
{
public:
    kelViewPrivate();
    /// A scene and a widget of its own, with the other's two items moved into it.
    kelViewPrivate(const kelViewPrivate &other);
    ~kelViewPrivate() override;

    /// The item for the frame, always underneath the mask's.
    QGraphicsPixmapItem *acquisition();
    QGraphicsPixmapItem *segmentation();

    QGraphicsScene scene;
    QPointer<QGraphicsView> view; ///< Owned, but a parent that the application gave it may delete it first.
    kelPixmapItem acquisitionItem;
    kelPixmapItem segmentationItem;
    QList<QGraphicsItem *> blobItems;
    QList<QGraphicsItem *> physicalObjectItems;
    QSharedPointer<kelDataImage> display;

private:
    void showScene();
    void makeMissingItems();
};

#endif
