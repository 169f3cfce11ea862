/// \file
/// Both views at work on a recorded room with five people, as the example rgbdFrame shows it. Positions that
/// are numbers here were read off the colour picture by eye.

#include "FivePeople.h"

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewRGBD.h>

#include "support/Capture.h"
#include "support/SceneData.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <QCoreApplication>
#include <QFileInfo>
#include <QGraphicsEllipseItem>
#include <QGraphicsLineItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QImage>
#include <QKeyEvent>
#include <QPen>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace {

QString colorFile() { return fivePeopleScene.file("five_people_color.png"); }
QString depthFile() { return fivePeopleScene.file("five_people_depth_mm.png"); }

/// Types keys into the view, and draws.
void type(const char *keys, kelViewRGBD &view)
{
    for (const QChar key : QString(keys))
        view.switches().press(key.unicode());
    view.updateDisplay();
}

/// The people from the left to the right.
const std::vector<unsigned int> ids{0, 2, 1, 5, 11};
const std::vector<QColor> colors{Qt::cyan, Qt::yellow, Qt::magenta, Qt::red, Qt::white};

const QColor gold(255, 215, 0);

cv::Vec4b bgra(const QColor &color)
{
    return cv::Vec4b(static_cast<uchar>(color.blue()), static_cast<uchar>(color.green()),
                     static_cast<uchar>(color.red()), 255);
}

std::vector<cv::Point2f> outline(const QPolygonF &polygon)
{
    std::vector<cv::Point2f> corners;
    for (const QPointF &corner : polygon)
        corners.emplace_back(static_cast<float>(corner.x()), static_cast<float>(corner.y()));
    return corners;
}

/// Pixels from the point to the outline; negative outside.
double inside(const QPolygonF &polygon, const cv::Point2d &point)
{
    return cv::pointPolygonTest(outline(polygon), cv::Point2f(point), true);
}

double distance(const QPointF &p, const cv::Point2d &q) { return std::hypot(p.x() - q.x, p.y() - q.y); }

std::list<cv::Point> pixelsOf(const kelDataActor &actor)
{
    std::list<cv::Point> pixels;
    actor.getPixels(pixels);
    return pixels;
}

bool shows(const kelDataActor &actor, const cv::Point &pixel)
{
    const std::list<cv::Point> pixels = pixelsOf(actor);
    return std::find(pixels.begin(), pixels.end(), pixel) != pixels.end();
}

} // namespace

/// The room in a view.
class fivePeopleTest : public TemporaryFolder
{
protected:
    void SetUp() override
    {
        SKIP_WITHOUT(fivePeopleScene);
        OutputCapture output;
        room = std::make_unique<FivePeople>(colorFile(), depthFile());
        fit = QString::fromStdString(output.take());
        room->show(view);
    }

    void type(const char *keys) { ::type(keys, view); }

    cv::Mat picture() { return view.getDisplay()->getImage(); }

    /// The items of a kind, from the bottom up.
    template <class Item> std::vector<Item *> items()
    {
        std::vector<Item *> result;
        for (QGraphicsItem *item :
             qobject_cast<QGraphicsView *>(view.widget())->scene()->items(Qt::AscendingOrder))
            if (auto *wanted = dynamic_cast<Item *>(item))
                result.push_back(wanted);
        return result;
    }

    /// Those drawn with a pen of a colour.
    template <class Item> std::vector<Item *> items(const QColor &color)
    {
        std::vector<Item *> result = items<Item>();
        result.erase(std::remove_if(result.begin(), result.end(),
                                    [&](Item *item) { return item->pen().color() != color; }),
                     result.end());
        return result;
    }

    /// The one polygon of a colour.
    QPolygonF polygon(const QColor &color)
    {
        const auto found = items<QGraphicsPolygonItem>(color);
        EXPECT_EQ(found.size(), 1u);
        return found.empty() ? QPolygonF() : found[0]->polygon();
    }

    /// Position of the text that begins so; far outside when there is none.
    QPointF positionOf(const QString &beginning)
    {
        for (QGraphicsTextItem *item : items<QGraphicsTextItem>())
            if (item->toPlainText().startsWith(beginning))
                return item->pos();
        return QPointF(-1000, -1000);
    }

