/// \file
/// The RGB-D view's picture of a scene with people, beside drawing the same scene straight onto the frame.

#include "Comparison.h"

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/kelView.h>
#include <kelCore/view/kelViewRGBD.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <QImage>
#include <QPainter>

#include <cmath>
#include <string>

namespace {

constexpr int width = 640;
constexpr int height = 480;

struct Person
{
    cv::Scalar color; ///< blue, green, red
    cv::Rect box;
    std::vector<cv::Point> trajectory; ///< oldest first
    std::list<cv::Point> pixels;
    std::vector<std::string> labels;
};

QColor toQt(const cv::Scalar &bgr)
{
    return QColor(static_cast<int>(bgr[2]), static_cast<int>(bgr[1]), static_cast<int>(bgr[0]));
}

/// Five people with 30 positions each, ten events, and that many pixels of the people in all.
struct People
{
    cv::Mat frame;
    std::vector<Person> people;
    std::vector<std::string> events;
    kelViewRGBD view;

    explicit People(int pixels) : frame(height, width, CV_8UC3)
    {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                frame.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(x), uchar(y), uchar(x + y));
        const cv::Scalar colors[] = {{255, 255, 0}, {255, 0, 255}, {0, 255, 255}, {0, 255, 0}, {255, 0, 0}};
        for (int i = 0; i < 5; ++i) {
            Person person;
            person.color = colors[i];
            person.box = cv::Rect(20 + 120 * i, 100, 100, 200);
            for (int k = 0; k < 30; ++k)
                person.trajectory.push_back({30 + 120 * i + 2 * k, 300 + static_cast<int>(10 * std::sin(k))});
            for (int k = 0; k < pixels / 5; ++k)
                person.pixels.push_back({person.box.x + k % 100, person.box.y + k / 100 * 2});
            person.labels = {"Id    : " + std::to_string(i), "HeightA:17" + std::to_string(i) + "cm",
                             "Speed : 1.2" + std::to_string(i) + "m/s"};
            people.push_back(person);
        }
        for (int i = 0; i < 10; ++i)
            events.push_back(std::to_string(i % 5) + " / Fall [0.870000]");
        fillView();
    }

private:
    void fillView()
    {
        // At depth 1 the camera's projection is the identity: world points are pixels.
        kelAbstractDataCalibrationWithDepth camera;
        camera.setIntrinsicMatrix(cv::Mat::eye(4, 4, CV_64FC1));
        view.setCalibrationWithDepth(camera);
        const QSharedPointer<kelDataImage> image(new kelDataImage);
        image->setImage(frame);
        view.setAcquisitionImage(image);

        std::list<QSharedPointer<const kelDataActor>> actors;
        unsigned int id = 0;
        for (const Person &person : people) {
            const QSharedPointer<kelDataActor> actor(new kelDataActor);
            actor->setIdent(id);
            actor->setBoundingBox2D(person.box);
            Information3D extent;
            extent.setHeight(1700.0f + 10 * static_cast<float>(id));
            actor->setInformation3D(extent);
            actor->setSpeed(1.2 + 0.01 * id + 0.001);
            qint64 time = 0;
            for (const cv::Point &position : person.trajectory) {
                actor->setCurrentPosition({float(position.x), float(position.y), 1});
                CSynchronizer sync;
                sync.setDateTime(QDateTime::fromMSecsSinceEpoch(++time, Qt::UTC));
                actor->updateTrajectory(sync);
            }
            std::list<cv::Point> pixels = person.pixels;
            actor->setPixels(pixels);
            actors.push_back(actor);
            ++id;
        }
        view.setActors(actors);

        std::list<QSharedPointer<kelDataEvent>> list;
        for (int i = 0; i < 10; ++i) {
            const QSharedPointer<kelDataEvent> event(new kelDataEvent);
            event->setInvolvedActorId(i % 5);
            event->setSEDName("Fall");
            event->setSEDConfidence(0.87);
            list.push_back(event);
        }
        view.setEvents(list);

        view.switches().showActors = true;
        view.switches().showActorInfos = true;
    }
};

