#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth_p.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataContext_p.h>

#include "support/Capture.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualSlot.h"

#include <opencv2/core.hpp>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <stdexcept>
#include <type_traits>

namespace {
std::size_t allocations = 0;
}

// What the tests below count.
void *operator new(std::size_t size)
{
    ++allocations;
    if (void *memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }

namespace {

using Depth = kelAbstractDataCalibrationWithDepth;
using Plane = std::vector<double>;
using Points = std::vector<cv::Point3d>;

const char successLine[] = "Depth RAW file read successfully\n";

/// Counts the matrices that are allocated while it lives.
class MatrixAllocations : public cv::MatAllocator
{
public:
    MatrixAllocations() : m_previous(cv::Mat::getDefaultAllocator()) { cv::Mat::setDefaultAllocator(this); }
    ~MatrixAllocations() override { cv::Mat::setDefaultAllocator(m_previous); }
    cv::UMatData *allocate(int dims, const int *sizes, int type, void *data, size_t *step,
                           cv::AccessFlag flags, cv::UMatUsageFlags usage) const override
    {
        ++count;
        return m_previous->allocate(dims, sizes, type, data, step, flags, usage);
    }
    bool allocate(cv::UMatData *data, cv::AccessFlag flags, cv::UMatUsageFlags usage) const override
    {
        ++count;
        return m_previous->allocate(data, flags, usage);
    }
    void deallocate(cv::UMatData *data) const override { m_previous->deallocate(data); }

    mutable int count = 0;

private:
    cv::MatAllocator *m_previous;
};

cv::Mat someIntrinsic()
{
    return (cv::Mat_<double>(3, 4) << 525, 0.5, 319.5, 0, /**/ 0, 530, 239.5, 0, /**/ 0, 0, 1, 0);
}

/// Looks along the world's Y axis from (0, 0, 3).
cv::Mat someExtrinsic()
{
    return (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, /**/ 0, 0, -1, 3, /**/ 0, 1, 0, 0, /**/ 0, 0, 0, 1);
}

bool sameElements(const cv::Mat &a, const cv::Mat &b)
{
    if (a.size() != b.size() || a.type() != b.type())
        return false;
    for (int r = 0; r < a.rows; ++r) {
        if (std::memcmp(a.ptr(r), b.ptr(r), static_cast<std::size_t>(a.cols) * a.elemSize()) != 0)
            return false;
    }
    return true;
}

/// A map whose elements all differ.
cv::Mat numbered(int rows, int columns, float first = 1)
{
    cv::Mat map(rows, columns, CV_32F);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c)
            map.at<float>(r, c) = first + static_cast<float>(r * columns + c);
    }
    return map;
}

QByteArray rawBytes(std::int32_t rows, std::int32_t columns, const cv::Mat &map)
{
    QByteArray bytes(reinterpret_cast<const char *>(&rows), sizeof rows);
    bytes.append(reinterpret_cast<const char *>(&columns), sizeof columns);
    for (int r = 0; r < map.rows; ++r)
        bytes.append(reinterpret_cast<const char *>(map.ptr(r)), map.cols * static_cast<int>(map.elemSize()));
    return bytes;
}

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

class OtherDepth : public Depth
{
public:
    QString identifier() const override { return "OtherDepth"; }
};

/// Reuses the identifier without having a map.
class Impostor : public kelAbstractDataCalibration
{
public:
    QString identifier() const override { return "kelAbstractDataCalibrationWithDepth"; }
};

template <class Expected, class Operation> constexpr bool hasType(Operation)
{
    return std::is_same<Expected, Operation>::value;
}

class kelAbstractDataCalibrationWithDepthFileTest : public TemporaryFolder
{
protected:
    static void load(Depth &calibration, const QString &file)
    {
        OutputCapture output;
        calibration.setDepthInformation(file);
        EXPECT_EQ(output.take(), successLine);
    }
    static void expectRefused(Depth &calibration, const QString &file)
    {
        const cv::Mat before = calibration.getDepthInformation();
        const cv::Mat content = before.clone();
        OutputCapture output;
        EXPECT_THROW(calibration.setDepthInformation(file), cv::Exception);
        EXPECT_EQ(output.take(), "");
        EXPECT_EQ(calibration.getDepthInformation().data, before.data);
        EXPECT_TRUE(sameElements(calibration.getDepthInformation(), content));
    }
};

} // namespace

