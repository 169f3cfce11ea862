#include <kelCore/process/kelAbstractProcessFakeTracker.h>
#include <kelCore/process/kelAbstractProcessFakeTracker_p.h>

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include "support/Capture.h"
#include "support/Stage.h"

#include <type_traits>
#include <utility>

namespace {
using FakeTracker = Opened<kelAbstractProcessFakeTracker, kelAbstractProcessFakeTrackerPrivate>;
}

TEST(kelAbstractProcessFakeTrackerTest, AFreshStageHoldsNothing)
{
    expectFreshBase<FakeTracker>();
    EXPECT_EQ(sizeof(kelAbstractProcessFakeTrackerPrivate), sizeof(kelAbstractProcessPrivate));
}

TEST(kelAbstractProcessFakeTrackerTest, ACopyCarriesTheBase) { expectCopiedBase<FakeTracker>(); }

TEST(kelAbstractProcessFakeTrackerTest, TheIdentifierIsTheFrameworks)
{
    kelAbstractProcessFakeTracker stage;
    EXPECT_EQ(stage.identifier(), "kelAbstractProcessFakeTracker");
    EXPECT_EQ(stage.clone(), nullptr);
}

TEST(kelAbstractProcessFakeTrackerTest, PlugInsMakeActorsOfTheObjects)
{
    struct Tracker : kelAbstractProcessFakeTracker
    {
        void setPhysicalObjs(const PhysicalObjs &objects) override
        {
            for (const kelDataPhysicalObject &object : objects) {
                const QSharedPointer<kelDataActor> actor(new kelDataActor);
                actor->setIdent(object.getId());
                actors.push_back(actor);
            }
        }
        const ActorList getActors() const override { return actors; }
        ActorList actors;
    } tracker;
    PhysicalObjs objects(1);
    objects.front().setId(5);
    kelAbstractProcessFakeTracker &stage = tracker;
    stage.setPhysicalObjs(objects);
    ASSERT_EQ(stage.getActors().size(), 1u);
    EXPECT_EQ(stage.getActors().front()->getIdent(), 5u);
}

TEST(kelAbstractProcessFakeTrackerTest, TheActorsAreAConstResult)
{
    using Result = decltype(std::declval<const kelAbstractProcessFakeTracker &>().getActors());
    EXPECT_TRUE((std::is_same<Result, const ActorList>::value));
}
