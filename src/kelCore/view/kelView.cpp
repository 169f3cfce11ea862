#include <kelCore/view/kelView.h>
#include <kelCore/view/kelView_p.h>

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/view/kelBoxItems_p.h>
#include <kelCore/view/kelScenePicture_p.h>

kelViewPrivate::kelViewPrivate()
{
    showScene();
    makeMissingItems();
}

kelViewPrivate::kelViewPrivate(const kelViewPrivate &other)
    : nubAbstractViewPrivate(other), acquisitionItem(other.acquisitionItem),
      segmentationItem(other.segmentationItem), display(other.display)
{
    showScene();
    for (QGraphicsPixmapItem *item : {acquisition(), segmentation()})
        if (item->scene() != &scene)
            scene.addItem(item);
}

kelViewPrivate::~kelViewPrivate()
{
    scene.clear();
    delete view;
}

void kelViewPrivate::showScene()
{
    view = new QGraphicsView;
    view->setRenderHint(QPainter::Antialiasing);
    view->setScene(&scene);
}

QGraphicsPixmapItem *kelViewPrivate::acquisition()
{
    makeMissingItems();
    return acquisitionItem.get();
}

QGraphicsPixmapItem *kelViewPrivate::segmentation()
{
    makeMissingItems();
    return segmentationItem.get();
}

/// Makes the items again when a copy has taken them with it, underneath the rectangles that are there
/// already.
void kelViewPrivate::makeMissingItems()
{
    if (acquisitionItem.get() && segmentationItem.get())
        return;
    const QList<QGraphicsItem *> above = scene.items(Qt::AscendingOrder);
    for (QGraphicsPixmapItem *item : {acquisitionItem.in(scene), segmentationItem.in(scene)})
        if (!above.isEmpty())
            item->stackBefore(above.first());
}

kelView::kelView() : nubAbstractView(*new kelViewPrivate) { }

kelView::kelView(const kelView &other) : nubAbstractView(*new kelViewPrivate(*other.d_func()), other.parent())
{ }

kelView::~kelView() = default;

QWidget *kelView::widget() { return d_func()->view; }

QSharedPointer<kelDataImage> &kelView::getDisplay() { return d_func()->display; }

void kelView::setAcquisitionImage(QSharedPointer<kelDataImage> image)
{
    Q_D(kelView);
    if (!image || !kelScenePicture::hasPixels(*image))
        return;
    QGraphicsPixmapItem *item = d->acquisition();
    item->setPixmap(kelScenePicture::fromBgr(image->getImage()));
    d->scene.setSceneRect(item->boundingRect());
    if (d->view)
        d->view->adjustSize();
}

void kelView::setSegmentationImage(QSharedPointer<kelDataImage> image)
{
    Q_D(kelView);
    if (!image)
        return;
    kelScenePicture::showMask(*d->segmentation(), *image);
}

void kelView::setBlobs(QList<QSharedPointer<kelDataBlob>> blobs)
{
    Q_D(kelView);
    kelBoxItems::replace(d->scene, d->blobItems, blobs, Qt::magenta);
}

void kelView::setPhysicalObjects(QList<QSharedPointer<kelDataPhysicalObject>> objects)
{
    Q_D(kelView);
    kelBoxItems::replace(d->scene, d->physicalObjectItems, objects, Qt::cyan);
}

void kelView::updateDisplay()
{
    Q_D(kelView);
    if (!d->display)
        d->display.reset(new kelDataImage);
    kelScenePicture::render(d->scene, *d->display);
}

nubAbstractView *createKelView() { return new kelView; }