TEST(kelAbstractDataCalibrationWithDepthTest, AFreshCalibrationHasAMapWithoutDepth)
{
    const Depth calibration;
    EXPECT_EQ(calibration.parent(), nullptr);
    EXPECT_EQ(calibration.identifier(), "kelAbstractDataCalibrationWithDepth");
    EXPECT_STREQ(calibration.metaObject()->className(), "kelAbstractDataCalibrationWithDepth");
    EXPECT_STREQ(calibration.metaObject()->superClass()->className(), "kelAbstractDataCalibration");
    EXPECT_EQ(sizeof(Depth), sizeof(nubAbstractObject));
    EXPECT_EQ(calibration.getReferentialName(), "Default");
    const cv::Mat zeros = cv::Mat::zeros(4, 4, CV_64F);
    EXPECT_TRUE(sameElements(calibration.getIntrinsicMatrix(), zeros));
    EXPECT_TRUE(sameElements(calibration.getExtrinsicMatrix(), zeros));
    EXPECT_TRUE(sameElements(calibration.getDistortionMatrix(), zeros));
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), cv::Mat::zeros(480, 640, CV_32F)));
    EXPECT_EQ(const_cast<Depth &>(calibration).getListContextObjectsForbiddenInPlanComputation(), "");
    EXPECT_NE(Depth().getDepthInformation().data, calibration.getDepthInformation().data);
}

TEST(kelAbstractDataCalibrationWithDepthTest, AFreshCalibrationShowsNothing)
{
    Depth calibration;
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(12, 34)), cv::Point3d(0, 0, 0));
    EXPECT_EQ(calibration.depthVal(639, 479), 0);
}

TEST(kelAbstractDataCalibrationWithDepthTest, TheNewOperationsFollowTheBasesInTheStatedOrder)
{
    const int last = slot<cv::Point2d(cv::Point3d) const>(&kelAbstractDataCalibration::worldToImage);
    EXPECT_EQ((slot<void(const kelAbstractDataCalibration &), Depth>(&Depth::copy)), last + 1);
    EXPECT_EQ((slot<cv::Point3d(const cv::Point2d &), Depth>(&Depth::imageToWorld)), last + 2);
    EXPECT_EQ((slot<cv::Point2d(const cv::Point3d &), Depth>(&Depth::worldToImage)), last + 3);
}

TEST(kelAbstractDataCalibrationWithDepthTest, TheOtherOperationsHaveTheStatedTypes)
{
    static_assert(hasType<const cv::Mat &(Depth::*)() const>(&Depth::getDepthInformation), "");
    static_assert(hasType<float (Depth::*)(double, double)>(&Depth::depthVal), "");
    static_assert(
        hasType<void (Depth::*)(std::string)>(&Depth::setListContextObjectsForbiddenInPlanComputation), "");
    static_assert(hasType<std::string (Depth::*)()>(&Depth::getListContextObjectsForbiddenInPlanComputation),
                  "");
    static_assert(hasType<double (Depth::*)(cv::Point3d, Plane &)>(&Depth::computePointDistanceToPlane), "");
    static_assert(hasType<double (Depth::*)(cv::Point3d)>(&Depth::vectorMagnitude), "");
    static_assert(hasType<cv::Point3d (Depth::*)(cv::Point3d, Plane &)>(&Depth::pointProjectionOntoPlane),
                  "");
    static_assert(
        hasType<Plane (Depth::*)(const kelDataContext *)>(&Depth::computePlaneEquationFromContextualObjects),
        "");
}

TEST(kelAbstractDataCalibrationWithDepthTest, TheMapIsSharedWithTheCaller)
{
    Depth calibration;
    cv::Mat map = numbered(3, 4);
    calibration.setDepthInformation(map);
    const cv::Mat &stored = calibration.getDepthInformation();
    EXPECT_EQ(stored.data, map.data);
    map.at<float>(2, 1) = 77;
    EXPECT_EQ(calibration.depthVal(1, 2), 77);
    calibration.setDepthInformation(numbered(2, 2));
    EXPECT_EQ(stored.rows, 2);
}

TEST(kelAbstractDataCalibrationWithDepthTest, DepthIsTakenFromRowVAndColumnUTruncated)
{
    Depth calibration;
    calibration.setDepthInformation(numbered(3, 4));
    EXPECT_EQ(calibration.depthVal(1, 2), 10);
    EXPECT_EQ(calibration.depthVal(1.99, 2.99), 10);
    EXPECT_EQ(calibration.depthVal(3.5, 0.5), 4);
    EXPECT_EQ(calibration.depthVal(-0.9, -0.9), 1);
}

TEST(kelAbstractDataCalibrationWithDepthTest, AMapThatDoesNotHoldFloatsHasNoDepth)
{
    Depth calibration;
    for (const int type : {CV_8U, CV_16U, CV_64F, CV_32FC3}) {
        calibration.setDepthInformation(cv::Mat(2, 2, type, cv::Scalar::all(7)));
        EXPECT_EQ(calibration.depthVal(1, 1), 0);
        EXPECT_EQ(calibration.imageToWorld(cv::Point2d(1, 1)), cv::Point3d(0, 0, 0));
    }
    const int sizes[] = {2, 2, 2};
    calibration.setDepthInformation(cv::Mat(3, sizes, CV_32F, cv::Scalar(7)));
    EXPECT_EQ(calibration.depthVal(1, 1), 0);
}

