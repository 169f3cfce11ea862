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
    expectFreshBase<JsonGenerator>();
}

TEST(kelAbstractProcessJsonGeneratorTest, TheSettersStoreNothing)
{
    JsonGenerator stage;
    stage.setActors({QSharedPointer<const kelDataActor>(new kelDataActor)});
    stage.setEvents({QSharedPointer<kelDataEvent>(new kelDataEvent)});
    EXPECT_TRUE(stage.d().actors.empty());
    EXPECT_TRUE(stage.d().events.empty());
}

TEST(kelAbstractProcessJsonGeneratorTest, ACopyCarriesTheBaseAndHasNoLists)
{
    JsonGenerator stage;
    stage.d().actors.emplace_back(new kelDataActor);
    stage.d().events.emplace_back(new kelDataEvent);
    JsonGenerator copy(stage);
    EXPECT_TRUE(copy.d().actors.empty());
    EXPECT_TRUE(copy.d().events.empty());
    EXPECT_EQ(stage.d().actors.size(), 1u);
    EXPECT_EQ(stage.d().events.size(), 1u);
    expectCopiedBase<JsonGenerator>();
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

TEST(kelAbstractProcessJsonGeneratorTest, TheIdentifierIsTheClassesOwnInSubclassesToo)
{
    EXPECT_EQ(kelAbstractProcessJsonGenerator().identifier(), "kelAbstractProcessJsonGenerator");
    struct Derived : kelAbstractProcessJsonGenerator
    {
    } derived;
    EXPECT_EQ(derived.identifier(), "kelAbstractProcessJsonGenerator");
}

TEST(kelAbstractProcessJsonGeneratorTest, CloneGivesTheCallerACopy)
{
    kelAbstractProcessJsonGenerator stage;
    stage.setSpecificParameters({{"k", 1}});
    nubAbstractObject &object = stage;
    const QScopedPointer<nubAbstractObject> clone(object.clone());
    const auto *copy = dynamic_cast<kelAbstractProcessJsonGenerator *>(clone.data());
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, &stage);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
}

TEST(kelAbstractProcessJsonGeneratorTest, CopyRunsTheFrameworksAloneAndSaysNothing)
{
    const LogLevel level(17);
    MessageCapture messages;
    JsonGenerator source;
    source.d().properties["p"] = "v";
    source.setSpecificParameters({{"k", 1}});
    JsonGenerator stage;
    stage.copy(source);
    EXPECT_EQ(stage.d().properties.value("p"), "v");
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessJsonGeneratorTest, CopyFromAnotherKindWarnsOnce)
{
    const LogLevel level(17);
    MessageCapture messages;
    kelAbstractProcessGroundDetection other;
    JsonGenerator stage;
    stage.copy(other);
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});

    const LogLevel higher(18);
    stage.copy(other);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessJsonGeneratorTest, AssignmentCallsTheVirtualCopyAndReturnsTheObject)
{
    struct Counting : kelAbstractProcessJsonGenerator
    {
        void copy(const nubAbstractObject &) override { ++copies; }
        int copies = 0;
    } counting;
    kelAbstractProcessJsonGenerator &stage = counting;
    const kelAbstractProcessJsonGenerator other;
    EXPECT_EQ(&(stage = other), &stage);
    EXPECT_EQ(counting.copies, 1);
}
