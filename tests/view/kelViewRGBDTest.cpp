#include <kelCore/view/kelViewRGBD.h>
#include <kelCore/view/kelViewRGBD_p.h>

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include "support/Capture.h"
#include "support/ViewInput.h"

#include <gmock/gmock.h>

#include <opencv2/core.hpp>

#include <QApplication>
#include <QGraphicsEllipseItem>
#include <QGraphicsLineItem>
#include <QGraphicsPixmapItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsRectItem>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QPicture>
#include <QPointer>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Actor = QSharedPointer<kelDataActor>;
using Actors = std::list<QSharedPointer<const kelDataActor>>;
using Event = QSharedPointer<kelDataEvent>;
using Calibration = kelAbstractDataCalibrationWithDepth;
using Strings = std::vector<std::string>;

/// A depth image whose columns grow from 100 to 100 + width - 1.
Image depthFrame(int width, int height)
{
    cv::Mat depth(height, width, CV_16UC1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            depth.at<ushort>(y, x) = static_cast<ushort>(100 + x);
    return image(depth);
}

/// Matrices without elements; the last holds memory all the same.
std::vector<cv::Mat> emptyMatrices(int type)
{
    cv::Mat emptied(4, 4, type);
    emptied.resize(0);
    EXPECT_NE(emptied.data, nullptr);
    return {cv::Mat(), cv::Mat(0, 5, type), cv::Mat(5, 0, type), emptied};
}

Calibration camera(double fx, double fy, double cx, double cy)
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

cv::Point3f at(double x, double y) { return cv::Point3f(static_cast<float>(x), static_cast<float>(y), 1); }

Actor actor(unsigned int id, const cv::Rect &box = cv::Rect(-1, -1, 0, 0))
{
    Actor result(new kelDataActor);
    result->setIdent(id);
    result->setBoundingBox2D(box);
    return result;
}

/// An actor that came along these points, the oldest first.
Actor walker(unsigned int id, const std::vector<cv::Point3f> &way)
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
Actor walker(unsigned int id, int steps)
{
    std::vector<cv::Point3f> way;
    for (int i = 1; i <= steps; ++i)
        way.push_back(at(i, 10 * i));
    return walker(id, way);
}

Actor withPixels(unsigned int id, std::list<cv::Point> pixels)
{
    Actor result = actor(id);
    result->setPixels(pixels);
    return result;
}

/// An actor with the measurements that its labels show.
Actor measured(unsigned int id, const cv::Rect &box, float height, double speed)
{
    Actor result = actor(id, box);
    Information3D information;
    information.setHeight(height);
    result->setInformation3D(information);
    result->setSpeed(speed);
    return result;
}

Event event(int actorId, const char *name, double confidence)
{
    Event result(new kelDataEvent);
    result->setInvolvedActorId(actorId);
    result->setSEDName(name);
    result->setSEDConfidence(confidence);
    return result;
}

ContextElement element(const char *semantic, const char *shape, const std::list<cv::Point3d> &vertices)
{
    ContextElement result;
    result.semantic = semantic;
    result.shape = shape;
    result.polygonVertices = vertices;
    return result;
}

const QColor gold(255, 215, 0);

/// The palette, as it is promised.
const std::vector<QColor> palette = {Qt::cyan,      Qt::magenta,     Qt::yellow,     Qt::green,
                                     Qt::blue,      Qt::red,         Qt::black,      Qt::darkGray,
                                     Qt::darkCyan,  Qt::darkMagenta, Qt::darkYellow, Qt::white,
                                     Qt::darkGreen, Qt::darkBlue,    Qt::darkRed,    Qt::lightGray};

std::vector<QRectF> rectangles(View &view)
{
    std::vector<QRectF> result;
    for (const auto *item : view.all<QGraphicsRectItem>())
        result.push_back(item->rect());
    return result;
}

std::vector<QRectF> rectangles(View &view, const QColor &color)
{
    std::vector<QRectF> result;
    for (const auto *item : view.all<QGraphicsRectItem>())
        if (item->pen() == QPen(color, 2))
            result.push_back(item->rect());
    return result;
}

std::vector<QLineF> lines(View &view)
{
    std::vector<QLineF> result;
    for (const auto *item : view.all<QGraphicsLineItem>())
        result.push_back(item->line());
    return result;
}

std::vector<QRectF> ellipses(View &view)
{
    std::vector<QRectF> result;
    for (const auto *item : view.all<QGraphicsEllipseItem>())
        result.push_back(item->rect());
    return result;
}

/// The corners of the polygons that show anything.
std::vector<std::vector<QPointF>> polygons(View &view)
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
Strings texts(View &view)
{
    Strings result;
    for (const auto *item : view.all<QGraphicsTextItem>())
        result.push_back(QString("%1 at %2, %3")
                             .arg(item->toPlainText(), QString::number(item->x()), QString::number(item->y()))
                             .toStdString());
    return result;
}

/// The texts alone.
Strings words(View &view)
{
    Strings result;
    for (const auto *item : view.all<QGraphicsTextItem>())
        result.push_back(item->toPlainText().toStdString());
    return result;
}

void expectFont(const QGraphicsTextItem &item, int size, int weight, const QColor &color)
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
std::string kindOf(QGraphicsItem *item)
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
Strings content(View &view)
{
    Strings result;
    for (QGraphicsItem *item : view.scene()->items(Qt::AscendingOrder))
        result.push_back(kindOf(item));
    return result;
}

/// Gives the view something of everything.
void setEverything(View &view)
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

const std::vector<int> overlayKeys = {Qt::Key_G, Qt::Key_P, Qt::Key_Z, Qt::Key_A, Qt::Key_L, Qt::Key_B,
                                      Qt::Key_T, Qt::Key_E, Qt::Key_I, Qt::Key_F, Qt::Key_W};

/// The picture of the background, as it stands in the scene.
QImage background(View &view)
{
    return view.all<QGraphicsPixmapItem>().at(0)->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// The pixels of a picture that are not opaque grey with the value of `grey` at the same place.
int notGrey(const QImage &picture, const cv::Mat &grey)
{
    int count = 0;
    for (int y = 0; y < grey.rows; ++y)
        for (int x = 0; x < grey.cols; ++x) {
            const int v = grey.at<uchar>(y, x);
            count += picture.pixel(x, y) != qRgb(v, v, v);
        }
    return count;
}

/// The bytes in which two pictures differ; -1 when they are not of the same size and type.
int differentBytes(const cv::Mat &a, const cv::Mat &b)
{
    if (a.size() != b.size() || a.type() != b.type())
        return -1;
    return a.empty() ? 0 : cv::countNonZero(a.reshape(1) != b.reshape(1));
}

int pixelsOtherThan(const cv::Vec4b &color, const cv::Mat &picture)
{
    int count = 0;
    for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(picture))
        count += bgra != color;
    return count;
}

const cv::Vec4b black(0, 0, 0, 255);

/// A scene rendered on black to its size in whole pixels.
cv::Mat rendered(QGraphicsScene &scene)
{
    const QRectF rect = scene.sceneRect();
    QImage picture(qRound(rect.width()), qRound(rect.height()), QImage::Format_RGB32);
    picture.fill(Qt::black);
    {
        QPainter painter(&picture);
        scene.render(&painter, QRectF(), QRectF(), Qt::KeepAspectRatio);
    }
    return cv::Mat(picture.height(), picture.width(), CV_8UC4, picture.bits(),
                   static_cast<size_t>(picture.bytesPerLine()))
        .clone();
}

/// An item that tells when it is deleted.
class WitnessItem : public QGraphicsRectItem
{
public:
    explicit WitnessItem(int *deleted) : m_deleted(deleted) { }
    ~WitnessItem() override { ++*m_deleted; }

private:
    int *m_deleted;
};

} // namespace

// What a fresh view is.

TEST(kelViewRGBDTest, TheClassDerivesFromTheFrameworksViewAndAddsNoMembers)
{
    EXPECT_STREQ(kelViewRGBD::staticMetaObject.className(), "kelViewRGBD");
    EXPECT_STREQ(kelViewRGBD::staticMetaObject.superClass()->className(), "nubAbstractView");
    EXPECT_EQ(kelViewRGBD::staticMetaObject.methodCount(), kelViewRGBD::staticMetaObject.methodOffset());
    EXPECT_EQ(kelViewRGBD::staticMetaObject.propertyCount(), kelViewRGBD::staticMetaObject.propertyOffset());
    EXPECT_TRUE((std::is_base_of_v<nubAbstractViewPrivate, kelViewRGBDPrivate>));
    EXPECT_EQ(sizeof(kelViewRGBD), sizeof(nubAbstractObject));
    EXPECT_FALSE(std::is_copy_constructible_v<kelViewRGBD>);
}

TEST(kelViewRGBDTest, OnlyTheWidgetIsOverridden)
{
    kelViewRGBD view;
    EXPECT_EQ(view.identifier(), "kelViewRGBD");
    EXPECT_EQ(view.clone(), nullptr);
    EXPECT_TRUE(view.description().isEmpty());
    EXPECT_EQ(view.parent(), nullptr);
}

TEST(kelViewRGBDTest, TheWidgetIsAPlainGraphicsViewOfTheSceneWithTheSwitches)
{
    View view;
    ASSERT_NE(view.graphicsView(), nullptr);
    EXPECT_STREQ(view.widget()->metaObject()->className(), "QGraphicsView");
    ASSERT_NE(view.scene(), nullptr);
    EXPECT_EQ(view.scene(), &view.d().scene);
    EXPECT_EQ(view.widget()->parentWidget(), nullptr);
    EXPECT_FALSE(view.widget()->isVisible());
}

TEST(kelViewRGBDTest, TheWidgetDrawsWithAntialiasing)
{
    View view;
    EXPECT_TRUE(view.graphicsView()->renderHints().testFlag(QPainter::Antialiasing));
    EXPECT_EQ(view.graphicsView()->renderHints() & ~QPainter::RenderHints(QPainter::Antialiasing),
              QGraphicsView().renderHints() & ~QPainter::RenderHints(QPainter::Antialiasing));
}

TEST(kelViewRGBDTest, AFreshViewHoldsNothingButTwoEmptyPictures)
{
    View view;
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
    for (const auto *item : view.all<QGraphicsPixmapItem>())
        EXPECT_TRUE(item->pixmap().isNull());
    ASSERT_NE(view.d().depthItem, nullptr);
    EXPECT_EQ(view.d().depthItem->scene(), nullptr);
    EXPECT_TRUE(view.getDisplay().isNull());
    EXPECT_TRUE(view.d().acquisitionImage.isNull());
    EXPECT_TRUE(view.d().acquisitionDepth.isNull());
    EXPECT_TRUE(view.d().contextInfo.empty());
    EXPECT_TRUE(view.d().groundPlaneCoef.empty());
    EXPECT_TRUE(view.d().actors.empty());
    EXPECT_TRUE(view.d().events.empty());
    EXPECT_TRUE(view.d().actorsFeetPositions.empty());
    EXPECT_TRUE(view.d().listOfPointsDEBUG.empty());
    EXPECT_TRUE(view.d().listOfGroundPoints.empty());
    EXPECT_TRUE(view.d().colors.empty());
    EXPECT_EQ(view.d().frameRate, 0);
}

TEST(kelViewRGBDTest, TheSwitchesStandAsTheSceneHasThemAtFirst)
{
    View view;
    const MyQGraphicsScene fresh;
    EXPECT_EQ(view.scene()->displayEnabled, fresh.displayEnabled);
    EXPECT_EQ(view.scene()->showBlobs, fresh.showBlobs);
    EXPECT_EQ(view.scene()->showZones, fresh.showZones);
    EXPECT_EQ(view.scene()->showDepth, fresh.showDepth);
    EXPECT_EQ(view.scene()->showActors, fresh.showActors);
    EXPECT_EQ(view.scene()->trajectoryLength, 30);
}

TEST(kelViewRGBDTest, AFreshViewProjectsWithADefaultCalibration)
{
    kelViewRGBD view;
    EXPECT_EQ(view.convertWorld2ImageFixed(cv::Point3f(100, 200, 300)), cv::Point(0, 0));
}

TEST(kelViewRGBDTest, TheFactoryMakesANewViewForTheCallerToOwn)
{
    const std::unique_ptr<nubAbstractView> first(createkelViewRGBD());
    const std::unique_ptr<nubAbstractView> second(createkelViewRGBD());
    EXPECT_NE(first, second);
    EXPECT_STREQ(first->metaObject()->className(), "kelViewRGBD");
    EXPECT_EQ(first->parent(), nullptr);
    ASSERT_NE(dynamic_cast<kelViewRGBD *>(first.get()), nullptr);
    EXPECT_NE(dynamic_cast<QGraphicsView *>(first->widget()), nullptr);
}

// What is set.

TEST(kelViewRGBDTest, SettersChangeNeitherSceneNorDisplay)
{
    View view;
    const QSize size = view.widget()->size();
    setEverything(view);
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(0)->pixmap().isNull());
    EXPECT_EQ(view.widget()->size(), size);
    EXPECT_TRUE(view.getDisplay().isNull());
}

TEST(kelViewRGBDTest, ImagesAreHeldByTheirPointers)
{
    View view;
    const Image color = frame(4, 4);
    const Image depth = depthFrame(4, 4);
    view.setAcquisitionImage(color);
    view.setAcquisitionDepth(depth);
    EXPECT_EQ(view.d().acquisitionImage, color);
    EXPECT_EQ(view.d().acquisitionDepth, depth);
    view.updateDisplay();
    color->setImage(cv::Mat(6, 8, CV_8UC3, cv::Scalar(1, 2, 3)));
    view.updateDisplay();
    EXPECT_EQ(background(view).size(), QSize(8, 6));
    EXPECT_EQ(background(view).pixel(7, 5), qRgb(3, 2, 1));
}

