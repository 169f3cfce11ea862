#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataCalibration_p.h>
#include <kelCore/data/kelDataBlob.h>

#include "support/Capture.h"
#include "support/FlushCounter.h"
#include "support/Matrices.h"
#include "support/TemporaryFolder.h"

#include <opencv2/core.hpp>

#include <cmath>
#include <limits>
#include <memory>

namespace {

/// Looks along the world's Y axis from (0, 0, 3), with unit focal length: (X, Y, Z) is seen at
/// (X / Y, (3 - Z) / Y).
const cv::Matx34d simpleIntrinsic(1, 0, 0, 0, /**/ 0, 1, 0, 0, /**/ 0, 0, 1, 0);
const cv::Matx44d simpleExtrinsic(1, 0, 0, 0, /**/ 0, 0, -1, 3, /**/ 0, 1, 0, 0, /**/ 0, 0, 0, 1);

/// A pose as a file holds it: a rotation about an oblique axis, and a translation.
const cv::Matx44d somePose(0.36, 0.48, -0.8, 1.5, /**/ -0.8, 0.6, 0, -2.5, /**/ 0.48, 0.64, 0.6, 3.5, /**/ 0,
                           0, 0, 1);
const cv::Matx34d someIntrinsic(525, 0.5, 319.5, 0, /**/ 0, 530, 239.5, 0, /**/ 0, 0, 1, 0);

void setSimple(kelAbstractDataCalibration &calibration)
{
    calibration.setIntrinsicMatrix(cv::Mat(simpleIntrinsic));
    calibration.setExtrinsicMatrix(cv::Mat(simpleExtrinsic));
}

/// What is stored for a file's pose.
cv::Mat worldToCameraOf(const cv::Mat &pose)
{
    cv::Mat exchanged = pose.clone();
    pose.row(2).copyTo(exchanged.row(1));
    pose.row(1).copyTo(exchanged.row(2));
    return exchanged.inv(cv::DECOMP_LU);
}

/// The projection as matrix products say it.
cv::Point2d plainWorldToImage(const cv::Mat &P, const cv::Point3d &w)
{
    const cv::Mat point = (cv::Mat_<double>(4, 1) << w.x, w.y, w.z, 1);
    const cv::Mat r = P * point;
    return cv::Point2d(r.at<double>(0) / r.at<double>(2), r.at<double>(1) / r.at<double>(2));
}

/// The back-projection written out over a matrix; false where it has none.
bool plainImageToWorld(const cv::Mat &P, const cv::Point2d &pixel, double h, cv::Point3d &result)
{
    const auto p = [&P](int r, int c) { return P.at<double>(r, c); };
    const double u = pixel.x;
    const double v = pixel.y;
    const double D = (p(2, 1) * p(1, 0) - p(2, 0) * p(1, 1)) * u + (p(0, 1) * p(2, 0) - p(0, 0) * p(2, 1)) * v
        + p(0, 0) * p(1, 1) - p(0, 1) * p(1, 0);
    if (D == 0.0)
        return false;
    const double b0 = p(0, 2) * h + p(0, 3) - (p(2, 2) * h + p(2, 3)) * u;
    const double b1 = p(1, 2) * h + p(1, 3) - (p(2, 2) * h + p(2, 3)) * v;
    result = cv::Point3d(((v * p(2, 1) - p(1, 1)) * b0 - (u * p(2, 1) - p(0, 1)) * b1) / D,
                         ((u * p(2, 0) - p(0, 0)) * b1 - (v * p(2, 0) - p(1, 0)) * b0) / D, h);
    return true;
}

/// Back-projects and projects to fixed places, and remembers what it was asked.
class FixedProjections : public kelAbstractDataCalibration
{
public:
    cv::Point3d imageToWorld(cv::Point2d pixel, double height) const override
    {
        askedPixel = pixel;
        askedHeight = height;
        return cv::Point3d(1, 2, height);
    }
    cv::Point2d worldToImage(cv::Point3d point) const override
    {
        askedPoint = point;
        return cv::Point2d(7, 50);
    }
    mutable cv::Point2d askedPixel;
    mutable double askedHeight = 0;
    mutable cv::Point3d askedPoint;
};

/// As a calibration with more in it is: of another kind.
class OtherCalibration : public kelAbstractDataCalibration
{
public:
    QString identifier() const override { return "OtherCalibration"; }
};

class kelAbstractDataCalibrationFileTest : public TemporaryFolder
{
protected:
    static void save(const char *file, const cv::Mat &intrinsic = cv::Mat(someIntrinsic),
                     const cv::Mat &extrinsic = cv::Mat(somePose), const char *name = "room")
    {
        cv::FileStorage storage(file, cv::FileStorage::WRITE);
        ASSERT_TRUE(storage.isOpened());
        storage << "distortion" << cv::Mat(distortion()) << "unknown" << 5 << "extrinsicMatrix" << extrinsic;
        storage << "referentialName" << name << "intrinsicMatrix" << intrinsic;
    }
    static cv::Matx<double, 1, 5> distortion() { return {0.1, -0.2, 0.3, -0.4, 0.5}; }

