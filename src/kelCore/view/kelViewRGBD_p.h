#ifndef KELCORE_KELVIEWRGBD_P_H
#define KELCORE_KELVIEWRGBD_P_H

/// \file
/// State of kelViewRGBD. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/MyQGraphicsScene.h>
#include <kelCore/view/kelPixmapItem_p.h>
#include <kelCore/view/kelViewRGBD.h>
#include <nubCore/nubAbstractView_p.h>

#include <QColor>
#include <QGraphicsView>
#include <QPointer>

#include <memory>

class KELCORE_EXPORT kelViewRGBDPrivate : public nubAbstractViewPrivate
{
public:
    kelViewRGBDPrivate();
    ~kelViewRGBDPrivate() override;

    MyQGraphicsScene scene;
    QPointer<QGraphicsView> view; ///< Owned, but a parent that the application gave it may delete it first.
    QSharedPointer<kelDataImage> acquisitionImage; ///< Colour.
    QSharedPointer<kelDataImage> acquisitionDepth;
    kelAbstractDataCalibrationWithDepth calibration;
    std::list<ContextElement> contextInfo;
    std::vector<double> groundPlaneCoef;
    std::list<QSharedPointer<const kelDataActor>> actors;
    std::list<QSharedPointer<kelDataEvent>> events;
    std::map<int, std::pair<cv::Point3f, cv::Point3f>> actorsFeetPositions;
    std::list<cv::Point3f> listOfPointsDEBUG;
    std::list<cv::Point3f> listOfGroundPoints;
    std::vector<QColor> colors; ///< The palette; empty until it is used.
    kelPixmapItem acquisitionItem;
    std::unique_ptr<QGraphicsPixmapItem> depthItem; ///< Never in the scene.
    kelPixmapItem segmentationItem;
    QList<QGraphicsItem *> blobItems;
    QList<QGraphicsItem *> physicalObjectItems;
    QSharedPointer<kelDataImage> display;
    int frameRate = 0; ///< Frames per second.
    std::list<cv::Point>
        pixels; ///< An actor's, while it is drawn; to fill it again costs less than a new one.
    bool wasCovered = false; ///< There was a background once: the scene has the size of a picture.

    /// Empties the scene and forgets the items that were in it.
    void clearScene();
    /// Adds the frame or the depth map, as the switches say, and fits scene and view to it; false when there
    /// is none.
    bool drawBackground();
    void drawText(const QString &text, const QFont &font, const QColor &color, qreal x, qreal y);
    void drawPolygon(const std::vector<cv::Point> &corners, const QColor &line, const QColor &filling);
    /// Entry `index` of the palette, modulo its size.
    const QColor &color(unsigned int index);
};

#endif