    std::unique_ptr<FivePeople> room;
    QString fit; ///< What the plane fit prints: the elements that take part.
    kelViewRGBD view;
};

TEST_F(fivePeopleTest, TheFittedFloorIsThePublishedOne)
{
    ASSERT_EQ(room->floor.size(), 4u);
    const double sign = room->floor[1] < 0 ? -1 : 1;
    const cv::Vec3d normal(sign * room->floor[0], sign * room->floor[1], sign * room->floor[2]);
    const cv::Vec3d published(-0.0103586, 0.997011, 0.0765573);
    const double cosine = normal.dot(published) / cv::norm(normal) / cv::norm(published);
    EXPECT_LT(std::acos(std::min(cosine, 1.0)) * 180 / CV_PI, 1);
    EXPECT_NEAR(sign * room->floor[3], -1266.14, 30);
    EXPECT_EQ(fit.count("Name: floor "), 3);
    EXPECT_EQ(fit.count("Name: "), 3) << fit.toStdString();
}

TEST_F(fivePeopleTest, TheCamerasWorldHasTheFloorAtZero)
{
    EXPECT_EQ(room->camera.getReferentialName(), "room");
    EXPECT_NEAR(room->camera.getPosition().z, 1266.14, 0.1);
    // Bare floor, seen through the pose and through the depth map.
    for (const cv::Point2d &pixel : {cv::Point2d(285, 375), {235, 465}, {345, 465}, {585, 465}, {450, 420}}) {
        const cv::Point3d ground = room->camera.kelAbstractDataCalibration::imageToWorld(pixel, 0);
        const cv::Mat atCamera =
            room->camera.getExtrinsicMatrix() * (cv::Mat_<double>(4, 1) << ground.x, ground.y, ground.z, 1);
        const cv::Point3d measured = room->camera.imageToWorld(pixel);
        EXPECT_NEAR(atCamera.at<double>(2), measured.z, 0.03 * measured.z) << pixel;
        EXPECT_NEAR(atCamera.at<double>(0), measured.x, 0.03 * measured.z) << pixel;
    }
}

TEST_F(fivePeopleTest, TheGroundPlaneIsDrawnWhereThePublishedOneIs)
{
    type("G");
    const QPolygonF ground = polygon(Qt::green);
    ASSERT_EQ(ground.size(), 4);
    const std::vector<cv::Point2d> xz{{-3000, 8000}, {3000, 8000}, {3000, 2000}, {-3000, 2000}};
    for (int i = 0; i < 4; ++i) {
        const double x = xz[static_cast<size_t>(i)].x, z = xz[static_cast<size_t>(i)].y;
        const double y = (0.0103586 * x - 0.0765573 * z + 1266.14) / 0.997011;
        EXPECT_LT(distance(ground[i], {319.5 + 525 * x / z, 239.5 + 525 * y / z}), 8) << i;
    }
}

TEST_F(fivePeopleTest, TheEnvelopeHoldsTheFloorAndNothingElse)
{
    ASSERT_GT(room->floorPoints.size(), 1000u);
    type("P");
    const QPolygonF envelope = polygon(gold);
    std::vector<double> published{-0.0103586, 0.997011, 0.0765573, -1266.14};
    for (const cv::Point3f &point : room->floorPoints) {
        ASSERT_GT(inside(envelope, room->camera.worldToImage(cv::Point3d(point))), -1) << point;
        ASSERT_LT(room->camera.computePointDistanceToPlane(cv::Point3d(point), published), 60) << point;
    }
    for (const cv::Point2d &floor : {cv::Point2d(285, 375), {235, 465}, {345, 465}, {585, 460}, {450, 420}})
        EXPECT_GT(inside(envelope, floor), 0) << floor;
    for (const cv::Point2d &wall : {cv::Point2d(260, 270), {20, 350}, {620, 350}, {100, 100}, {620, 470}})
        EXPECT_LT(inside(envelope, wall), 0) << wall;
}