    static void expectLoaded(const kelAbstractDataCalibration &calibration)
    {
        EXPECT_EQ(calibration.getReferentialName(), "room");
        EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), cv::Mat(someIntrinsic)));
        EXPECT_TRUE(sameMatrix(calibration.getExtrinsicMatrix(), worldToCameraOf(cv::Mat(somePose))));
        EXPECT_TRUE(sameMatrix(calibration.getDistortionMatrix(), cv::Mat(distortion())));
    }
    /// A calibration that a failed read must leave as it is.
    static void setOwn(kelAbstractDataCalibration &calibration)
    {
        setSimple(calibration);
        calibration.setReferentialName("own");
        calibration.setDistortionMatrix(cv::Mat::ones(1, 5, CV_64F));
    }
    static void expectOwn(const kelAbstractDataCalibration &calibration)
    {
        EXPECT_EQ(calibration.getReferentialName(), "own");
        EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), cv::Mat(simpleIntrinsic)));
        EXPECT_TRUE(sameMatrix(calibration.getExtrinsicMatrix(), cv::Mat(simpleExtrinsic)));
        EXPECT_TRUE(sameMatrix(calibration.getDistortionMatrix(), cv::Mat::ones(1, 5, CV_64F)));
    }
};

} // namespace

TEST(kelAbstractDataCalibrationTest, AFreshCalibrationHasZeroMatrices)
{
    const kelAbstractDataCalibration calibration;
    EXPECT_EQ(calibration.parent(), nullptr);
    EXPECT_EQ(calibration.identifier(), "kelAbstractDataCalibration");
    EXPECT_EQ(calibration.getReferentialName(), "Default");
    const cv::Mat zeros = cv::Mat::zeros(4, 4, CV_64F);
    EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), zeros));
    EXPECT_TRUE(sameMatrix(calibration.getExtrinsicMatrix(), zeros));
    EXPECT_TRUE(sameMatrix(calibration.getDistortionMatrix(), zeros));
}

TEST(kelAbstractDataCalibrationTest, FreshCalibrationsShareNoMatrix)
{
    const kelAbstractDataCalibration a;
    const kelAbstractDataCalibration b;
    EXPECT_NE(a.getIntrinsicMatrix().data, b.getIntrinsicMatrix().data);
    EXPECT_NE(a.getIntrinsicMatrix().data, a.getExtrinsicMatrix().data);
    EXPECT_NE(a.getExtrinsicMatrix().data, a.getDistortionMatrix().data);
}

TEST(kelAbstractDataCalibrationTest, AFreshCalibrationProjectsNowhere)
{
    const kelAbstractDataCalibration calibration;
    try {
        calibration.imageToWorld(cv::Point2d(1, 2), 0);
        ADD_FAILURE() << "nothing was thrown";
    } catch (int code) {
        EXPECT_EQ(code, -1);
    }
    const cv::Point2d pixel = calibration.worldToImage(cv::Point3d(1, 2, 3));
    EXPECT_TRUE(std::isnan(pixel.x));
    EXPECT_TRUE(std::isnan(pixel.y));
    EXPECT_EQ(calibration.getPosition(), cv::Point3d(0, 0, 0));
}

TEST(kelAbstractDataCalibrationTest, SettersShareTheCallersMatrices)
{
    kelAbstractDataCalibration calibration;
    cv::Mat intrinsic(simpleIntrinsic);
    cv::Mat extrinsic(simpleExtrinsic);
    intrinsic = intrinsic.clone();
    extrinsic = extrinsic.clone();
    const cv::Mat distortion(1, 5, CV_32F);
    calibration.setIntrinsicMatrix(intrinsic);
    calibration.setExtrinsicMatrix(extrinsic);
    calibration.setDistortionMatrix(distortion);
    calibration.setReferentialName("room");
    EXPECT_EQ(calibration.getReferentialName(), "room");
    EXPECT_EQ(calibration.getIntrinsicMatrix().data, intrinsic.data);
    EXPECT_EQ(calibration.getExtrinsicMatrix().data, extrinsic.data);
    EXPECT_EQ(calibration.getDistortionMatrix().data, distortion.data);
    EXPECT_TRUE(sameMatrix(calibration.getExtrinsicMatrix(), cv::Mat(simpleExtrinsic)));

    EXPECT_EQ(calibration.worldToImage(cv::Point3d(2, 4, 1)), cv::Point2d(0.5, 0.5));
    intrinsic.at<double>(0, 0) = 10;
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(2, 4, 1)), cv::Point2d(5, 0.5));
    extrinsic.at<double>(1, 3) = 5;
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(2, 4, 1)), cv::Point2d(5, 1));
    EXPECT_EQ(calibration.getPosition(), cv::Point3d(0, 0, 5));
}