TEST(kelViewRGBDTest, ImagesWithoutPixelsLeaveThePreviousOnes)
{
    View view;
    const Image color = frame(4, 4);
    const Image depth = depthFrame(4, 4);
    view.setAcquisitionImage(color);
    view.setAcquisitionDepth(depth);
    view.setAcquisitionImage(Image());
    view.setAcquisitionDepth(Image());
    for (const cv::Mat &empty : emptyMatrices(CV_8UC3))
        view.setAcquisitionImage(image(empty));
    for (const cv::Mat &empty : emptyMatrices(CV_16UC1))
        view.setAcquisitionDepth(image(empty));
    EXPECT_EQ(view.d().acquisitionImage, color);
    EXPECT_EQ(view.d().acquisitionDepth, depth);
    const Image next = frame(8, 8);
    view.setAcquisitionImage(next);
    view.setAcquisitionDepth(depthFrame(8, 8));
    EXPECT_EQ(view.d().acquisitionImage, next);
    EXPECT_NE(view.d().acquisitionDepth, depth);
}

TEST(kelViewRGBDTest, ListsAreCopied)
{
    View view;
    std::list<ContextElement> zones = {element("zone", "polygon", {{1, 1, 1}, {2, 2, 1}, {1, 2, 1}})};
    std::vector<double> plane = {0, 1, 0, -2};
    Actors actors = {actor(1, cv::Rect(1, 2, 3, 4))};
    std::list<Event> events = {event(1, "a", 0)};
    std::map<int, std::pair<cv::Point3f, cv::Point3f>> feet = {{1, {at(1, 1), at(2, 2)}}};
    std::list<cv::Point3f> dots = {at(1, 1)};
    std::list<cv::Point3f> ground = {at(1, 1), at(2, 2)};
    view.setContextInfo(zones);
    view.setGroundPlaneCoef(plane);
    view.setActors(actors);
    view.setEvents(events);
    view.setActorsFeetPositions(feet);
    view.setListOfPointsDEBUG(dots);
    view.setListOfGroundPoints(ground);
    zones.clear();
    plane.clear();
    actors.clear();
    events.clear();
    feet.clear();
    dots.clear();
    ground.clear();
    EXPECT_EQ(view.d().contextInfo.size(), 1u);
    EXPECT_EQ(view.d().groundPlaneCoef, (std::vector<double>{0, 1, 0, -2}));
    EXPECT_EQ(view.d().actors.size(), 1u);
    EXPECT_EQ(view.d().events.size(), 1u);
    EXPECT_EQ(view.d().actorsFeetPositions.size(), 1u);
    EXPECT_EQ(view.d().listOfPointsDEBUG.size(), 1u);
    EXPECT_EQ(view.d().listOfGroundPoints.size(), 2u);
}

TEST(kelViewRGBDTest, WhatIsSetReplacesWhatWasSet)
{
    View view;
    setEverything(view);
    view.setContextInfo({});
    view.setGroundPlaneCoef({});
    view.setActors({});
    view.setEvents({});
    view.setActorsFeetPositions({});
    view.setListOfPointsDEBUG({});
    view.setListOfGroundPoints({});
    view.setFrameRate(7);
    EXPECT_TRUE(view.d().contextInfo.empty());
    EXPECT_TRUE(view.d().groundPlaneCoef.empty());
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
    EXPECT_EQ(view.d().frameRate, 7);
}

TEST(kelViewRGBDTest, ActorsAndEventsAreShared)
{
    View view;
    const Actor person = actor(1, cv::Rect(1, 2, 3, 4));
    const Event fall = event(1, "a", 0);
    view.setActors({person});
    view.setEvents({fall});
    person->setBoundingBox2D(cv::Rect(5, 6, 7, 8));
    fall->setSEDName("b");
    view.drawBlobs();
    view.drawEvents();
    EXPECT_THAT(rectangles(view), ElementsAre(QRectF(5, 6, 7, 8)));
    EXPECT_EQ(words(view).back(), "1 / b [0.000000]");
}

TEST(kelViewRGBDTest, TheCalibrationIsAssigned)
{
    View view;
    Calibration given = camera(2, 3, 4, 5);
    given.setReferentialName("room");
    given.setListContextObjectsForbiddenInPlanComputation("table");
    given.setDepthInformation(cv::Mat(2, 2, CV_32FC1, cv::Scalar(7)));
    view.setCalibrationWithDepth(given);
    Calibration &own = view.d().calibration;
    EXPECT_EQ(own.getReferentialName(), "room");
    EXPECT_EQ(own.getIntrinsicMatrix().data, given.getIntrinsicMatrix().data) << "shared";
    EXPECT_EQ(own.getDepthInformation().data, given.getDepthInformation().data) << "shared";
    EXPECT_EQ(own.getListContextObjectsForbiddenInPlanComputation(), "") << "as in any assignment";
    EXPECT_EQ(view.convertWorld2ImageFixed(at(10, 10)), cv::Point(24, 35));
    given.setIntrinsicMatrix(cv::Mat());
    EXPECT_EQ(view.convertWorld2ImageFixed(at(10, 10)), cv::Point(24, 35));
}

TEST(kelViewRGBDTest, ACalibrationOfAnotherKindIsRefusedAsInAnyAssignment)
{
    struct Foreign : Calibration
    {
        QString identifier() const override { return "Foreign"; }
    };
    View view;
    Foreign foreign;
    foreign.setIntrinsicMatrix(camera(2, 3, 4, 5).getIntrinsicMatrix());
    MessageCapture messages;
    view.setCalibrationWithDepth(foreign);
    EXPECT_EQ(messages.count(slicingWarning()), 2);
    EXPECT_EQ(view.convertWorld2ImageFixed(at(10, 10)), cv::Point(10, 10));
}

// Projection.

TEST(kelViewRGBDTest, PixelsAreRoundedToTheNearestAndTiesToEven)
{
    View view;
    EXPECT_EQ(view.convertWorld2ImageFixed(at(2.4, 2.6)), cv::Point(2, 3));
    EXPECT_EQ(view.convertWorld2ImageFixed(at(2.5, 3.5)), cv::Point(2, 4));
    EXPECT_EQ(view.convertWorld2ImageFixed(at(0.5, 1.5)), cv::Point(0, 2));
    EXPECT_EQ(view.convertWorld2ImageFixed(at(-2.5, -3.5)), cv::Point(-2, -4));
    EXPECT_EQ(view.convertWorld2ImageFixed(at(-0.5, -1.5)), cv::Point(0, -2));
    EXPECT_EQ(view.convertWorld2ImageFixed(at(-2.4, -2.6)), cv::Point(-2, -3));
}

TEST(kelViewRGBDTest, PointsAreProjectedByTheDepthCamerasOwnProjection)
{
    View view;
    Calibration calibration = camera(500, 400, 320.5, 240);
    // The other projection would move the point by this.
    cv::Mat extrinsic = cv::Mat::eye(4, 4, CV_64FC1);
    extrinsic.at<double>(0, 3) = 1000;
    calibration.setExtrinsicMatrix(extrinsic);
    view.setCalibrationWithDepth(calibration);
    EXPECT_EQ(view.convertWorld2ImageFixed(cv::Point3f(1000, -500, 2000)), cv::Point(570, 140));
    EXPECT_EQ(view.convertWorld2ImageFixed(cv::Point3f(1000, -500, -2000)), cv::Point(70, 340));
    EXPECT_EQ(view.convertWorld2ImageFixed(cv::Point3f(1000, -500, 0)), cv::Point(320, 240))
        << "the principal point";
}

TEST(kelViewRGBDTest, ProjectionIsDoneInDouble)
{
    View view;
    Calibration calibration = camera(1e6, 2e6, 0.25, -0.25);
    view.setCalibrationWithDepth(calibration);
    std::mt19937 random(1);
    std::uniform_real_distribution<float> coordinate(-3, 3);
    int notInFloat = 0;
    for (int i = 0; i < 2000; ++i) {
        const cv::Point3f p(coordinate(random), coordinate(random), coordinate(random));
        const cv::Point2d exact = calibration.worldToImage(cv::Point3d(p.x, p.y, p.z));
        if (std::abs(exact.x) > 1e9 || std::abs(exact.y) > 1e9)
            continue;
        EXPECT_EQ(view.convertWorld2ImageFixed(p),
                  cv::Point(static_cast<int>(std::rint(exact.x)), static_cast<int>(std::rint(exact.y))));
        notInFloat += std::rint(exact.x) != std::rint(1e6f * p.x / p.z + 0.25f);
    }
    EXPECT_GT(notInFloat, 100);
}

TEST(kelViewRGBDTest, ACameraWithoutAMatrixLetsTheErrorThrough)
{
    View view;
    Calibration calibration;
    calibration.setIntrinsicMatrix(cv::Mat());
    view.setCalibrationWithDepth(calibration);
    EXPECT_THROW(view.convertWorld2ImageFixed(at(1, 1)), cv::Exception);
}

// Palette.

TEST(kelViewRGBDTest, ThePaletteHoldsSixteenColoursInOrder)
{
    View view;
    view.initColors();
    EXPECT_EQ(view.d().colors, palette);
    view.d().colors.assign(20, QColor(1, 2, 3));
    view.initColors();
    EXPECT_EQ(view.d().colors, palette);
}

TEST(kelViewRGBDTest, TheFirstActiveUpdateFillsThePalette)
{
    View view;
    view.scene()->displayEnabled = false;
    view.updateDisplay();
    EXPECT_TRUE(view.d().colors.empty());
    view.scene()->displayEnabled = true;
    view.updateDisplay();
    EXPECT_EQ(view.d().colors, palette);
    view.d().colors.assign(16, QColor(1, 2, 3));
    view.updateDisplay();
    EXPECT_EQ(view.d().colors, std::vector<QColor>(16, QColor(1, 2, 3))) << "only an empty one is filled";
}

TEST(kelViewRGBDTest, AnActorsColourIsTheOneAtItsIdModuloSixteen)
{
    View view;
    Actors actors;
    for (unsigned int id = 0; id < 16; ++id)
        actors.push_back(actor(id));
    for (const unsigned int id : {16u, 17u, 33u, 2147483647u, 2147483648u, 4294967286u, 4294967295u})
        actors.push_back(actor(id));
    view.setActors(actors);
    view.drawBlobs();
    std::vector<QColor> colors;
    for (const auto *box : view.all<QGraphicsRectItem>())
        colors.push_back(box->pen().color());
    std::vector<QColor> wanted = palette;
    for (const size_t index : {0, 1, 1, 15, 0, 6, 15})
        wanted.push_back(palette[index]);
    EXPECT_EQ(colors, wanted);
}

// The display switched off.

TEST(kelViewRGBDTest, EscapeLeavesThePromptAndTheFrameRate)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_Z, Qt::Key_A, Qt::Key_I, Qt::Key_G, Qt::Key_L, Qt::Key_P});
    view.updateDisplay();
    view.press(Qt::Key_Escape);
    EXPECT_GT(content(view).size(), 2u) << "a switch takes effect with the next update";
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS", "FPS"}));
    EXPECT_EQ(texts(view), (Strings{"PRESS ESC TO ACTIVATE DISPLAY at 100, 220", "FPS : 25 at 565, 3"}));
    expectFont(*view.all<QGraphicsTextItem>().at(0), 20, QFont::Normal, Qt::red);
    expectFont(*view.all<QGraphicsTextItem>().at(1), 12, QFont::Normal, Qt::red);
}

TEST(kelViewRGBDTest, WithoutTheFrameRateEscapeLeavesThePromptAlone)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_W, Qt::Key_Escape});
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS"}));
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS"}));
    view.press(Qt::Key_W);
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS", "FPS"}));
}

TEST(kelViewRGBDTest, EscapeDeletesWhatWasShown)
{
    View view;
    int deleted = 0;
    view.scene()->addItem(new WitnessItem(&deleted));
    view.press(Qt::Key_Escape);
    EXPECT_EQ(deleted, 0);
    view.updateDisplay();
    EXPECT_EQ(deleted, 1);
}

TEST(kelViewRGBDTest, EscapeLeavesTheDisplayImage)
{
    View view;
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    EXPECT_TRUE(view.getDisplay().isNull());
    setEverything(view);
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    const Image display = view.getDisplay();
    const cv::Mat picture = display->getImage();
    const cv::Mat copy = picture.clone();
    view.press(Qt::Key_Escape);
    view.setAcquisitionImage(frame(640, 480, cv::Scalar(1, 1, 1)));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay(), display);
    EXPECT_EQ(display->getImage().data, picture.data);
    EXPECT_EQ(differentBytes(picture, copy), 0);
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 640, 480));
}

TEST(kelViewRGBDTest, EscapeAgainBringsEverythingBack)
{
    View view;
    setEverything(view);
    view.updateDisplay();
    const Strings before = content(view);
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    EXPECT_EQ(content(view), before);
}

// The background.

TEST(kelViewRGBDTest, AFrameIsShownInTheRightColours)
{
    for (int width = 1; width <= 9; ++width) {
        View view;
        cv::Mat pixels(3, width, CV_8UC3);
        for (int y = 0; y < pixels.rows; ++y)
            for (int x = 0; x < pixels.cols; ++x)
                pixels.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(10 + x), uchar(100 + y), uchar(200 + x + y));
        view.setAcquisitionImage(image(pixels));
        view.updateDisplay();
        ASSERT_EQ(background(view).size(), QSize(width, 3));
        for (int y = 0; y < pixels.rows; ++y)
            for (int x = 0; x < pixels.cols; ++x)
                EXPECT_EQ(background(view).pixel(x, y), qRgb(200 + x + y, 100 + y, 10 + x)) << x << ", " << y;
        EXPECT_EQ(view.all<QGraphicsPixmapItem>().at(0)->pos(), QPointF(0, 0));
    }
}