TEST_F(fivePeopleTest, TheZoneLiesOnTheFloorBehindTheFeet)
{
    ASSERT_EQ(room->zones.size(), 1u);
    EXPECT_EQ(room->zones.front().name, "passage");
    for (const cv::Point3d &corner : room->zones.front().polygonVertices)
        EXPECT_LT(room->camera.computePointDistanceToPlane(corner, room->floor), 2) << corner;

    type("Z");
    const QPolygonF zone = polygon(Qt::red);
    ASSERT_EQ(zone.size(), 4);
    EXPECT_LT(distance(zone[0], {235, 437}), 2);
    EXPECT_LT(distance(zone[1], {265, 353}), 2);
    EXPECT_LT(distance(zone[2], {405, 354}), 2);
    EXPECT_LT(distance(zone[3], {451, 439}), 2);
    // The event of the frame says who is in it.
    const auto middle = [this](int id) {
        const auto &[left, right] = room->feet.at(id);
        return room->camera.worldToImage(cv::Point3d((left + right) / 2));
    };
    for (const int id : {0, 1, 2, 5, 11})
        EXPECT_EQ(inside(zone, middle(id)) > 0, id == 1) << id;
}

TEST_F(fivePeopleTest, ThePixelsOfThePeopleAreFound)
{
    ASSERT_EQ(room->actors.size(), 5u);
    // Head, chest and legs of each, and an arm where two boxes overlap.
    const std::vector<std::vector<cv::Point>> bodies{{{84, 90}, {90, 201}, {147, 270}, {129, 447}},
                                                     {{180, 132}, {189, 219}, {180, 420}},
                                                     {{345, 135}, {321, 219}, {336, 330}},
                                                     {{417, 126}, {414, 219}, {390, 360}},
                                                     {{537, 96}, {540, 201}, {540, 420}}};
    std::size_t i = 0;
    for (const auto &actor : room->actors) {
        EXPECT_EQ(actor->getIdent(), ids[i]);
        for (std::size_t j = 0; j < bodies.size(); ++j)
            for (const cv::Point &pixel : bodies[j])
                EXPECT_EQ(shows(*actor, pixel), i == j) << "person " << i << ", pixel " << pixel;
        for (const cv::Point &pixel : {cv::Point(255, 201), {255, 420}, {150, 60}, {630, 201}, {363, 390}})
            EXPECT_FALSE(shows(*actor, pixel)) << "person " << i << ", pixel " << pixel;
        for (const cv::Point &pixel : pixelsOf(*actor))
            ASSERT_TRUE(actor->getBoundingBox2D().contains(pixel)) << "person " << i;
        ++i;
    }
}

TEST_F(fivePeopleTest, ThePixelsOfThePeopleHaveTheirColoursAndTheFrameIsSeenElsewhere)
{
    type("ABTEF"); // pixels on, all the rest off
    cv::Mat expected;
    cv::cvtColor(room->color->getImage(), expected, cv::COLOR_BGR2BGRA);
    std::size_t i = 0;
    int painted = 0;
    for (const auto &actor : room->actors) {
        for (const cv::Point &pixel : pixelsOf(*actor)) { // an ellipse of 2 x 2 covers four pixels
            for (const cv::Point &step :
                 {cv::Point(1, 0), cv::Point(0, 1), cv::Point(2, 1), cv::Point(1, 2)}) {
                expected.at<cv::Vec4b>(pixel + step) = bgra(colors[i]);
                ++painted;
            }
        }
        ++i;
    }
    EXPECT_GT(painted, 20000);
    ASSERT_EQ(picture().size(), cv::Size(640, 480));
    cv::Mat different;
    cv::reduce(cv::Mat(expected != picture()).reshape(1, 640 * 480), different, 1, cv::REDUCE_MAX);
    EXPECT_EQ(cv::countNonZero(different), 0);
}

TEST_F(fivePeopleTest, TheBoxesStandAroundThePeople)
{
    type("");
    // What each person covers, by eye.
    const std::vector<cv::Rect> seen{{21, 65, 133, 412},
                                     {145, 97, 98, 380},
                                     {279, 105, 94, 335},
                                     {365, 104, 101, 356},
                                     {463, 52, 140, 423}};
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const auto boxes = items<QGraphicsRectItem>(colors[i]);
        ASSERT_EQ(boxes.size(), 1u) << ids[i];
        const QRectF rect = boxes[0]->rect();
        const cv::Rect2d box(rect.x(), rect.y(), rect.width(), rect.height());
        const cv::Rect2d person(seen[i]);
        EXPECT_GT((box & person).area(), 0.85 * (box | person).area()) << ids[i];
    }
    EXPECT_EQ(items<QGraphicsRectItem>().size(), 5u);
}

