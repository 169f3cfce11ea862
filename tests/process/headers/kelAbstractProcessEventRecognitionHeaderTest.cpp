#include <kelCore/process/kelAbstractProcessEventRecognition.h> // alone

#include <gtest/gtest.h>

namespace {

/// One event for each actor.
class EventRecognition : public kelAbstractProcessEventRecognition
{
public:
    bool recognizeEvents() override
    {
        EventList events;
        for (const QSharedPointer<const kelDataActor> &actor : getActors()) {
            events.emplace_back(new kelDataEvent);
            events.back()->setInvolvedActorId(static_cast<int>(actor->getIdent()));
        }
        setCurrentFrameEvents(events);
        return true;
    }
};

} // namespace

TEST(stageHeaderTest, EventRecognitionNeedsNoOther)
{
    EventRecognition stage;
    QSharedPointer<kelDataActor> actor(new kelDataActor);
    actor->setIdent(5);
    stage.setActors({actor});
    EXPECT_TRUE(stage.recognizeEvents());
    ASSERT_EQ(stage.getCurrentFrameEvents().size(), 1u);
    EXPECT_EQ(stage.getCurrentFrameEvents().front()->getInvolvedActorId(), 5);
    stage.setActors({});
    EXPECT_TRUE(stage.recognizeEvents());
    EXPECT_TRUE(stage.getCurrentFrameEvents().empty());
}