/// The scene drawn onto the frame by the toolkit's painter.
QImage painted(const People &scene)
{
    QImage image(scene.frame.data, width, height, static_cast<int>(scene.frame.step), QImage::Format_RGB888);
    image = image.rgbSwapped().convertToFormat(QImage::Format_RGB32);
    QPainter painter(&image);
    for (const Person &person : scene.people) {
        painter.setPen(QPen(toQt(person.color), 1));
        for (const cv::Point &p : person.pixels)
            painter.drawEllipse(p.x, p.y, 2, 2);
    }
    for (const Person &person : scene.people) {
        painter.setPen(QPen(toQt(person.color), 2));
        painter.drawRect(person.box.x, person.box.y, person.box.width, person.box.height);
    }
    for (const Person &person : scene.people) {
        painter.setPen(QPen(toQt(person.color), 2));
        for (std::size_t i = 2; i < person.trajectory.size(); ++i)
            painter.drawLine(person.trajectory[i - 1].x, person.trajectory[i - 1].y, person.trajectory[i].x,
                             person.trajectory[i].y);
    }
    painter.setPen(Qt::red);
    painter.setFont(QFont(QStringLiteral("Verdana"), 16));
    painter.drawText(3, 25, QStringLiteral("EVENT LIST : "));
    int y = 52;
    for (const std::string &event : scene.events) {
        painter.drawText(5, y, QString::fromStdString(event));
        y += 22;
    }
    painter.setFont(QFont(QStringLiteral("Verdana"), 12, QFont::Bold));
    for (const Person &person : scene.people) {
        painter.setPen(toQt(person.color));
        int base = person.box.y - 40;
        for (const std::string &label : person.labels) {
            painter.drawText(person.box.x, base, QString::fromStdString(label));
            base += 15;
        }
    }
    return image;
}

/// The scene drawn onto a copy of the frame by OpenCV.
cv::Mat drawnByOpenCv(const People &scene)
{
    cv::Mat image = scene.frame.clone();
    for (const Person &person : scene.people)
        for (const cv::Point &p : person.pixels)
            cv::ellipse(image, {p.x + 1, p.y + 1}, {1, 1}, 0, 0, 360, person.color);
    for (const Person &person : scene.people)
        cv::rectangle(image, person.box, person.color, 2);
    for (const Person &person : scene.people)
        for (std::size_t i = 2; i < person.trajectory.size(); ++i)
            cv::line(image, person.trajectory[i - 1], person.trajectory[i], person.color, 2);
    cv::putText(image, "EVENT LIST : ", {3, 25}, cv::FONT_HERSHEY_SIMPLEX, 0.7, {0, 0, 255});
    int y = 52;
    for (const std::string &event : scene.events) {
        cv::putText(image, event, {5, y}, cv::FONT_HERSHEY_SIMPLEX, 0.7, {0, 0, 255});
        y += 22;
    }
    for (const Person &person : scene.people) {
        int base = person.box.y - 40;
        for (const std::string &label : person.labels) {
            cv::putText(image, label, {person.box.x, base}, cv::FONT_HERSHEY_SIMPLEX, 0.5, person.color, 2);
            base += 15;
        }
    }
    return image;
}

void besidePainter(benchmark::State &state, int pixels)
{
    People scene(pixels);
    QImage image;
    compare(
        state, 6, [&] { return seconds([&] { scene.view.updateDisplay(); }); },
        [&] { return seconds([&] { image = painted(scene); }); });
}

void besideOpenCv(benchmark::State &state, int pixels)
{
    People scene(pixels);
    cv::Mat image;
    compare(
        state, 1, [&] { return seconds([&] { scene.view.updateDisplay(); }); },
        [&] { return seconds([&] { image = drawnByOpenCv(scene); }); });
}

/// The depth map in grey, beside stretching it to 8 bits alone.
///
/// The background's time is what a frame with it and nothing else takes, less what it takes to render a scene
/// whose background is there already.
void depthBackground(benchmark::State &state, int type)
{
    cv::Mat map(height, width, type);
    cv::RNG(1).fill(map, cv::RNG::UNIFORM, 0, 9000);
    const QSharedPointer<kelDataImage> depth(new kelDataImage);
    depth->setImage(map);
    kelViewRGBD view;
    view.setAcquisitionDepth(depth);
    MyQGraphicsScene &switches = view.switches();
    switches.showDepth = true;
    switches.showEvents = switches.showFrameRate = false;

    const QSharedPointer<kelDataImage> frame(new kelDataImage);
    frame->setImage(cv::Mat(height, width, CV_8UC3, cv::Scalar(1, 2, 3)));
    kelView ready;
    ready.setAcquisitionImage(frame);

    cv::Mat grey;
    std::vector<double> whole;
    compare(
        state, 1.4,
        [&] {
            const double rendering = seconds([&] { ready.updateDisplay(); });
            whole.push_back(seconds([&] { view.updateDisplay(); }));
            return whole.back() - rendering;
        },
        [&] { return seconds([&] { cv::normalize(map, grey, 0, 255, cv::NORM_MINMAX, CV_8U); }); });
    state.counters["frame_us"] = median(whole) * 1e6;
}

} // namespace

BENCHMARK_CAPTURE(besidePainter, withoutPixels, 0)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(201);
BENCHMARK_CAPTURE(besidePainter, pixels10000, 10000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(101);
BENCHMARK_CAPTURE(besidePainter, pixels50000, 50000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(51);
BENCHMARK_CAPTURE(besideOpenCv, pixels50000, 50000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(51);
BENCHMARK_CAPTURE(depthBackground, floats, CV_32FC1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(501);
BENCHMARK_CAPTURE(depthBackground, shorts, CV_16UC1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(501);