TEST(kelAbstractDataCalibrationTest, GettersGiveTheStoredMatricesThemselves)
{
    kelAbstractDataCalibration calibration;
    const cv::Mat &intrinsic = calibration.getIntrinsicMatrix();
    const cv::Mat &extrinsic = calibration.getExtrinsicMatrix();
    const cv::Mat &distortion = calibration.getDistortionMatrix();
    calibration.setIntrinsicMatrix(cv::Mat(3, 4, CV_64F));
    calibration.setExtrinsicMatrix(cv::Mat(5, 4, CV_64F));
    calibration.setDistortionMatrix(cv::Mat(1, 8, CV_64F));
    EXPECT_EQ(intrinsic.rows, 3);
    EXPECT_EQ(extrinsic.rows, 5);
    EXPECT_EQ(distortion.cols, 8);
}

TEST(kelAbstractDataCalibrationTest, TheCalibrationIsTheProductMadeAnew)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    const cv::Mat P = calibration.getCalibration();
    EXPECT_TRUE(sameMatrix(P, cv::Mat(simpleIntrinsic) * cv::Mat(simpleExtrinsic)));
    EXPECT_EQ(P.rows, 3);
    EXPECT_EQ(P.cols, 4);
    EXPECT_NE(calibration.getCalibration().data, P.data);
    calibration.setIntrinsicMatrix(cv::Mat::eye(4, 4, CV_64F));
    EXPECT_TRUE(sameMatrix(calibration.getCalibration(), cv::Mat(simpleExtrinsic)));
}

TEST(kelAbstractDataCalibrationTest, ProjectsThroughThePinholeBothWays)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(2, 4, 1)), cv::Point2d(0.5, 0.5));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(0.5, 0.5), 1), cv::Point3d(2, 4, 1));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(0.5, 0.5), 0), cv::Point3d(3, 6, 0));
    EXPECT_EQ(calibration.getPosition(), cv::Point3d(0, 0, 3));
}

TEST(kelAbstractDataCalibrationTest, ProjectionUndoesBackProjection)
{
    kelAbstractDataCalibration calibration;
    calibration.setIntrinsicMatrix(cv::Mat(someIntrinsic));
    calibration.setExtrinsicMatrix(worldToCameraOf(cv::Mat(somePose)));
    for (int u = 0; u < 640; u += 70) {
        for (int v = 0; v < 480; v += 70) {
            for (const double h : {0.0, 1.0, -7.5}) {
                const cv::Point3d world = calibration.imageToWorld(cv::Point2d(u, v), h);
                EXPECT_EQ(world.z, h);
                const cv::Point2d pixel = calibration.worldToImage(world);
                EXPECT_NEAR(pixel.x, u, 1e-6);
                EXPECT_NEAR(pixel.y, v, 1e-6);
            }
        }
    }
}

TEST(kelAbstractDataCalibrationTest, APixelOnTheHorizonThrowsMinusOne)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    for (const double u : {-1.0, 0.0, 2.0}) {
        try {
            calibration.imageToWorld(cv::Point2d(u, 0), 1);
            ADD_FAILURE() << "nothing was thrown";
        } catch (int code) {
            EXPECT_EQ(code, -1);
        }
    }
    EXPECT_NO_THROW(calibration.imageToWorld(cv::Point2d(0, 1e-300), 1));
}

TEST(kelAbstractDataCalibrationTest, APointInTheCamerasPlaneIsAtInfinity)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    const cv::Point2d pixel = calibration.worldToImage(cv::Point3d(-1, 0, 3));
    EXPECT_TRUE(std::isinf(pixel.x));
    EXPECT_LT(pixel.x, 0);
    EXPECT_TRUE(std::isnan(pixel.y));
}

TEST(kelAbstractDataCalibrationTest, DistortionIsNeverApplied)
{
    kelAbstractDataCalibration plain;
    setSimple(plain);
    kelAbstractDataCalibration distorted;
    setSimple(distorted);
    distorted.setDistortionMatrix(cv::Mat::ones(1, 5, CV_64F) * 100);
    EXPECT_EQ(distorted.worldToImage(cv::Point3d(2, 4, 1)), plain.worldToImage(cv::Point3d(2, 4, 1)));
    EXPECT_EQ(distorted.imageToWorld(cv::Point2d(2, 4), 1), plain.imageToWorld(cv::Point2d(2, 4), 1));
}

