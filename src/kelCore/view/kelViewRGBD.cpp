#include <kelCore/view/kelViewRGBD.h>
#include <kelCore/view/kelViewRGBD_p.h>

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/view/kelBoxItems_p.h>
#include <kelCore/view/kelScenePicture_p.h>

#include <QBrush>
#include <QFont>
#include <QGraphicsTextItem>
#include <QPainter>
#include <QPen>
#include <QPolygonF>

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

QFont verdana(int pointSize, QFont::Weight weight = QFont::Normal)
{
    return QFont(QStringLiteral("Verdana"), pointSize, weight);
}

std::vector<QColor> palette()
{
    return {Qt::cyan,      Qt::magenta,  Qt::yellow,   Qt::green,       Qt::blue,       Qt::red,
            Qt::black,     Qt::darkGray, Qt::darkCyan, Qt::darkMagenta, Qt::darkYellow, Qt::white,
            Qt::darkGreen, Qt::darkBlue, Qt::darkRed,  Qt::lightGray};
}

/// A 2 x 2 ellipse at each of a set of pixels, which is not empty.
///
/// One item for all: fifty thousand ellipse items would take far longer to make than to draw. The picture is
/// the one that an item for each ellipse would give.
class PixelsItem : public QGraphicsItem
{
public:
    PixelsItem(const std::list<cv::Point> &pixels, const QPen &pen)
        : m_pixels(pixels.begin(), pixels.end()), m_pen(pen)
    {
        cv::Point low = pixels.front();
        cv::Point high = low;
        for (const cv::Point &pixel : m_pixels) {
            low = {std::min(low.x, pixel.x), std::min(low.y, pixel.y)};
            high = {std::max(high.x, pixel.x), std::max(high.y, pixel.y)};
        }
        const qreal margin = pen.widthF() / 2;
        m_box = (ellipse(low) | ellipse(high)).adjusted(-margin, -margin, margin, margin);
    }

    QRectF boundingRect() const override { return m_box; }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *) override
    {
        const auto *image = dynamic_cast<const QImage *>(painter->device());
        if (image && image->format() == QImage::Format_RGB32 && paintsWholePixels(*painter))
            return stamp(*painter, image->rect());
        painter->setPen(m_pen);
        painter->setBrush(Qt::NoBrush);
        for (const cv::Point &pixel : m_pixels)
            painter->drawEllipse(ellipse(pixel));
    }

private:
    static QRectF ellipse(const cv::Point &pixel) { return QRectF(pixel.x, pixel.y, 2, 2); }

    /// Neither smoothed nor mixed nor scaled, and in steps of whole pixels.
    static bool paintsWholePixels(const QPainter &painter)
    {
        const QTransform &transform = painter.deviceTransform();
        return !painter.testRenderHint(QPainter::Antialiasing)
            && painter.compositionMode() == QPainter::CompositionMode_SourceOver
            && transform.type() <= QTransform::TxTranslate && transform.dx() == std::rint(transform.dx())
            && transform.dy() == std::rint(transform.dy());
    }

    /// Such an ellipse is four pixels: those beside the one in its middle. They are put into a picture of
    /// their own, many times as fast as the painter draws ellipses.
    /// \param device the pixels of the device, in its own coordinates.
    void stamp(QPainter &painter, const QRect &device) const
    {
        const QPointF origin = painter.deviceTransform().map(QPointF(0, 0));
        const QRect area = (m_box.translated(origin) & QRectF(device)).toAlignedRect();
        if (area.isEmpty())
            return;
        QImage picture(area.size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        auto *const pixels = reinterpret_cast<QRgb *>(picture.bits());
        const int width = picture.width();
        const int height = picture.height();
        const QRgb color = m_pen.color().rgba();
        const QPoint corner = area.topLeft() - origin.toPoint();
        for (const cv::Point &pixel : m_pixels) {
            for (const cv::Point &step :
                 {cv::Point(1, 0), cv::Point(0, 1), cv::Point(2, 1), cv::Point(1, 2)}) {
                const qint64 x = qint64(pixel.x) + step.x - corner.x();
                const qint64 y = qint64(pixel.y) + step.y - corner.y();
                if (x >= 0 && x < width && y >= 0 && y < height)
                    pixels[y * width + x] = color;
            }
        }
        painter.drawImage(corner, picture);
    }

    std::vector<cv::Point> m_pixels;
    QPen m_pen;
    QRectF m_box;
};

