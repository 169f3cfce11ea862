#include "support/RgbdView.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using namespace rgbd;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

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
