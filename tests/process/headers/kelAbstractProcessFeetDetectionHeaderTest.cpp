#include <kelCore/process/kelAbstractProcessFeetDetection.h> // alone

#include <gtest/gtest.h>

namespace {

/// Both feet of an actor are where it is; its legs are a point each.
class FeetDetection : public kelAbstractProcessFeetDetection
{
public:
    void setActorList(ActorList actors) override { m_actors = actors; }
    std::map<int, std::pair<std::list<cv::Point3f> *, std::list<cv::Point3f> *>> getLegsPoints() override
    {
        m_leg.assign(1, m_actors.front()->getCurrentPosition());
        return {{static_cast<int>(m_actors.front()->getIdent()), {&m_leg, &m_leg}}};
    }
    std::map<int, std::pair<cv::Point3f, cv::Point3f>> getFeetPositions() override
    {
        const cv::Point3f foot = m_actors.front()->getCurrentPosition();
        return {{static_cast<int>(m_actors.front()->getIdent()), {foot, foot}}};
    }

private:
    ActorList m_actors;
    std::list<cv::Point3f> m_leg;
};

} // namespace

TEST(stageHeaderTest, FeetDetectionNeedsNoOther)
{
    FeetDetection detection;
    kelAbstractProcessFeetDetection &stage = detection;
    QSharedPointer<kelDataActor> actor(new kelDataActor);
    actor->setIdent(5);
    actor->setCurrentPosition(cv::Point3f(1, 2, 3));
    stage.setActorList({actor});
    EXPECT_EQ(stage.getFeetPositions().at(5).second.y, 2);
    EXPECT_EQ(stage.getLegsPoints().at(5).first->front().z, 3);
    EXPECT_TRUE(stage.getSpeed().empty());
}