/// The nearest integer, ties to even; what no int can hold becomes the nearest one, not-a-number INT_MIN.
int toInt(double coordinate)
{
    if (!(coordinate > INT_MIN))
        return INT_MIN;
    return coordinate < INT_MAX ? static_cast<int>(std::rint(coordinate)) : INT_MAX;
}

cv::Point3f toFloat(const cv::Point3d &point)
{
    return cv::Point3f(static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z));
}

/// Side of the line through `a` and `b` on which `p` lies; 0 on the line.
double side(const cv::Point2d &a, const cv::Point2d &b, const cv::Point2d &p)
{
    return (b.y - a.y) * p.x + (a.x - b.x) * p.y + (b.x * a.y - a.x * b.y);
}

/// Millimetres as whole centimetres.
int centimetres(float millimetres) { return toInt(std::trunc(static_cast<double>(millimetres))) / 10; }

/// Rounded down to hundredths, with two decimals.
QString hundredths(double number)
{
    const QString text = QString::number(std::floor(number * 100) / 100, 'f', 6);
    const auto point = text.indexOf(QLatin1Char('.'));
    return point < 0 ? text : text.left(point + 3);
}

} // namespace

kelViewRGBDPrivate::kelViewRGBDPrivate() : depthItem(new QGraphicsPixmapItem)
{
    view = new QGraphicsView;
    view->setRenderHint(QPainter::Antialiasing);
    view->setScene(&scene);
    acquisitionItem.in(scene);
    segmentationItem.in(scene);
}

kelViewRGBDPrivate::~kelViewRGBDPrivate()
{
    scene.clear();
    delete view;
}

void kelViewRGBDPrivate::clearScene()
{
    scene.clear();
    blobItems.clear();
    physicalObjectItems.clear();
}

bool kelViewRGBDPrivate::drawBackground()
{
    const QSharedPointer<kelDataImage> &image = scene.showDepth ? acquisitionDepth : acquisitionImage;
    if (!image || !kelScenePicture::hasPixels(*image)) {
        scene.showDepth = false;
        return false;
    }
    const QPixmap pixmap = scene.showDepth ? kelScenePicture::fromDepth(image->getImage())
                                           : kelScenePicture::fromBgr(image->getImage());
    scene.addPixmap(pixmap);
    scene.setSceneRect(pixmap.rect());
    if (view)
        view->adjustSize();
    return true;
}

void kelViewRGBDPrivate::drawText(const QString &text, const QFont &font, const QColor &color, qreal x,
                                  qreal y)
{
    // The text comes last: it would be laid out anew for each of the others.
    auto *item = new QGraphicsTextItem;
    item->setFont(font);
    item->setDefaultTextColor(color);
    item->setPos(x, y);
    item->setPlainText(text);
    scene.addItem(item);
}

void kelViewRGBDPrivate::drawPolygon(const std::vector<cv::Point> &corners, const QColor &line,
                                     const QColor &filling)
{
    QPolygonF polygon;
    for (const cv::Point &corner : corners)
        polygon << QPointF(corner.x, corner.y);
    if (!polygon.isEmpty())
        scene.addPolygon(polygon, QPen(line, 2), filling);
}

const QColor &kelViewRGBDPrivate::color(unsigned int index)
{
    if (colors.empty())
        colors = palette();
    return colors[index % colors.size()];
}

kelViewRGBD::kelViewRGBD() : nubAbstractView(*new kelViewRGBDPrivate) { }

kelViewRGBD::~kelViewRGBD() = default;

QWidget *kelViewRGBD::widget() { return d_func()->view; }

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
        kelScenePicture::showMask(*d->segmentationItem.in(d->scene), *image);
}

void kelViewRGBD::setBlobs(QList<QSharedPointer<kelDataBlob>> blobs)
{
    Q_D(kelViewRGBD);
    kelBoxItems::replace(d->scene, d->blobItems, blobs, Qt::magenta);
}

