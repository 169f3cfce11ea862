#ifndef EXAMPLES_FIVEPEOPLE_H
#define EXAMPLES_FIVEPEOPLE_H

/// \file
/// A recorded room with five people, and what a pipeline would know of it.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/ContextElement.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>

#include <QSharedPointer>
#include <QString>

#include <list>
#include <map>
#include <utility>
#include <vector>

class kelDataActor;
class kelDataEvent;
class kelDataImage;
class kelViewEventTimeline;
class kelViewRGBD;

/// One frame of a colour and depth sensor, and the scene in it: floor, zone, actors and events. The floor,
/// the pixels of the people, their feet and heights are measured in the depth map; boxes, ways and events
/// were placed by hand, where a tracker and an event recognition would stand.
///
/// Lengths are millimetres, in the camera's frame: x to the right, y down, z forward.
struct FivePeople
{
    /// Reads a frame of 640 x 480 pixels.
    /// \param colorFile its colour picture.
    /// \param depthFile its depth picture, 16-bit millimetres.
    /// \throws std::runtime_error when they cannot be read, or show something else.
    FivePeople(const QString &colorFile, const QString &depthFile);

    /// Hands everything to the view, which draws it with its next `updateDisplay`.
    void show(kelViewRGBD &view) const;
    /// Hands a minute of events to the timeline, second by second, up to the frame.
    static void tell(kelViewEventTimeline &timeline);

    static constexpr int lastSecond = 60; ///< When the frame was taken: the minute begins at 0.
    /// The events that go on at a second of the minute, each as far as it has come.
    static std::list<QSharedPointer<kelDataEvent>> eventsAt(int second);

    QSharedPointer<kelDataImage> color;
    QSharedPointer<kelDataImage> depth;
    kelAbstractDataCalibrationWithDepth camera;
    std::vector<double> floor; ///< Its plane.
    std::list<ContextElement> zones;
    std::list<cv::Point3f> floorPoints;
    std::list<QSharedPointer<const kelDataActor>> actors;
    std::map<int, std::pair<cv::Point3f, cv::Point3f>> feet; ///< Left and right, by actor.
    std::list<cv::Point3f> tops; ///< The highest point of each actor.

private:
    void fitFloor();
    void findPeople();
};

#endif
