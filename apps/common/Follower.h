#ifndef APPS_COMMON_FOLLOWER_H
#define APPS_COMMON_FOLLOWER_H

/// \file
/// Follows boxes from frame to frame.

#include "common/SceneCamera.h"

#include <kelCore/data/CSynchronizer.h>

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

#include <QSharedPointer>

#include <deque>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

class kelDataActor;
class kelDataEvent;

/// Makes actors and events of the boxes of a run.
///
/// A box goes on with the actor whose last box it overlaps best, by the part of the area of both that they
/// share; the best pair is joined first. A box that overlaps none is a new actor; actors are numbered from 1
/// on. One that is not seen is waited for during `patience` frames. The same frames always give the same
/// actors and events, and those of every frame stay known, at about 100 bytes for each box.
class Follower
{
public:
    static constexpr double leastOverlap = 0.1; ///< share of the area of both boxes
    static constexpr int patience = 5; ///< frames
    static constexpr int longestTrajectory = 100; ///< points, more than the view draws

    /// \throws Failure when the scene's camera has no focal lengths.
    explicit Follower(const Scene &scene);

    /// Takes the boxes of the next frame.
    void add(const CSynchronizer &stamp, const std::vector<cv::Rect> &boxes);

    int frameCount() const { return static_cast<int>(m_frames.size()); }
    const CSynchronizer &stamp(int frame) const { return at(frame).stamp; }

    /// The actors that are seen in a frame, by their ids: box, the last points of the trajectory in the
    /// RGB-D view's coordinates, and, with a calibration in millimetres, height and the speed of the last
    /// second in m/s.
    /// \param foreground where it is given, an actor's pixels are those of its box that are not 0.
    std::list<QSharedPointer<const kelDataActor>> actors(int frame,
                                                         const cv::Mat &foreground = cv::Mat()) const;
    /// The events of the actors that are seen in a frame: "in NAME", which is urgent, for each zone polygon
    /// of the scene that the actor's foot is in, or "in view", which is not, in a scene without zones. An
    /// event ends at the frame. It began with the first of the frames in which it was seen, no more than
    /// `patience` apart; its confidence is their share of all frames since then.
    std::list<QSharedPointer<kelDataEvent>> events(int frame) const;

    const SceneCamera &camera() const { return m_camera; }

private:
    Q_DISABLE_COPY(Follower) // sightings point to one another

    struct Zone
    {
        int name; ///< index
        cv::Point3d origin;
        std::vector<cv::Point2f> corners; ///< relative to the origin, to keep their precision
    };
    /// An actor in a frame.
    struct Sighting
    {
        int frame;
        unsigned actor;
        const Sighting *previous; ///< of the same actor; null for its first
        cv::Rect box;
        std::optional<cv::Point3d> foot; ///< world coordinates
    };
    /// An event in a frame.
    struct Occurrence
    {
        int frame;
        unsigned actor;
        int name; ///< index
        int begin; ///< frame
        int count; ///< of frames since the beginning in which it occurred
    };
    struct Frame
    {
        CSynchronizer stamp;
        std::vector<Sighting> sightings; ///< by actor
        std::vector<Occurrence> occurrences;
    };
    /// An actor that may be seen again.
    struct Present
    {
        const Sighting *sighting = nullptr; ///< the last one
        std::map<int, Occurrence> occurrences; ///< the last one of each name
    };

    void forgetActors();
    /// For each box the sighting that it goes on with; null where there is none.
    std::vector<const Sighting *> goOn(const std::vector<cv::Rect> &boxes) const;
    std::set<int> eventsAt(const std::optional<cv::Point3d> &foot) const;
    void addOccurrences(const Sighting &sighting);
    QSharedPointer<kelDataActor> actor(const Sighting &sighting) const;

    const Frame &at(int frame) const { return m_frames[static_cast<size_t>(frame)]; }
    /// Whether what was seen last in that frame may go on in the newest one.
    bool waitsFor(int frame) const { return frameCount() - 1 - frame <= patience + 1; }

    SceneCamera m_camera;
    std::vector<std::string> m_names; ///< of events
    std::vector<Zone> m_zones;
    std::deque<Frame> m_frames;
    std::map<unsigned, Present> m_present; ///< by actor
    unsigned m_lastActor = 0;
};

#endif