TEST(kelViewRGBDTest, AFrameThatIsPartOfALargerMatrixIsShownByItself)
{
    View view;
    cv::Mat pixels(10, 11, CV_8UC3, cv::Scalar(1, 2, 3));
    cv::Mat part = pixels(cv::Rect(2, 3, 5, 4));
    for (int y = 0; y < 4; ++y)
        part.row(y).setTo(cv::Scalar(4, 5, 6 + y));
    ASSERT_FALSE(part.isContinuous());
    view.setAcquisitionImage(image(part));
    view.updateDisplay();
    ASSERT_EQ(background(view).size(), QSize(5, 4));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(background(view).pixel(x, y), qRgb(6 + y, 5, 4)) << x << ", " << y;
}

TEST(kelViewRGBDTest, TheCallersFrameIsLeftAloneAndShownAsItWas)
{
    View view;
    cv::Mat pixels(4, 5, CV_8UC3, cv::Scalar(1, 2, 3));
    view.setAcquisitionImage(image(pixels));
    view.updateDisplay();
    EXPECT_EQ(pixels.at<cv::Vec3b>(3, 4), cv::Vec3b(1, 2, 3));
    pixels.setTo(cv::Scalar(7, 8, 9));
    EXPECT_EQ(background(view).pixel(4, 3), qRgb(3, 2, 1));
    EXPECT_EQ(view.getDisplay()->getImage().at<cv::Vec4b>(3, 4), cv::Vec4b(1, 2, 3, 255));
    view.updateDisplay();
    EXPECT_EQ(background(view).pixel(4, 3), qRgb(9, 8, 7)) << "the buffer is shared until the update";
}

TEST(kelViewRGBDTest, SceneAndWidgetTakeTheSizeOfTheBackground)
{
    View view;
    view.widget()->resize(1, 1);
    const int frameWidth = view.graphicsView()->frameWidth();
    const QSize border(2 * frameWidth, 2 * frameWidth);
    view.setAcquisitionImage(frame(220, 150));
    view.setAcquisitionDepth(depthFrame(210, 240));
    view.updateDisplay();
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 220, 150));
    EXPECT_EQ(view.widget()->size(), QSize(220, 150) + border);
    view.press(Qt::Key_D);
    view.updateDisplay();
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 210, 240));
    EXPECT_EQ(view.widget()->size(), QSize(210, 240) + border);
}

TEST(kelViewRGBDTest, OverlaysLeaveTheSceneRectangleOfTheBackground)
{
    View view;
    setEverything(view);
    view.setActors({actor(1, cv::Rect(-500, -500, 5000, 5000)), withPixels(2, {{-900, 4000}})});
    view.press(Qt::Key_A);
    view.updateDisplay();
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 640, 480));
}

TEST(kelViewRGBDTest, DepthIsShownInGreyFromItsLeastToItsGreatestValue)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.setAcquisitionDepth(image((cv::Mat_<ushort>(2, 3) << 1000, 1500, 2000, 3000, 1001, 1250)));
    view.press(Qt::Key_D);
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
    const QImage shown = background(view);
    ASSERT_EQ(shown.size(), QSize(3, 2));
    EXPECT_EQ(shown.pixel(0, 0), qRgb(0, 0, 0));
    EXPECT_EQ(shown.pixel(1, 0), qRgb(64, 64, 64));
    EXPECT_EQ(shown.pixel(0, 1), qRgb(255, 255, 255));
    EXPECT_EQ(shown.pixel(1, 1), qRgb(0, 0, 0));
    EXPECT_FALSE(view.all<QGraphicsPixmapItem>().at(0)->pixmap().hasAlphaChannel());
    EXPECT_TRUE(view.scene()->showDepth);
}

TEST(kelViewRGBDTest, DepthOfEveryTypeIsNormalisedAsTheToolkitDoes)
{
    cv::RNG random(7);
    const std::pair<int, std::pair<double, double>> kinds[] = {
        {CV_8UC1, {3, 77}},       {CV_8UC1, {0, 256}},    {CV_8SC1, {-100, 100}},     {CV_16UC1, {0, 65536}},
        {CV_16UC1, {500, 8000}},  {CV_16UC1, {400, 403}}, {CV_16SC1, {-900, 9000}},   {CV_32SC1, {-1e6, 1e6}},
        {CV_32FC1, {-1, 8.5}},    {CV_32FC1, {0, 1e-30}}, {CV_32FC1, {1e6, 1e6 + 9}}, {CV_64FC1, {-2, 4e9}},
        {CV_32FC1, {-3e38, 3e38}}};
    for (const auto &[type, range] : kinds) {
        for (int width = 1; width <= 67; width += 11) {
            cv::Mat depth(31, width, type);
            random.fill(depth, cv::RNG::UNIFORM, range.first, range.second);
            const cv::Mat before = depth.clone();
            cv::Mat grey;
            cv::normalize(depth, grey, 0, 255, cv::NORM_MINMAX, CV_8U);
            View view;
            view.setAcquisitionDepth(image(depth));
            view.press(Qt::Key_D);
            view.updateDisplay();
            ASSERT_EQ(background(view).size(), QSize(width, 31));
            EXPECT_EQ(notGrey(background(view), grey), 0) << "type " << type << " width " << width;
            EXPECT_EQ(cv::norm(depth, before, cv::NORM_INF), 0) << "the depth image is only read";
        }
    }
}

TEST(kelViewRGBDTest, DepthThatIsNoNumberIsShownAsTheToolkitDoes)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const int type : {CV_32FC1, CV_64FC1})
        for (const auto &odd : {std::vector<double>{nan}, {infinity}, {-infinity}, {nan, infinity}})
            for (const int width : {1, 5, 16, 37}) {
                cv::Mat depth(6, width, type);
                cv::RNG(3).fill(depth, cv::RNG::UNIFORM, 500, 4000);
                for (size_t i = 0; i < odd.size(); ++i) {
                    depth(cv::Rect(width / 2, 2 + static_cast<int>(i), 1, 1)).setTo(odd[i]);
                    depth(cv::Rect(0, static_cast<int>(i), 1, 1)).setTo(odd[i]);
                }
                cv::Mat grey;
                cv::normalize(depth, grey, 0, 255, cv::NORM_MINMAX, CV_8U);
                View view;
                view.setAcquisitionDepth(image(depth));
                view.press(Qt::Key_D);
                view.updateDisplay();
                EXPECT_EQ(notGrey(background(view), grey), 0)
                    << "type " << type << " width " << width << " with " << odd[0];
            }
}

TEST(kelViewRGBDTest, DepthThatIsTheSameEverywhereIsBlack)
{
    for (const int type : {CV_8UC1, CV_16UC1, CV_32FC1}) {
        View view;
        view.setAcquisitionDepth(image(cv::Mat(3, 4, type, cv::Scalar(42))));
        view.press(Qt::Key_D);
        view.updateDisplay();
        EXPECT_EQ(notGrey(background(view), cv::Mat(3, 4, CV_8UC1, cv::Scalar(0))), 0) << type;
    }
}

TEST(kelViewRGBDTest, DepthThatIsPartOfALargerMatrixIsShownByItself)
{
    for (const int type : {CV_8UC1, CV_16UC1, CV_32FC1}) {
        View view;
        cv::Mat depth(10, 11, type, cv::Scalar(250));
        cv::Mat part = depth(cv::Rect(2, 3, 5, 4));
        for (int x = 0; x < 5; ++x)
            part.col(x).setTo(10 + x);
        view.setAcquisitionDepth(image(part));
        view.press(Qt::Key_D);
        view.updateDisplay();
        cv::Mat grey;
        cv::normalize(part, grey, 0, 255, cv::NORM_MINMAX, CV_8U);
        ASSERT_EQ(background(view).size(), QSize(5, 4));
        EXPECT_EQ(notGrey(background(view), grey), 0) << type;
    }
}

TEST(kelViewRGBDTest, WithoutADepthImageTheDepthBackgroundTurnsItselfOff)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.press(Qt::Key_D);
    ASSERT_TRUE(view.scene()->showDepth);
    view.updateDisplay();
    EXPECT_FALSE(view.scene()->showDepth);
    EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"})) << "not the colour image either";
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
    EXPECT_EQ(background(view).pixel(7, 7), qRgb(30, 20, 10));
}

TEST(kelViewRGBDTest, ADepthImageThatHasLostItsPixelsTurnsTheDepthBackgroundOff)
{
    for (const cv::Mat &empty : emptyMatrices(CV_16UC1)) {
        View view;
        const Image depth = depthFrame(8, 8);
        view.setAcquisitionDepth(depth);
        view.press(Qt::Key_D);
        view.updateDisplay();
        ASSERT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
        view.widget()->resize(10, 10);
        depth->setImage(empty);
        view.updateDisplay();
        EXPECT_FALSE(view.scene()->showDepth);
        EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"}));
        EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 8, 8));
        EXPECT_EQ(view.widget()->size(), QSize(10, 10));
    }
}

TEST(kelViewRGBDTest, WithoutAColourImageThereIsNoBackground)
{
    View view;
    view.setAcquisitionDepth(depthFrame(8, 8));
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"}));
    for (const cv::Mat &empty : emptyMatrices(CV_8UC3)) {
        const Image color = frame(8, 8);
        view.setAcquisitionImage(color);
        view.updateDisplay();
        EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
        color->setImage(empty);
        view.updateDisplay();
        EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"}));
    }
}

TEST(kelViewRGBDTest, AFrameThatCannotBeConvertedLetsTheErrorThrough)
{
    View view;
    view.setAcquisitionImage(image(cv::Mat(6, 6, CV_8UC2, cv::Scalar(0))));
    EXPECT_THROW(view.updateDisplay(), cv::Exception);
    view.setAcquisitionImage(frame(8, 8));
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
}

// The overlays together.

TEST(kelViewRGBDTest, AtFirstAFrameShowsBoxesTrajectoriesEventsFeetAndTheFrameRate)
{
    View view;
    setEverything(view);
    view.updateDisplay();
    EXPECT_EQ(content(view),
              (Strings{"picture", "box", "step", "step", "EVENT LIST", "event", "foot", "foot", "FPS"}));
}

TEST(kelViewRGBDTest, OverlaysLieAboveOneAnotherInTheirOrder)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_I, Qt::Key_L, Qt::Key_A, Qt::Key_Z, Qt::Key_P, Qt::Key_G});
    for (int i = 0; i < 2; ++i) {
        view.updateDisplay();
        EXPECT_EQ(content(view),
                  (Strings{"picture", "plane", "ground", "zone", "actor", "dot", "box", "step", "step",
                           "EVENT LIST", "event", "Id", "HeightA", "Speed", "foot", "foot", "FPS"}));
    }
    for (const QGraphicsItem *item : view.scene()->items()) {
        EXPECT_EQ(item->zValue(), 0);
        EXPECT_EQ(item->parentItem(), nullptr);
        EXPECT_TRUE(item->isVisible());
        EXPECT_EQ(item->opacity(), 1);
    }
}

TEST(kelViewRGBDTest, EachKeyShowsItsOverlayAlone)
{
    View view;
    setEverything(view);
    view.showNothing();
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture"}));
    const std::vector<Strings> shown = {{"plane"},
                                        {"ground"},
                                        {"zone"},
                                        {"actor"},
                                        {"dot"},
                                        {"box"},
                                        {"step", "step"},
                                        {"EVENT LIST", "event"},
                                        {"Id", "HeightA", "Speed"},
                                        {"foot", "foot"},
                                        {"FPS"}};
    for (size_t i = 0; i < overlayKeys.size(); ++i) {
        view.press(overlayKeys[i]);
        view.updateDisplay();
        Strings wanted = {"picture"};
        wanted.insert(wanted.end(), shown[i].begin(), shown[i].end());
        EXPECT_EQ(content(view), wanted);
        view.press(overlayKeys[i]);
        view.updateDisplay();
        EXPECT_EQ(content(view), (Strings{"picture"}));
    }
}

TEST(kelViewRGBDTest, OverlaysAreDrawnWithoutABackgroundToo)
{
    View view;
    view.setActors({actor(1, cv::Rect(1, 2, 3, 4))});
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"box", "EVENT LIST", "FPS"}));
}

TEST(kelViewRGBDTest, PlusAndMinusSetTheLengthOfTheTrajectories)
{
    View view;
    view.setActors({walker(1, 150)});
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 28u);
    view.press(Qt::Key_Plus);
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 33u);
    view.press({Qt::Key_Minus, Qt::Key_Minus});
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 23u);
    for (int i = 0; i < 20; ++i)
        view.press(Qt::Key_Minus);
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 0u);
    for (int i = 0; i < 30; ++i)
        view.press(Qt::Key_Plus);
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 98u);
}

TEST(kelViewRGBDTest, EachUpdateStartsFromAClearedScene)
{
    View view;
    setEverything(view);
    view.updateDisplay();
    const Strings first = content(view);
    int deleted = 0;
    view.scene()->addItem(new WitnessItem(&deleted));
    view.updateDisplay();
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(content(view), first);
}

TEST(kelViewRGBDTest, EmptyListsDrawNothing)
{
    View view;
    view.drawListOfGroundPoints();
    view.drawZones();
    view.drawActors();
    view.drawListOfPointsDEBUG();
    view.drawBlobs();
    view.drawTraj(30);
    view.drawActorInfos();
    view.drawFeet();
    EXPECT_TRUE(view.scene()->itemsBoundingRect().isEmpty());
    EXPECT_TRUE(polygons(view).empty());
    view.drawEvents();
    EXPECT_EQ(words(view), (Strings{"EVENT LIST : "}));
}

