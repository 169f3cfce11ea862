#include <kelCore/process/kelAbstractProcessFrameToFrameTracker.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker_p.h>

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include "support/Stage.h"

#include <type_traits>

namespace {

/// Takes the object in place i of each frame for the same actor.
class FrameToFrameTracker
    : public Opened<kelAbstractProcessFrameToFrameTracker, kelAbstractProcessFrameToFrameTrackerPrivate>
{
public:
    void setPhysicalObjects(const PhysicalObjs &objects) override { m_objects = &objects; }
    bool track() override
    {
        int place = 0;
        for (const kelDataPhysicalObject &object : *m_objects) {
            if (place == m_actors.size())
                m_actors.append(QSharedPointer<kelDataActor>(new kelDataActor));
            m_actors[place]->setCurrentPosition(object.getPosition());
            m_actors[place++]->updateTrajectory(getSynchronizer());
        }
        return true;
    }
    QList<QSharedPointer<kelDataActor>> getActors() override { return m_actors; }

private:
    const PhysicalObjs *m_objects = nullptr;
    QList<QSharedPointer<kelDataActor>> m_actors;
};

} // namespace

TEST(kelAbstractProcessFrameToFrameTrackerTest, PlugInsMustSupplyTheTracking)
{
    EXPECT_TRUE(std::is_abstract<kelAbstractProcessFrameToFrameTracker>::value);
}

TEST(kelAbstractProcessFrameToFrameTrackerTest, AFreshStageHoldsNothing)
{
    expectFreshBase<FrameToFrameTracker>();
    EXPECT_EQ(sizeof(kelAbstractProcessFrameToFrameTrackerPrivate), sizeof(kelAbstractProcessPrivate));
}

TEST(kelAbstractProcessFrameToFrameTrackerTest, ThePlugInsActorsFollowTheObjectsOverTheFrames)
{
    FrameToFrameTracker tracker;
    kelAbstractProcessFrameToFrameTracker &stage = tracker;
    PhysicalObjs objects(1);
    for (int frame = 0; frame < 2; ++frame) {
        CSynchronizer stamp;
        stamp.setDateTime(QDateTime(QDate(2009, 6, 1), QTime(12, 0, frame)));
        stage.setSynchronizer(stamp);
        objects.front().setPosition(cv::Point3f(static_cast<float>(frame), 0, 0));
        stage.setPhysicalObjects(objects);
        EXPECT_TRUE(stage.track());
    }
    ASSERT_EQ(stage.getActors().size(), 1);
    EXPECT_EQ(stage.getActors().first()->getTrajectory().size(), 2u);
    EXPECT_EQ(stage.getActors().first()->getCurrentPosition(), cv::Point3f(1, 0, 0));
}

TEST(kelAbstractProcessFrameToFrameTrackerTest, ACopyCarriesTheBase)
{
    expectCopiedBase<FrameToFrameTracker>();
}

TEST(kelAbstractProcessFrameToFrameTrackerTest, TheIdentifierIsTheFrameworks)
{
    EXPECT_EQ(FrameToFrameTracker().identifier(), "kelAbstractProcessFrameToFrameTracker");
}