TEST(kelAbstractDataCalibrationWithDepthTest, ViewsOfLargerMatricesWork)
{
    Depth calibration;
    calibration.setDepthInformation(numbered(6, 9)(cv::Rect(2, 1, 4, 3)));
    EXPECT_EQ(calibration.depthVal(3, 2), 33);
    const cv::Mat larger(5, 7, CV_64F, cv::Scalar(1e6));
    cv::Mat view = larger(cv::Rect(1, 1, 4, 3));
    someIntrinsic().copyTo(view);
    calibration.setIntrinsicMatrix(view);
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(3, 2)),
              cv::Point3d((3 - 319.5) * (33.0 / 525), (2 - 239.5) * (33.0 / 530), 33));
}

TEST(kelAbstractDataCalibrationWithDepthTest, BackProjectsThroughTheMap)
{
    Depth calibration;
    calibration.setIntrinsicMatrix(someIntrinsic());
    cv::Mat map = cv::Mat::zeros(480, 640, CV_32F);
    map.at<float>(100, 200) = 1500.25f;
    map.at<float>(101, 200) = -2;
    map.at<float>(102, 200) = -0.5f;
    map.at<float>(103, 200) = 1.0f / 3;
    calibration.setDepthInformation(map);
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(200, 100)),
              cv::Point3d((200 - 319.5) * (1500.25 / 525), (100 - 239.5) * (1500.25 / 530), 1500.25));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(200.75, 100.5)),
              cv::Point3d((200.75 - 319.5) * (1500.25 / 525), (100.5 - 239.5) * (1500.25 / 530), 1500.25));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(200, 101)),
              cv::Point3d((200 - 319.5) * (-2.0 / 525), (101 - 239.5) * (-2.0 / 530), -2));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(200, 102)).z, -0.5);
    const double Z = 1.0f / 3;
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(200.1, 103.7)),
              cv::Point3d((200.1 - 319.5) * (Z / 525), (103.7 - 239.5) * (Z / 530), Z));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(201, 100)), cv::Point3d(0, 0, 0));
}

TEST(kelAbstractDataCalibrationWithDepthTest, ProjectsPointsOfTheCamerasFrame)
{
    Depth calibration;
    calibration.setIntrinsicMatrix(someIntrinsic());
    calibration.setExtrinsicMatrix(cv::Mat()); // takes no part
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(1, -2, 4)),
              cv::Point2d(525.0 * 1 / 4 + 319.5, 530.0 * -2 / 4 + 239.5));
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(10, -20, -4)),
              cv::Point2d(525.0 * 10 / -4 + 319.5, 530.0 * -20 / -4 + 239.5));
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(0.2, -5.7, 1.9)),
              cv::Point2d(525.0 * 0.2 / 1.9 + 319.5, 530.0 * -5.7 / 1.9 + 239.5));
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(5, 6, 0)), cv::Point2d(319.5, 239.5));
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(5, 6, -0.0)), cv::Point2d(319.5, 239.5));
}

TEST(kelAbstractDataCalibrationWithDepthTest, TheProjectionsAreInverseWhereThereIsDepth)
{
    Depth calibration;
    calibration.setIntrinsicMatrix(someIntrinsic());
    cv::Mat map(480, 640, CV_32F);
    cv::RNG random(1);
    random.fill(map, cv::RNG::UNIFORM, 0.5, 9000);
    calibration.setDepthInformation(map);
    for (int v = 0; v < 480; v += 7) {
        for (int u = 0; u < 640; u += 7) {
            const cv::Point2d pixel = calibration.worldToImage(calibration.imageToWorld(cv::Point2d(u, v)));
            ASSERT_NEAR(pixel.x, u, 1e-10);
            ASSERT_NEAR(pixel.y, v, 1e-10);
        }
    }
}