void kelViewRGBD::setPhysicalObjects(QList<QSharedPointer<kelDataPhysicalObject>> objects)
{
    Q_D(kelViewRGBD);
    kelBoxItems::replace(d->scene, d->physicalObjectItems, objects, Qt::cyan);
}

void kelViewRGBD::updateDisplay()
{
    Q_D(kelViewRGBD);
    const MyQGraphicsScene &shown = d->scene;
    d->clearScene();
    if (!shown.displayEnabled) {
        d->drawText(QStringLiteral("PRESS ESC TO ACTIVATE DISPLAY"), verdana(20), Qt::red, 100, 220);
        if (shown.showFrameRate)
            drawFrameRate();
        return;
    }

    if (d->colors.empty())
        initColors();
    if (!d->display)
        d->display.reset(new kelDataImage);
    const bool covered = d->drawBackground();
    d->wasCovered |= covered;

    if (shown.showGroundPlane)
        drawGroundPlane();
    if (shown.showGroundPoints)
        drawListOfGroundPoints();
    if (shown.showZones)
        drawZones();
    if (shown.showActors)
        drawActors();
    if (shown.showPointsDEBUG)
        drawListOfPointsDEBUG();
    if (shown.showBlobs)
        drawBlobs();
    if (shown.showTrajectories)
        drawTraj(shown.trajectoryLength);
    if (shown.showEvents)
        drawEvents();
    if (shown.showActorInfos)
        drawActorInfos();
    if (shown.showFeet)
        drawFeet();

    if (d->wasCovered)
        kelScenePicture::render(d->scene, *d->display, covered);
    if (shown.showFrameRate) // last: on the screen, not in the picture
        drawFrameRate();
}

void kelViewRGBD::initColors() { d_func()->colors = palette(); }

void kelViewRGBD::drawGroundPlane()
{
    Q_D(kelViewRGBD);
    const std::vector<double> &plane = d->groundPlaneCoef;
    const double a = plane.at(0), b = plane.at(1), c = plane.at(2), e = plane.at(3);
    std::vector<cv::Point> corners;
    for (const cv::Point2d &xz : {cv::Point2d(-3000, 8000), cv::Point2d(3000, 8000), cv::Point2d(3000, 2000),
                                  cv::Point2d(-3000, 2000)})
        corners.push_back(
            convertWorld2ImageFixed(toFloat(cv::Point3d(xz.x, (-a * xz.x - c * xz.y - e) / b, xz.y))));
    d->drawPolygon(corners, Qt::green, QColor(0, 255, 0, 90));
}

void kelViewRGBD::drawListOfGroundPoints()
{
    Q_D(kelViewRGBD);
    std::list<cv::Point> points;
    for (const cv::Point3f &point : d->listOfGroundPoints)
        points.push_back(convertWorld2ImageFixed(point));
    d->drawPolygon(computeConvexEnvelope(points), QColor(255, 215, 0), QColor(255, 215, 0, 90));
}

void kelViewRGBD::drawZones()
{
    Q_D(kelViewRGBD);
    for (const ContextElement &element : d->contextInfo) {
        std::vector<cv::Point> corners;
        for (const cv::Point3d &vertex : element.polygonVertices)
            corners.push_back(convertWorld2ImageFixed(toFloat(vertex)));
        d->drawPolygon(corners, Qt::red, QColor(255, 0, 0, 90));
    }
}

void kelViewRGBD::drawActors()
{
    Q_D(kelViewRGBD);
    for (const auto &actor : d->actors) {
        actor->getPixels(d->pixels);
        if (!d->pixels.empty())
            d->scene.addItem(new PixelsItem(d->pixels, QPen(d->color(actor->getIdent()), 1)));
    }
}

void kelViewRGBD::drawListOfPointsDEBUG()
{
    Q_D(kelViewRGBD);
    for (const cv::Point3f &point : d->listOfPointsDEBUG) {
        const cv::Point p = convertWorld2ImageFixed(point);
        d->scene.addLine(p.x, p.y, p.x, p.y, QPen(QColor(255, 0, 0), 1));
    }
}

void kelViewRGBD::drawBlobs()
{
    Q_D(kelViewRGBD);
    for (const auto &actor : d->actors) {
        const cv::Rect box = actor->getBoundingBox2D();
        d->scene.addRect(box.x, box.y, box.width, box.height, QPen(d->color(actor->getIdent()), 2));
    }
}