TEST(kelViewRGBDTest, NullPointersInListsAreSkipped)
{
    View view;
    const Actor person = walker(3, 3);
    std::list<cv::Point> pixels = {{3, 4}};
    person->setPixels(pixels);
    view.setAcquisitionImage(frame(16, 16));
    view.setActors({nullptr, person, nullptr});
    view.setEvents({Event(), event(3, "Fall", 0.87), Event(), event(4, "Run", 1), Event()});
    view.press({Qt::Key_A, Qt::Key_I});
    MessageCapture messages;
    view.updateDisplay();
    EXPECT_EQ(content(view),
              (Strings{"picture", "actor", "box", "step", "step", "EVENT LIST", "event", "event", "Id",
                       "HeightA", "Speed", "FPS"}));
    EXPECT_EQ(texts(view).at(1), "3 / Fall [0.870000] at 5, 30");
    EXPECT_EQ(texts(view).at(2), "4 / Run [1.000000] at 5, 52") << "no line is left free";
    EXPECT_TRUE(messages.lines().isEmpty());
}

// The ground plane.

TEST(kelViewRGBDTest, TheGroundPlaneIsAGreenPolygon)
{
    View view;
    view.setCalibrationWithDepth(camera(500, 500, 320, 240));
    view.setGroundPlaneCoef({0, 1, 0, -1500});
    view.drawGroundPlane();
    ASSERT_EQ(view.all<QGraphicsPolygonItem>().size(), 1u);
    // 320 -+ 500 * 3000 / 8000 and 240 + 500 * 1500 / 8000 farthest away.
    EXPECT_THAT(polygons(view).at(0),
                ElementsAre(QPointF(132, 334), QPointF(508, 334), QPointF(1070, 615), QPointF(-430, 615)));
    const QGraphicsPolygonItem *item = view.all<QGraphicsPolygonItem>().at(0);
    EXPECT_EQ(item->pen(), QPen(Qt::green, 2));
    EXPECT_EQ(item->brush(), QBrush(QColor(0, 255, 0, 90)));
    EXPECT_EQ(item->pos(), QPointF(0, 0));
}

TEST(kelViewRGBDTest, TheGroundPlaneTakesItsHeightsFromThePlane)
{
    const double a = 0.1, b = -2, c = 0.25, d = 1000;
    View view;
    view.setCalibrationWithDepth(camera(40000, 50000, 320, 240));
    // What follows the fourth coefficient does not count.
    view.setGroundPlaneCoef({a, b, c, d, 77, 88});
    view.drawGroundPlane();
    std::vector<QPointF> corners;
    for (const auto &[x, z] : {std::pair(-3000, 8000), {3000, 8000}, {3000, 2000}, {-3000, 2000}}) {
        const double y = (-a * x - c * z - d) / b;
        const cv::Point corner = view.convertWorld2ImageFixed(
            cv::Point3f(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)));
        corners.emplace_back(corner.x, corner.y);
    }
    EXPECT_EQ(corners[0].y(), 240 + 50000 * 1350 / 8000.0 + 0.5);
    EXPECT_THAT(polygons(view), ElementsAre(corners));
}

TEST(kelViewRGBDTest, APlaneOfFewerThanFourCoefficientsThrows)
{
    for (const size_t count : {0, 1, 2, 3}) {
        View view;
        view.setAcquisitionImage(frame(8, 8));
        view.setGroundPlaneCoef(std::vector<double>(count, 1));
        EXPECT_THROW(view.drawGroundPlane(), std::out_of_range) << count;
        EXPECT_TRUE(polygons(view).empty());
        EXPECT_NO_THROW(view.updateDisplay()) << "as long as the plane is not shown";
        view.press(Qt::Key_G);
        EXPECT_THROW(view.updateDisplay(), std::out_of_range) << count;
        view.setGroundPlaneCoef({0, 1, 0, -2});
        EXPECT_NO_THROW(view.updateDisplay());
        EXPECT_EQ(content(view), (Strings{"picture", "plane", "EVENT LIST", "FPS"}));
    }
}

TEST(kelViewRGBDTest, AVerticalPlaneDoesNoHarm)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.setGroundPlaneCoef({1, 0, 0, 0});
    view.press(Qt::Key_G);
    EXPECT_NO_THROW(view.updateDisplay());
}

// The ground points.

TEST(kelViewRGBDTest, GroundPointsAreAGoldenEnvelope)
{
    View view;
    view.setListOfGroundPoints({at(10, 0), at(5, 5), at(0, 0), at(2.5, 7), at(10, 10), at(0.4, 9.6)});
    view.drawListOfGroundPoints();
    ASSERT_EQ(view.all<QGraphicsPolygonItem>().size(), 1u);
    EXPECT_THAT(polygons(view).at(0),
                ElementsAre(QPointF(10, 0), QPointF(0, 0), QPointF(0, 10), QPointF(10, 10), QPointF(10, 0)));
    const QGraphicsPolygonItem *item = view.all<QGraphicsPolygonItem>().at(0);
    EXPECT_EQ(item->pen(), QPen(QColor(255, 215, 0, 255), 2));
    EXPECT_EQ(item->brush(), QBrush(QColor(255, 215, 0, 90)));
}

TEST(kelViewRGBDTest, TheEnvelopeIsTakenOfTheImagePoints)
{
    View view;
    view.setCalibrationWithDepth(camera(100, 100, 50, 50));
    std::list<cv::Point3f> ground;
    std::list<cv::Point> pixels;
    std::mt19937 random(3);
    std::uniform_real_distribution<float> coordinate(-2, 2);
    for (int i = 0; i < 40; ++i) {
        ground.emplace_back(coordinate(random), coordinate(random), 3 + coordinate(random));
        pixels.push_back(view.convertWorld2ImageFixed(ground.back()));
    }
    view.setListOfGroundPoints(ground);
    view.drawListOfGroundPoints();
    std::vector<QPointF> corners;
    for (const cv::Point &corner : view.computeConvexEnvelope(pixels))
        corners.emplace_back(corner.x, corner.y);
    EXPECT_GT(corners.size(), 4u);
    EXPECT_THAT(polygons(view), ElementsAre(corners));
}

namespace {

using Points = std::vector<cv::Point>;

Points envelope(const std::list<cv::Point> &points) { return kelViewRGBD().computeConvexEnvelope(points); }

/// The envelope, step by step as it is described.
Points envelopeByTheBook(std::list<cv::Point> points)
{
    if (points.empty())
        return {};
    points.sort([](const cv::Point &a, const cv::Point &b) { return a.y < b.y; });
    const cv::Point pivot = points.front();
    points.pop_front();
    const auto angle = [&pivot](const cv::Point &p) {
        return std::atan2(double(p.y) - pivot.y, double(p.x) - pivot.x);
    };
    points.sort([&angle](const cv::Point &a, const cv::Point &b) { return angle(a) > angle(b); });
    points.push_back(pivot);
    Points result = {pivot};
    for (const cv::Point &point : points) {
        result.push_back(point);
        while (result.size() >= 4) {
            const auto last = result.rbegin();
            const cv::Point2d D = last[0], B = last[1], A = last[2], C = last[3];
            const auto f = [&A, &B](const cv::Point2d &p) {
                return (B.y - A.y) * p.x + (A.x - B.x) * p.y + (B.x * A.y - A.x * B.y);
            };
            if (f(C) * f(D) > 0)
                break;
            result.erase(result.end() - 2);
        }
    }
    return result;
}

} // namespace

TEST(kelViewRGBDTest, TheEnvelopeOfASquareIsTheSquareClosed)
{
    EXPECT_THAT(
        envelope({{0, 0}, {10, 0}, {10, 10}, {0, 10}}),
        ElementsAre(cv::Point(0, 0), cv::Point(0, 10), cv::Point(10, 10), cv::Point(10, 0), cv::Point(0, 0)));
}

TEST(kelViewRGBDTest, TheEnvelopeBeginsAndEndsWithTheFirstOfTheTopmostPoints)
{
    EXPECT_THAT(envelope({{10, 10}, {10, 0}, {0, 10}, {0, 0}}),
                ElementsAre(cv::Point(10, 0), cv::Point(0, 0), cv::Point(0, 10), cv::Point(10, 10),
                            cv::Point(10, 0)));
}

TEST(kelViewRGBDTest, PointsWithinTheEnvelopeAreLeftOut)
{
    EXPECT_THAT(
        envelope({{0, 0}, {5, 5}, {10, 0}, {7, 3}, {10, 10}, {1, 8}, {0, 10}, {4, 1}}),
        ElementsAre(cv::Point(0, 0), cv::Point(0, 10), cv::Point(10, 10), cv::Point(10, 0), cv::Point(0, 0)));
}

TEST(kelViewRGBDTest, PointsOnASideAreLeftOut)
{
    EXPECT_THAT(
        envelope({{0, 0}, {20, 0}, {20, 20}, {0, 20}, {20, 10}, {10, 20}}),
        ElementsAre(cv::Point(0, 0), cv::Point(0, 20), cv::Point(20, 20), cv::Point(20, 0), cv::Point(0, 0)));
}

TEST(kelViewRGBDTest, TheEnvelopeOfFewPointsIsClosedToo)
{
    EXPECT_THAT(envelope({}), IsEmpty());
    EXPECT_THAT(envelope({{3, 4}}), ElementsAre(cv::Point(3, 4), cv::Point(3, 4)));
    EXPECT_THAT(envelope({{3, 4}, {5, 2}}), ElementsAre(cv::Point(5, 2), cv::Point(3, 4), cv::Point(5, 2)));
    EXPECT_THAT(envelope({{3, 4}, {3, 4}}), ElementsAre(cv::Point(3, 4), cv::Point(3, 4), cv::Point(3, 4)));
    EXPECT_THAT(envelope({{0, 0}, {4, 0}, {0, 4}}),
                ElementsAre(cv::Point(0, 0), cv::Point(0, 4), cv::Point(4, 0), cv::Point(0, 0)));
}

TEST(kelViewRGBDTest, PointsInARowKeepTheOneNextToThePivot)
{
    EXPECT_THAT(envelope({{0, 0}, {5, 0}, {10, 0}}),
                ElementsAre(cv::Point(0, 0), cv::Point(5, 0), cv::Point(0, 0)));
    EXPECT_THAT(envelope({{0, 30}, {0, 10}, {0, 20}}),
                ElementsAre(cv::Point(0, 10), cv::Point(0, 20), cv::Point(0, 10)));
}

TEST(kelViewRGBDTest, TheEnvelopeIsMadeStepByStepAsDescribed)
{
    std::mt19937 random(5);
    for (const int range : {1, 2, 3, 6, 20, 500, 10000000}) {
        std::uniform_int_distribution<int> coordinate(-range, range);
        for (int run = 0; run < 600; ++run) {
            std::list<cv::Point> points;
            for (int i = 0; i < run / 20; ++i)
                points.emplace_back(coordinate(random), coordinate(random));
            ASSERT_EQ(envelope(points), envelopeByTheBook(points)) << points.size() << " points of " << range;
        }
    }
}

TEST(kelViewRGBDTest, AnEnvelopeFarOutsideTheImageDoesNotOverflow)
{
    for (const int far : {100000, 1000000000, std::numeric_limits<int>::max()}) {
        const int near = far / 2;
        EXPECT_THAT(
            envelope({{-far, -far}, {near, near}, {far, -far}, {-near, near}, {far, far}, {-far, far}}),
            ElementsAre(cv::Point(-far, -far), cv::Point(-far, far), cv::Point(far, far),
                        cv::Point(far, -far), cv::Point(-far, -far)))
            << far;
    }
}

TEST(kelViewRGBDTest, AnEnvelopeFarFromTheOriginIsNoCoarser)
{
    const cv::Point far(100000000, 100000000);
    const cv::Point right = far + cv::Point(3, 0), opposite = far + cv::Point(3, 3);
    const cv::Point below = far + cv::Point(0, 3), within = far + cv::Point(2, 2);
    EXPECT_THAT(envelope({below, within, opposite, far, right}),
                ElementsAre(far, below, opposite, right, far));
}

// The zones.

TEST(kelViewRGBDTest, ZonesAreRedPolygonsOfTheirVertices)
{
    View view;
    view.setContextInfo({element("zone", "polygon", {{1, 2, 1}, {30, 2, 1}, {30, 40, 1}, {1, 40, 1}}),
                         element("zone", "polygon", {{10, 20, 2}, {7, 20, 2}, {7, 30, 2}})});
    view.drawZones();
    EXPECT_THAT(polygons(view),
                ElementsAre(ElementsAre(QPointF(1, 2), QPointF(30, 2), QPointF(30, 40), QPointF(1, 40)),
                            ElementsAre(QPointF(5, 10), QPointF(4, 10), QPointF(4, 15))));
    for (const auto *item : view.all<QGraphicsPolygonItem>()) {
        EXPECT_EQ(item->pen(), QPen(Qt::red, 2));
        EXPECT_EQ(item->brush(), QBrush(QColor(255, 0, 0, 90)));
    }
}

TEST(kelViewRGBDTest, ElementsOfAnyKindAreDrawn)
{
    const std::list<cv::Point3d> corners = {{1, 2, 1}, {3, 4, 1}, {1, 4, 1}};
    View view;
    ContextElement open = element("zone", "polygon", corners);
    open.polygonIsClosed = 0;
    ContextElement cube = element("object", "cube", {});
    cube.cubeVertices = corners;
    view.setContextInfo({open, element("object", "polygon", corners), element("wall", "polygon", corners),
                         element("lamp", "star", corners), element("", "", corners), cube,
                         element("zone", "circle", {})});
    view.drawZones();
    const std::vector<QPointF> shown = {QPointF(1, 2), QPointF(3, 4), QPointF(1, 4)};
    EXPECT_THAT(polygons(view), ElementsAre(shown, shown, shown, shown, shown))
        << "an element without vertices shows nothing";
}