TEST(kelAbstractDataCalibrationWithDepthTest, TheWorldsProjectionsStayBesideTheCameras)
{
    Depth calibration;
    calibration.setIntrinsicMatrix(someIntrinsic());
    calibration.setExtrinsicMatrix(someExtrinsic());
    calibration.setDepthInformation(cv::Mat(480, 640, CV_32F, cv::Scalar(5)));
    kelAbstractDataCalibration plain;
    plain.setIntrinsicMatrix(someIntrinsic());
    plain.setExtrinsicMatrix(someExtrinsic());

    const cv::Point3d point(1, 4, 2);
    const Depth &fixed = calibration;
    const kelAbstractDataCalibration &base = calibration;
    EXPECT_EQ(fixed.worldToImage(point), plain.worldToImage(point));
    EXPECT_EQ(base.worldToImage(point), plain.worldToImage(point));
    EXPECT_EQ(calibration.kelAbstractDataCalibration::worldToImage(point), plain.worldToImage(point));
    EXPECT_EQ(calibration.worldToImage(point), cv::Point2d(525.0 / 2 + 319.5, 530.0 * 4 / 2 + 239.5));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(100, 400), 0.0),
              plain.imageToWorld(cv::Point2d(100, 400), 0));
    double up[] = {0, 0, 1};
    EXPECT_EQ(calibration.compute_3d_height(cv::Point2i(100, 400), 1.5, up),
              plain.compute_3d_height(cv::Point2i(100, 400), 1.5, up));
    EXPECT_EQ(calibration.getPosition(), cv::Point3d(0, 0, 3));
}

TEST(kelAbstractDataCalibrationWithDepthTest, AnIntrinsicMatrixOfTwoRowsAndThreeColumnsSuffices)
{
    Depth calibration;
    calibration.setIntrinsicMatrix(someIntrinsic()(cv::Rect(0, 0, 3, 2)));
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(5, 6, 0)), cv::Point2d(319.5, 239.5));
}

TEST(kelAbstractDataCalibrationWithDepthTest, AnUnusableIntrinsicMatrixThrows)
{
    Depth calibration;
    calibration.setDepthInformation(cv::Mat(2, 2, CV_32F, cv::Scalar(5)));
    for (const cv::Mat &K :
         {cv::Mat(), cv::Mat(3, 4, CV_32F, cv::Scalar(1)), cv::Mat(1, 4, CV_64F, cv::Scalar(1)),
          cv::Mat(3, 2, CV_64F, cv::Scalar(1)), cv::Mat(3, 4, CV_64FC2, cv::Scalar(1))}) {
        calibration.setIntrinsicMatrix(K);
        EXPECT_THROW(calibration.imageToWorld(cv::Point2d(1, 1)), cv::Exception);
        EXPECT_THROW(calibration.worldToImage(cv::Point3d(1, 1, 1)), cv::Exception);
    }
}

TEST(kelAbstractDataCalibrationWithDepthTest, ProjectionsAndPlaneGeometryAllocateNothing)
{
    Depth calibration;
    calibration.setIntrinsicMatrix(someIntrinsic());
    calibration.setExtrinsicMatrix(someExtrinsic());
    calibration.setDepthInformation(cv::Mat(480, 640, CV_32F, cv::Scalar(5)));
    const kelAbstractDataCalibration &world = calibration;
    Plane plane{1, 2, 3, 4};

    const MatrixAllocations matrices;
    const std::size_t before = allocations;
    double sum = 0;
    for (int i = 0; i < 100; ++i) {
        const cv::Point3d point = calibration.imageToWorld(cv::Point2d(i, i));
        sum += calibration.worldToImage(point).x;
        sum += world.worldToImage(world.imageToWorld(cv::Point2d(i, 400), 0)).x;
        sum += calibration.computePointDistanceToPlane(point, plane);
        sum += calibration.pointProjectionOntoPlane(point, plane).x;
        sum += calibration.vectorMagnitude(point);
    }
    EXPECT_EQ(allocations, before);
    EXPECT_EQ(matrices.count, 0);
    EXPECT_FALSE(std::isnan(sum));
    std::unique_ptr<int> counted(new int(1));
    EXPECT_GT(allocations, before);
    const cv::Mat countedToo(1, 1, CV_8U);
    EXPECT_EQ(matrices.count, 1);
}

TEST(kelAbstractDataCalibrationWithDepthTest, DistanceToAPlaneWithAnyNormal)
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

TEST(kelAbstractDataCalibrationWithDepthTest, DistanceToAPlaneWithTooFewCoefficients)
{
    Depth calibration;
    for (Plane plane : {Plane{}, Plane{1}, Plane{1, 2}})
        EXPECT_EQ(calibration.computePointDistanceToPlane(cv::Point3d(1, 1, 5), plane), 0.0);
    Plane three{1, 2, 3};
    EXPECT_THROW(calibration.computePointDistanceToPlane(cv::Point3d(1, 1, 5), three), std::out_of_range);
}

TEST(kelAbstractDataCalibrationWithDepthTest, ProjectionOntoAPlaneWithAnyNormal)
{
    Depth calibration;
    Plane plane{0, 0, 1, 0};
    EXPECT_EQ(calibration.pointProjectionOntoPlane(cv::Point3d(1, 2, 3), plane), cv::Point3d(1, 2, 0));
    plane = {1, -2, 2, 3};
    EXPECT_EQ(calibration.pointProjectionOntoPlane(cv::Point3d(4, 5, 6), plane), cv::Point3d(3, 7, 4));
    plane = {2, -4, 4, 6};
    EXPECT_EQ(calibration.pointProjectionOntoPlane(cv::Point3d(4, 5, 6), plane), cv::Point3d(3, 7, 4));
}