TEST(kelAbstractDataCalibrationTest, ProjectionsGiveTheBitsOfTheMatrixProducts)
{
    cv::RNG random(20240501);
    int projected = 0;
    int backProjected = 0;
    for (int i = 0; i < 4000; ++i) {
        const cv::Mat K = randomMatrix(random, i % 2 ? 3 : 4, 4, 600);
        const cv::Mat E = randomMatrix(random, 4, 4, 10);
        const cv::Mat P = K * E;
        kelAbstractDataCalibration calibration;
        calibration.setIntrinsicMatrix(i % 3 ? K : asView(K));
        calibration.setExtrinsicMatrix(i % 5 ? E : asView(E));
        ASSERT_TRUE(sameMatrix(calibration.getCalibration(), P));

        const cv::Point3d world(random.uniform(-9., 9.), random.uniform(-9., 9.), random.uniform(-9., 9.));
        const cv::Point2d pixel = calibration.worldToImage(world);
        const cv::Point2d plainPixel = plainWorldToImage(P, world);
        ASSERT_TRUE(sameBits(pixel.x, plainPixel.x) && sameBits(pixel.y, plainPixel.y))
            << pixel << " is not " << plainPixel << " with K " << K << " E " << E << " at " << world;
        projected += std::isfinite(pixel.x);

        const cv::Point2d seen(random.uniform(0., 640.), random.uniform(0., 480.));
        const double height = random.uniform(-5., 5.);
        cv::Point3d plainPoint;
        if (!plainImageToWorld(P, seen, height, plainPoint))
            continue;
        const cv::Point3d point = calibration.imageToWorld(seen, height);
        ASSERT_TRUE(sameBits(point.x, plainPoint.x) && sameBits(point.y, plainPoint.y)
                    && sameBits(point.z, plainPoint.z))
            << point << " is not " << plainPoint;
        ++backProjected;
    }
    EXPECT_GT(projected, 3500);
    EXPECT_GT(backProjected, 3500);
}

TEST(kelAbstractDataCalibrationTest, ZerosKeepTheSignThatTheMatrixProductsGiveThem)
{
    for (const int rows : {3, 4}) {
        for (const double sign : {1.0, -1.0}) {
            cv::Mat K = cv::Mat::ones(rows, 4, CV_64F);
            K.row(2) = cv::Scalar(-0.0);
            const cv::Mat E = cv::Mat::ones(4, 4, CV_64F) * sign;
            kelAbstractDataCalibration calibration;
            calibration.setIntrinsicMatrix(K);
            calibration.setExtrinsicMatrix(E);
            const cv::Point3d world(1, 1, 1);
            const cv::Point2d pixel = calibration.worldToImage(world);
            const cv::Point2d plainPixel = plainWorldToImage(K * E, world);
            EXPECT_TRUE(std::isinf(pixel.x));
            EXPECT_TRUE(sameBits(pixel.x, plainPixel.x) && sameBits(pixel.y, plainPixel.y))
                << pixel << " is not " << plainPixel;
        }
    }
}

TEST(kelAbstractDataCalibrationTest, TheFourthRowOfTheIntrinsicMatrixTakesPartInNothing)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    cv::Mat intrinsic = cv::Mat::zeros(4, 4, CV_64F);
    cv::Mat(simpleIntrinsic).copyTo(intrinsic.rowRange(0, 3));
    intrinsic.row(3) = std::numeric_limits<double>::quiet_NaN();
    kelAbstractDataCalibration square;
    square.setIntrinsicMatrix(intrinsic);
    square.setExtrinsicMatrix(cv::Mat(simpleExtrinsic));
    EXPECT_EQ(square.worldToImage(cv::Point3d(2, 4, 1)), cv::Point2d(0.5, 0.5));
    EXPECT_EQ(square.imageToWorld(cv::Point2d(0.5, 0.5), 1), cv::Point3d(2, 4, 1));
    EXPECT_EQ(square.getPosition(), calibration.getPosition());
}

TEST(kelAbstractDataCalibrationTest, ViewsOfLargerMatricesWork)
{
    kelAbstractDataCalibration calibration;
    calibration.setIntrinsicMatrix(asView(cv::Mat(simpleIntrinsic)));
    calibration.setExtrinsicMatrix(asView(cv::Mat(simpleExtrinsic)));
    ASSERT_FALSE(calibration.getIntrinsicMatrix().isContinuous());
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(2, 4, 1)), cv::Point2d(0.5, 0.5));
    EXPECT_EQ(calibration.imageToWorld(cv::Point2d(0.5, 0.5), 1), cv::Point3d(2, 4, 1));
    EXPECT_EQ(calibration.getPosition(), cv::Point3d(0, 0, 3));
}

TEST(kelAbstractDataCalibrationTest, MatricesOfAnotherShapeOrTypeThrow)
{
    const cv::Mat K(simpleIntrinsic);
    const cv::Mat E(simpleExtrinsic);
    cv::Mat floatK;
    K.convertTo(floatK, CV_32F);
    cv::Mat floatE;
    E.convertTo(floatE, CV_32F);
    const std::pair<cv::Mat, cv::Mat> bad[] = {
        {cv::Mat(), E},
        {K, cv::Mat()},
        {cv::Mat(), cv::Mat()},
        {K.colRange(0, 3), E},
        {floatK, E},
        {K, floatE},
        {floatK, floatE},
        {cv::Mat::eye(5, 4, CV_64F), E},
        {cv::Mat::eye(2, 4, CV_64F), E},
        {K, E.rowRange(0, 3)},
        {K, E.colRange(0, 3)},
        {cv::Mat(3, 4, CV_64FC2, cv::Scalar::all(1)), E},
    };
    int index = 0;
    for (const auto &[intrinsic, extrinsic] : bad) {
        kelAbstractDataCalibration calibration;
        calibration.setIntrinsicMatrix(intrinsic);
        calibration.setExtrinsicMatrix(extrinsic);
        EXPECT_THROW(calibration.worldToImage(cv::Point3d(2, 4, 1)), cv::Exception) << index;
        EXPECT_THROW(calibration.imageToWorld(cv::Point2d(0.5, 0.5), 1), cv::Exception) << index;
        double up[] = {0, 0, 1};
        EXPECT_THROW(calibration.compute_3d_height(cv::Point(1, 1), 1, up), cv::Exception) << index;
        ++index;
    }
}

