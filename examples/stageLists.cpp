// Hands the results of one stage to the next where the two know them by lists of different types.

#include <kelCore/process/kelAbstractProcessClassifier.h>
#include <kelCore/process/kelAbstractProcessEventRecognition.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker.h>

#include <cstdio>

namespace {

/// What a classifier gives, as trackers take it: copies of the objects.
PhysicalObjs objectsOf(kelAbstractProcessClassifier &classifier)
{
    PhysicalObjs objects;
    for (const QSharedPointer<kelDataPhysicalObject> &object : classifier.getPhysicalObjects())
        objects.push_back(*object);
    return objects;
}

/// What a tracker gives, as event recognition takes it: the same actors, to be read.
ActorList actorsOf(kelAbstractProcessFrameToFrameTracker &tracker)
{
    const QList<QSharedPointer<kelDataActor>> actors = tracker.getActors();
    return ActorList(actors.begin(), actors.end());
}

/// Every blob is an object.
class AnyBlob : public kelAbstractProcessClassifier
{
public:
    bool classify() override
    {
        getPhysicalObjects().clear();
        for (const QSharedPointer<kelDataBlob> &blob : getBlobs()) {
            getPhysicalObjects().append(QSharedPointer<kelDataPhysicalObject>(new kelDataPhysicalObject));
            getPhysicalObjects().last()->setBoundingBox2D(blob->getBoundingBox2D());
        }
        return true;
    }
};

/// Every object is an actor, as many columns to the right as its box.
class AnyObject : public kelAbstractProcessFrameToFrameTracker
{
public:
    void setPhysicalObjects(const PhysicalObjs &objects) override
    {
        m_actors.clear();
        for (const kelDataPhysicalObject &object : objects) {
            m_actors.append(QSharedPointer<kelDataActor>(new kelDataActor));
            m_actors.last()->setCurrentPosition(
                cv::Point3f(static_cast<float>(object.getBoundingBox2D().x), 0, 0));
        }
    }
    bool track() override { return true; }
    QList<QSharedPointer<kelDataActor>> getActors() override { return m_actors; }

private:
    QList<QSharedPointer<kelDataActor>> m_actors;
};

/// Every actor is an event.
class AnyActor : public kelAbstractProcessEventRecognition
{
public:
    bool recognizeEvents() override
    {
        EventList events;
        for (const QSharedPointer<const kelDataActor> &actor : getActors()) {
            events.emplace_back(new kelDataEvent);
            events.back()->setSEDName("at "
                                      + std::to_string(static_cast<int>(actor->getCurrentPosition().x)));
        }
        setCurrentFrameEvents(events);
        return true;
    }
};

} // namespace

int main()
{
    QList<QSharedPointer<kelDataBlob>> blobs;
    for (const int x : {10, 20}) {
        blobs.append(QSharedPointer<kelDataBlob>(new kelDataBlob));
        blobs.last()->setBoundingBox2D(cv::Rect(x, 0, 5, 5));
    }

    AnyBlob classifier;
    AnyObject tracker;
    AnyActor recognition;
    classifier.setBlobs(blobs);
    if (!classifier.classify())
        return 1;
    tracker.setPhysicalObjects(objectsOf(classifier));
    if (!tracker.track())
        return 1;
    recognition.setActors(actorsOf(tracker));
    if (!recognition.recognizeEvents())
        return 1;
    for (const QSharedPointer<kelDataEvent> &event : recognition.getCurrentFrameEvents())
        std::puts(event->getSEDName().c_str());
    return 0;
}