TEST(kelViewRGBDTest, TheVerticesOfZonesAreNarrowedToFloat)
{
    View view;
    view.setContextInfo({element("zone", "polygon", {{16777217, 0, 1}, {0, -16777217, 1}, {0, 0, 1}})});
    view.drawZones();
    EXPECT_THAT(polygons(view),
                ElementsAre(ElementsAre(QPointF(16777216, 0), QPointF(0, -16777216), QPointF(0, 0))));
}

// The debug points.

TEST(kelViewRGBDTest, DebugPointsAreRedDots)
{
    View view;
    view.setListOfPointsDEBUG({at(1.5, 2.5), cv::Point3f(40, -60, 2)});
    view.drawListOfPointsDEBUG();
    EXPECT_THAT(lines(view), ElementsAre(QLineF(2, 2, 2, 2), QLineF(20, -30, 20, -30)));
    for (const auto *item : view.all<QGraphicsLineItem>())
        EXPECT_EQ(item->pen(), QPen(QColor(255, 0, 0, 255), 1));
}

// The boxes.

TEST(kelViewRGBDTest, TheBlobsThatAreDrawnAreTheActorsBoxes)
{
    View view;
    view.setActors({actor(17, cv::Rect(1, 2, 30, 40)), actor(4, cv::Rect(-5, 6, 7, 8)), actor(0)});
    view.drawBlobs();
    EXPECT_THAT(rectangles(view),
                ElementsAre(QRectF(1, 2, 30, 40), QRectF(-5, 6, 7, 8), QRectF(-1, -1, 0, 0)));
    const auto boxes = view.all<QGraphicsRectItem>();
    EXPECT_EQ(boxes.at(0)->pen(), QPen(Qt::magenta, 2));
    EXPECT_EQ(boxes.at(1)->pen(), QPen(Qt::blue, 2));
    EXPECT_EQ(boxes.at(2)->pen(), QPen(Qt::cyan, 2));
    for (const auto *box : boxes)
        EXPECT_EQ(box->brush(), QBrush(Qt::NoBrush));
}

// Trajectories.

TEST(kelViewRGBDTest, ATrajectoryIsWalkedFromItsNewestPoint)
{
    View view;
    view.setActors({walker(2, 4), walker(5, {{100, 200, 10}, {300, 400, 10}})});
    view.drawTraj(30);
    EXPECT_THAT(lines(view),
                ElementsAre(QLineF(4, 40, 3, 30), QLineF(3, 30, 2, 20), QLineF(2, 20, 1, 10),
                            QLineF(30, 40, 10, 20)));
    const auto steps = view.all<QGraphicsLineItem>();
    EXPECT_EQ(steps.at(0)->pen(), QPen(Qt::yellow, 2));
    EXPECT_EQ(steps.at(2)->pen(), QPen(Qt::yellow, 2));
    EXPECT_EQ(steps.at(3)->pen(), QPen(Qt::red, 2));
}

TEST(kelViewRGBDTest, ATrajectoryIsOrderedByTime)
{
    const Actor person = actor(1);
    for (const int second : {3, 1, 2}) {
        CSynchronizer stamp;
        stamp.setDateTime(QDateTime::fromMSecsSinceEpoch(1000 * second, Qt::UTC));
        stamp.setFrameNumber(static_cast<unsigned int>(10 - second));
        person->setCurrentPosition(at(second, 0));
        person->updateTrajectory(stamp);
    }
    View view;
    view.setActors({person});
    view.drawTraj(30);
    EXPECT_THAT(lines(view), ElementsAre(QLineF(3, 0, 2, 0), QLineF(2, 0, 1, 0)));
}

TEST(kelViewRGBDTest, ALengthOfNDrawsOnePointFewerThanN)
{
    const auto steps = [](int length, int n) {
        View view;
        view.setActors({walker(1, length)});
        view.drawTraj(n);
        return lines(view);
    };
    EXPECT_THAT(steps(5, 2), IsEmpty());
    EXPECT_THAT(steps(5, 3), ElementsAre(QLineF(5, 50, 4, 40)));
    EXPECT_THAT(steps(5, 4), ElementsAre(QLineF(5, 50, 4, 40), QLineF(4, 40, 3, 30)));
    EXPECT_EQ(steps(100, 30).size(), 28u);
    EXPECT_EQ(steps(30, 30).size(), 28u);
    EXPECT_EQ(steps(29, 30).size(), 28u);
    EXPECT_EQ(steps(28, 30).size(), 27u);
    EXPECT_EQ(steps(100, 30).back(), QLineF(73, 730, 72, 720));
    EXPECT_EQ(steps(7, std::numeric_limits<int>::max()).size(), 6u);
}

TEST(kelViewRGBDTest, TrajectoriesOfNoLengthAreNotDrawn)
{
    for (const int n : {1, 0, -1, -30, std::numeric_limits<int>::min()}) {
        View view;
        view.setActors({walker(1, 40)});
        view.drawTraj(n);
        EXPECT_THAT(lines(view), IsEmpty()) << n;
    }
    View view;
    view.setActors({walker(1, 0), walker(2, 1), walker(3, 2), walker(4, 0)});
    view.drawTraj(30);
    EXPECT_THAT(lines(view), ElementsAre(QLineF(2, 20, 1, 10))) << "an actor without one hides no other";
}

// Events.

TEST(kelViewRGBDTest, EventsAreListedUnderTheirHeading)
{
    View view;
    view.setEvents({event(3, "Fall", 0.87), event(12, "Sit down", 1), event(-1, "", 0.1234567)});
    view.drawEvents();
    EXPECT_EQ(texts(view),
              (Strings{"EVENT LIST :  at 3, 3", "3 / Fall [0.870000] at 5, 30",
                       "12 / Sit down [1.000000] at 5, 52", "-1 /  [0.123457] at 5, 74"}));
    for (const auto *item : view.all<QGraphicsTextItem>())
        expectFont(*item, 16, QFont::Normal, Qt::red);
}

TEST(kelViewRGBDTest, ManyEventsRunDownTheScreen)
{
    View view;
    view.setEvents(std::list<Event>(40, event(1, "a", 0)));
    view.drawEvents();
    const auto items = view.all<QGraphicsTextItem>();
    ASSERT_EQ(items.size(), 41u);
    for (size_t i = 1; i < items.size(); ++i)
        EXPECT_EQ(items[i]->pos(), QPointF(5, 30 + 22 * static_cast<int>(i - 1)));
}

TEST(kelViewRGBDTest, NamesOfEventsAreShownAsTheyAre)
{
    View view;
    view.setEvents({event(1, "<b>bold</b> &amp; %1 %d %2", 0.5), event(2, "Ch\xc3\xbbte", 0.5)});
    view.drawEvents();
    EXPECT_EQ(words(view).at(1), "1 / <b>bold</b> &amp; %1 %d %2 [0.500000]");
    EXPECT_EQ(words(view).at(2), "2 / Ch\xc3\xbbte [0.500000]");
}

TEST(kelViewRGBDTest, ConfidencesHaveSixDecimalsInAnyLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    View view;
    view.setEvents({event(1234567, "a", 1234567.5), event(1, "a", -2.0000005e-1), event(1, "a", 1e-9),
                    event(1, "a", 1e20), event(1, "a", std::numeric_limits<double>::infinity())});
    view.drawEvents();
    QLocale::setDefault(before);
    EXPECT_EQ(words(view),
              (Strings{"EVENT LIST : ", "1234567 / a [1234567.500000]", "1 / a [-0.200000]",
                       "1 / a [0.000000]", "1 / a [100000000000000000000.000000]", "1 / a [inf]"}));
}

// The labels of the actors.

TEST(kelViewRGBDTest, AnActorIsLabelledWithIdHeightAndSpeed)
{
    View view;
    view.setActors({measured(7, cv::Rect(100, 200, 50, 150), 1725.9f, 1.239),
                    measured(17, cv::Rect(300, 100, 50, 150), 1800, 0.5)});
    view.drawActorInfos();
    EXPECT_EQ(texts(view),
              (Strings{"Id    : 7 at 100, 145", "HeightA:172cm at 100, 160", "Speed : 1.23m/s at 100, 175",
                       "Id    : 17 at 300, 45", "HeightA:180cm at 300, 60", "Speed : 0.50m/s at 300, 75"}));
    const auto items = view.all<QGraphicsTextItem>();
    for (size_t i = 0; i < items.size(); ++i)
        expectFont(*items[i], 12, QFont::Bold, i < 3 ? palette[7] : palette[1]);
}

TEST(kelViewRGBDTest, IdsAreShownUnsigned)
{
    View view;
    view.setActors({actor(0), actor(2147483648u), actor(4294967295u)});
    view.drawActorInfos();
    EXPECT_EQ(words(view).at(0), "Id    : 0");
    EXPECT_EQ(words(view).at(3), "Id    : 2147483648");
    EXPECT_EQ(words(view).at(6), "Id    : 4294967295");
    expectFont(*view.all<QGraphicsTextItem>().at(6), 12, QFont::Bold, Qt::lightGray);
}

TEST(kelViewRGBDTest, HeightsAreCutToWholeCentimetres)
{
    const auto label = [](float height) {
        View view;
        view.setActors({measured(1, cv::Rect(), height, 0)});
        view.drawActorInfos();
        return words(view).at(1);
    };
    EXPECT_EQ(label(0), "HeightA:0cm");
    EXPECT_EQ(label(9.99f), "HeightA:0cm");
    EXPECT_EQ(label(10), "HeightA:1cm");
    EXPECT_EQ(label(1719.99f), "HeightA:171cm");
    EXPECT_EQ(label(1720), "HeightA:172cm");
    EXPECT_EQ(label(-9.99f), "HeightA:0cm");
    EXPECT_EQ(label(-19.99f), "HeightA:-1cm");
    EXPECT_EQ(label(-20), "HeightA:-2cm");
    EXPECT_EQ(label(12345678), "HeightA:1234567cm");
}

TEST(kelViewRGBDTest, SpeedsAreRoundedDownToTwoDecimals)
{
    const auto label = [](double speed) {
        View view;
        view.setActors({measured(1, cv::Rect(), 0, speed)});
        view.drawActorInfos();
        return words(view).at(2);
    };
    EXPECT_EQ(label(0), "Speed : 0.00m/s");
    EXPECT_EQ(label(1), "Speed : 1.00m/s");
    EXPECT_EQ(label(1.999), "Speed : 1.99m/s");
    EXPECT_EQ(label(0.29), "Speed : 0.28m/s") << "0.29 * 100 lies below 29";
    EXPECT_EQ(label(-1.231), "Speed : -1.24m/s");
    EXPECT_EQ(label(-0.001), "Speed : -0.01m/s");
    EXPECT_EQ(label(-3), "Speed : -3.00m/s");
    EXPECT_EQ(label(123456.789), "Speed : 123456.78m/s");
}

TEST(kelViewRGBDTest, LargeSpeedsAreCutAndNotRounded)
{
    // The quotient is 123456789012.339996 with six decimals.
    for (const double speed : {123456789012.345, 98765432109.87, 5e10 + 0.07, 1e15, 1e20, 1e300}) {
        View view;
        view.setActors({measured(1, cv::Rect(), 0, speed)});
        view.drawActorInfos();
        char number[512];
        std::snprintf(number, sizeof number, "%f", std::floor(speed * 100) / 100);
        std::string wanted = number;
        wanted.resize(wanted.find('.') + 3);
        EXPECT_EQ(words(view).at(2), "Speed : " + wanted + "m/s");
        if (speed == 123456789012.345) {
            EXPECT_EQ(wanted, "123456789012.33");
        }
    }
}

TEST(kelViewRGBDTest, LabelsAreTheSameInAnyLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    View view;
    view.setActors({measured(1234567, cv::Rect(), 12345678, 12345.678)});
    view.drawActorInfos();
    QLocale::setDefault(before);
    EXPECT_EQ(words(view), (Strings{"Id    : 1234567", "HeightA:1234567cm", "Speed : 12345.67m/s"}));
}

TEST(kelViewRGBDTest, SpeedsThatAreNoNumberDoNoHarm)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double speed : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        View view;
        view.setActors({measured(1, cv::Rect(), 0, speed)});
        view.drawActorInfos();
        ASSERT_EQ(words(view).size(), 3u);
        EXPECT_EQ(words(view)[2].substr(0, 8), "Speed : ");
    }
}

TEST(kelViewRGBDTest, LabelsStandAboveBelowOrBesideTheBox)
{
    // Where the label in the middle stands.
    const auto anchor = [](const cv::Rect &box) {
        View view;
        view.setActors({actor(1, box)});
        view.drawActorInfos();
        const auto items = view.all<QGraphicsTextItem>();
        EXPECT_EQ(items.size(), 3u);
        EXPECT_EQ(items.at(0)->pos(), items.at(1)->pos() - QPointF(0, 15));
        EXPECT_EQ(items.at(2)->pos(), items.at(1)->pos() + QPointF(0, 15));
        return items.at(1)->pos();
    };
    // Above, as long as there is room.
    EXPECT_EQ(anchor({100, 200, 50, 150}), QPointF(100, 160));
    EXPECT_EQ(anchor({100, 51, 50, 400}), QPointF(100, 11));
    EXPECT_EQ(anchor({630, 51, 50, 400}), QPointF(630, 11));
    // Below.
    EXPECT_EQ(anchor({100, 50, 50, 379}), QPointF(100, 444));
    EXPECT_EQ(anchor({100, 50, 50, 100}), QPointF(100, 165));
    EXPECT_EQ(anchor({100, -20, 50, 100}), QPointF(100, 95));
    EXPECT_EQ(anchor({100, 29, 50, 400}), QPointF(100, 444));
    // Beside, where there is more room.
    EXPECT_EQ(anchor({100, 50, 50, 380}), QPointF(155, 60));
    EXPECT_EQ(anchor({100, 30, 50, 400}), QPointF(155, 40));
    EXPECT_EQ(anchor({269, 0, 100, 480}), QPointF(374, 10));
    EXPECT_EQ(anchor({270, 0, 100, 480}), QPointF(130, 10));
    EXPECT_EQ(anchor({271, 0, 100, 480}), QPointF(131, 10));
    EXPECT_EQ(anchor({600, 30, 30, 410}), QPointF(460, 40));
    EXPECT_EQ(anchor({-10, -10, 10, 600}), QPointF(5, 0));
    // An actor without a box.
    EXPECT_EQ(anchor({-1, -1, 0, 0}), QPointF(-1, 14));
}

