#include <kelCore/process/kelAbstractProcessEventRecognition.h>
#include <kelCore/process/kelAbstractProcessEventRecognition_p.h>

#include "support/Stage.h"

namespace {

/// Makes one event of each actor.
class EventRecognition
    : public Opened<kelAbstractProcessEventRecognition, kelAbstractProcessEventRecognitionPrivate>
{
public:
    bool recognizeEvents() override
    {
        d().events.clear();
        for (const QSharedPointer<const kelDataActor> &actor : d().actors) {
            d().events.emplace_back(new kelDataEvent);
            d().events.back()->setInvolvedActorId(static_cast<int>(actor->getIdent()));
        }
        return true;
    }
};

ActorList oneActor(unsigned int ident)
{
    const QSharedPointer<kelDataActor> actor(new kelDataActor);
    actor->setIdent(ident);
    return {actor};
}

} // namespace

TEST(kelAbstractProcessEventRecognitionTest, AFreshStageHoldsNothing)
{
    EventRecognition stage;
    EXPECT_TRUE(stage.d().actors.empty());
    EXPECT_TRUE(stage.d().events.empty());
    EXPECT_TRUE(stage.getCurrentFrameEvents().empty());
    EXPECT_TRUE(stage.getAllFramesEvents().empty());
}

TEST(kelAbstractProcessEventRecognitionTest, SetActorsReplacesTheActors)
{
    EventRecognition stage;
    const ActorList first = oneActor(1);
    const ActorList second = oneActor(2);
    stage.setActors(first);
    EXPECT_EQ(stage.d().actors, first);
    stage.setActors(second);
    EXPECT_EQ(stage.d().actors, second);
}

TEST(kelAbstractProcessEventRecognitionTest, TheCurrentEventsAreACopyThatSharesTheEvents)
{
    EventRecognition stage;
    stage.setActors(oneActor(3));
    EXPECT_TRUE(stage.recognizeEvents());
    EventList events = stage.getCurrentFrameEvents();
    ASSERT_EQ(events, stage.d().events);
    EXPECT_EQ(events.front()->getInvolvedActorId(), 3);
    events.clear();
    EXPECT_EQ(stage.getCurrentFrameEvents().size(), 1u);
}

TEST(kelAbstractProcessEventRecognitionTest, TheEventsOfAllFramesAreNoneInTheBase)
{
    EventRecognition stage;
    stage.setActors(oneActor(3));
    stage.recognizeEvents();
    EXPECT_TRUE(stage.getAllFramesEvents().empty());
}

TEST(kelAbstractProcessEventRecognitionTest, ACopyHasListsOfItsOwnThatShareActorsAndEvents)
{
    EventRecognition stage;
    stage.setActors(oneActor(3));
    stage.recognizeEvents();
    EventRecognition copy(stage);
    EXPECT_EQ(copy.d().actors, stage.d().actors);
    EXPECT_EQ(copy.d().events, stage.d().events);
    copy.d().actors.clear();
    copy.d().events.clear();
    EXPECT_EQ(stage.d().actors.size(), 1u);
    EXPECT_EQ(stage.d().events.size(), 1u);
}
