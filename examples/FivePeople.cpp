#include "FivePeople.h"

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewRGBD.h>

#include <opencv2/core.hpp>

#include <QDateTime>
#include <QImageReader>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace {

/// One of the people, as a tracker would know them.
struct Person
{
    unsigned int id;
    cv::Rect box; ///< Pixels.
    cv::Point leftFoot, rightFoot; ///< Pixels of the leg, as far down as the depth map shows it.
    std::vector<cv::Point2d> way; ///< Where they came from: x and z on the floor, `timeStep` apart.
};

constexpr double timeStep = 0.3; ///< Seconds.
constexpr int framesPerSecond = 10;
constexpr const char *noPeople = "the depth picture does not show the five people";

// From the left to the right.
const std::vector<Person> people{
    {0,
     {20, 55, 134, 422},
     {62, 468},
     {128, 448},
     {{-1720, 3150}, {-1600, 2850}, {-1450, 2600}, {-1300, 2420}, {-1120, 2300}}},
    {2,
     {145, 99, 98, 378},
     {165, 440},
     {185, 470},
     {{-250, 3950}, {-260, 3650}, {-300, 3340}, {-380, 3030}, {-510, 2740}}},
    {1,
     {268, 105, 105, 336},
     {308, 395},
     {330, 425},
     {{-700, 1700}, {-620, 1980}, {-500, 2240}, {-360, 2480}, {-180, 2720}}},
    {5,
     {365, 103, 102, 358},
     {385, 445},
     {420, 428},
     {{-450, 2440}, {-260, 2440}, {-70, 2440}, {110, 2460}, {280, 2530}}},
    {11,
     {462, 51, 142, 424},
     {490, 468},
     {535, 468},
     {{1400, 2950}, {1340, 2720}, {1250, 2500}, {1120, 2290}, {930, 2080}}},
};

/// Something that happened, as an event recognition would report it.
struct Episode
{
    int actor;
    const char *name;
    const char *alarmLevel;
    double confidence;
    int begin, end; ///< Seconds of the minute.
};

const std::vector<Episode> episodes{
    {0, "enters", "NOTURGENT", 0.98, 9, 13},   {2, "enters", "NOTURGENT", 0.97, 17, 21},
    {0, "walks", "NOTURGENT", 0.95, 22, 41},   {0, "walks", "NOTURGENT", 0.96, 47, 60},
    {1, "in passage", "URGENT", 0.91, 25, 33}, {1, "in passage", "URGENT", 0.93, 54, 60},
    {5, "in passage", "URGENT", 0.88, 27, 36}, {11, "runs", "VERYURGENT", 0.76, 31, 37},
    {5, "runs", "VERYURGENT", 0.71, 45, 49},   {2, "falls", "SUPERURGENT", 0.64, 41, 44},
};

CSynchronizer stampAt(double second)
{
    const QDateTime start(QDate(2012, 6, 1), QTime(10, 0), Qt::UTC);
    CSynchronizer stamp;
    stamp.setDateTime(start.addMSecs(std::llround(second * 1000)));
    stamp.setFrameNumber(static_cast<unsigned int>(std::lround(second * framesPerSecond)));
    return stamp;
}

QImage readPicture(const QString &file)
{
    QImageReader reader(file);
    const QImage picture = reader.read();
    if (picture.isNull())
        throw std::runtime_error((file + ": " + reader.errorString()).toStdString());
    if (picture.size() != QSize(640, 480))
        throw std::runtime_error((file + ": no picture of 640 x 480 pixels").toStdString());
    return picture;
}

/// The pixels of a picture, as a matrix of its own.
cv::Mat matrixOf(const QImage &picture, int type)
{
    auto *bytes = const_cast<uchar *>(picture.constBits());
    return cv::Mat(480, 640, type, bytes, static_cast<std::size_t>(picture.bytesPerLine())).clone();
}

QSharedPointer<kelDataImage> imageOf(const cv::Mat &pixels)
{
    QSharedPointer<kelDataImage> image(new kelDataImage);
    image->setImage(pixels);
    return image;
}

cv::Point3f toFloat(const cv::Point3d &p)
{
    return cv::Point3f(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z));
}

/// Median of the depths in the middle of the box, most of which the person fills.
float depthOf(const Person &person, const cv::Mat &depth)
{
    const cv::Rect &box = person.box;
    const cv::Rect middle(box.x + box.width / 4, box.y + box.height / 4, box.width / 2, box.height / 2);
    std::vector<float> depths;
    for (const float value : cv::Mat_<float>(depth(middle)))
        if (value > 0)
            depths.push_back(value);
    if (depths.empty())
        throw std::runtime_error(noPeople);
    const auto median = depths.begin() + static_cast<std::ptrdiff_t>(depths.size() / 2);
    std::nth_element(depths.begin(), median, depths.end());
    return *median;
}

/// Index of the person whom a pixel shows: of those in whose box it lies, the one whose depth is nearest;
/// the number of people when it is nobody.
std::size_t personAt(const cv::Point &pixel, double depth, const std::vector<float> &depths)
{
    std::size_t person = people.size();
    double nearest = 600; // a long step, to the front or to the back
    for (std::size_t i = 0; i < people.size(); ++i) {
        const double distance = std::abs(depth - static_cast<double>(depths[i]));
        if (people[i].box.contains(pixel) && distance < nearest) {
            nearest = distance;
            person = i;
        }
    }
    return person;
}

