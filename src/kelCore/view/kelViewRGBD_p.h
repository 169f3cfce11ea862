#ifndef KELCORE_KELVIEWRGBD_P_H
#define KELCORE_KELVIEWRGBD_P_H

/// \file
/// State of kelViewRGBD. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/MyQGraphicsScene.h>
#include <kelCore/view/kelViewRGBD.h>
#include <nubCore/nubAbstractView_p.h>

#include <QColor>
#include <QGraphicsView>
#include <QPointer>

#include <memory>

class kelSceneItems;

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
    // Null, or gone from the list, as soon as somebody has deleted them; the scene owns them.
    QGraphicsPixmapItem *acquisitionItem = nullptr;
    std::unique_ptr<QGraphicsPixmapItem> depthItem; ///< Never in the scene.
    QGraphicsPixmapItem *segmentationItem = nullptr;
    QList<QGraphicsItem *> blobItems;
    QList<QGraphicsItem *> physicalObjectItems;
    QSharedPointer<kelDataImage> display;
    int frameRate = 0; ///< Frames per second.

    std::shared_ptr<kelSceneItems> items; ///< Looks after the items.
    /// An actor's, while it is drawn; to fill it again costs less than a new one.
    std::list<cv::Point> pixels;
    bool wasCovered = false; ///< There was a background once: the scene has the size of a picture.
};

#endif
