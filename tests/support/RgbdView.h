#ifndef TESTS_SUPPORT_RGBDVIEW_H
#define TESTS_SUPPORT_RGBDVIEW_H

/// \file
/// An RGB-D view with its private state open, what to set in it, and what is found in its scene.

#include "support/ViewInput.h"
#include "support/ViewPicture.h"
#include <kelCore/view/kelViewRGBD.h>
#include <kelCore/view/kelViewRGBD_p.h>

#include <gtest/gtest.h>
#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include <QApplication>
#include <QGraphicsEllipseItem>
#include <QGraphicsLineItem>
#include <QGraphicsPixmapItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsRectItem>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QPainter>
#include <opencv2/core.hpp>
#include <string>

namespace rgbd {

using Actor = QSharedPointer<kelDataActor>;
using Actors = std::list<QSharedPointer<const kelDataActor>>;
using Event = QSharedPointer<kelDataEvent>;
using Calibration = kelAbstractDataCalibrationWithDepth;
using Strings = std::vector<std::string>;

/// A depth image whose columns grow from 100 to 100 + width - 1.
inline Image depthFrame(int width, int height)
{
    cv::Mat depth(height, width, CV_16UC1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            depth.at<ushort>(y, x) = static_cast<ushort>(100 + x);
    return image(depth);
}

/// Matrices without elements; the last holds memory all the same.
inline std::vector<cv::Mat> emptyMatrices(int type)
{
    cv::Mat emptied(4, 4, type);
    emptied.resize(0);
    EXPECT_NE(emptied.data, nullptr);
    return {cv::Mat(), cv::Mat(0, 5, type), cv::Mat(5, 0, type), emptied};
}

inline Calibration camera(double fx, double fy, double cx, double cy)
{
    Calibration result;
    result.setIntrinsicMatrix((cv::Mat_<double>(3, 4) << fx, 0, cx, 0, 0, fy, cy, 0, 0, 0, 1, 0));
    return result;
}

/// The view, with its private state open and a camera that shows the world point (x, y, 1) at pixel (x, y).
class View : public kelViewRGBD
{
public:
    View() { setCalibrationWithDepth(camera(1, 1, 0, 0)); }

    kelViewRGBDPrivate &d() { return static_cast<kelViewRGBDPrivate &>(*nub_d); }
    QGraphicsView *graphicsView() { return dynamic_cast<QGraphicsView *>(widget()); }
    MyQGraphicsScene *scene() { return dynamic_cast<MyQGraphicsScene *>(graphicsView()->scene()); }

    /// The items of one class, from the bottom up.
    template <class Item> std::vector<Item *> all()
    {
        std::vector<Item *> result;
        for (QGraphicsItem *item : scene()->items(Qt::AscendingOrder))
            if (auto *found = dynamic_cast<Item *>(item))
                result.push_back(found);
        return result;
    }

    void press(int key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(widget(), &event);
    }
    void press(std::initializer_list<int> keys)
    {
        for (const int key : keys)
            press(key);
    }
    /// Leaves nothing switched on but the display.
    void showNothing() { press({Qt::Key_B, Qt::Key_T, Qt::Key_E, Qt::Key_F, Qt::Key_W}); }

    /// What an update renders.
    const cv::Mat &picture()
    {
        updateDisplay();
        return getDisplay()->getImage();
    }
};

inline cv::Point3f at(double x, double y)
{
    return cv::Point3f(static_cast<float>(x), static_cast<float>(y), 1);
}

inline Actor actor(unsigned int id, const cv::Rect &box = cv::Rect(-1, -1, 0, 0))
{
    Actor result(new kelDataActor);
    result->setIdent(id);
    result->setBoundingBox2D(box);
    return result;
}

/// An actor that came along these points, the oldest first.
inline Actor walker(unsigned int id, const std::vector<cv::Point3f> &way)
{
    Actor result = actor(id);
    qint64 time = 1000000;
    for (const cv::Point3f &position : way) {
        CSynchronizer stamp;
        stamp.setDateTime(QDateTime::fromMSecsSinceEpoch(time += 40, Qt::UTC));
        result->setCurrentPosition(position);
        result->updateTrajectory(stamp);
    }
    return result;
}

/// An actor that came along (1, 10), (2, 20), ... in the image.
inline Actor walker(unsigned int id, int steps)
{
    std::vector<cv::Point3f> way;
    for (int i = 1; i <= steps; ++i)
        way.push_back(at(i, 10 * i));
    return walker(id, way);
}

inline Actor withPixels(unsigned int id, std::list<cv::Point> pixels)
{
    Actor result = actor(id);
    result->setPixels(pixels);
    return result;
}

/// An actor with the measurements that its labels show.
inline Actor measured(unsigned int id, const cv::Rect &box, float height, double speed)
{
    Actor result = actor(id, box);
    Information3D information;
    information.setHeight(height);
    result->setInformation3D(information);
    result->setSpeed(speed);
    return result;
}

inline Event event(int actorId, const char *name, double confidence)
{
    Event result(new kelDataEvent);
    result->setInvolvedActorId(actorId);
    result->setSEDName(name);
    result->setSEDConfidence(confidence);
    return result;
}

inline ContextElement element(const char *semantic, const char *shape, const std::list<cv::Point3d> &vertices)
{
    ContextElement result;
    result.semantic = semantic;
    result.shape = shape;
    result.polygonVertices = vertices;
    return result;
}

inline const QColor gold(255, 215, 0);

/// The palette, as it is promised.
inline const std::vector<QColor> palette = {Qt::cyan,      Qt::magenta,     Qt::yellow,     Qt::green,
                                            Qt::blue,      Qt::red,         Qt::black,      Qt::darkGray,
                                            Qt::darkCyan,  Qt::darkMagenta, Qt::darkYellow, Qt::white,
                                            Qt::darkGreen, Qt::darkBlue,    Qt::darkRed,    Qt::lightGray};

inline std::vector<QRectF> rectangles(View &view)
{
    std::vector<QRectF> result;
    for (const auto *item : view.all<QGraphicsRectItem>())
        result.push_back(item->rect());
    return result;
}

inline std::vector<QRectF> rectangles(View &view, const QColor &color)
{
    std::vector<QRectF> result;
    for (const auto *item : view.all<QGraphicsRectItem>())
        if (item->pen() == QPen(color, 2))
            result.push_back(item->rect());
    return result;
}

inline std::vector<QLineF> lines(View &view)
{
    std::vector<QLineF> result;
    for (const auto *item : view.all<QGraphicsLineItem>())
        result.push_back(item->line());
    return result;
}

inline std::vector<QRectF> ellipses(View &view)
{
    std::vector<QRectF> result;
    for (const auto *item : view.all<QGraphicsEllipseItem>())
        result.push_back(item->rect());
    return result;
}

/// The corners of the polygons that show anything.
inline std::vector<std::vector<QPointF>> polygons(View &view)
{
    std::vector<std::vector<QPointF>> result;
    for (const auto *item : view.all<QGraphicsPolygonItem>())
        if (!item->polygon().isEmpty()) {
            const QPolygonF polygon = item->polygon();
            result.emplace_back(polygon.begin(), polygon.end());
        }
    return result;
}

/// The texts of a scene with their places, from the bottom up, such as "FPS : 25 at 565, 3".
inline Strings texts(View &view)
{
    Strings result;
    for (const auto *item : view.all<QGraphicsTextItem>())
        result.push_back(QString("%1 at %2, %3")
                             .arg(item->toPlainText(), QString::number(item->x()), QString::number(item->y()))
                             .toStdString());
    return result;
}

/// The texts alone.
inline Strings words(View &view)
{
    Strings result;
    for (const auto *item : view.all<QGraphicsTextItem>())
        result.push_back(item->toPlainText().toStdString());
    return result;
}

inline void expectFont(const QGraphicsTextItem &item, int size, int weight, const QColor &color)
{
    const std::string text = item.toPlainText().toStdString();
    EXPECT_EQ(item.font().family(), "Verdana") << text;
    EXPECT_EQ(item.font().pointSize(), size) << text;
    EXPECT_EQ(item.font().weight(), weight) << text;
    EXPECT_FALSE(item.font().italic()) << text;
    EXPECT_EQ(item.defaultTextColor(), color) << text;
    EXPECT_EQ(item.rotation(), 0) << text;
    EXPECT_EQ(item.scale(), 1) << text;
}

/// What an item shows, in a word or two.
inline std::string kindOf(QGraphicsItem *item)
{
    if (dynamic_cast<QGraphicsPixmapItem *>(item))
        return "picture";
    if (const auto *polygon = dynamic_cast<QGraphicsPolygonItem *>(item)) {
        const QColor color = polygon->pen().color();
        return color == QColor(Qt::green) ? "plane" : color == gold ? "ground" : "zone";
    }
    if (const auto *line = dynamic_cast<QGraphicsLineItem *>(item))
        return line->pen().width() == 1 ? "dot" : "step";
    if (dynamic_cast<QGraphicsRectItem *>(item))
        return "box";
    if (const auto *text = dynamic_cast<QGraphicsTextItem *>(item)) {
        const QString words = text->toPlainText();
        for (const char *start : {"PRESS", "EVENT LIST", "FPS", "Id", "HeightA", "Speed"})
            if (words.startsWith(start))
                return start;
        return "event";
    }
    const auto *ellipse = dynamic_cast<QGraphicsEllipseItem *>(item);
    return ellipse && ellipse->pen().width() == 5 ? "foot" : "actor";
}

/// What a scene shows, from the bottom up.
inline Strings content(View &view)
{
    Strings result;
    for (QGraphicsItem *item : view.scene()->items(Qt::AscendingOrder))
        result.push_back(kindOf(item));
    return result;
}

/// Gives the view something of everything.
inline void setEverything(View &view)
{
    view.setCalibrationWithDepth(camera(500, 500, 320, 240));
    view.setAcquisitionImage(frame(640, 480));
    view.setAcquisitionDepth(depthFrame(640, 480));
    view.setGroundPlaneCoef({0, 1, 0, -1500});
    view.setListOfGroundPoints({{-1000, 1500, 4000}, {1000, 1500, 4000}, {0, 1500, 3000}});
    view.setContextInfo({element("zone", "polygon", {{0, 1500, 3000}, {500, 1500, 3000}, {0, 1500, 4000}})});
    const Actor person = walker(3, {{0, 0, 3000}, {100, 0, 3000}, {200, 0, 3000}});
    std::list<cv::Point> pixels = {{300, 200}};
    person->setPixels(pixels);
    person->setBoundingBox2D(cv::Rect(280, 100, 60, 200));
    view.setActors({person});
    view.setEvents({event(3, "Fall", 0.87)});
    view.setActorsFeetPositions({{3, {{-100, 1500, 3000}, {100, 1500, 3000}}}});
    view.setListOfPointsDEBUG({{0, 0, 3000}});
    view.setFrameRate(25);
}

inline const std::vector<int> overlayKeys = {Qt::Key_G, Qt::Key_P, Qt::Key_Z, Qt::Key_A, Qt::Key_L, Qt::Key_B,
                                             Qt::Key_T, Qt::Key_E, Qt::Key_I, Qt::Key_F, Qt::Key_W};

/// The picture of the background, as it stands in the scene.
inline QImage background(View &view)
{
    return view.all<QGraphicsPixmapItem>().at(0)->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// The pixels of a picture that are not opaque grey with the value of `grey` at the same place.
inline int notGrey(const QImage &picture, const cv::Mat &grey)
{
    int count = 0;
    for (int y = 0; y < grey.rows; ++y)
        for (int x = 0; x < grey.cols; ++x) {
            const int v = grey.at<uchar>(y, x);
            count += picture.pixel(x, y) != qRgb(v, v, v);
        }
    return count;
}

inline int pixelsOtherThan(const cv::Vec4b &color, const cv::Mat &picture)
{
    int count = 0;
    for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(picture))
        count += bgra != color;
    return count;
}

inline const cv::Vec4b black(0, 0, 0, 255);

/// An item that tells when it is deleted.
class WitnessItem : public QGraphicsRectItem
{
public:
    explicit WitnessItem(int *deleted) : m_deleted(deleted) { }
    ~WitnessItem() override { ++*m_deleted; }

private:
    int *m_deleted;
};

} // namespace rgbd

#endif