cv::Point3f onFloor(const cv::Point2d &xz, const std::vector<double> &floor)
{
    return toFloat({xz.x, -(floor[0] * xz.x + floor[2] * xz.y + floor[3]) / floor[1], xz.y});
}

} // namespace

FivePeople::FivePeople(const QString &colorFile, const QString &depthFile)
{
    const QImage colorPicture = readPicture(colorFile).convertToFormat(QImage::Format_BGR888);
    const QImage depthPicture = readPicture(depthFile);
    if (depthPicture.format() != QImage::Format_Grayscale16)
        throw std::runtime_error((depthFile + ": no depth picture of 16 bits").toStdString());
    cv::Mat millimetres; // calibrations hold depths in floats
    matrixOf(depthPicture, CV_16UC1).convertTo(millimetres, CV_32F);

    color = imageOf(matrixOf(colorPicture, CV_8UC3));
    depth = imageOf(millimetres);
    camera.setDepthInformation(millimetres);
    fitFloor();
    findPeople();
}

void FivePeople::fitFloor()
{
    kelDataContext room;
    if (!camera.read(EXAMPLES_DATA "/five_people_camera.yml")
        || !room.read(EXAMPLES_DATA "/five_people_context.yml"))
        throw std::runtime_error("the files of the room cannot be read in " EXAMPLES_DATA);

    // The passage was not measured, but drawn on the plane that the others give.
    camera.setListContextObjectsForbiddenInPlanComputation("passage");
    floor = camera.computePlaneEquationFromContextualObjects(&room);
    for (const ContextElement &element : room.getContext())
        if (element.semantic == "zone")
            zones.push_back(element);
}

void FivePeople::findPeople()
{
    const cv::Mat &map = camera.getDepthInformation();
    std::vector<float> depths;
    for (const Person &person : people)
        depths.push_back(depthOf(person, map));

    std::vector<std::list<cv::Point>> pixels(people.size() + 1);
    for (int v = 0; v < map.rows; v += 3) { // every third row and column shows enough
        for (int u = 0; u < map.cols; u += 3) {
            const cv::Point3d point = camera.imageToWorld(cv::Point2d(u, v));
            if (point.z == 0)
                continue; // no depth
            if (camera.computePointDistanceToPlane(point, floor) < 30)
                floorPoints.push_back(toFloat(point));
            else
                pixels[personAt({u, v}, point.z, depths)].push_back({u, v});
        }
    }

    for (std::size_t i = 0; i < people.size(); ++i) {
        const Person &person = people[i];
        if (pixels[i].empty())
            throw std::runtime_error(noPeople);
        const auto foot = [this](const cv::Point &pixel) {
            return toFloat(camera.pointProjectionOntoPlane(camera.imageToWorld(cv::Point2d(pixel)), floor));
        };
        const cv::Point3f leftFoot = foot(person.leftFoot), rightFoot = foot(person.rightFoot);
        feet[static_cast<int>(person.id)] = {leftFoot, rightFoot};

        QSharedPointer<kelDataActor> actor(new kelDataActor);
        actor->setIdent(person.id);
        actor->setBoundingBox2D(person.box);
        const cv::Point3d top = camera.imageToWorld(cv::Point2d(pixels[i].front()));
        tops.push_back(toFloat(top));
        Information3D measures;
        measures.setHighestPosition(toFloat(top));
        measures.setHeight(static_cast<float>(camera.computePointDistanceToPlane(top, floor)));
        actor->setInformation3D(measures);
        actor->setPixels(pixels[i]);

        // As a tracker does it, frame by frame.
        double second = lastSecond - timeStep * static_cast<double>(person.way.size());
        for (const cv::Point2d &xz : person.way) {
            actor->setCurrentPosition(onFloor(xz, floor));
            actor->updateTrajectory(stampAt(second));
            second += timeStep;
        }
        const cv::Point3f before = actor->getCurrentPosition();
        actor->setCurrentPosition((leftFoot + rightFoot) / 2);
        actor->updateTrajectory(stampAt(lastSecond));
        actor->setSpeed(cv::norm(actor->getCurrentPosition() - before) / 1000 / timeStep); // metres a second
        actors.push_back(actor);
    }
}

std::list<QSharedPointer<kelDataEvent>> FivePeople::eventsAt(int second)
{
    std::list<QSharedPointer<kelDataEvent>> events;
    for (const Episode &episode : episodes) {
        if (second < episode.begin || second > episode.end)
            continue;
        QSharedPointer<kelDataEvent> event(new kelDataEvent);
        event->setSEDName(episode.name);
        event->setInvolvedActorId(episode.actor);
        event->setSEDAlarmLevel(episode.alarmLevel);
        event->setSEDConfidence(episode.confidence);
        event->setSEDBegin(stampAt(episode.begin));
        event->setSEDEnd(stampAt(second));
        events.push_back(event);
    }
    return events;
}

void FivePeople::show(kelViewRGBD &view) const
{
    view.setAcquisitionImage(color);
    view.setAcquisitionDepth(depth);
    view.setCalibrationWithDepth(camera);
    view.setGroundPlaneCoef(floor);
    view.setListOfGroundPoints(floorPoints);
    view.setContextInfo(zones);
    view.setActors(actors);
    view.setActorsFeetPositions(feet);
    view.setListOfPointsDEBUG(tops);
    view.setEvents(eventsAt(lastSecond));
    view.setFrameRate(framesPerSecond);
}

void FivePeople::tell(kelViewEventTimeline &timeline)
{
    for (int second = 0; second <= lastSecond; ++second)
        timeline.setEvents(eventsAt(second), stampAt(second));
}