// Feet.

TEST(kelViewRGBDTest, FeetAreLighterCirclesAroundTheTwoPositions)
{
    View view;
    view.setActorsFeetPositions({{4, {at(10.5, 20), at(30, 40)}}, {0, {cv::Point3f(8, -8, 2), at(0, 0)}}});
    view.drawFeet();
    EXPECT_THAT(ellipses(view),
                ElementsAre(QRectF(-1, -9, 10, 10), QRectF(-5, -5, 10, 10), QRectF(5, 15, 10, 10),
                            QRectF(25, 35, 10, 10)));
    const auto feet = view.all<QGraphicsEllipseItem>();
    for (const auto *foot : feet) {
        EXPECT_EQ(foot->brush(), QBrush(Qt::NoBrush));
        EXPECT_EQ(foot->startAngle(), 0);
        EXPECT_EQ(foot->spanAngle(), 360 * 16);
    }
    EXPECT_EQ(feet.at(0)->pen(), QPen(QColor(Qt::magenta).lighter(150), 5)) << "one further than the actor's";
    EXPECT_EQ(feet.at(1)->pen(), feet.at(0)->pen());
    EXPECT_EQ(feet.at(2)->pen(), QPen(QColor(Qt::red).lighter(150), 5));
    EXPECT_EQ(feet.at(3)->pen(), feet.at(2)->pen());
}

TEST(kelViewRGBDTest, TheColoursOfFeetWrapAround)
{
    const auto color = [](int id) {
        View view;
        view.setActorsFeetPositions({{id, {at(1, 1), at(2, 2)}}});
        view.drawFeet();
        return view.all<QGraphicsEllipseItem>().at(0)->pen().color();
    };
    for (int id = 0; id < 15; ++id)
        EXPECT_EQ(color(id), palette[static_cast<size_t>(id) + 1].lighter(150)) << id;
    EXPECT_EQ(color(15), palette[0].lighter(150));
    EXPECT_EQ(color(16), palette[1].lighter(150));
    EXPECT_EQ(color(1000), palette[9].lighter(150));
    EXPECT_EQ(color(-1), palette[0].lighter(150));
    EXPECT_EQ(color(-2), palette[15].lighter(150));
    EXPECT_EQ(color(std::numeric_limits<int>::max()), palette[0].lighter(150));
    EXPECT_EQ(color(std::numeric_limits<int>::min()), palette[1].lighter(150));
    EXPECT_NE(color(6), palette[7]);
}

TEST(kelViewRGBDTest, PointsThatCannotBeSeenDoNoHarm)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<cv::Point3f> points = {{1e30f, 1, 1},    {1, -1e30f, 1}, {1, 1, 1e-30f},
                                             {1, infinity, 1}, {nan, 1, 1},    {-1e30f, 1e30f, 1}};
    View view;
    view.setAcquisitionImage(frame(64, 48));
    view.setListOfPointsDEBUG(std::list<cv::Point3f>(points.begin(), points.end()));
    view.setListOfGroundPoints(std::list<cv::Point3f>(points.begin(), points.end()));
    view.setActorsFeetPositions({{1, {points[0], points[1]}}, {2, {points[2], points[5]}}});
    view.setActors({walker(1, points)});
    view.press({Qt::Key_L, Qt::Key_P});
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay()->getImage().size(), cv::Size(64, 48));
    EXPECT_EQ(lines(view).size(), 6u + 5u);
    EXPECT_EQ(ellipses(view).size(), 4u);
}

// The frame rate.

TEST(kelViewRGBDTest, TheFrameRateStandsInTheUpperRightCorner)
{
    View view;
    view.drawFrameRate();
    EXPECT_EQ(texts(view), (Strings{"FPS : 0 at 565, 3"}));
    expectFont(*view.all<QGraphicsTextItem>().at(0), 12, QFont::Normal, Qt::red);
    for (const int rate : {25, -1, 1234567}) {
        view.setFrameRate(rate);
        view.drawFrameRate();
        EXPECT_EQ(texts(view).back(), "FPS : " + std::to_string(rate) + " at 565, 3");
    }
}

TEST(kelViewRGBDTest, TheFrameRateIsOnTheScreenAndNotInThePicture)
{
    View view;
    view.setAcquisitionImage(frame(640, 480));
    const cv::Mat with = view.picture();
    EXPECT_EQ(content(view).back(), "FPS");
    EXPECT_NE(differentBytes(with, rendered(*view.scene())), 0) << "it can be seen on the screen";
    view.press(Qt::Key_W);
    const cv::Mat without = view.picture();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST"}));
    EXPECT_EQ(differentBytes(with, without), 0);
    EXPECT_EQ(differentBytes(without, rendered(*view.scene())), 0);
}

// The display image.

TEST(kelViewRGBDTest, TheDisplayHoldsTheSceneInBlueGreenRedAnd255)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_Z, Qt::Key_A, Qt::Key_I, Qt::Key_G, Qt::Key_L, Qt::Key_P, Qt::Key_W});
    const cv::Mat picture = view.picture();
    EXPECT_EQ(picture.rows, 480);
    EXPECT_EQ(picture.cols, 640);
    EXPECT_EQ(picture.type(), CV_8UC4);
    EXPECT_EQ(differentBytes(picture, rendered(*view.scene())), 0);
    EXPECT_EQ(picture.at<cv::Vec4b>(200, 10), cv::Vec4b(10, 20, 30, 255));
    EXPECT_EQ(picture.at<cv::Vec4b>(250, 280), cv::Vec4b(0, 255, 0, 255)) << "the box of the actor";
    for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(picture))
        ASSERT_EQ(bgra[3], 255);
}

TEST(kelViewRGBDTest, TheDisplayShowsDepthWhenTheScreenDoes)
{
    View view;
    setEverything(view);
    view.showNothing();
    view.press(Qt::Key_D);
    const cv::Mat picture = view.picture();
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 0), black);
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 639), cv::Vec4b(255, 255, 255, 255));
}

TEST(kelViewRGBDTest, BeforeThereWasABackgroundTheDisplayIsMadeAndStaysEmpty)
{
    View view;
    setEverything(view);
    view.d().acquisitionImage.reset();
    MessageCapture messages;
    view.updateDisplay();
    ASSERT_FALSE(view.getDisplay().isNull());
    EXPECT_TRUE(view.getDisplay()->getImage().empty());
    EXPECT_EQ(view.getDisplay()->identifier(), "kelDataImage");
    view.updateDisplay();
    EXPECT_TRUE(view.getDisplay()->getImage().empty());
    EXPECT_TRUE(messages.lines().isEmpty());
    view.setAcquisitionImage(frame(6, 4));
    EXPECT_EQ(view.picture().size(), cv::Size(6, 4));
}

TEST(kelViewRGBDTest, AFrameWithoutABackgroundIsBlackBehindItsOverlays)
{
    View view;
    view.showNothing();
    const Image color = frame(64, 48, cv::Scalar(200, 201, 202));
    view.setAcquisitionImage(color);
    view.updateDisplay();
    color->setImage(cv::Mat());
    for (int run = 0; run < 20; ++run) {
        // What was freed last is what the next picture may find.
        std::vector<std::unique_ptr<cv::Mat>> garbage;
        for (int i = 0; i < 4; ++i)
            garbage.push_back(std::make_unique<cv::Mat>(48, 64, CV_8UC4, cv::Scalar::all(0x5a)));
        garbage.clear();
        const cv::Mat &picture = view.picture();
        ASSERT_EQ(picture.size(), cv::Size(64, 48));
        ASSERT_EQ(pixelsOtherThan(black, picture), 0) << run;
    }
    view.setActors({actor(1, cv::Rect(10, 10, 20, 20))});
    view.press(Qt::Key_B);
    const cv::Mat &picture = view.picture();
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 15), cv::Vec4b(255, 0, 255, 255));
    EXPECT_EQ(picture.at<cv::Vec4b>(20, 20), black);
}

TEST(kelViewRGBDTest, TheSceneIsRenderedToWholePixelsKeepingItsAspectRatio)
{
    View view;
    view.showNothing();
    view.press(Qt::Key_B);
    const Image color = frame(64, 48);
    view.setAcquisitionImage(color);
    view.updateDisplay();
    color->setImage(cv::Mat());
    view.setActors({actor(1, cv::Rect(2, 2, 4, 4)), actor(3, cv::Rect(5, 8, 9, 6))});
    for (const QRectF &rect : {QRectF(0, 0, 10.4, 20.6), QRectF(0, 0, 10.5, 19.5), QRectF(1.6, 0, 0.5, 12),
                               QRectF(-3, -4, 20.5, 7.5), QRectF(0, 0, 12, 7)}) {
        view.scene()->setSceneRect(rect);
        const cv::Mat &picture = view.picture();
        EXPECT_EQ(picture.size(), cv::Size(qRound(rect.width()), qRound(rect.height())));
        EXPECT_EQ(differentBytes(picture, rendered(*view.scene())), 0);
        EXPECT_GT(pixelsOtherThan(black, picture), 0);
    }
}

TEST(kelViewRGBDTest, TheDisplayObjectStaysTheSame)
{
    View view;
    const Image own(new kelDataImage);
    view.getDisplay() = own;
    view.setAcquisitionImage(frame(6, 4));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay(), own);
    EXPECT_EQ(own->getImage().size(), cv::Size(6, 4));
    view.setAcquisitionImage(frame(8, 8));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay(), own);
    EXPECT_EQ(own->getImage().size(), cv::Size(8, 8));
    view.getDisplay().reset();
    view.updateDisplay();
    ASSERT_FALSE(view.getDisplay().isNull());
    EXPECT_NE(view.getDisplay(), own);
}

TEST(kelViewRGBDTest, AnOldPictureIsUnaffectedByTheNextUpdate)
{
    View view;
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(1, 2, 3)));
    const cv::Mat old = view.picture();
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(4, 5, 6)));
    EXPECT_NE(view.picture().data, old.data);
    EXPECT_EQ(old.at<cv::Vec4b>(3, 5), cv::Vec4b(1, 2, 3, 255));
}

TEST(kelViewRGBDTest, ThePictureOutlivesTheView)
{
    auto view = std::make_unique<View>();
    view->setAcquisitionImage(frame(64, 48, cv::Scalar(1, 2, 3)));
    view->updateDisplay();
    const Image display = view->getDisplay();
    ASSERT_NE(display->getImage().u, nullptr) << "the matrix owns its pixels";
    view.reset();
    EXPECT_EQ(display->getImage().at<cv::Vec4b>(47, 63), cv::Vec4b(1, 2, 3, 255));
}

// Masks, blobs and physical objects.

TEST(kelViewRGBDTest, AMaskIsShownAsInThePlainView)
{
    View view;
    view.setSegmentationImage(image((cv::Mat_<uchar>(2, 4) << 255, 254, 0, 1, 0, 255, 128, 255)));
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(0)->pixmap().isNull()) << "the upper one is the mask's";
    const QImage shown =
        view.all<QGraphicsPixmapItem>().at(1)->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(shown.size(), QSize(4, 2));
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(shown.pixel(i % 4, i / 4), i == 0 || i == 5 || i == 7 ? 0xff000000 : 0u) << i;
    view.setSegmentationImage(Image());
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(1)->isVisible()) << "a null pointer changes nothing";
    view.setSegmentationImage(Image(new kelDataImage));
    EXPECT_FALSE(view.all<QGraphicsPixmapItem>().at(1)->isVisible());
    view.setSegmentationImage(image(cv::Mat(2, 8, CV_8UC1, cv::Scalar(255))));
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(1)->isVisible());
    EXPECT_EQ(view.all<QGraphicsPixmapItem>().at(1)->pixmap().size(), QSize(8, 2));
}

TEST(kelViewRGBDTest, AMaskWhoseWidthIsNoMultipleOfFourIsShearedAsInThePlainView)
{
    View view;
    // Rows are taken to start at bytes 0, 8 and 16; the mask ends at byte 9.
    view.setSegmentationImage(image((cv::Mat_<uchar>(2, 5) << 255, 0, 0, 0, 0, 0, 0, 0, 255, 0)));
    const QImage shown =
        view.all<QGraphicsPixmapItem>().at(1)->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(shown.pixel(0, 0), 0xff000000);
    EXPECT_EQ(shown.pixel(0, 1), 0xff000000) << "byte 8";
    EXPECT_EQ(shown.pixel(3, 1), 0u);
}