TEST(kelAbstractDataCalibrationTest, ThePositionOfAMatrixThatIsNot4x4DoublesThrows)
{
    cv::Mat floats;
    cv::Mat(simpleExtrinsic).convertTo(floats, CV_32F);
    for (const cv::Mat &matrix : {cv::Mat(), cv::Mat(simpleIntrinsic), floats,
                                  cv::Mat(cv::Mat::eye(1, 1, CV_64F)), cv::Mat(cv::Mat::eye(3, 3, CV_64F))}) {
        kelAbstractDataCalibration calibration;
        calibration.setExtrinsicMatrix(matrix);
        EXPECT_THROW(calibration.getPosition(), cv::Exception)
            << matrix.size() << " of type " << matrix.type();
    }
}

TEST(kelAbstractDataCalibrationTest, TheProductOfMatricesThatDoNotFitThrows)
{
    kelAbstractDataCalibration calibration;
    calibration.setIntrinsicMatrix(cv::Mat::eye(3, 3, CV_64F));
    EXPECT_THROW(calibration.getCalibration(), cv::Exception);
    calibration.setIntrinsicMatrix(cv::Mat::eye(3, 4, CV_32F));
    EXPECT_THROW(calibration.getCalibration(), cv::Exception);
    calibration.setIntrinsicMatrix(cv::Mat());
    EXPECT_THROW(calibration.getCalibration(), cv::Exception);
}

TEST(kelAbstractDataCalibrationTest, TheHeightIsMeasuredOverASegmentOf180Units)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    // Pixel (1, 2) at height 1 is the point (1, 1, 1); 180 higher is row 3 - 181 = -178, 180 rows away.
    double up[] = {0, 0, 1};
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(1, 2), 1, up), 1);
    // At height 2 it is (0.5, 0.5, 2); 180 higher is row (3 - 182) / 0.5, 360 rows away.
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(1, 2), 2, up), 1);
    // At height -1 it is (2, 2, -1): 90 rows away, and the height is a factor of the result.
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(1, 2), -1, up), -2);
    double down[] = {0, 0, -1};
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(1, 2), 1, down), 1);
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(1, 2), 0, up), 0);
}

TEST(kelAbstractDataCalibrationTest, TheDirectionNeedNotBeNormalised)
{
    kelAbstractDataCalibration calibration;
    calibration.setIntrinsicMatrix(cv::Mat(someIntrinsic));
    calibration.setExtrinsicMatrix(worldToCameraOf(cv::Mat(somePose)));
    double unit[] = {0, 0, 1};
    double twice[] = {0, 0, 2};
    const double height = calibration.compute_3d_height(cv::Point(300, 200), 2, unit);
    EXPECT_TRUE(std::isfinite(height));
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(300, 200), 2, twice), height);
    EXPECT_EQ(twice[2], 2);
}

TEST(kelAbstractDataCalibrationTest, ASegmentWithoutVerticalExtentIsInfinite)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    double sideways[] = {1, 0, 0};
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(1, 2), 1, sideways),
              std::numeric_limits<double>::infinity());
    double none[] = {0, 0, 0};
    EXPECT_TRUE(std::isnan(calibration.compute_3d_height(cv::Point(1, 2), 1, none)));
}

TEST(kelAbstractDataCalibrationTest, TheHeightOfAPixelOnTheHorizonThrowsMinusOne)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    double up[] = {0, 0, 1};
    EXPECT_THROW(calibration.compute_3d_height(cv::Point(1, 0), 1, up), int);
}

TEST(kelAbstractDataCalibrationTest, TheHeightGoesThroughTheVirtualProjections)
{
    const FixedProjections calibration;
    double direction[] = {0, 3, 4};
    EXPECT_EQ(calibration.compute_3d_height(cv::Point(5, 20), 10, direction), 180.0 * 10 / 30);
    EXPECT_EQ(calibration.askedPixel, cv::Point2d(5, 20));
    EXPECT_EQ(calibration.askedHeight, 10);
    EXPECT_EQ(calibration.askedPoint, cv::Point3d(1, 2 + 180 * 0.6, 10 + 180 * 0.8));
}

