#include <kelCore/view/kelViewRGBD.h>
#include <kelCore/view/kelViewRGBD_p.h>

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/view/internal/kelConvexEnvelope.h>
#include <kelCore/view/internal/kelNearestInt.h>
#include <kelCore/view/internal/kelNumberText.h>
#include <kelCore/view/internal/kelPixelsItem.h>
#include <kelCore/view/internal/kelSceneDrawing.h>
#include <kelCore/view/internal/kelSceneItems.h>
#include <kelCore/view/internal/kelScenePicture.h>

#include <QGraphicsPixmapItem>
#include <QPainter>

namespace {

using kelSceneDrawing::addPolygon;
using kelSceneDrawing::addText;
using kelSceneDrawing::outline;
using kelSceneDrawing::verdana;

// Where texts stand, in pixels of the picture: it is taken to have 640 x 480.
const QPointF promptPosition(100, 220);
const QPointF frameRatePosition(565, 3);
const QPointF eventsHeadingPosition(3, 3);
constexpr int eventsLeft = 5;
constexpr int firstEvent = 30;
constexpr int eventHeight = 22;
constexpr int labelHeight = 15;

/// Where the middle one of an actor's three labels stands: above the box where there is room, otherwise below
/// it, otherwise at its right or its left.
QPointF labelPosition(const cv::Rect &box)
{
    constexpr int pictureWidth = 640;
    constexpr int roomAbove = 50;
    constexpr int lowestBottom = 429; // of a box with room for labels below it
    constexpr int above = 40, below = 15, inside = 10;
    constexpr int atRight = 5, atLeft = 140;

    const qreal right = qreal(box.x) + box.width;
    const qreal bottom = qreal(box.y) + box.height;
    if (box.y > roomAbove)
        return QPointF(box.x, qreal(box.y) - above);
    if (bottom <= lowestBottom)
        return QPointF(box.x, bottom + below);
    return QPointF(box.x < pictureWidth - right ? right + atRight : qreal(box.x) - atLeft,
                   qreal(box.y) + inside);
}

cv::Point3f toFloat(const cv::Point3d &point)
{
    return cv::Point3f(static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z));
}

/// The view's palette, filled where it is first wanted: an operation may draw before any `updateDisplay`.
const std::vector<QColor> &paletteOf(kelViewRGBDPrivate &d)
{
    if (d.colors.empty())
        d.colors = kelSceneDrawing::palette();
    return d.colors;
}

const QColor &colorOf(unsigned int id, kelViewRGBDPrivate &d)
{
    const std::vector<QColor> &palette = paletteOf(d);
    return palette[id % palette.size()];
}

/// Adds the frame or the depth map, as the switches say, and fits scene and widget to it; null when there is
/// none.
QGraphicsPixmapItem *drawBackground(kelViewRGBDPrivate &d)
{
    const QSharedPointer<kelDataImage> &image = d.scene.showDepth ? d.acquisitionDepth : d.acquisitionImage;
    if (!image || !kelScenePicture::hasPixels(*image)) {
        d.scene.showDepth = false;
        return nullptr;
    }
    const QPixmap pixmap = d.scene.showDepth ? kelScenePicture::fromDepth(image->getImage())
                                             : kelScenePicture::fromBgr(image->getImage());
    QGraphicsPixmapItem *item = d.scene.addPixmap(pixmap);
    d.scene.setSceneRect(pixmap.rect());
    if (d.view)
        d.view->adjustSize();
    return item;
}