TEST(kelViewRGBDTest, BlobsAndPhysicalObjectsAreShownAsInThePlainView)
{
    View view;
    view.setBlobs({blob(1, 2, 30, 40), Blob(), blob(-5, 6, 7, 8)});
    view.setPhysicalObjects({PhysicalObject(), physicalObject(3, 4, 5, 6)});
    EXPECT_THAT(rectangles(view, Qt::magenta), ElementsAre(QRectF(1, 2, 30, 40), QRectF(-5, 6, 7, 8)));
    EXPECT_THAT(rectangles(view, Qt::cyan), ElementsAre(QRectF(3, 4, 5, 6)));
    EXPECT_EQ(content(view), (Strings{"picture", "picture", "box", "box", "box"}));
    for (const auto *box : view.all<QGraphicsRectItem>())
        EXPECT_EQ(box->brush(), QBrush(Qt::NoBrush));
    view.setBlobs({blob(7, 7, 7, 7)});
    EXPECT_THAT(rectangles(view, Qt::magenta), ElementsAre(QRectF(7, 7, 7, 7)));
    EXPECT_THAT(rectangles(view, Qt::cyan), ElementsAre(QRectF(3, 4, 5, 6)));
    view.setPhysicalObjects({});
    EXPECT_THAT(rectangles(view), ElementsAre(QRectF(7, 7, 7, 7)));
    view.setBlobs({});
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
}

TEST(kelViewRGBDTest, RemovedRectanglesAreDeleted)
{
    View view;
    int deleted = 0;
    for (const bool updated : {false, true}) {
        view.setBlobs({blob(1, 1, 4, 4)});
        // A child dies with its rectangle.
        (new WitnessItem(&deleted))->setParentItem(view.all<QGraphicsRectItem>().at(0));
        deleted = 0;
        view.setPhysicalObjects({});
        EXPECT_EQ(deleted, 0);
        if (updated)
            view.updateDisplay();
        else
            view.setBlobs({});
        EXPECT_EQ(deleted, 1);
    }
}

TEST(kelViewRGBDTest, MasksBlobsAndObjectsLastUntilTheNextUpdate)
{
    const Image mask = image(cv::Mat(4, 4, CV_8UC1, cv::Scalar(255)));
    View view;
    for (int i = 0; i < 3; ++i) {
        view.setSegmentationImage(mask);
        view.setBlobs({blob(1, 2, 3, 4), blob(5, 6, 7, 8)});
        view.setPhysicalObjects({physicalObject(9, 9, 9, 9)});
        EXPECT_EQ(rectangles(view, Qt::magenta).size(), 2u);
        EXPECT_EQ(rectangles(view, Qt::cyan).size(), 1u);
        EXPECT_EQ(view.all<QGraphicsPixmapItem>().back()->pixmap().size(), QSize(4, 4));
        if (i == 1)
            view.press(Qt::Key_Escape); // The prompt clears the scene too.
        view.updateDisplay();
        EXPECT_EQ(content(view), i == 1 ? (Strings{"PRESS", "FPS"}) : (Strings{"EVENT LIST", "FPS"}));
        if (i == 1)
            view.press(Qt::Key_Escape);
    }
    view.setBlobs({});
    view.setPhysicalObjects({});
    view.setSegmentationImage(Image(new kelDataImage));
    view.setSegmentationImage(Image());
    for (const auto *item : view.all<QGraphicsPixmapItem>())
        EXPECT_FALSE(item->isVisible() && !item->pixmap().isNull());
    EXPECT_THAT(rectangles(view), IsEmpty());
    EXPECT_EQ(words(view), (Strings{"EVENT LIST : ", "FPS : 0"}));
}

TEST(kelViewRGBDTest, MasksBlobsAndObjectsWorkAgainAfterAnUpdate)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.setSegmentationImage(image(cv::Mat(4, 4, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(1, 2, 3, 4)});
    view.setPhysicalObjects({physicalObject(5, 6, 7, 8)});
    view.updateDisplay();
    view.setSegmentationImage(image(cv::Mat(2, 8, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    view.setSegmentationImage(image(cv::Mat(3, 8, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(3, 3, 3, 3)});
    view.setPhysicalObjects({physicalObject(4, 4, 4, 4)});
    EXPECT_THAT(content(view), UnorderedElementsAre("picture", "EVENT LIST", "FPS", "picture", "box", "box"));
    EXPECT_THAT(rectangles(view, Qt::magenta), ElementsAre(QRectF(3, 3, 3, 3)));
    EXPECT_THAT(rectangles(view, Qt::cyan), ElementsAre(QRectF(4, 4, 4, 4)));
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 8, 8));
    const cv::Mat shown = rendered(*view.scene());
    EXPECT_EQ(shown.at<cv::Vec4b>(1, 7), black) << "the mask, above the frame";
    EXPECT_EQ(shown.at<cv::Vec4b>(3, 3), cv::Vec4b(255, 0, 255, 255)) << "the blob";
    EXPECT_EQ(shown.at<cv::Vec4b>(7, 7), cv::Vec4b(255, 255, 0, 255)) << "the object, above the blob";
}

TEST(kelViewRGBDTest, TheSceneTellsItsItemsAsTheyLie)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.updateDisplay();
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    const auto upwards = [&view] { return view.scene()->items(Qt::AscendingOrder); };
    const auto downwards = [&view] {
        QList<QGraphicsItem *> items = view.scene()->items(); // the topmost first
        std::reverse(items.begin(), items.end());
        return items;
    };
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS", "box", "box"}));
    EXPECT_EQ(downwards(), upwards());
    view.setBlobs({blob(3, 3, 3, 3)});
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS", "box", "box"}));
    EXPECT_EQ(rectangles(view), (std::vector<QRectF>{QRectF(2, 2, 2, 2), QRectF(3, 3, 3, 3)}));
    EXPECT_EQ(downwards(), upwards());
}

// The pixels of the actors.

namespace {

std::list<cv::Point> disc(const cv::Point &center, int radius)
{
    std::list<cv::Point> result;
    for (int y = -radius; y <= radius; ++y)
        for (int x = -radius; x <= radius; ++x)
            if (x * x + y * y <= radius * radius)
                result.emplace_back(center.x + x, center.y + y);
    return result;
}

std::list<cv::Point> scattered(int count, int range, unsigned int seed)
{
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> coordinate(-5, range);
    std::list<cv::Point> result;
    while (static_cast<int>(result.size()) < count)
        result.emplace_back(coordinate(random), coordinate(random));
    return result;
}

/// Actors whose pixels overlap one another and their own, occur twice, or lie just outside.
Actors crowd(int width, int height)
{
    std::list<cv::Point> twice = disc({width / 3, height / 2}, 4);
    twice.insert(twice.end(), twice.begin(), twice.end());
    return {withPixels(0, disc({width / 2, height / 2}, 8)),
            withPixels(5, scattered(60, width, 1)),
            withPixels(18, twice),
            withPixels(3, disc({width / 2 + 6, height / 2 + 3}, 7)),
            withPixels(7, {{-1, -1}, {-2, 5}, {5, -2}, {width - 1, height - 1}, {width, 3}, {3, height}}),
            withPixels(9, {}),
            withPixels(12, scattered(60, width, 2))};
}

/// The same, and one some of whose pixels lie far out.
Actors crowdAndFarOut(int width, int height)
{
    Actors actors = crowd(width, height);
    actors.push_back(withPixels(6, {{1000000, 10}, {10, -1000000}, {20, 20}, {-900000, 900000}, {21, 20}}));
    return actors;
}

/// A view that shows nothing but a frame and the pixels of actors, and beside it a scene that holds the same
/// frame and a plain ellipse for each pixel.
class Compared
{
public:
    Compared(const Actors &actors, int width = 80, int height = 60)
    {
        cv::Mat pixels(height, width, CV_8UC3);
        cv::RNG(11).fill(pixels, cv::RNG::UNIFORM, 0, 256);
        view.setAcquisitionImage(image(pixels));
        view.showNothing();
        view.press(Qt::Key_A);
        view.setActors(actors);
        view.updateDisplay();

        plain.addPixmap(view.all<QGraphicsPixmapItem>().at(0)->pixmap());
        plain.setSceneRect(0, 0, width, height);
        addEllipses(plain, actors);
        bare.addPixmap(view.all<QGraphicsPixmapItem>().at(0)->pixmap());
        bare.setSceneRect(0, 0, width, height);
        plainView.setScene(&plain);
        bareView.setScene(&bare);
        for (QGraphicsView *each : {&plainView, &bareView})
            each->setRenderHint(QPainter::Antialiasing);
    }

    static void addEllipses(QGraphicsScene &scene, const Actors &actors)
    {
        for (const auto &actor : actors) {
            std::list<cv::Point> pixels;
            actor->getPixels(pixels);
            for (const cv::Point &pixel : pixels)
                scene.addEllipse(pixel.x, pixel.y, 2, 2, QPen(palette[actor->getIdent() % 16], 1));
        }
    }

    /// The pictures that `paint` makes of the two scenes are the same, and show something.
    void expectSame(const char *what, const std::function<QImage(QGraphicsScene &)> &paint)
    {
        const QImage wanted = paint(plain);
        EXPECT_EQ(differences(paint(*view.scene()), wanted), 0) << what;
        EXPECT_GT(differences(paint(bare), wanted), 20) << what << ": hardly anything to compare";
    }

    /// The same for a part of the widgets, prepared by `prepare`.
    void expectSameOnScreen(const char *what, const std::function<void(QGraphicsView &)> &prepare,
                            const QRect &part = QRect(0, 0, -1, -1))
    {
        std::vector<QImage> shown;
        for (QGraphicsView *each : {view.graphicsView(), &plainView, &bareView}) {
            each->resetTransform();
            each->resize(100, 70);
            each->show();
            each->centerOn(each->sceneRect().center());
            prepare(*each);
            shown.push_back(each->viewport()->grab(part).toImage().convertToFormat(QImage::Format_RGB32));
        }
        EXPECT_EQ(differences(shown[0], shown[1]), 0) << what;
        EXPECT_GT(differences(shown[2], shown[1]), 20) << what << ": hardly anything to compare";
    }

    /// The pixels in which two pictures differ; -1 when they are not of the same size.
    static int differences(const QImage &a, const QImage &b)
    {
        if (a.size() != b.size())
            return -1;
        const QImage left = a.convertToFormat(QImage::Format_ARGB32);
        const QImage right = b.convertToFormat(QImage::Format_ARGB32);
        int count = 0;
        for (int y = 0; y < left.height(); ++y)
            for (int x = 0; x < left.width(); ++x)
                count += left.pixel(x, y) != right.pixel(x, y);
        return count;
    }

    View view;
    QGraphicsScene plain, bare;
    QGraphicsView plainView, bareView;
};

/// Paints the scene and a margin around it through a transformation.
QImage painted(
    QGraphicsScene &scene, const QTransform &transform, bool antialiased,
    QImage::Format format = QImage::Format_RGB32,
    const std::function<void(QPainter &)> &prepare = [](QPainter &) {})
{
    QImage picture(200, 160, format);
    picture.fill(Qt::gray);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing, antialiased);
    prepare(painter);
    painter.setTransform(transform, true);
    const QRectF part = scene.sceneRect().adjusted(-30, -30, 30, 30);
    scene.render(&painter, part, part);
    painter.end();
    return picture;
}

} // namespace

