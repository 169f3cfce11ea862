#include <kelCore/view/kelView.h>
#include <kelCore/view/kelView_p.h>

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/view/internal/kelSceneDrawing.h>
#include <kelCore/view/internal/kelSceneItems.h>
#include <kelCore/view/internal/kelScenePicture.h>

#include <QGraphicsPixmapItem>

namespace {

void showScene(kelViewPrivate &d)
{
    d.view = new QGraphicsView;
    d.view->setRenderHint(QPainter::Antialiasing);
    d.view->setScene(&d.scene);
    d.items = std::make_shared<kelSceneItems>(d.scene, std::vector{&d.acquisitionItem, &d.segmentationItem},
                                              std::vector{&d.blobItems, &d.physicalObjectItems});
}

/// Makes the two pictures that are missing: a copy has taken them with it, or somebody has deleted them.
void makeMissingItems(kelViewPrivate &d)
{
    if (d.acquisitionItem && d.segmentationItem)
        return;
    // From the top down, each underneath all that is there already.
    for (QGraphicsPixmapItem **field : {&d.segmentationItem, &d.acquisitionItem}) {
        d.items->filled(*field);
        const QList<QGraphicsItem *> stack = d.scene.items(Qt::AscendingOrder);
        if ((*field)->scene() == &d.scene)
            (*field)->stackBefore(stack.first()->topLevelItem());
    }
}

} // namespace

kelViewPrivate::kelViewPrivate()
{
    showScene(*this);
    makeMissingItems(*this);
}

kelViewPrivate::kelViewPrivate(const kelViewPrivate &other)
    : nubAbstractViewPrivate(other), display(other.display)
{
    showScene(*this);
    items->take(acquisitionItem, other.acquisitionItem);
    items->take(segmentationItem, other.segmentationItem);
    makeMissingItems(*this);
}

kelViewPrivate::~kelViewPrivate()
{
    scene.clear();
    delete view;
}

kelView::kelView() : nubAbstractView(*new kelViewPrivate) { }

kelView::kelView(kelViewPrivate &dd, QObject *parent) : nubAbstractView(dd, parent) { }

kelView::kelView(const kelView &other) : nubAbstractView(*new kelViewPrivate(*other.d_func()), other.parent())
{ }

kelView::~kelView() = default;

kelView &kelView::operator=(const kelView &other)
{
    copy(other);
    return *this;
}

QWidget *kelView::widget() { return d_func()->view; }

QSharedPointer<kelDataImage> &kelView::getDisplay() { return d_func()->display; }

void kelView::setAcquisitionImage(QSharedPointer<kelDataImage> image)
{
    Q_D(kelView);
    if (!image || !kelScenePicture::hasPixels(*image))
        return;
    makeMissingItems(*d);
    d->acquisitionItem->setPixmap(kelScenePicture::fromBgr(image->getImage()));
    d->scene.setSceneRect(d->acquisitionItem->boundingRect());
    if (d->view)
        d->view->adjustSize();
}

void kelView::setSegmentationImage(QSharedPointer<kelDataImage> image)
{
    Q_D(kelView);
    if (!image)
        return;
    makeMissingItems(*d);
    kelScenePicture::showMask(*d->segmentationItem, *image);
}

void kelView::setBlobs(QList<QSharedPointer<kelDataBlob>> blobs)
{
    Q_D(kelView);
    d->items->replace(d->blobItems, blobs, kelSceneDrawing::outline(kelSceneDrawing::blobColor));
}

void kelView::setPhysicalObjects(QList<QSharedPointer<kelDataPhysicalObject>> objects)
{
    Q_D(kelView);
    d->items->replace(d->physicalObjectItems, objects,
                      kelSceneDrawing::outline(kelSceneDrawing::physicalObjectColor));
}

void kelView::updateDisplay()
{
    Q_D(kelView);
    if (!d->display)
        d->display.reset(new kelDataImage);
    kelScenePicture::render(d->scene, *d->display, kelScenePicture::covers(d->acquisitionItem, d->scene));
}

nubAbstractView *createKelView() { return new kelView; }