TEST(kelAbstractDataCalibrationTest, CopiesShareTheMatrices)
{
    QObject parent;
    kelAbstractDataCalibration calibration;
    calibration.setParent(&parent);
    setSimple(calibration);
    calibration.setReferentialName("room");
    calibration.addSpecificProperty("k", 1);
    QVariantMap map{{"m", 2}};
    calibration.setMap(map);
    MessageCapture messages;
    const kelAbstractDataCalibration copy(calibration);
    const std::unique_ptr<kelAbstractDataCalibration> clone(calibration.clone());
    kelAbstractDataCalibration assigned;
    EXPECT_EQ(&(assigned = calibration), &assigned);
    EXPECT_TRUE(messages.lines().isEmpty());
    for (const kelAbstractDataCalibration *other :
         std::initializer_list<const kelAbstractDataCalibration *>{&copy, clone.get(), &assigned}) {
        EXPECT_EQ(other->getReferentialName(), "room");
        EXPECT_EQ(other->getIntrinsicMatrix().data, calibration.getIntrinsicMatrix().data);
        EXPECT_EQ(other->getExtrinsicMatrix().data, calibration.getExtrinsicMatrix().data);
        EXPECT_EQ(other->getDistortionMatrix().data, calibration.getDistortionMatrix().data);
    }
    EXPECT_EQ(clone->getSpecificProperties(), (QVariantMap{{"k", 1}}));
    EXPECT_TRUE(clone->getMap().isEmpty());
    EXPECT_EQ(clone->parent(), &parent);
    EXPECT_TRUE(assigned.getSpecificProperties().isEmpty());
    EXPECT_TRUE(assigned.getMap().isEmpty());
    EXPECT_EQ(assigned.parent(), nullptr);
}

TEST(kelAbstractDataCalibrationTest, CopyFromAnotherKindWarnsOnceAndKeepsTheCalibration)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    calibration.setReferentialName("own");
    const uchar *intrinsic = calibration.getIntrinsicMatrix().data;
    OtherCalibration other;
    other.setReferentialName("other");
    const kelDataBlob blob;
    for (const nubAbstractObject *from : std::initializer_list<const nubAbstractObject *>{&other, &blob}) {
        MessageCapture messages;
        calibration.copy(*from);
        EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
        EXPECT_EQ(calibration.getReferentialName(), "own");
        EXPECT_EQ(calibration.getIntrinsicMatrix().data, intrinsic);
    }
    const LogLevel level(18);
    MessageCapture messages;
    calibration.copy(other);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataCalibrationTest, AssigningACalibrationToItselfLosesNothing)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    calibration.setReferentialName("room");
    const kelAbstractDataCalibration &same = calibration;
    calibration = same;
    EXPECT_EQ(calibration.getReferentialName(), "room");
    EXPECT_EQ(calibration.worldToImage(cv::Point3d(2, 4, 1)), cv::Point2d(0.5, 0.5));
}

TEST_F(kelAbstractDataCalibrationFileTest, ReadsEverySyntaxOfTheStorage)
{
    for (const char *file : {"camera.yml", "camera.yaml", "camera.xml", "camera.yml.gz", "camera.xml.gz"}) {
        save(file);
        ASSERT_EQ(content(file).startsWith("\x1f\x8b"), QString(file).endsWith(".gz")) << file;
        kelAbstractDataCalibration calibration;
        const LogLevel level(0);
        MessageCapture messages;
        OutputCapture output;
        EXPECT_TRUE(calibration.read(QString(file))) << file;
        EXPECT_EQ(output.take(), "");
        EXPECT_TRUE(messages.lines().isEmpty());
        expectLoaded(calibration);
    }
}

TEST_F(kelAbstractDataCalibrationFileTest, ReadsAFileWhoseNameIsNotAscii)
{
    save("camera.yml");
    const QString name = QString::fromUtf8("cam\xc3\xa9ra \xe6\x97\xa5.yml");
    ASSERT_TRUE(QFile::rename("camera.yml", name));
    kelAbstractDataCalibration calibration;
    EXPECT_TRUE(calibration.read(name));
    expectLoaded(calibration);
    EXPECT_TRUE(calibration.read(path(name)));
}

TEST_F(kelAbstractDataCalibrationFileTest, TheReferentialNameIsUtf8)
{
    save("camera.yml", cv::Mat(someIntrinsic), cv::Mat(somePose), "sal\xc3\xb3n");
    kelAbstractDataCalibration calibration;
    EXPECT_TRUE(calibration.read(QString("camera.yml")));
    EXPECT_EQ(calibration.getReferentialName(), QString::fromUtf8("sal\xc3\xb3n"));
}

TEST_F(kelAbstractDataCalibrationFileTest, ThePositionIsTheFilesTranslationWithTwoComponentsExchanged)
{
    save("camera.yml");
    kelAbstractDataCalibration calibration;
    ASSERT_TRUE(calibration.read(QString("camera.yml")));
    const cv::Point3d position = calibration.getPosition();
    EXPECT_NEAR(position.x, 1.5, 1e-12);
    EXPECT_NEAR(position.y, 3.5, 1e-12);
    EXPECT_NEAR(position.z, -2.5, 1e-12);
}

TEST_F(kelAbstractDataCalibrationFileTest, ASingularPoseGivesAZeroMatrix)
{
    save("camera.yml", cv::Mat(someIntrinsic), cv::Mat::ones(4, 4, CV_64F));
    kelAbstractDataCalibration calibration;
    OutputCapture output;
    EXPECT_TRUE(calibration.read(QString("camera.yml")));
    EXPECT_EQ(output.take(), "");
    EXPECT_TRUE(sameMatrix(calibration.getExtrinsicMatrix(), cv::Mat::zeros(4, 4, CV_64F)));
}

