#include <kelCore/process/kelAbstractProcessMessageSender.h>
#include <kelCore/process/kelAbstractProcessMessageSender_p.h>

#include <kelCore/process/kelAbstractProcessGroundDetection.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {
using MessageSender = Opened<kelAbstractProcessMessageSender, kelAbstractProcessMessageSenderPrivate>;
}

TEST(kelAbstractProcessMessageSenderTest, AFreshStageHoldsNothing)
{
    expectFreshBase<MessageSender>();
    EXPECT_EQ(sizeof(kelAbstractProcessMessageSenderPrivate), sizeof(kelAbstractProcessPrivate));
}

TEST(kelAbstractProcessMessageSenderTest, ACopyCarriesTheBase) { expectCopiedBase<MessageSender>(); }

TEST(kelAbstractProcessMessageSenderTest, TheIdentifierIsTheClassesOwnInSubclassesToo)
{
    EXPECT_EQ(kelAbstractProcessMessageSender().identifier(), "kelAbstractProcessMessageSender");
    struct Derived : kelAbstractProcessMessageSender
    {
    } derived;
    EXPECT_EQ(derived.identifier(), "kelAbstractProcessMessageSender");
}

TEST(kelAbstractProcessMessageSenderTest, CloneGivesTheCallerACopy)
{
    kelAbstractProcessMessageSender stage;
    stage.setSpecificParameters({{"k", 1}});
    nubAbstractObject &object = stage;
    const QScopedPointer<nubAbstractObject> clone(object.clone());
    const auto *copy = dynamic_cast<kelAbstractProcessMessageSender *>(clone.data());
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, &stage);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
}

TEST(kelAbstractProcessMessageSenderTest, CopyRunsTheFrameworksAloneAndSaysNothing)
{
    const LogLevel level(17);
    MessageCapture messages;
    MessageSender source;
    source.d().properties["p"] = "v";
    source.setSpecificParameters({{"k", 1}});
    MessageSender stage;
    stage.copy(source);
    EXPECT_EQ(stage.d().properties.value("p"), "v");
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessMessageSenderTest, CopyFromAnotherKindWarnsOnce)
{
    const LogLevel level(17);
    MessageCapture messages;
    kelAbstractProcessGroundDetection other;
    MessageSender stage;
    stage.copy(other);
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});

    const LogLevel higher(18);
    stage.copy(other);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessMessageSenderTest, AssignmentCallsTheVirtualCopyAndReturnsTheObject)
{
    struct Counting : kelAbstractProcessMessageSender
    {
        void copy(const nubAbstractObject &) override { ++copies; }
        int copies = 0;
    } counting;
    kelAbstractProcessMessageSender &stage = counting;
    const kelAbstractProcessMessageSender other;
    EXPECT_EQ(&(stage = other), &stage);
    EXPECT_EQ(counting.copies, 1);
}
