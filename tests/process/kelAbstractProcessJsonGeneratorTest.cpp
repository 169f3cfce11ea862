#include <kelCore/process/kelAbstractProcessJsonGenerator.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator_p.h>

#include <kelCore/process/kelAbstractProcessGroundDetection.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {
using JsonGenerator = Opened<kelAbstractProcessJsonGenerator, kelAbstractProcessJsonGeneratorPrivate>;
}

TEST(kelAbstractProcessJsonGeneratorTest, AFreshStageHoldsNothing)
{
    JsonGenerator stage;
    EXPECT_TRUE(stage.d().actors.empty());
    EXPECT_TRUE(stage.d().events.empty());
}

TEST(kelAbstractProcessJsonGeneratorTest, TheSettersStoreNothing)
{
    JsonGenerator stage;
    stage.setActors({QSharedPointer<const kelDataActor>(new kelDataActor)});
    stage.setEvents({QSharedPointer<kelDataEvent>(new kelDataEvent)});
    EXPECT_TRUE(stage.d().actors.empty());
    EXPECT_TRUE(stage.d().events.empty());
}

TEST(kelAbstractProcessJsonGeneratorTest, ACopyHasNoLists)
{
    JsonGenerator stage;
    stage.d().actors.emplace_back(new kelDataActor);
    stage.d().events.emplace_back(new kelDataEvent);
    JsonGenerator copy(stage);
    EXPECT_TRUE(copy.d().actors.empty());
    EXPECT_TRUE(copy.d().events.empty());
    EXPECT_EQ(stage.d().actors.size(), 1u);
    EXPECT_EQ(stage.d().events.size(), 1u);
}

TEST(kelAbstractProcessJsonGeneratorTest, AssignmentLeavesTheLists)
{
    JsonGenerator filled;
    filled.d().actors.emplace_back(new kelDataActor);
    JsonGenerator stage;
    stage.d().events.emplace_back(new kelDataEvent);
    stage.copy(filled);
    EXPECT_TRUE(stage.d().actors.empty());
    EXPECT_EQ(stage.d().events.size(), 1u);
}
