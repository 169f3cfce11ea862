/// \file
/// Plane geometry of calibrations with depth, and the plane through a scene's elements.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataContext_p.h>

#include "support/Capture.h"

#include <opencv2/core.hpp>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

namespace {

using Depth = kelAbstractDataCalibrationWithDepth;
using Plane = std::vector<double>;
using Points = std::vector<cv::Point3d>;

/// A context whose elements a test puts together.
class Scene : public kelDataContext
{
public:
    Scene &add(const std::string &name, const Points &vertices, const char *shape = "polygon",
               const char *semantic = "zone")
    {
        ContextElement element;
        element.semantic = semantic;
        element.name = name;
        element.shape = shape;
        element.polygonVertices.assign(vertices.begin(), vertices.end());
        return add(element);
    }
    Scene &add(const ContextElement &element)
    {
        static_cast<kelDataContextPrivate *>(nub_d.data())->elements.push_back(element);
        return *this;
    }
};

Plane fit(Depth &calibration, const kelDataContext *scene, std::string *printed = nullptr)
{
    OutputCapture output;
    Plane plane = calibration.computePlaneEquationFromContextualObjects(scene);
    if (printed)
        *printed = output.take();
    return plane;
}

/// The names of the elements that take part in a fit, as it prints them.
QStringList namesInFit(const kelDataContext &scene, const std::string &forbidden)
{
    Depth calibration;
    calibration.setListContextObjectsForbiddenInPlanComputation(forbidden);
    std::string printed;
    fit(calibration, &scene, &printed);
    QStringList names;
    for (const QString &line : QString::fromStdString(printed).split('\n')) {
        if (line.startsWith("Name: "))
            names.append(line.mid(6));
    }
    return names;
}

/// The fit, step by step with matrices.
Plane plainFit(const Points &points)
{
    double x = 0, y = 0, z = 0;
    for (const cv::Point3d &p : points) {
        x += p.x;
        y += p.y;
        z += p.z;
    }
    const double n = static_cast<double>(points.size());
    const cv::Point3d mean(x / n, y / n, z / n);
    cv::Mat scatter = cv::Mat::zeros(3, 3, CV_32F);
    for (const cv::Point3d &p : points) {
        const cv::Mat column = (cv::Mat_<float>(3, 1) << static_cast<float>(p.x - mean.x),
                                static_cast<float>(p.y - mean.y), static_cast<float>(p.z - mean.z));
        const cv::Mat product = column * column.t();
        scatter = scatter + product;
    }
    cv::Mat values, vectors;
    cv::eigen(scatter, values, vectors);
    const double a = vectors.at<float>(2, 0);
    const double b = vectors.at<float>(2, 1);
    const double c = vectors.at<float>(2, 2);
    return {a, b, c, -(a * mean.x + b * mean.y + c * mean.z)};
}

} // namespace

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, DistanceToAPlaneWithAnyNormal)
{
    Depth calibration;
    Plane plane{0, 0, 2, -4};
    EXPECT_EQ(calibration.computePointDistanceToPlane(cv::Point3d(1, 1, 5), plane), 3);
    EXPECT_EQ(calibration.computePointDistanceToPlane(cv::Point3d(1, 1, -1), plane), 3);
    plane = {1, -2, 2, 3, 99};
    EXPECT_EQ(calibration.computePointDistanceToPlane(cv::Point3d(4, 5, 6), plane), 3);
    plane = {0, 0, 0, 1};
    EXPECT_EQ(calibration.computePointDistanceToPlane(cv::Point3d(4, 5, 6), plane),
              std::numeric_limits<double>::infinity());
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, DistanceToAPlaneWithTooFewCoefficients)
{
    Depth calibration;
    for (Plane plane : {Plane{}, Plane{1}, Plane{1, 2}})
        EXPECT_EQ(calibration.computePointDistanceToPlane(cv::Point3d(1, 1, 5), plane), 0.0);
    Plane three{1, 2, 3};
    EXPECT_THROW(calibration.computePointDistanceToPlane(cv::Point3d(1, 1, 5), three), std::out_of_range);
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, ProjectionOntoAPlaneWithAnyNormal)
{
    Depth calibration;
    Plane plane{0, 0, 1, 0};
    EXPECT_EQ(calibration.pointProjectionOntoPlane(cv::Point3d(1, 2, 3), plane), cv::Point3d(1, 2, 0));
    plane = {1, -2, 2, 3};
    EXPECT_EQ(calibration.pointProjectionOntoPlane(cv::Point3d(4, 5, 6), plane), cv::Point3d(3, 7, 4));
    plane = {2, -4, 4, 6};
    EXPECT_EQ(calibration.pointProjectionOntoPlane(cv::Point3d(4, 5, 6), plane), cv::Point3d(3, 7, 4));
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, MagnitudeIsTheEuclideanNorm)
{
    Depth calibration;
    EXPECT_EQ(calibration.vectorMagnitude(cv::Point3d(2, -3, 6)), 7);
    EXPECT_EQ(calibration.vectorMagnitude(cv::Point3d(0, 0, 0)), 0);
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, PlaneGeometryIsThatOfTheFormulasBitForBit)
{
    Depth calibration;
    std::mt19937 random(1);
    std::uniform_real_distribution<> number(-10, 10);
    for (int run = 0; run < 1000; ++run) {
        const double a = number(random), b = number(random), c = number(random), d = number(random);
        const cv::Point3d p(number(random), number(random), number(random));
        Plane plane{a, b, c, d};
        EXPECT_EQ(calibration.computePointDistanceToPlane(p, plane),
                  std::abs(a * p.x + b * p.y + c * p.z + d) / std::sqrt(a * a + b * b + c * c));
        const double t = -(a * p.x + b * p.y + c * p.z + d) / (a * a + b * b + c * c);
        EXPECT_EQ(calibration.pointProjectionOntoPlane(p, plane),
                  cv::Point3d(p.x + t * a, p.y + t * b, p.z + t * c));
        EXPECT_EQ(calibration.vectorMagnitude(p), std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z));
    }
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, TheListOfNamesIsKeptAsGiven)
{
    Depth calibration;
    calibration.setListContextObjectsForbiddenInPlanComputation(" a,, b  c");
    EXPECT_EQ(calibration.getListContextObjectsForbiddenInPlanComputation(), " a,, b  c");
    calibration.setListContextObjectsForbiddenInPlanComputation("d");
    EXPECT_EQ(calibration.getListContextObjectsForbiddenInPlanComputation(), "d");
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, FourFloorPointsGiveTheFloor)
{
    Depth calibration;
    Scene scene;
    scene.add("floor", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}});
    const Plane plane = fit(calibration, &scene);
    ASSERT_EQ(plane.size(), 4u);
    EXPECT_EQ(plane[0], 0);
    EXPECT_EQ(plane[1], 0);
    EXPECT_EQ(std::abs(plane[2]), 1);
    EXPECT_EQ(plane[3], 0);
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, ThePlaneIsThatOfTheStatedStepsBitForBit)
{
    Depth calibration;
    std::mt19937 random(1);
    for (int run = 0; run < 200; ++run) {
        std::normal_distribution<> noise(0, 1 << (run % 12));
        Points points;
        Scene scene;
        for (int part = 0; part < 3; ++part) {
            const int count = static_cast<int>(random() % (run + 3)) + 1;
            Points vertices;
            for (int i = 0; i < count; ++i) {
                const double x = noise(random) * 100 + 3000, y = noise(random) * 50;
                vertices.emplace_back(x, y, 0.3 * x - 0.2 * y + noise(random) / 7 - 1000);
            }
            points.insert(points.end(), vertices.begin(), vertices.end());
            scene.add("part", vertices);
        }
        const Plane plane = fit(calibration, &scene);
        ASSERT_EQ(plane, plainFit(points)) << "run " << run;
        EXPECT_NEAR(plane[0] * plane[0] + plane[1] * plane[1] + plane[2] * plane[2], 1, 1e-5);
    }
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, OnlyPolygonVerticesTakePartWhateverSemanticAndShape)
{
    const Points corners{{0, 0, 1}, {4, 0, 1}, {0, 4, 2}, {4, 5, 3}};
    Scene scene;
    scene.add("zone", {corners[0]}, "polygon", "zone");
    scene.add("object", {corners[1]}, "polygon", "object");
    scene.add("wall", {corners[2]}, "circle", "wall");
    scene.add("other", {corners[3]}, "heap", "roof");
    ContextElement element;
    element.shape = "cube";
    element.center = cv::Point3d(100, 200, 300);
    element.cubeVertices = {cv::Point3d(-100, 50, 20), cv::Point3d(7, 7, 7)};
    scene.add(element);
    Depth calibration;
    EXPECT_EQ(fit(calibration, &scene), plainFit(corners));
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, EveryElementThatTakesPartIsDisplayed)
{
    Scene scene;
    scene.add("a", {{0, 0, 0}, {1, 0, 0}}).add("b", {{0, 1, 0}}).add("c", {}, "cube", "object");
    Depth calibration;
    calibration.setListContextObjectsForbiddenInPlanComputation("b");
    std::string printed;
    fit(calibration, &scene, &printed);
    OutputCapture expected;
    for (const ContextElement &element : scene.getContext()) {
        if (element.name != "b")
            element.displayObject();
    }
    EXPECT_EQ(printed, expected.take());
    EXPECT_NE(printed, "");
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, NothingIsStored)
{
    Scene scene;
    scene.add("a", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).add("b", {{0, 0, 5}});
    Depth calibration;
    calibration.setListContextObjectsForbiddenInPlanComputation("b");
    const Plane first = fit(calibration, &scene);
    EXPECT_EQ(fit(calibration, &scene), first);
    EXPECT_EQ(scene.getContext().size(), 2u);
    EXPECT_EQ(calibration.getListContextObjectsForbiddenInPlanComputation(), "b");
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, WithoutElementsThereIsNoPlane)
{
    Depth calibration;
    std::string printed;
    EXPECT_TRUE(fit(calibration, nullptr, &printed).empty());
    EXPECT_EQ(printed, "");
    Scene scene;
    EXPECT_TRUE(fit(calibration, &scene).empty());
    scene.add("a", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    calibration.setListContextObjectsForbiddenInPlanComputation("a");
    EXPECT_TRUE(fit(calibration, &scene, &printed).empty());
    EXPECT_EQ(printed, "");
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, WithoutVerticesThePlaneHasNoPlace)
{
    Depth calibration;
    Scene scene;
    scene.add("a", {}).add("b", {}, "circle");
    const Plane plane = fit(calibration, &scene);
    ASSERT_EQ(plane.size(), 4u);
    EXPECT_TRUE(std::isnan(plane[3]));
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, HugeAndInvalidVerticesEndToo)
{
    Depth calibration;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const cv::Point3d &vertex :
         {cv::Point3d(1e300, 0, 0), cv::Point3d(1e30, 1, 2), cv::Point3d(nan, 0, 0)}) {
        Scene scene;
        scene.add("a", {vertex, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
        EXPECT_EQ(fit(calibration, &scene).size(), 4u);
    }
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, NamesAreSplitAtCommasAndBlanks)
{
    Scene scene;
    scene.add("a", {}).add("b", {}).add("c", {}).add("", {}).add("a b", {}).add("a,b", {}).add("a\tb", {});
    const QStringList all{"a", "b", "c", "", "a b", "a,b", "a\tb"};
    EXPECT_EQ(namesInFit(scene, ""), all);
    EXPECT_EQ(namesInFit(scene, " , ,,  "), all);
    const QStringList rest{"", "a b", "a,b", "a\tb"};
    for (const char *list : {" a,,b  c", "a b c", "c,b,a", ",c, b ,a,", "a,b c"})
        EXPECT_EQ(namesInFit(scene, list), rest) << list;
    EXPECT_EQ(namesInFit(scene, "a\tb"), (QStringList{"a", "b", "c", "", "a b", "a,b"}));
    EXPECT_EQ(namesInFit(scene, "ab"), all);
}

TEST(kelAbstractDataCalibrationWithDepthPlaneTest, EachListedNameLeavesOutTheFirstElementThatHasIt)
{
    const auto vertex = [](double x) { return Points{cv::Point3d(x, 0, 0)}; };
    Scene scene;
    scene.add("table", vertex(1)).add("door", vertex(2)).add("table", vertex(3)).add("table", vertex(4));
    EXPECT_EQ(namesInFit(scene, "table"), (QStringList{"door", "table", "table"}));
    EXPECT_EQ(namesInFit(scene, "table,table"), (QStringList{"door", "table"}));
    EXPECT_EQ(namesInFit(scene, "table door table table table"), QStringList());
    EXPECT_EQ(namesInFit(scene, "Table TABLE tabl tables"), (QStringList{"table", "door", "table", "table"}));

    // The first one, not any other.
    Depth calibration;
    calibration.setListContextObjectsForbiddenInPlanComputation("table");
    std::string printed;
    fit(calibration, &scene, &printed);
    EXPECT_EQ(printed.find("x: 1 "), std::string::npos);
    EXPECT_NE(printed.find("x: 3 "), std::string::npos);
}