/// What the switches turn on and off, from the bottom up.
const struct
{
    bool MyQGraphicsScene::*shown;
    void (*draw)(kelViewRGBD &view);
} overlays[] = {
    {&MyQGraphicsScene::showGroundPlane, [](kelViewRGBD &view) { view.drawGroundPlane(); }},
    {&MyQGraphicsScene::showGroundPoints, [](kelViewRGBD &view) { view.drawListOfGroundPoints(); }},
    {&MyQGraphicsScene::showZones, [](kelViewRGBD &view) { view.drawZones(); }},
    {&MyQGraphicsScene::showActors, [](kelViewRGBD &view) { view.drawActors(); }},
    {&MyQGraphicsScene::showPointsDEBUG, [](kelViewRGBD &view) { view.drawListOfPointsDEBUG(); }},
    {&MyQGraphicsScene::showBlobs, [](kelViewRGBD &view) { view.drawBlobs(); }},
    {&MyQGraphicsScene::showTrajectories,
     [](kelViewRGBD &view) { view.drawTraj(view.switches().trajectoryLength); }},
    {&MyQGraphicsScene::showEvents, [](kelViewRGBD &view) { view.drawEvents(); }},
    {&MyQGraphicsScene::showActorInfos, [](kelViewRGBD &view) { view.drawActorInfos(); }},
    {&MyQGraphicsScene::showFeet, [](kelViewRGBD &view) { view.drawFeet(); }},
};

} // namespace

kelViewRGBDPrivate::kelViewRGBDPrivate() : depthItem(new QGraphicsPixmapItem)
{
    view = new QGraphicsView;
    view->setRenderHint(QPainter::Antialiasing);
    view->setScene(&scene);
    items = std::make_shared<kelSceneItems>(scene, std::vector{&acquisitionItem, &segmentationItem},
                                            std::vector{&blobItems, &physicalObjectItems});
    items->filled(acquisitionItem);
    items->filled(segmentationItem);
}

kelViewRGBDPrivate::~kelViewRGBDPrivate()
{
    scene.clear();
    delete view;
}

kelViewRGBD::kelViewRGBD() : nubAbstractView(*new kelViewRGBDPrivate) { }

kelViewRGBD::kelViewRGBD(kelViewRGBDPrivate &dd, QObject *parent) : nubAbstractView(dd, parent) { }

kelViewRGBD::~kelViewRGBD() = default;

QWidget *kelViewRGBD::widget() { return d_func()->view; }

MyQGraphicsScene &kelViewRGBD::switches() { return d_func()->scene; }

QSharedPointer<kelDataImage> &kelViewRGBD::getDisplay() { return d_func()->display; }

void kelViewRGBD::setAcquisitionImage(QSharedPointer<kelDataImage> image)
{
    if (image && kelScenePicture::hasPixels(*image))
        d_func()->acquisitionImage = image;
}

void kelViewRGBD::setAcquisitionDepth(QSharedPointer<kelDataImage> depth)
{
    if (depth && kelScenePicture::hasPixels(*depth))
        d_func()->acquisitionDepth = depth;
}

void kelViewRGBD::setCalibrationWithDepth(const kelAbstractDataCalibrationWithDepth &calibration)
{
    d_func()->calibration = calibration;
}

void kelViewRGBD::setContextInfo(const std::list<ContextElement> &elements)
{
    d_func()->contextInfo = elements;
}

void kelViewRGBD::setGroundPlaneCoef(const std::vector<double> &coefficients)
{
    d_func()->groundPlaneCoef = coefficients;
}

void kelViewRGBD::setActors(const std::list<QSharedPointer<const kelDataActor>> &actors)
{
    Q_D(kelViewRGBD);
    d->actors = actors;
    d->actors.remove(nullptr);
}

void kelViewRGBD::setEvents(const std::list<QSharedPointer<kelDataEvent>> &events)
{
    Q_D(kelViewRGBD);
    d->events = events;
    d->events.remove(nullptr);
}

void kelViewRGBD::setActorsFeetPositions(const std::map<int, std::pair<cv::Point3f, cv::Point3f>> &positions)
{
    d_func()->actorsFeetPositions = positions;
}

void kelViewRGBD::setListOfPointsDEBUG(const std::list<cv::Point3f> &points)
{
    d_func()->listOfPointsDEBUG = points;
}

void kelViewRGBD::setListOfGroundPoints(const std::list<cv::Point3f> &points)
{
    d_func()->listOfGroundPoints = points;
}

void kelViewRGBD::setFrameRate(int framesPerSecond) { d_func()->frameRate = framesPerSecond; }

