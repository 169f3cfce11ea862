#include <kelCore/process/kelAbstractProcessFrameToFrameTracker.h> // alone

#include <gtest/gtest.h>

namespace {

/// The object in place i of each frame is always the same actor.
class FrameToFrameTracker : public kelAbstractProcessFrameToFrameTracker
{
public:
    void setPhysicalObjects(const PhysicalObjs &objects) override
    {
        m_positions.clear();
        for (const kelDataPhysicalObject &object : objects)
            m_positions.push_back(object.getPosition());
    }
    bool track() override
    {
        int place = 0;
        for (const cv::Point3f &position : m_positions) {
            if (place == m_actors.size())
                m_actors.append(QSharedPointer<kelDataActor>(new kelDataActor));
            m_actors[place]->setCurrentPosition(position);
            m_actors[place++]->updateTrajectory(getSynchronizer());
        }
        return true;
    }
    QList<QSharedPointer<kelDataActor>> getActors() override { return m_actors; }

private:
    std::list<cv::Point3f> m_positions;
    QList<QSharedPointer<kelDataActor>> m_actors;
};

} // namespace

TEST(stageHeaderTest, FrameToFrameTrackerNeedsNoOther)
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
