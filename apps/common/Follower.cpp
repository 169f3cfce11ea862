#include "common/Follower.h"

#include "common/Scene.h"

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataEvent.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <tuple>

namespace {

/// The part of the boxes' common area that both share, from 0 to 1. Recorded boxes may hold any numbers.
double overlap(const cv::Rect2d &a, const cv::Rect2d &b)
{
    const double width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    if (width <= 0 || height <= 0)
        return 0;
    const double shared = width * height;
    return shared / (a.width * a.height + b.width * b.height - shared);
}

cv::Point2f ground(const cv::Point3d &point)
{
    return {static_cast<float>(point.x), static_cast<float>(point.y)};
}

std::list<cv::Point> pixelsIn(const cv::Rect &box, const cv::Mat &foreground)
{
    const cv::Rect part = box & cv::Rect(0, 0, foreground.cols, foreground.rows);
    std::vector<cv::Point> pixels;
    if (!part.empty())
        cv::findNonZero(foreground(part), pixels);
    for (cv::Point &pixel : pixels)
        pixel += part.tl();
    return {pixels.begin(), pixels.end()};
}

} // namespace

Follower::Follower(const Scene &scene) : m_camera(scene)
{
    for (const ContextElement &element : scene.elements) {
        if (element.semantic != "zone" || element.polygonVertices.size() < 3)
            continue;
        const std::string name = "in " + (element.name.empty() ? "zone" : element.name);
        const auto known = std::find(m_names.begin(), m_names.end(), name);
        Zone zone{static_cast<int>(known - m_names.begin()), element.polygonVertices.front(), {}};
        for (const cv::Point3d &vertex : element.polygonVertices)
            zone.corners.push_back(ground(vertex - zone.origin));
        if (known == m_names.end())
            m_names.push_back(name);
        m_zones.push_back(zone);
    }
    if (m_zones.empty())
        m_names = {"in view"};
}

void Follower::add(const CSynchronizer &stamp, const std::vector<cv::Rect> &boxes)
{
    const int number = frameCount();
    m_frames.push_back({stamp, {}, {}});
    Frame &frame = m_frames.back();
    forgetActors();

    const std::vector<const Sighting *> previous = goOn(boxes);
    for (size_t i = 0; i < boxes.size(); ++i)
        frame.sightings.push_back({number, previous[i] ? previous[i]->actor : ++m_lastActor, previous[i],
                                   boxes[i], m_camera.foot(boxes[i])});
    std::sort(frame.sightings.begin(), frame.sightings.end(),
              [](const Sighting &a, const Sighting &b) { return a.actor < b.actor; });
    for (const Sighting &sighting : frame.sightings) {
        m_present[sighting.actor].sighting = &sighting;
        addOccurrences(sighting);
    }
}

void Follower::forgetActors()
{
    for (auto it = m_present.begin(); it != m_present.end();)
        it = waitsFor(it->second.sighting->frame) ? std::next(it) : m_present.erase(it);
}

std::vector<const Follower::Sighting *> Follower::goOn(const std::vector<cv::Rect> &boxes) const
{
    using Pair = std::tuple<double, unsigned, size_t>; // minus the overlap, actor, box: the best comes first
    std::vector<Pair> pairs;
    for (const auto &[actor, present] : m_present)
        for (size_t i = 0; i < boxes.size(); ++i)
            if (const double part = overlap(present.sighting->box, boxes[i]); part >= leastOverlap)
                pairs.emplace_back(-part, actor, i);
    std::sort(pairs.begin(), pairs.end());

    std::vector<const Sighting *> previous(boxes.size(), nullptr);
    std::set<unsigned> taken;
    for (const auto &[part, actor, box] : pairs)
        if (!previous[box] && taken.insert(actor).second)
            previous[box] = m_present.at(actor).sighting;
    return previous;
}

std::set<int> Follower::eventsAt(const std::optional<cv::Point3d> &foot) const
{
    if (m_zones.empty())
        return {0};
    std::set<int> names; // a name counts once, whatever the number of zones that have it
    for (const Zone &zone : m_zones)
        if (foot && cv::pointPolygonTest(zone.corners, ground(*foot - zone.origin), false) >= 0)
            names.insert(zone.name);
    return names;
}

void Follower::addOccurrences(const Sighting &sighting)
{
    auto &last = m_present[sighting.actor].occurrences;
    for (const int name : eventsAt(sighting.foot)) {
        Occurrence now{sighting.frame, sighting.actor, name, sighting.frame, 1};
        if (const auto found = last.find(name); found != last.end() && waitsFor(found->second.frame)) {
            now.begin = found->second.begin;
            now.count += found->second.count;
        }
        last[name] = now;
        m_frames.back().occurrences.push_back(now);
    }
}

std::list<QSharedPointer<const kelDataActor>> Follower::actors(int frame, const cv::Mat &foreground) const
{
    std::list<QSharedPointer<const kelDataActor>> actors;
    for (const Sighting &sighting : at(frame).sightings) {
        const QSharedPointer<kelDataActor> seen = actor(sighting);
        if (!foreground.empty()) {
            std::list<cv::Point> pixels = pixelsIn(sighting.box, foreground);
            seen->setPixels(pixels);
        }
        actors.push_back(seen);
    }
    return actors;
}

QSharedPointer<kelDataActor> Follower::actor(const Sighting &sighting) const
{
    const qint64 now = stamp(sighting.frame).toMSecsSinceEpoch();
    std::map<CSynchronizer, cv::Point3f> trajectory;
    double speed = 0;
    const Sighting *s = &sighting;
    for (int i = 0; s && i < longestTrajectory; ++i, s = s->previous) {
        if (!s->foot)
            continue;
        insert(stamp(s->frame), m_camera.inView(*s->foot), trajectory);
        const qint64 age = now - stamp(s->frame).toMSecsSinceEpoch();
        if (sighting.foot && age > 0 && age <= 1000)
            speed = cv::norm(*sighting.foot - *s->foot) / double(age); // mm/ms
    }

    QSharedPointer<kelDataActor> actor(new kelDataActor);
    actor->setIdent(sighting.actor);
    actor->setBoundingBox2D(sighting.box);
    actor->setTrajectory(trajectory);
    actor->setSync(stamp(sighting.frame));
    if (sighting.foot && m_camera.isCalibrated()) {
        Information3D information;
        information.setHeight(static_cast<float>(m_camera.height(sighting.box, *sighting.foot)));
        actor->setInformation3D(information);
        actor->setSpeed(speed);
    }
    return actor;
}

std::list<QSharedPointer<kelDataEvent>> Follower::events(int frame) const
{
    std::list<QSharedPointer<kelDataEvent>> events;
    for (const Occurrence &occurrence : at(frame).occurrences) {
        QSharedPointer<kelDataEvent> event(new kelDataEvent);
        event->setSEDName(m_names[static_cast<size_t>(occurrence.name)]);
        event->setInvolvedActorId(static_cast<int>(occurrence.actor));
        event->setSEDBegin(stamp(occurrence.begin));
        event->setSEDEnd(stamp(frame));
        event->setSEDConfidence(double(occurrence.count) / (frame - occurrence.begin + 1));
        event->setSEDAlarmLevel(m_zones.empty() ? "NOTURGENT" : "URGENT");
        events.push_back(event);
    }
    return events;
}