void kelViewRGBD::setSegmentationImage(QSharedPointer<kelDataImage> image)
{
    Q_D(kelViewRGBD);
    if (image)
        kelScenePicture::showMask(*d->items->filled(d->segmentationItem), *image);
}

void kelViewRGBD::setBlobs(QList<QSharedPointer<kelDataBlob>> blobs)
{
    Q_D(kelViewRGBD);
    d->items->replace(d->blobItems, blobs, outline(kelSceneDrawing::blobColor));
}

void kelViewRGBD::setPhysicalObjects(QList<QSharedPointer<kelDataPhysicalObject>> objects)
{
    Q_D(kelViewRGBD);
    d->items->replace(d->physicalObjectItems, objects, outline(kelSceneDrawing::physicalObjectColor));
}

void kelViewRGBD::updateDisplay()
{
    Q_D(kelViewRGBD);
    const MyQGraphicsScene &shown = d->scene;
    d->scene.clear();
    if (!shown.displayEnabled) {
        addText(d->scene, QStringLiteral("PRESS ESC TO ACTIVATE DISPLAY"), verdana(20), Qt::red,
                promptPosition);
        if (shown.showFrameRate)
            drawFrameRate();
        return;
    }

    paletteOf(*d);
    if (!d->display)
        d->display.reset(new kelDataImage);
    const QGraphicsPixmapItem *background = drawBackground(*d);
    d->wasCovered |= background != nullptr;
    for (const auto &overlay : overlays)
        if (shown.*overlay.shown)
            overlay.draw(*this);

    if (d->wasCovered)
        kelScenePicture::render(d->scene, *d->display, kelScenePicture::covers(background, d->scene));
    if (shown.showFrameRate) // last: on the screen, not in the picture
        drawFrameRate();
}

void kelViewRGBD::initColors() { d_func()->colors = kelSceneDrawing::palette(); }

void kelViewRGBD::drawGroundPlane()
{
    Q_D(kelViewRGBD);
    constexpr int side = 3000, near = 2000, far = 8000; // millimetres
    const std::vector<double> &plane = d->groundPlaneCoef;
    const double a = plane.at(0), b = plane.at(1), c = plane.at(2), e = plane.at(3);
    std::vector<cv::Point> corners;
    for (const cv::Point2d &xz :
         {cv::Point2d(-side, far), cv::Point2d(side, far), cv::Point2d(side, near), cv::Point2d(-side, near)})
        corners.push_back(
            convertWorld2ImageFixed(toFloat(cv::Point3d(xz.x, (-a * xz.x - c * xz.y - e) / b, xz.y))));
    addPolygon(d->scene, corners, Qt::green);
}

void kelViewRGBD::drawListOfGroundPoints()
{
    Q_D(kelViewRGBD);
    std::list<cv::Point> points;
    for (const cv::Point3f &point : d->listOfGroundPoints)
        points.push_back(convertWorld2ImageFixed(point));
    addPolygon(d->scene, computeConvexEnvelope(points), QColor(255, 215, 0)); // gold
}

void kelViewRGBD::drawZones()
{
    Q_D(kelViewRGBD);
    for (const ContextElement &element : d->contextInfo) {
        std::vector<cv::Point> corners;
        for (const cv::Point3d &vertex : element.polygonVertices)
            corners.push_back(convertWorld2ImageFixed(toFloat(vertex)));
        addPolygon(d->scene, corners, Qt::red);
    }
}

void kelViewRGBD::drawActors()
{
    Q_D(kelViewRGBD);
    for (const auto &actor : d->actors) {
        actor->getPixels(d->pixels);
        if (!d->pixels.empty())
            d->scene.addItem(new kelPixelsItem(d->pixels, QPen(colorOf(actor->getIdent(), *d), 1)));
    }
}

void kelViewRGBD::drawListOfPointsDEBUG()
{
    Q_D(kelViewRGBD);
    for (const cv::Point3f &point : d->listOfPointsDEBUG) {
        const cv::Point p = convertWorld2ImageFixed(point);
        d->scene.addLine(p.x, p.y, p.x, p.y, QPen(Qt::red, 1));
    }
}