TEST_F(fivePeopleTest, TheLabelsStandAboveTheBoxesWithTrueHeights)
{
    type("EI"); // without the events
    const std::vector<cv::Point> corners{{20, 55}, {145, 99}, {268, 105}, {365, 103}, {462, 51}};
    const std::vector<QGraphicsTextItem *> texts = items<QGraphicsTextItem>();
    ASSERT_EQ(texts.size(), 16u); // three a person, and the frame rate
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const auto text = [&](std::size_t line) { return texts[3 * i + line]->toPlainText(); };
        for (std::size_t line = 0; line < 3; ++line)
            EXPECT_EQ(texts[3 * i + line]->pos(),
                      QPointF(corners[i].x, corners[i].y - 55 + 15 * static_cast<int>(line)))
                << ids[i];
        EXPECT_EQ(texts[3 * i]->defaultTextColor(), colors[i]);
        EXPECT_EQ(text(0), QStringLiteral("Id    : %1").arg(ids[i]));
        const auto height = QRegularExpression("^HeightA:(\\d+)cm$").match(text(1));
        EXPECT_GE(height.captured(1).toInt(), 165) << text(1).toStdString();
        EXPECT_LE(height.captured(1).toInt(), 185) << text(1).toStdString();
        const auto speed = QRegularExpression("^Speed : (\\d\\.\\d\\d)m/s$").match(text(2));
        EXPECT_GT(speed.captured(1).toDouble(), 0.3) << text(2).toStdString();
        EXPECT_LT(speed.captured(1).toDouble(), 1.5) << text(2).toStdString();
    }
}

TEST_F(fivePeopleTest, TheWaysLeadOverTheFloorToTheFeet)
{
    type("GP");
    const QPolygonF ground = polygon(Qt::green), envelope = polygon(gold);
    std::size_t i = 0;
    for (const auto &actor : room->actors) {
        for (const auto &[stamp, point] : actor->getTrajectory())
            EXPECT_LT(room->camera.computePointDistanceToPlane(cv::Point3d(point), room->floor), 1) << ids[i];
        const auto lines = items<QGraphicsLineItem>(colors[i]);
        ASSERT_EQ(lines.size(), 5u) << ids[i];
        const auto &[left, right] = room->feet.at(static_cast<int>(ids[i]));
        const cv::Point2d feet = room->camera.worldToImage(cv::Point3d((left + right) / 2));
        EXPECT_LE(distance(lines[0]->line().p1(), feet), 1) << ids[i];
        int visible = 0;
        for (const QGraphicsLineItem *line : lines) {
            const cv::Point2d older(line->line().x2(), line->line().y2());
            if (older.y >= 470 || older.x < 25 || older.x > 605)
                continue; // outside of what the depth map shows
            EXPECT_GT(inside(ground, older), 0) << ids[i] << older;
            EXPECT_GT(inside(envelope, older), 0) << ids[i] << older;
            ++visible;
        }
        EXPECT_GT(visible, 0) << ids[i];
        ++i;
    }
}

TEST_F(fivePeopleTest, TheFeetAreDrawnAtTheShoes)
{
    type("");
    std::vector<QRectF> feet;
    for (const QGraphicsEllipseItem *item : items<QGraphicsEllipseItem>()) {
        EXPECT_EQ(item->pen().width(), 5);
        feet.push_back(item->rect());
    }
    ASSERT_EQ(feet.size(), 10u);
    for (const auto &[id, pair] : room->feet)
        for (const cv::Point3f &foot : {pair.first, pair.second})
            EXPECT_LT(room->camera.computePointDistanceToPlane(cv::Point3d(foot), room->floor), 1) << id;
    // Where the picture shows the shoes; the others stand below its edge.
    const std::vector<std::pair<std::size_t, cv::Point2d>> shoes{
        {1, {130, 455}}, {2, {308, 405}}, {3, {328, 432}}, {4, {165, 455}}, {6, {385, 450}}, {7, {420, 440}}};
    for (const auto &[index, shoe] : shoes)
        EXPECT_LT(distance(feet[index].center(), shoe), 15) << index;
    for (const std::size_t index : {0, 8, 9})
        EXPECT_GT(feet[index].center().y(), 475) << index;
    EXPECT_EQ(items<QGraphicsEllipseItem>()[4]->pen().color(), QColor(Qt::green).lighter(150));
}

