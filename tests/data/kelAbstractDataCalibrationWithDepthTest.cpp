#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth_p.h>
#include <kelCore/data/kelDataBlob.h>

#include "data/DepthCalibration.h"
#include "support/Allocations.h"
#include "support/Capture.h"
#include "support/Matrices.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualSlot.h"

#include <cmath>
#include <memory>
#include <type_traits>

namespace {

using Plane = std::vector<double>;
using kelAbstractDataCalibrationWithDepthReadTest = TemporaryFolder;

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
    EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), zeros));
    EXPECT_TRUE(sameMatrix(calibration.getExtrinsicMatrix(), zeros));
    EXPECT_TRUE(sameMatrix(calibration.getDistortionMatrix(), zeros));
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), cv::Mat::zeros(480, 640, CV_32F)));
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
    const std::size_t before = heapAllocations();
    double sum = 0;
    for (int i = 0; i < 100; ++i) {
        const cv::Point3d point = calibration.imageToWorld(cv::Point2d(i, i));
        sum += calibration.worldToImage(point).x;
        sum += world.worldToImage(world.imageToWorld(cv::Point2d(i, 400), 0)).x;
        sum += calibration.computePointDistanceToPlane(point, plane);
        sum += calibration.pointProjectionOntoPlane(point, plane).x;
        sum += calibration.vectorMagnitude(point);
    }
    EXPECT_EQ(heapAllocations(), before);
    EXPECT_EQ(matrices.count, 0);
    EXPECT_FALSE(std::isnan(sum));
    std::unique_ptr<int> counted(new int(1));
    EXPECT_GT(heapAllocations(), before);
    const cv::Mat countedToo(1, 1, CV_8U);
    EXPECT_EQ(matrices.count, 1);
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
    from.setExtrinsicMatrix(someExtrinsic());
    from.setDistortionMatrix(cv::Mat::ones(1, 5, CV_64F));
    from.setDepthInformation(numbered(2, 3));
    from.setListContextObjectsForbiddenInPlanComputation("table");
    Depth to;
    to.setListContextObjectsForbiddenInPlanComputation("door");
    MessageCapture messages;
    EXPECT_EQ(&(to = from), &to);
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(to.getReferentialName(), "room");
    EXPECT_EQ(to.getIntrinsicMatrix().data, from.getIntrinsicMatrix().data);
    EXPECT_EQ(to.getExtrinsicMatrix().data, from.getExtrinsicMatrix().data);
    EXPECT_EQ(to.getDistortionMatrix().data, from.getDistortionMatrix().data);
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

TEST_F(kelAbstractDataCalibrationWithDepthReadTest, ReadsTheCalibrationFileOfItsBase)
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
    EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), someIntrinsic()));
    const kelAbstractDataCalibration &world = calibration;
    EXPECT_THROW(world.worldToImage(cv::Point3d(1, 2, 3)), cv::Exception);
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(1, 2, 0)), cv::Point2d(319.5, 239.5));
}

TEST_F(kelAbstractDataCalibrationWithDepthReadTest, KeepsTheMapAndTheNames)
{
    {
        cv::FileStorage storage("camera.yml", cv::FileStorage::WRITE);
        storage << "intrinsicMatrix" << someIntrinsic();
    }
    Depth calibration;
    const cv::Mat map = numbered(2, 3);
    calibration.setDepthInformation(map);
    calibration.setListContextObjectsForbiddenInPlanComputation("table");
    ASSERT_TRUE(calibration.read("camera.yml"));
    EXPECT_EQ(calibration.getDepthInformation().data, map.data);
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(2, 3)));
    EXPECT_EQ(calibration.getListContextObjectsForbiddenInPlanComputation(), "table");
}

TEST(kelAbstractDataCalibrationWithDepthTest, DistortionIsNeverApplied)
{
    Depth plain;
    plain.setIntrinsicMatrix(someIntrinsic());
    plain.setExtrinsicMatrix(someExtrinsic());
    plain.setDepthInformation(cv::Mat(480, 640, CV_32F, cv::Scalar(5)));
    Depth distorted(plain);
    distorted.setDistortionMatrix(cv::Mat::ones(1, 5, CV_64F) * 100);
    EXPECT_EQ(distorted.imageToWorld(cv::Point2d(100, 400)), plain.imageToWorld(cv::Point2d(100, 400)));
    EXPECT_EQ(distorted.worldToImage(cv::Point3d(1, 2, 3)), plain.worldToImage(cv::Point3d(1, 2, 3)));
    EXPECT_EQ(distorted.imageToWorld(cv::Point2d(100, 400), 1.0),
              plain.imageToWorld(cv::Point2d(100, 400), 1.0));
    double up[] = {0, 0, 1};
    EXPECT_EQ(distorted.compute_3d_height(cv::Point2i(100, 400), 1.5, up),
              plain.compute_3d_height(cv::Point2i(100, 400), 1.5, up));
}