TEST_F(kelAbstractDataCalibrationFileTest, AMissingFileIsReportedAndChangesNothing)
{
    kelAbstractDataCalibration calibration;
    setOwn(calibration);
    const LogLevel level(1000);
    OutputCapture output;
    EXPECT_FALSE(calibration.read(QString("no/such file.yml")));
    EXPECT_EQ(output.take(), "no/such file.yml\nError Opening the file.\n");
    expectOwn(calibration);
}

TEST_F(kelAbstractDataCalibrationFileTest, MissingKeysGiveAnEmptyNameAndEmptyMatrices)
{
    write("camera.yml", "%YAML:1.0\n---\nother: 5\n");
    kelAbstractDataCalibration calibration;
    setOwn(calibration);
    EXPECT_TRUE(calibration.read(QString("camera.yml")));
    EXPECT_EQ(calibration.getReferentialName(), "");
    EXPECT_TRUE(calibration.getIntrinsicMatrix().empty());
    EXPECT_TRUE(calibration.getExtrinsicMatrix().empty());
    EXPECT_TRUE(calibration.getDistortionMatrix().empty());
    EXPECT_THROW(calibration.worldToImage(cv::Point3d(1, 2, 3)), cv::Exception);
    EXPECT_THROW(calibration.imageToWorld(cv::Point2d(1, 2), 3), cv::Exception);
    EXPECT_THROW(calibration.getCalibration(), cv::Exception);
    EXPECT_THROW(calibration.getPosition(), cv::Exception);
}

TEST_F(kelAbstractDataCalibrationFileTest, EachMissingMatrixLeavesTheOthersRead)
{
    {
        cv::FileStorage storage("camera.yml", cv::FileStorage::WRITE);
        storage << "referentialName"
                << "room"
                << "intrinsicMatrix" << cv::Mat(someIntrinsic);
    }
    kelAbstractDataCalibration calibration;
    setOwn(calibration);
    EXPECT_TRUE(calibration.read(QString("camera.yml")));
    EXPECT_EQ(calibration.getReferentialName(), "room");
    EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), cv::Mat(someIntrinsic)));
    EXPECT_TRUE(calibration.getExtrinsicMatrix().empty());
    EXPECT_TRUE(calibration.getDistortionMatrix().empty());
}

TEST_F(kelAbstractDataCalibrationFileTest, ANameThatIsNoStringIsEmpty)
{
    for (const char *value : {"5", "1.5", "[ a, b ]", "{ a: 1 }"}) {
        write("camera.yml", QByteArray("%YAML:1.0\n---\nreferentialName: ") + value + "\n");
        kelAbstractDataCalibration calibration;
        EXPECT_TRUE(calibration.read(QString("camera.yml"))) << value;
        EXPECT_EQ(calibration.getReferentialName(), "") << value;
    }
}

TEST_F(kelAbstractDataCalibrationFileTest, TheOtherMatricesAreStoredAsRead)
{
    save("camera.yml", cv::Mat::ones(2, 3, CV_32F));
    kelAbstractDataCalibration calibration;
    EXPECT_TRUE(calibration.read(QString("camera.yml")));
    EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), cv::Mat::ones(2, 3, CV_32F)));
    EXPECT_EQ(calibration.getDistortionMatrix().size(), cv::Size(5, 1));
}

TEST_F(kelAbstractDataCalibrationFileTest, APoseThatIsNot4x4DoublesThrowsAndChangesNothing)
{
    cv::Mat floats;
    cv::Mat(somePose).convertTo(floats, CV_32F);
    for (const cv::Mat &pose : {floats, cv::Mat(someIntrinsic), cv::Mat(cv::Mat::eye(3, 3, CV_64F)),
                                cv::Mat(cv::Mat::eye(5, 5, CV_64F))}) {
        save("camera.yml", cv::Mat(someIntrinsic), pose);
        kelAbstractDataCalibration calibration;
        setOwn(calibration);
        EXPECT_THROW(calibration.read(QString("camera.yml")), cv::Exception) << pose.size();
        expectOwn(calibration);
    }
}

TEST_F(kelAbstractDataCalibrationFileTest, WhatIsNoStorageDocumentThrowsAndChangesNothing)
{
    save("whole.yml");
    save("whole.xml");
    const QByteArray yml = content("whole.yml");
    const QByteArray xml = content("whole.xml");
    const QByteArray bad[] = {"",
                              "This is no calibration.\n",
                              "%YAML:1.0\n---\nintrinsicMatrix: [ 1, 2\n",
                              yml.left(yml.indexOf("data:") + 20),
                              xml.left(xml.size() / 2),
                              "%YAML:1.0\n---\nextrinsicMatrix: 5\n"};
    int index = 0;
    for (const QByteArray &bytes : bad) {
        write("camera.yml", bytes);
        kelAbstractDataCalibration calibration;
        setOwn(calibration);
        EXPECT_THROW(calibration.read(QString("camera.yml")), cv::Exception) << index;
        expectOwn(calibration);
        ++index;
    }
}

