/// \file
/// Calibration, depth and context at work on recorded scenes, and the files in examples/data.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelDataContext.h>

#include "support/Capture.h"
#include "support/SceneData.h"
#include "support/TemporaryFolder.h"

#include <opencv2/core.hpp>
#include <opencv2/core/persistence.hpp>

#include <QDomDocument>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

QString projectFile(const QString &name) { return QStringLiteral(KEL_SOURCE_DIR "/") + name; }

/// Walking people, seen by a fixed camera.
struct Walkway
{
    static QString camera() { return walkwayScene.file("vtest_pinhole.yml"); }
    static QString people() { return walkwayScene.file("PETS2009-S2L1_frames0-399.xml"); }

    cv::Mat intrinsic, distortion, worldToCamera, projection;

    Walkway()
    {
        const cv::FileStorage storage(camera().toStdString(), cv::FileStorage::READ);
        storage["camera_matrix"] >> intrinsic;
        storage["distortion_coefficients"] >> distortion;
        storage["extrinsic_matrix_world_to_camera_mm"] >> worldToCamera;
        storage["projection_matrix"] >> projection;
    }

    /// The camera in the library's own format: four columns, and the pose with rows 1 and 2 exchanged.
    void save(const std::string &file) const
    {
        cv::Mat K = cv::Mat::zeros(3, 4, CV_64F);
        intrinsic.copyTo(K.colRange(0, 3));
        const cv::Mat pose = worldToCamera.inv(cv::DECOMP_LU);
        cv::Mat exchanged = pose.clone();
        pose.row(1).copyTo(exchanged.row(2));
        pose.row(2).copyTo(exchanged.row(1));
        cv::FileStorage storage(file, cv::FileStorage::WRITE);
        storage << "referentialName"
                << "ground"
                << "intrinsicMatrix" << K << "extrinsicMatrix" << exchanged << "distortion" << distortion;
    }

    cv::Point2d project(const cv::Point3d &point) const
    {
        const cv::Mat r = projection * (cv::Mat_<double>(4, 1) << point.x, point.y, point.z, 1);
        return cv::Point2d(r.at<double>(0) / r.at<double>(2), r.at<double>(1) / r.at<double>(2));
    }
};

struct Person
{
    int frame;
    int id;
    cv::Rect2d box;

    cv::Point2d foot() const { return cv::Point2d(box.x + box.width / 2, box.y + box.height); }
};

std::vector<Person> people()
{
    QFile file(Walkway::people());
    QDomDocument document;
    EXPECT_TRUE(file.open(QIODevice::ReadOnly) && document.setContent(&file));
    std::vector<Person> people;
    const QDomNodeList boxes = document.elementsByTagName("box");
    for (int i = 0; i < boxes.size(); ++i) {
        const QDomElement box = boxes.at(i).toElement();
        const QDomElement object = box.parentNode().toElement();
        const QDomElement frame = object.parentNode().parentNode().toElement();
        const auto number = [&](const char *name) { return box.attribute(name).toDouble(); };
        people.push_back({frame.attribute("number").toInt(), object.attribute("id").toInt(),
                          cv::Rect2d(number("xc") - number("w") / 2, number("yc") - number("h") / 2,
                                     number("w"), number("h"))});
    }
    return people;
}

/// Largest difference of two matrices, as a part of the largest element.
double relativeDifference(const cv::Mat &a, const cv::Mat &b)
{
    return cv::norm(a, b, cv::NORM_INF) / cv::norm(b, cv::NORM_INF);
}

double length(const cv::Point3d &v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

using realSceneTest = TemporaryFolder;

} // namespace

