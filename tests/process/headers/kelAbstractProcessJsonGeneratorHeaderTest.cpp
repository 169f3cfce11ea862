#include <kelCore/process/kelAbstractProcessJsonGenerator.h> // alone

#include <gtest/gtest.h>

namespace {

/// The identifier of the first actor, and of the actor of the first event.
class JsonGenerator : public kelAbstractProcessJsonGenerator
{
public:
    void setActors(ActorList actors) override { keepActors(actors); }
    void setEvents(EventList events) override { keepEvents(events); }
    std::string generateJsonString() override
    {
        if (getActors().empty() || getEvents().empty())
            return std::string();
        return std::to_string(getActors().front()->getIdent()) + ' '
            + std::to_string(getEvents().front()->getInvolvedActorId());
    }
};

} // namespace

TEST(stageHeaderTest, JsonGeneratorNeedsNoOther)
{
    JsonGenerator generator;
    kelAbstractProcessJsonGenerator &stage = generator;
    EXPECT_EQ(stage.generateJsonString(), "");
    QSharedPointer<kelDataActor> actor(new kelDataActor);
    QSharedPointer<kelDataEvent> event(new kelDataEvent);
    actor->setIdent(5);
    event->setInvolvedActorId(6);
    stage.setActors({actor});
    stage.setEvents({event});
    EXPECT_EQ(stage.generateJsonString(), "5 6");
}