TEST(kelAbstractDataCalibrationWithDepthTest, MagnitudeIsTheEuclideanNorm)
{
    Depth calibration;
    EXPECT_EQ(calibration.vectorMagnitude(cv::Point3d(2, -3, 6)), 7);
    EXPECT_EQ(calibration.vectorMagnitude(cv::Point3d(0, 0, 0)), 0);
}

TEST(kelAbstractDataCalibrationWithDepthTest, PlaneGeometryIsThatOfTheFormulasBitForBit)
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

TEST(kelAbstractDataCalibrationWithDepthTest, TheListOfNamesIsKeptAsGiven)
{
    Depth calibration;
    calibration.setListContextObjectsForbiddenInPlanComputation(" a,, b  c");
    EXPECT_EQ(calibration.getListContextObjectsForbiddenInPlanComputation(), " a,, b  c");
    calibration.setListContextObjectsForbiddenInPlanComputation("d");
    EXPECT_EQ(calibration.getListContextObjectsForbiddenInPlanComputation(), "d");
}

TEST(kelAbstractDataCalibrationWithDepthTest, FourFloorPointsGiveTheFloor)
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

TEST(kelAbstractDataCalibrationWithDepthTest, ThePlaneIsThatOfTheStatedStepsBitForBit)
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

TEST(kelAbstractDataCalibrationWithDepthTest, OnlyPolygonVerticesTakePartWhateverSemanticAndShape)
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

TEST(kelAbstractDataCalibrationWithDepthTest, EveryElementThatTakesPartIsDisplayed)
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

TEST(kelAbstractDataCalibrationWithDepthTest, NothingIsStored)
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

TEST(kelAbstractDataCalibrationWithDepthTest, WithoutElementsThereIsNoPlane)
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

TEST(kelAbstractDataCalibrationWithDepthTest, WithoutVerticesThePlaneHasNoPlace)
{
    Depth calibration;
    Scene scene;
    scene.add("a", {}).add("b", {}, "circle");
    const Plane plane = fit(calibration, &scene);
    ASSERT_EQ(plane.size(), 4u);
    EXPECT_TRUE(std::isnan(plane[3]));
}

TEST(kelAbstractDataCalibrationWithDepthTest, HugeAndInvalidVerticesEndToo)
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

TEST(kelAbstractDataCalibrationWithDepthTest, NamesAreSplitAtCommasAndBlanks)
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

TEST(kelAbstractDataCalibrationWithDepthTest, EachListedNameLeavesOutTheFirstElementThatHasIt)
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

TEST(kelAbstractDataCalibrationWithDepthTest, CopiesShareMatricesAndMapAndStartWithoutNames)
{
    Depth calibration;
    calibration.setReferentialName("room");
    calibration.setIntrinsicMatrix(someIntrinsic());
    calibration.setExtrinsicMatrix(someExtrinsic());
    calibration.setDistortionMatrix(cv::Mat::ones(1, 5, CV_64F));
    calibration.setDepthInformation(numbered(2, 3));
    calibration.setListContextObjectsForbiddenInPlanComputation("table");
    calibration.addSpecificProperty("k", 7);
    QVariantMap map{{"m", 1}};
    calibration.setMap(map);

    Depth copy(calibration);
    const std::unique_ptr<Depth> clone(calibration.clone());
    for (Depth *object : {&copy, clone.get()}) {
        EXPECT_EQ(object->getReferentialName(), "room");
        EXPECT_EQ(object->getIntrinsicMatrix().data, calibration.getIntrinsicMatrix().data);
        EXPECT_EQ(object->getExtrinsicMatrix().data, calibration.getExtrinsicMatrix().data);
        EXPECT_EQ(object->getDistortionMatrix().data, calibration.getDistortionMatrix().data);
        EXPECT_EQ(object->getDepthInformation().data, calibration.getDepthInformation().data);
        EXPECT_EQ(object->getListContextObjectsForbiddenInPlanComputation(), "");
        EXPECT_EQ(object->getSpecificProperties().value("k"), 7);
        EXPECT_TRUE(object->getMap().isEmpty());
    }
}