TEST_F(fivePeopleTest, TheTopsOfThePeopleAreMarked)
{
    type("TL"); // without the ways
    const auto dots = items<QGraphicsLineItem>(QColor(255, 0, 0));
    ASSERT_EQ(dots.size(), 5u);
    // The top of the hair, as far as it has depth.
    const std::vector<cv::Point> seen{{80, 68}, {190, 102}, {345, 107}, {415, 106}, {537, 54}};
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(dots[i]->line().length(), 0);
        EXPECT_LT(distance(dots[i]->line().p1(), seen[i]), 12) << ids[i];
    }
}

TEST_F(fivePeopleTest, TheEventsOfTheFrameAreListed)
{
    type("");
    EXPECT_EQ(positionOf("EVENT LIST : "), QPointF(3, 3));
    EXPECT_EQ(positionOf("0 / walks [0.960000]"), QPointF(5, 30));
    EXPECT_EQ(positionOf("1 / in passage [0.930000]"), QPointF(5, 52));
}

TEST_F(fivePeopleTest, TheFrameRateIsOnTheScreenAlone)
{
    type("BTEF"); // all off
    EXPECT_EQ(positionOf("FPS : 10"), QPointF(565, 3));
    cv::Mat frame;
    cv::cvtColor(room->color->getImage(), frame, cv::COLOR_BGR2BGRA);
    EXPECT_EQ(cv::norm(picture(), frame, cv::NORM_INF), 0);
}

TEST_F(fivePeopleTest, TheDepthIsGreyAndDarkerTheNearer)
{
    type("DBTEF"); // depth on, all the rest off
    const auto grey = [this](int u, int v) {
        const cv::Vec4b pixel = picture().at<cv::Vec4b>(v, u);
        EXPECT_EQ(pixel[0], pixel[1]);
        EXPECT_EQ(pixel[1], pixel[2]);
        return int(pixel[0]);
    };
    EXPECT_EQ(grey(2, 2), 0); // no depth
    EXPECT_LT(grey(540, 200), grey(190, 220)); // the people, from the front to the back, and the screen
    EXPECT_LT(grey(190, 220), grey(415, 220));
    EXPECT_LT(grey(415, 220), grey(320, 220));
    EXPECT_LT(grey(320, 220), grey(260, 200));
}

TEST(fivePeopleTimelineTest, AMinuteOfEventsShowsInTheColoursOfTheirLevels)
{
    kelViewEventTimeline timeline;
    timeline.init();
    FivePeople::tell(timeline);
    timeline.updateDisplay();
    const QImage picture = timeline.widget()->grab().toImage();
    ASSERT_EQ(picture.size(), QSize(640, 480));
    /// The bar of a row, counted from 0, at a second of the minute.
    const auto at = [&](int row, double second) {
        return picture.pixelColor(640 - qRound((60 - second) * 10), 45 + 20 * row);
    };
    EXPECT_EQ(at(0, 11), QColor(Qt::cyan)); // enters
    EXPECT_EQ(at(1, 19), QColor(Qt::cyan));
    EXPECT_EQ(at(2, 30), QColor(Qt::cyan)); // walks, twice
    EXPECT_EQ(at(2, 44), QColor(Qt::white));
    EXPECT_EQ(at(2, 59), QColor(Qt::cyan));
    EXPECT_EQ(at(3, 29), QColor(Qt::green)); // in passage
    EXPECT_EQ(at(3, 45), QColor(Qt::white));
    EXPECT_EQ(at(3, 59), QColor(Qt::green));
    EXPECT_EQ(at(4, 31), QColor(Qt::green));
    EXPECT_EQ(at(5, 34), QColor(Qt::darkGreen)); // runs
    EXPECT_EQ(at(6, 42.5), QColor(Qt::red)); // falls
    EXPECT_EQ(at(7, 47), QColor(Qt::darkGreen));
    EXPECT_EQ(at(8, 47), QColor(Qt::white));
}