TEST_F(realSceneTest, TheFloorOfARoomWithFivePeopleIsFoundFromPolygonsOnIt)
{
    SKIP_WITHOUT(fivePeopleScene);
    const QImage image(fivePeopleScene.file("five_people_depth_mm.png"));
    ASSERT_EQ(image.format(), QImage::Format_Grayscale16);

    // The depth, through a file of the sensor's.
    cv::Mat depth(image.height(), image.width(), CV_32F);
    for (int v = 0; v < depth.rows; ++v) {
        const auto *millimetres = reinterpret_cast<const quint16 *>(image.constScanLine(v));
        std::transform(millimetres, millimetres + depth.cols, depth.ptr<float>(v),
                       [](quint16 value) { return static_cast<float>(value) / 1000; });
    }
    const std::int32_t size[] = {depth.rows, depth.cols};
    write("depth.raw",
          QByteArray(reinterpret_cast<const char *>(size), sizeof size)
              + QByteArray(reinterpret_cast<const char *>(depth.data), static_cast<int>(depth.total() * 4)));

    kelAbstractDataCalibrationWithDepth camera;
    camera.setIntrinsicMatrix(
        (cv::Mat_<double>(3, 4) << 525, 0, 319.5, 0, /**/ 0, 525, 239.5, 0, /**/ 0, 0, 1, 0));
    {
        OutputCapture output;
        camera.setDepthInformation("depth.raw");
    }

    // Outlines of three bare pieces of the floor, and one that lies on a back and is left out.
    const std::vector<std::pair<const char *, std::vector<cv::Point>>> outlines{
        {"left", {{235, 375}, {285, 375}, {280, 405}, {285, 450}, {235, 465}, {225, 435}}},
        {"front", {{255, 465}, {300, 465}, {345, 465}, {400, 465}, {355, 450}, {300, 450}}},
        {"right", {{445, 360}, {445, 375}, {445, 405}, {445, 435}, {585, 465}, {595, 450}, {370, 420}}},
        {"back", {{330, 200}, {300, 250}, {400, 230}, {430, 250}}}};
    {
        cv::FileStorage storage("room.yml", cv::FileStorage::WRITE);
        storage << "contextList"
                << "[";
        for (const auto &outline : outlines) {
            storage << "{"
                    << "semantic"
                    << "zone"
                    << "shape"
                    << "polygon"
                    << "height" << 0 << "name" << outline.first << "isClosed" << 1 << "points"
                    << "[";
            for (const cv::Point &pixel : outline.second) {
                const cv::Point3d point = camera.imageToWorld(cv::Point2d(pixel));
                ASSERT_NE(point.z, 0) << pixel;
                storage << "{"
                        << "x" << point.x << "y" << point.y << "z" << point.z << "}";
            }
            storage << "]"
                    << "}";
        }
        storage << "]";
    }
    kelDataContext room;
    ASSERT_TRUE(room.read("room.yml"));

    camera.setListContextObjectsForbiddenInPlanComputation("back");
    OutputCapture output;
    std::vector<double> plane = camera.computePlaneEquationFromContextualObjects(&room);
    output.take();
    ASSERT_EQ(plane.size(), 4u);
    const double sign = plane[1] < 0 ? -1 : 1;
    const cv::Point3d normal(sign * plane[0], sign * plane[1], sign * plane[2]);
    const cv::Point3d published(-0.0103586, 0.997011, 0.0765573);
    const double cosine = normal.dot(published) / length(normal) / length(published);
    EXPECT_LT(std::acos(std::min(cosine, 1.0)) * 180 / CV_PI, 1);
    EXPECT_NEAR(sign * plane[3], -1.26614, 0.03);

    // What the plane is for: heights above the floor.
    EXPECT_LT(camera.computePointDistanceToPlane(camera.imageToWorld(cv::Point2d(320, 465)), plane), 0.03);
    const double head = camera.computePointDistanceToPlane(camera.imageToWorld(cv::Point2d(345, 125)), plane);
    EXPECT_GT(head, 1.5);
    EXPECT_LT(head, 2.0);
}

TEST_F(realSceneTest, AMeasuredCameraConvertsIntoACalibrationFile)
{
    SKIP_WITHOUT(walkwayScene);
    const Walkway walkway;
    walkway.save("camera.yml");
    kelAbstractDataCalibration camera;
    ASSERT_TRUE(camera.read("camera.yml"));
    EXPECT_EQ(camera.getReferentialName(), "ground");
    EXPECT_LT(relativeDifference(camera.getExtrinsicMatrix(), walkway.worldToCamera), 1e-9);
    EXPECT_LT(relativeDifference(camera.getCalibration(), walkway.projection), 1e-9);
    EXPECT_LT(relativeDifference(camera.getDistortionMatrix(), walkway.distortion), 1e-9);
    for (const cv::Point3d &point :
         {cv::Point3d(0, 0, 0), cv::Point3d(-8000, -4000, 1700), cv::Point3d(4000, 8000, 0)}) {
        const cv::Point2d expected = walkway.project(point);
        EXPECT_NEAR(camera.worldToImage(point).x, expected.x, 1e-9 * std::abs(expected.x));
        EXPECT_NEAR(camera.worldToImage(point).y, expected.y, 1e-9 * std::abs(expected.y));
    }
    const cv::Mat position = walkway.worldToCamera.inv();
    EXPECT_NEAR(camera.getPosition().z, position.at<double>(2, 3), 1e-6);
}

