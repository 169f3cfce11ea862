#include "support/RgbdView.h"

#include <QPicture>
#include <QScrollBar>

#include <functional>
#include <limits>
#include <random>

using namespace rgbd;

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