TEST(kelAbstractDataCalibrationWithDepthTest, AssignmentTakesTheMapAndKeepsTheNames)
{
    Depth from;
    from.setReferentialName("room");
    from.setIntrinsicMatrix(someIntrinsic());
    from.setDepthInformation(numbered(2, 3));
    from.setListContextObjectsForbiddenInPlanComputation("table");
    Depth to;
    to.setListContextObjectsForbiddenInPlanComputation("door");
    MessageCapture messages;
    EXPECT_EQ(&(to = from), &to);
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(to.getReferentialName(), "room");
    EXPECT_EQ(to.getIntrinsicMatrix().data, from.getIntrinsicMatrix().data);
    EXPECT_EQ(to.getDepthInformation().data, from.getDepthInformation().data);
    EXPECT_EQ(to.getListContextObjectsForbiddenInPlanComputation(), "door");

    const Depth &same = to;
    to = same;
    EXPECT_EQ(to.getDepthInformation().data, from.getDepthInformation().data);
    EXPECT_EQ(to.getListContextObjectsForbiddenInPlanComputation(), "door");
}

TEST(kelAbstractDataCalibrationWithDepthTest, CopyThroughTheFrameworkLeavesTheMapOut)
{
    Depth from;
    from.setReferentialName("room");
    from.setIntrinsicMatrix(someIntrinsic());
    from.setDepthInformation(numbered(2, 3));
    Depth to;
    const void *map = to.getDepthInformation().data;
    MessageCapture messages;
    to.copy(static_cast<const nubAbstractObject &>(from));
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(to.getReferentialName(), "room");
    EXPECT_EQ(to.getIntrinsicMatrix().data, from.getIntrinsicMatrix().data);
    EXPECT_EQ(to.getDepthInformation().data, map);

    static_cast<kelAbstractDataCalibration &>(to) = from;
    EXPECT_EQ(to.getDepthInformation().data, map);
}