void kelViewRGBD::drawTraj(int n)
{
    Q_D(kelViewRGBD);
    for (const auto &actor : d->actors) {
        const QPen pen(d->color(actor->getIdent()), 2);
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
    d->drawText(QStringLiteral("EVENT LIST : "), lines, Qt::red, 3, 3);
    int y = 30;
    for (const auto &event : d->events) {
        const QString text = QString::number(event->getInvolvedActorId()) + QStringLiteral(" / ")
            + QString::fromStdString(event->getSEDName()) + QStringLiteral(" [")
            + QString::number(event->getSEDConfidence(), 'f', 6) + QStringLiteral("]");
        d->drawText(text, lines, Qt::red, 5, y);
        y += 22;
    }
}

void kelViewRGBD::drawActorInfos()
{
    Q_D(kelViewRGBD);
    const QFont labels = verdana(12, QFont::Bold);
    for (const auto &actor : d->actors) {
        const cv::Rect box = actor->getBoundingBox2D();
        const qreal right = qreal(box.x) + box.width;
        const qreal bottom = qreal(box.y) + box.height;
        qreal x = box.x;
        qreal base = box.y + 10.0;
        if (box.y > 50)
            base = box.y - 40.0;
        else if (bottom <= 429)
            base = bottom + 15;
        else
            x = box.x < 640 - right ? right + 5 : box.x - 140.0;

        const QColor &color = d->color(actor->getIdent());
        d->drawText(QStringLiteral("Id    : ") + QString::number(actor->getIdent()), labels, color, x,
                    base - 15);
        d->drawText(QStringLiteral("HeightA:")
                        + QString::number(centimetres(actor->getInformation3D().getHeight()))
                        + QStringLiteral("cm"),
                    labels, color, x, base);
        d->drawText(QStringLiteral("Speed : ") + hundredths(actor->getSpeed()) + QStringLiteral("m/s"),
                    labels, color, x, base + 15);
    }
}

void kelViewRGBD::drawFeet()
{
    Q_D(kelViewRGBD);
    for (const auto &[id, feet] : d->actorsFeetPositions) {
        const QPen pen(d->color(static_cast<unsigned int>(id) + 1).lighter(150), 5);
        for (const cv::Point3f &foot : {feet.first, feet.second}) {
            const cv::Point p = convertWorld2ImageFixed(foot);
            d->scene.addEllipse(p.x - 5.0, p.y - 5.0, 10, 10, pen);
        }
    }
}

void kelViewRGBD::drawFrameRate()
{
    Q_D(kelViewRGBD);
    d->drawText(QStringLiteral("FPS : ") + QString::number(d->frameRate), verdana(12), Qt::red, 565, 3);
}

cv::Point kelViewRGBD::convertWorld2ImageFixed(cv::Point3f point)
{
    const cv::Point2d p = d_func()->calibration.worldToImage(cv::Point3d(point));
    return cv::Point(toInt(p.x), toInt(p.y));
}

std::vector<cv::Point> kelViewRGBD::computeConvexEnvelope(std::list<cv::Point> points)
{
    if (points.empty())
        return {};
    points.sort([](const cv::Point &p, const cv::Point &q) { return p.y < q.y; });
    const cv::Point pivot = points.front();
    points.pop_front();
    const auto angle = [&pivot](const cv::Point2d &p) { return std::atan2(p.y - pivot.y, p.x - pivot.x); };
    points.sort([&angle](const cv::Point &p, const cv::Point &q) { return angle(p) > angle(q); });
    points.push_back(pivot);

    std::vector<cv::Point> envelope{pivot};
    for (const cv::Point &point : points) {
        envelope.push_back(point);
        // The last point but one goes for as long as the last falls back behind the edge that leads to it.
        for (std::size_t n = envelope.size(); n >= 4; --n) {
            const cv::Point2d a = envelope[n - 3], b = envelope[n - 2];
            if (side(a, b, envelope[n - 4]) * side(a, b, point) > 0)
                break;
            envelope.erase(envelope.end() - 2);
        }
    }
    return envelope;
}

nubAbstractView *createkelViewRGBD() { return new kelViewRGBD; }