namespace {

struct Ended
{
    int code;
    QString errors;

    bool oneLine() const { return errors.startsWith("rgbdFrame: ") && errors.count('\n') == 1; }
};

std::ostream &operator<<(std::ostream &out, const Ended &run)
{
    return out << "code " << run.code << ", errors: " << run.errors.toStdString();
}

} // namespace

/// The program, in a folder of its own and without a display.
class rgbdFrameTest : public TemporaryFolder
{
protected:
    Ended run(const QStringList &arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(name);
        environment.insert("XDG_RUNTIME_DIR", path("")); // or the toolkit has something to say
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(RGBDFRAME, arguments);
        EXPECT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
    }
};

TEST_F(rgbdFrameTest, ACommandLineThatIsNotUnderstoodEndsWithOneLine)
{
    for (const QStringList &arguments : {QStringList(),
                                         {"one.png"},
                                         {"one.png", "two.png", "three.png"},
                                         {"one.png", "two.png", "--wrong"}}) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.code, 2) << ended;
        EXPECT_TRUE(ended.oneLine()) << ended;
    }
    EXPECT_EQ(run({"--help"}).code, 0);
}

TEST_F(rgbdFrameTest, PicturesThatCannotBeUsedEndWithOneLineThatNamesThem)
{
    write("text.png", "no picture");
    ASSERT_TRUE(QImage(640, 480, QImage::Format_Grayscale8).save("flat.png"));
    ASSERT_TRUE(QImage(64, 48, QImage::Format_RGB32).save("little.png"));
    QImage nothing(640, 480, QImage::Format_Grayscale16);
    nothing.fill(0);
    ASSERT_TRUE(nothing.save("nothing.png"));
    for (const auto &[color, depth, named] : {std::tuple("missing.png", "flat.png", "missing.png"),
                                              {"text.png", "flat.png", "text.png"},
                                              {"little.png", "flat.png", "little.png"},
                                              {"flat.png", "missing.png", "missing.png"},
                                              {"flat.png", "flat.png", "flat.png"},
                                              {"flat.png", "nothing.png", "five people"}}) {
        const Ended ended = run({color, depth, "--out", "out.png"});
        EXPECT_EQ(ended.code, 1) << ended;
        EXPECT_TRUE(ended.oneLine()) << ended;
        EXPECT_TRUE(ended.errors.contains(named)) << ended;
    }
    EXPECT_FALSE(QFileInfo::exists("out.png"));
}

TEST_F(rgbdFrameTest, WithoutADisplayItAsksForFiles)
{
    const Ended ended = run({"color.png", "depth.png"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_TRUE(ended.oneLine()) << ended;
    EXPECT_TRUE(ended.errors.contains("--out")) << ended;
}

TEST_F(rgbdFrameTest, ThePicturesAreThoseOfTheViews)
{
    SKIP_WITHOUT(fivePeopleScene);
    const Ended ended =
        run({colorFile(), depthFile(), "--keys", "gzI", "--out", "out.png", "--timeline", "line.png"});
    ASSERT_EQ(ended.code, 0) << ended;
    EXPECT_EQ(ended.errors, "");

    OutputCapture output;
    const FivePeople room(colorFile(), depthFile());
    kelViewRGBD view;
    room.show(view);
    type("GZI", view);
    const cv::Mat &frame = view.getDisplay()->getImage();
    const QImage drawn(frame.data, 640, 480, static_cast<int>(frame.step), QImage::Format_RGB32);
    EXPECT_EQ(QImage("out.png").convertToFormat(QImage::Format_RGB32), drawn);
    EXPECT_EQ(QImage("line.png").size(), QSize(640, 480));

    EXPECT_EQ(run({colorFile(), depthFile(), "--out", "small.png", "--small"}).code, 0);
    EXPECT_EQ(QImage("small.png").format(), QImage::Format_Indexed8);

    const Ended nowhere = run({colorFile(), depthFile(), "--out", "no/folder/out.png"});
    EXPECT_EQ(nowhere.code, 1);
    EXPECT_TRUE(nowhere.oneLine()) << nowhere;
    EXPECT_TRUE(nowhere.errors.contains("no/folder/out.png")) << nowhere;
}