TEST(kelViewRGBDTest, APixelOfAnActorIsASmallCircleOfItsColour)
{
    View view;
    view.showNothing();
    view.press(Qt::Key_A);
    view.setAcquisitionImage(frame(16, 16));
    view.setActors({withPixels(17, {{5, 6}})});
    const cv::Mat &picture = view.picture();
    QImage wanted(16, 16, QImage::Format_RGB32);
    wanted.fill(QColor(30, 20, 10));
    QPainter painter(&wanted);
    painter.setPen(QPen(Qt::magenta, 1));
    painter.drawEllipse(5, 6, 2, 2);
    painter.end();
    const cv::Mat expected(16, 16, CV_8UC4, wanted.bits(), static_cast<size_t>(wanted.bytesPerLine()));
    EXPECT_EQ(differentBytes(picture, expected), 0);
    EXPECT_GT(pixelsOtherThan(cv::Vec4b(10, 20, 30, 255), picture), 0);
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameInTheDisplayAsPlainEllipses)
{
    for (const auto &[width, height] : {std::pair(80, 60), {64, 48}, {33, 31}}) {
        Compared compared(crowdAndFarOut(width, height), width, height);
        const cv::Mat &picture = compared.view.getDisplay()->getImage();
        EXPECT_EQ(differentBytes(picture, rendered(compared.plain)), 0);
        EXPECT_GT(differentBytes(picture, rendered(compared.bare)), 100);
    }
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameInTheDisplayOfAnyPartOfTheScene)
{
    View view;
    view.showNothing();
    view.press(Qt::Key_A);
    const Actors actors = crowdAndFarOut(80, 60);
    view.setActors(actors);
    const Image color = frame(80, 60);
    view.setAcquisitionImage(color);
    view.updateDisplay();
    color->setImage(cv::Mat());
    QGraphicsScene plain;
    Compared::addEllipses(plain, actors);
    for (const QRectF &rect :
         {QRectF(0, 0, 80, 60), QRectF(-3, -4, 50, 40), QRectF(20, 20, 40, 30), QRectF(0.5, 0.25, 70, 50),
          QRectF(7, 3, 61, 43), QRectF(10.4, 20.6, 40.4, 30.6)}) {
        view.scene()->setSceneRect(rect);
        plain.setSceneRect(rect);
        const cv::Mat &picture = view.picture();
        EXPECT_EQ(differentBytes(picture, rendered(plain)), 0) << rect.x() << ", " << rect.y();
        EXPECT_GT(pixelsOtherThan(black, picture), 100);
    }
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameOnTheScreenAsPlainEllipses)
{
    Compared compared(crowdAndFarOut(80, 60));
    compared.expectSameOnScreen("as it is", [](QGraphicsView &) {});
    for (const double scale : {0.1, 0.5, 0.99, 1.37, 2.0, 3.0, 7.3})
        compared.expectSameOnScreen("scaled", [scale](QGraphicsView &view) { view.scale(scale, scale); });
    for (const double angle : {3.0, 45.0, 90.0, 180.0, 200.0})
        compared.expectSameOnScreen("rotated", [angle](QGraphicsView &view) { view.rotate(angle); });
    compared.expectSameOnScreen("sheared", [](QGraphicsView &view) { view.shear(0.3, 0.1); });
    compared.expectSameOnScreen("mirrored", [](QGraphicsView &view) { view.scale(-1, 1); });
    compared.expectSameOnScreen("stretched", [](QGraphicsView &view) { view.scale(3, 1); });
    compared.expectSameOnScreen(
        "off the grid", [](QGraphicsView &view) { view.setTransform(QTransform(1, 0, 0, 1, 0.5, 0.25)); });
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameInPerspective)
{
    Compared compared(crowd(80, 60));
    compared.expectSameOnScreen("in perspective", [](QGraphicsView &view) {
        view.setTransform(QTransform(1, 0, 0.002, 0, 1, 0.001, 0, 0, 1));
    });
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameWhereTheSceneIsScrolled)
{
    const std::list<cv::Point> wide = scattered(6000, 800, 4);
    Actors actors = crowd(800, 600);
    actors.push_back(withPixels(2, wide));
    Compared compared(actors, 800, 600);
    for (const auto &[x, y] : {std::pair(0, 0), {1, 1}, {350, 270}, {99, 431}, {10000, 10000}})
        compared.expectSameOnScreen("scrolled", [x = x, y = y](QGraphicsView &view) {
            view.resize(150, 120);
            view.horizontalScrollBar()->setValue(x);
            view.verticalScrollBar()->setValue(y);
        });
    compared.expectSameOnScreen("scaled and scrolled", [](QGraphicsView &view) {
        view.scale(1.7, 1.7);
        view.horizontalScrollBar()->setValue(631);
        view.verticalScrollBar()->setValue(433);
    });
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameWhereTheyArePartlyExposed)
{
    Compared compared(crowdAndFarOut(80, 60));
    const auto asItIs = [](QGraphicsView &) {};
    const auto twice = [](QGraphicsView &view) { view.scale(2, 2); };
    for (const QRect &part :
         {QRect(40, 25, 20, 13), QRect(33, 31, 60, 11), QRect(45, 0, 17, 66), QRect(50, 30, 7, 7)}) {
        compared.expectSameOnScreen("a part", asItIs, part);
        compared.expectSameOnScreen("a part, scaled", twice, part);
    }
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameWhateverPaintsThem)
{
    const QTransform transforms[] = {QTransform(),
                                     QTransform::fromTranslate(20, 30),
                                     QTransform::fromTranslate(0.5, 0.5),
                                     QTransform::fromTranslate(30.5, 30),
                                     QTransform::fromTranslate(30, 30.5),
                                     QTransform::fromTranslate(10.3, 7.7),
                                     QTransform::fromScale(2, 2),
                                     QTransform::fromScale(0.5, 0.5),
                                     QTransform::fromScale(1.001, 1),
                                     QTransform::fromScale(-1, 1).translate(-90, 0),
                                     QTransform().translate(90, 5).rotate(90),
                                     QTransform().translate(60, 5).rotate(30),
                                     QTransform().shear(0.2, 0.1)};
    Compared compared(crowdAndFarOut(80, 60));
    for (const bool antialiased : {false, true})
        for (const QTransform &transform : transforms)
            compared.expectSame(antialiased ? "antialiased" : "plain", [&](QGraphicsScene &scene) {
                return painted(scene, transform, antialiased);
            });
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameOnWhateverTheyArePainted)
{
    Compared compared(crowd(80, 60));
    for (const QImage::Format format :
         {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB16,
          QImage::Format_RGB888, QImage::Format_Grayscale8})
        for (const bool antialiased : {false, true})
            compared.expectSame("format", [&](QGraphicsScene &scene) {
                return painted(scene, QTransform(), antialiased, format);
            });
    for (const double ratio : {1.5, 2.0})
        for (const bool antialiased : {false, true})
            compared.expectSame("high resolution", [&](QGraphicsScene &scene) {
                QImage picture(200, 160, QImage::Format_RGB32);
                picture.setDevicePixelRatio(ratio);
                picture.fill(Qt::gray);
                QPainter painter(&picture);
                painter.setRenderHint(QPainter::Antialiasing, antialiased);
                scene.render(&painter, scene.sceneRect(), scene.sceneRect());
                painter.end();
                return picture;
            });
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameInAnyCompositionMode)
{
    Compared compared(crowd(80, 60));
    for (const auto mode : {QPainter::CompositionMode_Difference, QPainter::CompositionMode_Plus,
                            QPainter::CompositionMode_Multiply, QPainter::CompositionMode_SourceOut})
        for (const bool antialiased : {false, true})
            compared.expectSame("mode", [&](QGraphicsScene &scene) {
                return painted(scene, QTransform(), antialiased, QImage::Format_RGB32,
                               [mode](QPainter &painter) { painter.setCompositionMode(mode); });
            });
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameWithinAClip)
{
    Compared compared(crowdAndFarOut(80, 60));
    for (const bool antialiased : {false, true}) {
        compared.expectSame("rectangle", [&](QGraphicsScene &scene) {
            return painted(scene, QTransform(), antialiased, QImage::Format_RGB32,
                           [](QPainter &painter) { painter.setClipRect(33, 21, 17, 23); });
        });
        compared.expectSame("circle", [&](QGraphicsScene &scene) {
            return painted(scene, QTransform(), antialiased, QImage::Format_RGB32, [](QPainter &painter) {
                QPainterPath circle;
                circle.addEllipse(20, 10, 47, 41);
                painter.setClipPath(circle);
            });
        });
    }
}

TEST(kelViewRGBDTest, ThePixelsOfActorsAreTheSameRecordedAndPlayedLarger)
{
    Compared compared(crowd(80, 60));
    compared.expectSame("recorded", [](QGraphicsScene &scene) {
        QPicture record;
        QPainter recorder(&record);
        scene.render(&recorder, scene.sceneRect(), scene.sceneRect());
        recorder.end();
        QImage picture(300, 250, QImage::Format_RGB32);
        picture.fill(Qt::gray);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(3, 3);
        painter.drawPicture(0, 0, record);
        painter.end();
        return picture;
    });
}

TEST(kelViewRGBDTest, PixelsOnTheEdgeOfWhatCanBeCountedDoNoHarm)
{
    const int greatest = std::numeric_limits<int>::max();
    const int least = std::numeric_limits<int>::min();
    Actors actors = {
        withPixels(1, {{greatest, 5}, {least, 7}, {9, greatest}, {11, least}, {greatest, least}}),
        withPixels(2, disc({30, 30}, 6))};
    // Neighbours of the pixels that cannot be seen, in one actor.
    std::list<cv::Point> mixed = disc({50, 20}, 5);
    mixed.emplace_back(greatest, least);
    actors.push_back(withPixels(5, mixed));
    Compared compared(actors);
    EXPECT_EQ(differentBytes(compared.view.getDisplay()->getImage(), rendered(compared.plain)), 0);
    compared.expectSameOnScreen("as it is", [](QGraphicsView &) {});
}

TEST(kelViewRGBDTest, TheLaterActorCoversTheEarlier)
{
    View view;
    view.showNothing();
    view.press(Qt::Key_A);
    view.setAcquisitionImage(frame(32, 32));
    const Actor first = withPixels(4, disc({12, 12}, 6));
    const Actor second = withPixels(5, disc({16, 12}, 6));
    view.setActors({first, second});
    EXPECT_EQ(view.picture().at<cv::Vec4b>(12, 14), cv::Vec4b(0, 0, 255, 255));
    view.setActors({second, first});
    EXPECT_EQ(view.picture().at<cv::Vec4b>(12, 14), cv::Vec4b(255, 0, 0, 255));
}

TEST(kelViewRGBDTest, ThePixelsOfActorsTakeThePlaceOfPlainEllipses)
{
    for (const Actors &actors : {Actors{withPixels(1, {{3, 4}})}, Actors{withPixels(1, disc({50, -20}, 9))},
                                 Actors{withPixels(1, {{-7, 300}, {40, 2}}), withPixels(2, {{9, 9}})}}) {
        View view;
        view.setActors(actors);
        view.drawActors();
        QGraphicsScene plain;
        Compared::addEllipses(plain, actors);
        EXPECT_EQ(view.scene()->itemsBoundingRect(), plain.itemsBoundingRect());
    }
}

TEST(kelViewRGBDTest, WhatIsShownOfActorsOutlivesThem)
{
    View view;
    view.showNothing();
    view.press(Qt::Key_A);
    view.setAcquisitionImage(frame(32, 32));
    Actor person = withPixels(4, disc({12, 12}, 6));
    view.setActors({person});
    const cv::Mat picture = view.picture();
    std::list<cv::Point> others = {{1, 1}};
    person->setPixels(others);
    EXPECT_EQ(differentBytes(rendered(*view.scene()), picture), 0) << "until the next update";
    view.setActors({});
    const QWeakPointer<kelDataActor> watched(person);
    person.reset();
    EXPECT_TRUE(watched.isNull());
    EXPECT_EQ(differentBytes(rendered(*view.scene()), picture), 0);
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture"}));
}

TEST(kelViewRGBDTest, VoxelsAreNotDrawn)
{
    View view;
    const Actor person = actor(1);
    std::list<cv::Point3f> voxels = {at(3, 4), at(5, 6)};
    person->setVoxels(voxels);
    view.setActors({person});
    view.drawActors();
    EXPECT_TRUE(view.scene()->itemsBoundingRect().isEmpty());
    std::list<cv::Point3f> kept;
    person->getVoxels(kept);
    EXPECT_EQ(kept.size(), 2u);
}

// Lifetime.

TEST(kelViewRGBDTest, TheViewDeletesItsSceneAndItsWidget)
{
    int deleted = 0;
    nubAbstractView *view = createkelViewRGBD();
    const QPointer<QWidget> widget = view->widget();
    const QPointer<QGraphicsScene> shown = static_cast<QGraphicsView *>(view->widget())->scene();
    shown->addItem(new WitnessItem(&deleted));
    delete view;
    EXPECT_TRUE(widget.isNull());
    EXPECT_TRUE(shown.isNull());
    EXPECT_EQ(deleted, 1);
}

TEST(kelViewRGBDTest, TheWidgetLeavesAParentThatLivesLonger)
{
    QWidget window;
    {
        View view;
        view.widget()->setParent(&window);
        EXPECT_EQ(window.children().size(), 1);
    }
    EXPECT_TRUE(window.children().isEmpty());
}

TEST(kelViewRGBDTest, AParentWidgetMayDeleteTheWidgetFirst)
{
    MessageCapture messages;
    View view;
    setEverything(view);
    view.press({Qt::Key_A, Qt::Key_G, Qt::Key_Z});
    auto *window = new QWidget;
    view.widget()->setParent(window);
    view.updateDisplay();
    delete window;
    EXPECT_EQ(view.widget(), nullptr);
    view.setSegmentationImage(image(cv::Mat(4, 4, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(1, 2, 3)));
    EXPECT_EQ(view.picture().size(), cv::Size(6, 4));
    view.d().scene.showDepth = true;
    EXPECT_EQ(view.picture().size(), cv::Size(640, 480));
    view.d().scene.displayEnabled = false;
    view.updateDisplay();
    EXPECT_EQ(view.d().scene.items().size(), 2);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelViewRGBDTest, ALongRunLeavesNoItemsBehind)
{
    View view;
    setEverything(view);
    view.setAcquisitionImage(frame(16, 16));
    view.setAcquisitionDepth(depthFrame(16, 16));
    for (int i = 0; i < 100; ++i) {
        view.setSegmentationImage(image(cv::Mat(16, 16, CV_8UC1, cv::Scalar(255))));
        view.setBlobs({blob(1, 1, 4, 4)});
        view.setPhysicalObjects({physicalObject(3, 3, 4, 4)});
        for (const int key : overlayKeys)
            if ((i * 7 + key) % 3)
                view.press(key);
        if (i % 5 == 0)
            view.press(Qt::Key_D);
        view.updateDisplay();
        EXPECT_LE(content(view).size(), 17u);
    }
}

TEST(kelViewRGBDTest, NothingIsSaidWhateverIsShown)
{
    const LogLevel level(0);
    MessageCapture messages;
    OutputCapture output;
    {
        kelViewRGBD view;
        auto *scene = static_cast<MyQGraphicsScene *>(static_cast<QGraphicsView *>(view.widget())->scene());
        view.updateDisplay();
        view.setAcquisitionImage(Image());
        view.setAcquisitionDepth(Image(new kelDataImage));
        scene->showDepth = true;
        view.updateDisplay();
        view.setAcquisitionImage(frame(16, 16));
        view.setAcquisitionDepth(depthFrame(16, 16));
        view.setGroundPlaneCoef({0, 1, 0, -1});
        view.setActors({walker(1, 3), nullptr});
        view.setEvents({event(1, "a", 1), Event()});
        view.setActorsFeetPositions({{1, {at(1, 1), at(2, 2)}}});
        for (bool MyQGraphicsScene::*on :
             {&MyQGraphicsScene::showZones, &MyQGraphicsScene::showGroundPlane, &MyQGraphicsScene::showDepth,
              &MyQGraphicsScene::showActors, &MyQGraphicsScene::showActorInfos,
              &MyQGraphicsScene::showPointsDEBUG, &MyQGraphicsScene::showGroundPoints})
            scene->*on = true;
        view.setSegmentationImage(image(cv::Mat(5, 3, CV_8UC1, cv::Scalar(255))));
        view.setBlobs({blob(1, 1, 2, 2), Blob()});
        view.updateDisplay();
        scene->displayEnabled = false;
        view.updateDisplay();
    }
    EXPECT_EQ(messages.lines(), QStringList());
    EXPECT_EQ(output.take(), "");
}