TEST_F(realSceneTest, FeetOfWalkingPeopleGoToTheGroundAndBack)
{
    SKIP_WITHOUT(walkwayScene);
    Walkway().save("camera.yml");
    kelAbstractDataCalibration camera;
    ASSERT_TRUE(camera.read("camera.yml"));

    const std::vector<Person> seen = people();
    ASSERT_GT(seen.size(), 1000u);
    std::vector<double> tops;
    for (const Person &person : seen) {
        const cv::Point3d ground = camera.imageToWorld(person.foot(), 0);
        EXPECT_EQ(ground.z, 0);
        EXPECT_LT(std::hypot(ground.x, ground.y), 40000)
            << "frame " << person.frame << ", person " << person.id;
        const cv::Point2d pixel = camera.worldToImage(ground);
        EXPECT_NEAR(pixel.x, person.foot().x, 1e-7);
        EXPECT_NEAR(pixel.y, person.foot().y, 1e-7);
        // A grown person of 1.75 m is about as high as the box.
        const double height = pixel.y - camera.worldToImage(cv::Point3d(ground.x, ground.y, 1750)).y;
        tops.push_back(height / person.box.height);
    }
    std::nth_element(tops.begin(), tops.begin() + static_cast<std::ptrdiff_t>(tops.size() / 2), tops.end());
    EXPECT_NEAR(tops[tops.size() / 2], 1, 0.15);
}

TEST_F(realSceneTest, TheExampleCameraIsTheMeasuredOne)
{
    kelAbstractDataCalibration camera;
    ASSERT_TRUE(camera.read(projectFile("examples/data/vtest_camera.yml")));
    EXPECT_EQ(camera.getReferentialName(), "ground");
    EXPECT_EQ(camera.getIntrinsicMatrix().size(), cv::Size(4, 3));
    EXPECT_EQ(camera.getExtrinsicMatrix().size(), cv::Size(4, 4));
    EXPECT_GT(camera.getPosition().z, 0);
    SKIP_WITHOUT(walkwayScene);
    EXPECT_LT(relativeDifference(camera.getCalibration(), Walkway().projection), 1e-9);
    EXPECT_LT(relativeDifference(camera.getDistortionMatrix(), Walkway().distortion), 1e-9);
}

TEST_F(realSceneTest, TheExampleContextLiesInTheExampleCamerasFrame)
{
    kelAbstractDataCalibration camera;
    kelDataContext scene;
    ASSERT_TRUE(camera.read(projectFile("examples/data/vtest_camera.yml")));
    ASSERT_TRUE(scene.read(projectFile("examples/data/vtest_context.yml")));
    QStringList elements;
    const cv::Rect2d frame(0, 0, 768, 576);
    for (const ContextElement &element : scene.getContext()) {
        elements.append(QString::fromStdString(element.semantic + " " + element.name));
        EXPECT_EQ(element.polygonVertices.size(), 4u);
        EXPECT_EQ(element.polygonIsClosed, 1);
        for (const cv::Point3d &vertex : element.polygonVertices) {
            EXPECT_TRUE(frame.contains(camera.worldToImage(vertex))) << element.name;
            EXPECT_TRUE(vertex.z == 0 || (element.semantic == "wall" && vertex.z == element.height));
        }
    }
    EXPECT_EQ(elements, (QStringList{"zone west walkway", "zone junction", "wall office wall"}));
}

TEST_F(realSceneTest, PeopleWalkThroughTheZonesOfTheExampleContext)
{
    SKIP_WITHOUT(walkwayScene);
    kelAbstractDataCalibration camera;
    kelDataContext scene;
    ASSERT_TRUE(camera.read(projectFile("examples/data/vtest_camera.yml")));
    ASSERT_TRUE(scene.read(projectFile("examples/data/vtest_context.yml")));
    for (const ContextElement &element : scene.getContext()) {
        if (element.semantic != "zone")
            continue;
        // Inside a convex outline, all edges have the point on the same side.
        const std::vector<cv::Point3d> corners(element.polygonVertices.begin(),
                                               element.polygonVertices.end());
        const auto contains = [&](const cv::Point3d &p) {
            int left = 0;
            for (std::size_t i = 0; i < corners.size(); ++i) {
                const cv::Point3d a = corners[i], b = corners[(i + 1) % corners.size()];
                left += (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x) > 0;
            }
            return left == 0 || left == static_cast<int>(corners.size());
        };
        const std::vector<Person> seen = people();
        const auto inside = std::count_if(seen.begin(), seen.end(), [&](const Person &person) {
            return contains(camera.imageToWorld(person.foot(), 0));
        });
        EXPECT_GT(inside, 100) << element.name;
    }
}