TEST_F(kelAbstractDataCalibrationFileTest, AnEmptyNameThrowsAndChangesNothing)
{
    kelAbstractDataCalibration calibration;
    setOwn(calibration);
    EXPECT_THROW(calibration.read(QString()), cv::Exception);
    expectOwn(calibration);
}

TEST_F(kelAbstractDataCalibrationFileTest, AFolderThrowsAndChangesNothing)
{
    ASSERT_TRUE(QDir().mkdir("folder.yml"));
    kelAbstractDataCalibration calibration;
    setOwn(calibration);
    EXPECT_THROW(calibration.read(QString("folder.yml")), cv::Exception);
    expectOwn(calibration);
}

TEST_F(kelAbstractDataCalibrationFileTest, ReadingAgainWritesIntoNoSharedMatrix)
{
    save("camera.yml");
    save("other.yml", cv::Mat::eye(3, 4, CV_64F), cv::Mat::eye(4, 4, CV_64F), "other");
    kelAbstractDataCalibration calibration;
    ASSERT_TRUE(calibration.read(QString("camera.yml")));
    const kelAbstractDataCalibration copy(calibration);
    ASSERT_TRUE(calibration.read(QString("other.yml")));
    EXPECT_EQ(calibration.getReferentialName(), "other");
    EXPECT_TRUE(sameMatrix(calibration.getIntrinsicMatrix(), cv::Mat::eye(3, 4, CV_64F)));
    expectLoaded(copy);
}

TEST_F(kelAbstractDataCalibrationFileTest, ReadingWritesIntoNoMatrixOfTheCaller)
{
    save("camera.yml");
    const cv::Mat intrinsic = cv::Mat::ones(3, 4, CV_64F);
    const cv::Mat extrinsic = cv::Mat::ones(4, 4, CV_64F);
    const cv::Mat distortion = cv::Mat::ones(1, 5, CV_64F);
    kelAbstractDataCalibration calibration;
    calibration.setIntrinsicMatrix(intrinsic);
    calibration.setExtrinsicMatrix(extrinsic);
    calibration.setDistortionMatrix(distortion);
    ASSERT_TRUE(calibration.read(QString("camera.yml")));
    expectLoaded(calibration);
    EXPECT_TRUE(sameMatrix(intrinsic, cv::Mat::ones(3, 4, CV_64F)));
    EXPECT_TRUE(sameMatrix(extrinsic, cv::Mat::ones(4, 4, CV_64F)));
    EXPECT_TRUE(sameMatrix(distortion, cv::Mat::ones(1, 5, CV_64F)));
}

TEST_F(kelAbstractDataCalibrationFileTest, TheReportOfAMissingFileIsFlushedLineByLine)
{
    FlushCounter output;
    kelAbstractDataCalibration().read(QString("missing.yml"));
    EXPECT_EQ(output.flushed(), (std::vector<std::string>{"missing.yml\n", "Error Opening the file.\n"}));
}

TEST(kelAbstractDataCalibrationTest, TheDirectionIsNormalisedBeforeItIsStretched)
{
    const FixedProjections calibration;
    double d[] = {1.2, 0.2, -2.4};
    calibration.compute_3d_height(cv::Point(5, 20), 10, d);
    const double norm = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    const cv::Point3d expected(1 + 180.0 * (d[0] / norm), 2 + 180.0 * (d[1] / norm),
                               10 + 180.0 * (d[2] / norm));
    EXPECT_TRUE(sameBits(calibration.askedPoint, expected));
    // The other way round, each of the three has another last bit.
    EXPECT_NE(expected.x, 1 + 180.0 * d[0] / norm);
    EXPECT_NE(expected.y, 2 + 180.0 * d[1] / norm);
    EXPECT_NE(expected.z, 10 + 180.0 * d[2] / norm);
}

TEST(kelAbstractDataCalibrationTest, ANullDirectionIsAZeroOne)
{
    kelAbstractDataCalibration calibration;
    setSimple(calibration);
    EXPECT_TRUE(std::isnan(calibration.compute_3d_height(cv::Point(1, 2), 1, nullptr)));
    EXPECT_THROW(calibration.compute_3d_height(cv::Point(1, 0), 1, nullptr), int);
    const FixedProjections fixed;
    fixed.compute_3d_height(cv::Point(5, 20), 10, nullptr);
    EXPECT_TRUE(std::isnan(fixed.askedPoint.x));
}

TEST(kelAbstractDataCalibrationTest, ASingularExtrinsicMatrixThatIsNotZeroHasItsPositionAtZero)
{
    kelAbstractDataCalibration calibration;
    calibration.setExtrinsicMatrix(cv::Mat::ones(4, 4, CV_64F));
    EXPECT_EQ(calibration.getPosition(), cv::Point3d(0, 0, 0));
}