TEST(kelAbstractDataCalibrationWithDepthTest, CopyFromAnotherKindWarnsTwiceAndTakesNothing)
{
    Depth calibration;
    const void *map = calibration.getDepthInformation().data;
    kelAbstractDataCalibration plain;
    plain.setReferentialName("room");
    MessageCapture messages;
    calibration.copy(plain);
    EXPECT_EQ(messages.take(), (QStringList{slicingWarning(), slicingWarning()}));
    OtherDepth other;
    other.setReferentialName("room");
    other.setDepthInformation(numbered(2, 3));
    calibration = other;
    EXPECT_EQ(messages.take(), (QStringList{slicingWarning(), slicingWarning()}));
    calibration.copy(static_cast<const nubAbstractObject &>(plain));
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});
    calibration.copy(kelDataBlob());
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});
    EXPECT_EQ(calibration.getReferentialName(), "Default");
    EXPECT_EQ(calibration.getDepthInformation().data, map);
    calibration.copy(Impostor());
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});
    EXPECT_EQ(calibration.getDepthInformation().data, map);

    const LogLevel level(18);
    calibration.copy(plain);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataCalibrationWithDepthTest, AssignmentCallsTheVirtualCopyForCalibrations)
{
    class Recorder : public Depth
    {
    public:
        using Depth::copy;
        using Depth::operator=;
        void copy(const kelAbstractDataCalibration &other) override { from = &other; }
        const void *from = nullptr;
    };
    Recorder recorder;
    const Depth other;
    recorder = other;
    EXPECT_EQ(recorder.from, static_cast<const kelAbstractDataCalibration *>(&other));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, ReadsTheCalibrationFileOfItsBase)
{
    {
        cv::FileStorage storage("camera.yml", cv::FileStorage::WRITE);
        storage << "referentialName"
                << "room"
                << "intrinsicMatrix" << someIntrinsic();
    }
    Depth calibration;
    EXPECT_TRUE(calibration.read("camera.yml"));
    EXPECT_EQ(calibration.getReferentialName(), "room");
    EXPECT_TRUE(sameElements(calibration.getIntrinsicMatrix(), someIntrinsic()));
    const kelAbstractDataCalibration &world = calibration;
    EXPECT_THROW(world.worldToImage(cv::Point3d(1, 2, 3)), cv::Exception);
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(1, 2, 0)), cv::Point2d(319.5, 239.5));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, LoadsAMapOfItsOwnSize)
{
    const cv::Mat map = numbered(480, 640);
    write("depth.raw", rawBytes(480, 640, map));
    Depth calibration;
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), map));
    EXPECT_EQ(calibration.depthVal(3, 2), 1284);
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, TakesTheRowsOfTheFile)
{
    for (const int rows : {2, 479, 481, 600}) {
        const cv::Mat map = numbered(rows, 640);
        write("depth.raw", rawBytes(rows, 640, map) + "what follows is ignored");
        Depth calibration;
        load(calibration, "depth.raw");
        EXPECT_TRUE(sameElements(calibration.getDepthInformation(), map)) << rows;
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, NoRowsLeaveNoMap)
{
    write("depth.raw", rawBytes(0, 640, cv::Mat()));
    Depth calibration;
    load(calibration, "depth.raw");
    EXPECT_EQ(calibration.getDepthInformation().rows, 0);
    EXPECT_EQ(calibration.getDepthInformation().cols, 640);
    EXPECT_EQ(calibration.getDepthInformation().type(), CV_32F);

    write("depth.raw", rawBytes(2, 640, numbered(2, 640)));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), numbered(2, 640)));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, NoRowsOfANarrowerFileLeaveNoMapEither)
{
    for (const int columns : {0, 2, -1}) {
        write("depth.raw", rawBytes(0, columns, cv::Mat()));
        Depth calibration;
        load(calibration, "depth.raw");
        EXPECT_EQ(calibration.getDepthInformation().size(), cv::Size(640, 0)) << columns;
        EXPECT_EQ(calibration.getDepthInformation().type(), CV_32F);
    }
    const cv::Mat part = numbered(3, 2);
    write("depth.raw", rawBytes(3, 2, part));
    Depth calibration;
    calibration.setDepthInformation(cv::Mat(0, 4, CV_32F));
    load(calibration, "depth.raw");
    cv::Mat expected = cv::Mat::zeros(3, 4, CV_32F);
    part.copyTo(expected.colRange(0, 2));
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), expected));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMapInWiderRowsIsFilledRowByRow)
{
    write("depth.raw", rawBytes(3, 4, numbered(3, 4, 50)));
    Depth calibration;
    calibration.setDepthInformation(numbered(6, 9)(cv::Rect(2, 1, 4, 3)));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), numbered(3, 4, 50)));
    EXPECT_EQ(calibration.getDepthInformation().ptr<float>()[4], 16); // beside the map
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AnyFloatIsTakenAsItStands)
{
    cv::Mat map = numbered(1, 4);
    map.at<float>(0, 0) = -0.0f;
    map.at<float>(0, 1) = std::numeric_limits<float>::quiet_NaN();
    map.at<float>(0, 2) = std::numeric_limits<float>::infinity();
    map.at<float>(0, 3) = std::numeric_limits<float>::denorm_min();
    write("depth.raw", rawBytes(1, 4, map));
    Depth calibration;
    calibration.setDepthInformation(cv::Mat(3, 4, CV_32F));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), map));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMissingFileLeavesTheMapAndPrintsTheLineAllTheSame)
{
    Depth calibration;
    calibration.setDepthInformation(numbered(2, 3));
    const void *before = calibration.getDepthInformation().data;
    load(calibration, "missing.raw");
    EXPECT_EQ(calibration.getDepthInformation().data, before);
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), numbered(2, 3)));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, ElementsThatAShortFileLeavesOutAreMinusOne)
{
    const cv::Mat map = numbered(4, 5);
    const QByteArray whole = rawBytes(4, 5, map);
    for (int length = 8; length <= whole.size(); ++length) {
        write("depth.raw", whole.left(length));
        Depth calibration;
        calibration.setDepthInformation(cv::Mat(7, 5, CV_32F, cv::Scalar(9)));
        load(calibration, "depth.raw");
        cv::Mat expected = map.clone();
        for (int i = (length - 8) / 4; i < 20; ++i)
            expected.at<float>(i / 5, i % 5) = -1;
        EXPECT_TRUE(sameElements(calibration.getDepthInformation(), expected)) << length;
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AFileNarrowerThanTheMapKeepsTheOtherColumns)
{
    const cv::Mat part = numbered(3, 2, 100);
    write("depth.raw", rawBytes(3, 2, part));
    for (const int rows : {2, 3, 5}) {
        Depth calibration;
        calibration.setDepthInformation(numbered(rows, 4));
        load(calibration, "depth.raw");
        cv::Mat expected = cv::Mat::zeros(3, 4, CV_32F);
        const cv::Range kept(0, std::min(rows, 3));
        numbered(rows, 4).rowRange(kept).copyTo(expected.rowRange(kept));
        part.copyTo(expected.colRange(0, 2));
        EXPECT_TRUE(sameElements(calibration.getDepthInformation(), expected)) << rows;
    }
    write("depth.raw", rawBytes(3, 2, part).left(8 + 4 * 3));
    Depth calibration;
    calibration.setDepthInformation(numbered(3, 4));
    load(calibration, "depth.raw");
    const cv::Mat expected =
        (cv::Mat_<float>(3, 4) << 100, 101, 3, 4, /**/ 102, -1, 7, 8, /**/ -1, -1, 11, 12);
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), expected));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AFileWithoutColumnsChangesTheRowsOnly)
{
    for (const int columns : {0, -1, -2147483647 - 1}) {
        write("depth.raw", rawBytes(1, columns, numbered(1, 3, 50)));
        Depth calibration;
        calibration.setDepthInformation(numbered(2, 3));
        load(calibration, "depth.raw");
        EXPECT_TRUE(sameElements(calibration.getDepthInformation(), numbered(1, 3))) << columns;
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AFileWiderThanTheMapChangesNothing)
{
    for (const int columns : {4, 640, 2147483647}) {
        write("depth.raw", rawBytes(2, columns, numbered(2, 4)));
        Depth calibration;
        calibration.setDepthInformation(numbered(5, 3));
        const void *before = calibration.getDepthInformation().data;
        load(calibration, "depth.raw");
        EXPECT_EQ(calibration.getDepthInformation().data, before);
        EXPECT_TRUE(sameElements(calibration.getDepthInformation(), numbered(5, 3)));
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMapThatDoesNotHoldFloatsStays)
{
    write("depth.raw", rawBytes(2, 3, numbered(2, 3)));
    const int sizes[] = {2, 3, 4};
    for (const cv::Mat &map :
         {cv::Mat(4, 3, CV_16U, cv::Scalar(7)), cv::Mat(4, 3, CV_64F, cv::Scalar(7)),
          cv::Mat(4, 3, CV_32FC2, cv::Scalar(7, 7)), cv::Mat(), cv::Mat(3, sizes, CV_32F, cv::Scalar(7))}) {
        Depth calibration;
        calibration.setDepthInformation(map);
        load(calibration, "depth.raw");
        EXPECT_EQ(calibration.getDepthInformation().data, map.data);
        EXPECT_EQ(calibration.getDepthInformation().rows, map.rows);
        EXPECT_EQ(calibration.getDepthInformation().type(), map.type());
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AHeaderThatIsShortOrNegativeThrowsBeforeAnythingChanges)
{
    const QByteArray whole = rawBytes(480, 640, numbered(480, 640));
    for (int length = 0; length < 8; ++length) {
        write("depth.raw", whole.left(length));
        Depth calibration;
        expectRefused(calibration, "depth.raw");
    }
    for (const int rows : {-1, -2, -2147483647 - 1}) {
        for (const int columns : {640, 641, -1}) {
            write("depth.raw", rawBytes(rows, columns, numbered(2, 640)));
            Depth calibration;
            expectRefused(calibration, "depth.raw");
        }
    }
    QDir().mkdir("folder");
    Depth calibration;
    expectRefused(calibration, "folder");
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, RowsThatNoMemoryHoldsThrow)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer ends the process for such an allocation";
#endif
    // Rows wide enough for no address space to hold them all.
    write("depth.raw", rawBytes(2147483647, 1000000, cv::Mat()));
    Depth calibration;
    calibration.setDepthInformation(cv::Mat(1, 1000000, CV_32F, cv::Scalar(9)));
    expectRefused(calibration, "depth.raw");
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, LoadingGivesTheObjectABufferOfItsOwn)
{
    write("depth.raw", rawBytes(2, 3, numbered(2, 3, 50)));
    const cv::Mat callers = numbered(2, 3);
    Depth calibration;
    calibration.setDepthInformation(callers);
    const Depth copy(calibration);
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), numbered(2, 3, 50)));
    EXPECT_TRUE(sameElements(callers, numbered(2, 3)));
    EXPECT_EQ(copy.getDepthInformation().data, callers.data);

    // The same with memory that OpenCV does not count references of, or counts elsewhere, and with one copy
    // only.
    float memory[6] = {};
    calibration.setDepthInformation(cv::Mat(2, 3, CV_32F, memory));
    load(calibration, "depth.raw");
    EXPECT_EQ(memory[0], 0);
    const cv::UMat device(2, 3, CV_32F, cv::Scalar(7));
    calibration.setDepthInformation(device.getMat(cv::ACCESS_READ));
    load(calibration, "depth.raw");
    EXPECT_EQ(device.getMat(cv::ACCESS_READ).at<float>(0, 0), 7);
    const Depth other(calibration);
    write("depth.raw", rawBytes(2, 3, numbered(2, 3, 90)));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameElements(other.getDepthInformation(), numbered(2, 3, 50)));
    EXPECT_TRUE(sameElements(calibration.getDepthInformation(), numbered(2, 3, 90)));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMapThatNobodySharesIsReused)
{
    write("depth.raw", rawBytes(480, 640, numbered(480, 640)));
    Depth calibration;
    const void *before = calibration.getDepthInformation().data;
    load(calibration, "depth.raw");
    EXPECT_EQ(calibration.getDepthInformation().data, before);
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, FileNamesMayHoldAnyCharacters)
{
    const QString name = QString::fromUtf8("profondeur \xc3\xa9.raw");
    write(name, rawBytes(2, 640, numbered(2, 640)));
    Depth calibration;
    load(calibration, name);
    EXPECT_EQ(calibration.getDepthInformation().rows, 2);
}