void kelViewRGBD::drawBlobs()
{
    Q_D(kelViewRGBD);
    for (const auto &actor : d->actors) {
        const cv::Rect box = actor->getBoundingBox2D();
        d->scene.addRect(box.x, box.y, box.width, box.height, outline(colorOf(actor->getIdent(), *d)));
    }
}

void kelViewRGBD::drawTraj(int n)
{
    Q_D(kelViewRGBD);
    for (const auto &actor : d->actors) {
        const QPen pen = outline(colorOf(actor->getIdent(), *d));
        const auto &trajectory = actor->getTrajectory();
        cv::Point previous;
        int visited = 0;
        for (auto newest = trajectory.rbegin(); newest != trajectory.rend() && visited + 1 < n; ++newest) {
            const cv::Point p = convertWorld2ImageFixed(newest->second);
            if (visited > 0)
                d->scene.addLine(previous.x, previous.y, p.x, p.y, pen);
            previous = p;
            ++visited;
        }
    }
}

void kelViewRGBD::drawEvents()
{
    Q_D(kelViewRGBD);
    const QFont lines = verdana(16);
    addText(d->scene, QStringLiteral("EVENT LIST : "), lines, Qt::red, eventsHeadingPosition);
    int y = firstEvent;
    for (const auto &event : d->events) {
        const QString text = QString::number(event->getInvolvedActorId()) + QStringLiteral(" / ")
            + QString::fromStdString(event->getSEDName()) + QStringLiteral(" [")
            + kelNumberText::sixDecimals(event->getSEDConfidence()) + QStringLiteral("]");
        addText(d->scene, text, lines, Qt::red, QPointF(eventsLeft, y));
        y += eventHeight;
    }
}

void kelViewRGBD::drawActorInfos()
{
    Q_D(kelViewRGBD);
    const QFont labels = verdana(12, QFont::Bold);
    for (const auto &actor : d->actors) {
        const QString lines[] = {
            QStringLiteral("Id    : ") + QString::number(actor->getIdent()),
            QStringLiteral("HeightA:") + kelNumberText::centimetres(actor->getInformation3D().getHeight())
                + QStringLiteral("cm"),
            QStringLiteral("Speed : ") + kelNumberText::hundredths(actor->getSpeed()) + QStringLiteral("m/s"),
        };
        QPointF position = labelPosition(actor->getBoundingBox2D()) - QPointF(0, labelHeight);
        for (const QString &line : lines) {
            addText(d->scene, line, labels, colorOf(actor->getIdent(), *d), position);
            position.ry() += labelHeight;
        }
    }
}

void kelViewRGBD::drawFeet()
{
    Q_D(kelViewRGBD);
    constexpr int radius = 5, lighterPercent = 150;
    for (const auto &[id, feet] : d->actorsFeetPositions) {
        const QColor &color = colorOf(static_cast<unsigned int>(id) + 1, *d);
        const QPen pen(color.lighter(lighterPercent), 5);
        for (const cv::Point3f &foot : {feet.first, feet.second}) {
            const cv::Point p = convertWorld2ImageFixed(foot);
            d->scene.addEllipse(qreal(p.x) - radius, qreal(p.y) - radius, 2 * radius, 2 * radius, pen);
        }
    }
}

void kelViewRGBD::drawFrameRate()
{
    Q_D(kelViewRGBD);
    addText(d->scene, QStringLiteral("FPS : ") + QString::number(d->frameRate), verdana(12), Qt::red,
            frameRatePosition);
}

cv::Point kelViewRGBD::convertWorld2ImageFixed(cv::Point3f point)
{
    const cv::Point2d p = d_func()->calibration.worldToImage(cv::Point3d(point));
    return cv::Point(kelNearestInt(p.x), kelNearestInt(p.y));
}

std::vector<cv::Point> kelViewRGBD::computeConvexEnvelope(std::list<cv::Point> points)
{
    return kelConvexEnvelope(std::move(points));
}

nubAbstractView *createkelViewRGBD() { return new kelViewRGBD; }
