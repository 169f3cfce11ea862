#include <kelCore/process/kelAbstractProcessFeetDetection.h>
#include <kelCore/process/kelAbstractProcessFeetDetection_p.h>

#include <kelCore/process/kelAbstractProcessGroundDetection.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {
using FeetDetection = Opened<kelAbstractProcessFeetDetection, kelAbstractProcessFeetDetectionPrivate>;
}

TEST(kelAbstractProcessFeetDetectionTest, AFreshStageHoldsNothing)
{
    expectFreshBase<FeetDetection>();
    EXPECT_EQ(sizeof(kelAbstractProcessFeetDetectionPrivate), sizeof(kelAbstractProcessPrivate));
}

TEST(kelAbstractProcessFeetDetectionTest, ACopyCarriesTheBase) { expectCopiedBase<FeetDetection>(); }

TEST(kelAbstractProcessFeetDetectionTest, TheIdentifierIsTheClassesOwnInSubclassesToo)
{
    EXPECT_EQ(kelAbstractProcessFeetDetection().identifier(), "kelAbstractProcessFeetDetection");
    struct Derived : kelAbstractProcessFeetDetection
    {
    } derived;
    EXPECT_EQ(derived.identifier(), "kelAbstractProcessFeetDetection");
}

TEST(kelAbstractProcessFeetDetectionTest, CloneGivesTheCallerACopy)
{
    kelAbstractProcessFeetDetection stage;
    stage.setSpecificParameters({{"k", 1}});
    nubAbstractObject &object = stage;
    const QScopedPointer<nubAbstractObject> clone(object.clone());
    const auto *copy = dynamic_cast<kelAbstractProcessFeetDetection *>(clone.data());
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, &stage);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
}

TEST(kelAbstractProcessFeetDetectionTest, CopyRunsTheFrameworksAloneAndSaysNothing)
{
    const LogLevel level(17);
    MessageCapture messages;
    FeetDetection source;
    source.d().properties["p"] = "v";
    source.setSpecificParameters({{"k", 1}});
    FeetDetection stage;
    stage.copy(source);
    EXPECT_EQ(stage.d().properties.value("p"), "v");
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessFeetDetectionTest, CopyFromAnotherKindWarnsOnce)
{
    const LogLevel level(17);
    MessageCapture messages;
    kelAbstractProcessGroundDetection other;
    FeetDetection stage;
    stage.copy(other);
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});

    const LogLevel higher(18);
    stage.copy(other);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessFeetDetectionTest, AssignmentCallsTheVirtualCopyAndReturnsTheObject)
{
    struct Counting : kelAbstractProcessFeetDetection
    {
        void copy(const nubAbstractObject &) override { ++copies; }
        int copies = 0;
    } counting;
    kelAbstractProcessFeetDetection &stage = counting;
    const kelAbstractProcessFeetDetection other;
    EXPECT_EQ(&(stage = other), &stage);
    EXPECT_EQ(counting.copies, 1);
}
