#ifndef KELCORE_KELVIEWRGBD_H
#define KELCORE_KELVIEWRGBD_H

/// \file
/// The operator's live display of a colour and depth sensor.

#include <kelCore/data/ContextElement.h>
#include <kelCore/kelCoreExport.h>
#include <kelCore/view/MyQGraphicsScene.h>
#include <nubCore/nubAbstractView.h>

#include <QList>
#include <QSharedPointer>

#include <opencv2/core/types.hpp>

#include <list>
#include <map>
#include <utility>
#include <vector>

class kelAbstractDataCalibrationWithDepth;
class kelDataActor;
class kelDataBlob;
class kelDataEvent;
class kelDataImage;
class kelDataPhysicalObject;
class kelViewRGBDPrivate;

/// Shows the colour frame, or the depth frame in grey, and over it what is known of the scene and its actors:
/// ground plane, envelope of ground points, context zones, actor pixels, debug points, actor boxes,
/// trajectories, events, labels, feet and the frame rate, each turned on and off by a key (MyQGraphicsScene).
/// World points are brought into the image by the depth calibration's own projection, in millimetres of the
/// camera's frame: x to the right, y down, z forward.
///
/// Per frame, set what has changed and call `updateDisplay`:
///
///     kelViewRGBD view;
///     view.setCalibrationWithDepth(camera);
///     view.setAcquisitionImage(frame);
///     view.setActors(actors);
///     view.updateDisplay();
///     view.widget()->show();
///
/// The scene is made anew by each `updateDisplay` from what was set last. Null pointers in lists are skipped.
/// All calls belong to the GUI thread. A view cannot be copied.
class KELCORE_EXPORT kelViewRGBD : public nubAbstractView
{
    Q_OBJECT

public:
    kelViewRGBD();
    ~kelViewRGBD() override;

    /// The `QGraphicsView` to embed; its scene is `switches`. The view owns it, and copes with a parent that
    /// deletes it first. Items of the scene may be deleted, and the scene be cleared.
    QWidget *widget() override;
    /// What the view shows, to be turned by the program; the view's scene, and like it as long-lived as the view.
    MyQGraphicsScene &switches();
    /// The picture rendered last; null until the first `updateDisplay` with the display enabled.
    QSharedPointer<kelDataImage> &getDisplay();

    /// The frame, of what kelView::setAcquisitionImage can show: `updateDisplay` throws for others. Null and an
    /// image without pixels leave the previous one.
    void setAcquisitionImage(QSharedPointer<kelDataImage> image);
    /// The depth frame, one channel of any depth. Null and an image without pixels leave the previous one.
    void setAcquisitionDepth(QSharedPointer<kelDataImage> depth);
    /// Assigns, so that the calibration's matrices and depth map are shared.
    void setCalibrationWithDepth(const kelAbstractDataCalibrationWithDepth &calibration);
    /// The elements whose `polygonVertices` `drawZones` shows, whatever their kind.
    void setContextInfo(const std::list<ContextElement> &elements);
    /// a, b, c, d of the plane a x + b y + c z + d = 0.
    void setGroundPlaneCoef(const std::vector<double> &coefficients);
    /// The actors are shared, the list is copied.
    void setActors(const std::list<QSharedPointer<const kelDataActor>> &actors);
    void setEvents(const std::list<QSharedPointer<kelDataEvent>> &events);
    /// Two world points for each actor id.
    void setActorsFeetPositions(const std::map<int, std::pair<cv::Point3f, cv::Point3f>> &positions);
    void setListOfPointsDEBUG(const std::list<cv::Point3f> &points);
    void setListOfGroundPoints(const std::list<cv::Point3f> &points);
    /// Frames per second; shown, not measured.
    void setFrameRate(int framesPerSecond);

    /// As kelView::setSegmentationImage; what it shows lasts until the next `updateDisplay`.
    void setSegmentationImage(QSharedPointer<kelDataImage> image);
    /// As kelView::setBlobs; what it shows lasts until the next `updateDisplay`.
    void setBlobs(QList<QSharedPointer<kelDataBlob>> blobs);
    /// As kelView::setPhysicalObjects; what it shows lasts until the next `updateDisplay`.
    void setPhysicalObjects(QList<QSharedPointer<kelDataPhysicalObject>> objects);

    /// Draws the scene anew and renders it into a picture of the background's size, which is handed to the
    /// display image: four channels, in memory order blue, green, red, 255. The picture owns its pixels; a
    /// matrix that still holds the picture before keeps it as it is. The frame rate is drawn behind that: it
    /// is on the screen only.
    ///
    /// A missing colour frame leaves out the background; a missing depth frame does too, and turns
    /// `showDepth` off. Until there was a background, the display image stays empty. With the display
    /// disabled, a prompt is shown and the display image stays as it is.
    /// \throws std::out_of_range when the ground plane is shown and has fewer than four coefficients.
    /// \throws cv::Exception when the colour frame is shown and cannot be.
    void updateDisplay();

    /// \name Drawing
    /// What `updateDisplay` calls; each adds its items to the scene.
    /// @{
    /// Fills the palette: 16 colours; an actor's is the one at its id modulo 16. The other operations call it
    /// where they need it.
    void initColors();
    /// The plane between x = -3000 and 3000, z = 2000 and 8000 mm.
    /// \throws std::out_of_range for fewer than four coefficients.
    void drawGroundPlane();
    void drawListOfGroundPoints();
    void drawZones();
    /// An ellipse for each pixel of each actor.
    void drawActors();
    void drawListOfPointsDEBUG();
    /// The boxes of the actors, in spite of the name.
    void drawBlobs();
    /// The newest `n` - 1 points of each actor's trajectory, joined by lines: one point fewer than the name
    /// of the switch suggests, deliberately.
    void drawTraj(int n);
    void drawEvents();
    /// Labels beside each actor's box, laid out for a picture of 640 x 480 pixels.
    void drawActorInfos();
    void drawFeet();
    void drawFrameRate();
    /// @}

    /// The pixel that shows the world point, rounded to the nearest, ties to even.
    cv::Point convertWorld2ImageFixed(cv::Point3f point);
    /// The closed convex polygon around the points: it begins and ends with the topmost point. Empty for no
    /// points.
    std::vector<cv::Point> computeConvexEnvelope(std::list<cv::Point> points);

protected:
    /// For a class with a private class of its own, derived from kelViewRGBDPrivate; takes `dd` over.
    explicit kelViewRGBD(kelViewRGBDPrivate &dd, QObject *parent = nullptr);

private:
    Q_DISABLE_COPY(kelViewRGBD)
    Q_DECLARE_PRIVATE_D(nub_d, kelViewRGBD)
};

/// A new kelViewRGBD; the caller owns it.
KELCORE_EXPORT nubAbstractView *createkelViewRGBD();

#endif
