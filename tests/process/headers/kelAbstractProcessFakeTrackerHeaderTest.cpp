#include <kelCore/process/kelAbstractProcessFakeTracker.h> // alone

#include <gtest/gtest.h>

namespace {

/// One actor of each object.
class FakeTracker : public kelAbstractProcessFakeTracker
{
public:
    void setPhysicalObjs(const PhysicalObjs &objects) override
    {
        m_actors.clear();
        for (const kelDataPhysicalObject &object : objects) {
            const QSharedPointer<kelDataActor> actor(new kelDataActor);
            actor->setIdent(object.getId());
            m_actors.push_back(actor);
        }
    }
    const ActorList getActors() const override { return m_actors; }

private:
    ActorList m_actors;
};

} // namespace

TEST(stageHeaderTest, FakeTrackerNeedsNoOther)
{
    FakeTracker tracker;
    kelAbstractProcessFakeTracker &stage = tracker;
    EXPECT_TRUE(kelAbstractProcessFakeTracker().getActors().empty());
    PhysicalObjs objects(1);
    objects.front().setId(5);
    stage.setPhysicalObjs(objects);
    ASSERT_EQ(stage.getActors().size(), 1u);
    EXPECT_EQ(stage.getActors().front()->getIdent(), 5u);
}
