#include <kelCore/process/kelAbstractProcessGroundDetection.h>
#include <kelCore/process/kelAbstractProcessGroundDetection_p.h>

#include <kelCore/process/kelAbstractProcessFeetDetection.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {
using GroundDetection = Opened<kelAbstractProcessGroundDetection, kelAbstractProcessGroundDetectionPrivate>;
}

TEST(kelAbstractProcessGroundDetectionTest, AFreshStageHoldsNothing)
{
    expectFreshBase<GroundDetection>();
    EXPECT_EQ(sizeof(kelAbstractProcessGroundDetectionPrivate), sizeof(kelAbstractProcessPrivate));
}

TEST(kelAbstractProcessGroundDetectionTest, ACopyCarriesTheBase) { expectCopiedBase<GroundDetection>(); }

TEST(kelAbstractProcessGroundDetectionTest, TheIdentifierIsTheClassesOwnInSubclassesToo)
{
    EXPECT_EQ(kelAbstractProcessGroundDetection().identifier(), "kelAbstractProcessGroundDetection");
    struct Derived : kelAbstractProcessGroundDetection
    {
    } derived;
    EXPECT_EQ(derived.identifier(), "kelAbstractProcessGroundDetection");
}

TEST(kelAbstractProcessGroundDetectionTest, CloneGivesTheCallerACopy)
{
    kelAbstractProcessGroundDetection stage;
    stage.setSpecificParameters({{"k", 1}});
    nubAbstractObject &object = stage;
    const QScopedPointer<nubAbstractObject> clone(object.clone());
    const auto *copy = dynamic_cast<kelAbstractProcessGroundDetection *>(clone.data());
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, &stage);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
}

TEST(kelAbstractProcessGroundDetectionTest, CopyRunsTheFrameworksAloneAndSaysNothing)
{
    const LogLevel level(17);
    MessageCapture messages;
    GroundDetection source;
    source.d().properties["p"] = "v";
    source.setSpecificParameters({{"k", 1}});
    GroundDetection stage;
    stage.copy(source);
    EXPECT_EQ(stage.d().properties.value("p"), "v");
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessGroundDetectionTest, CopyFromAnotherKindWarnsOnce)
{
    const LogLevel level(17);
    MessageCapture messages;
    kelAbstractProcessFeetDetection other;
    GroundDetection stage;
    stage.copy(other);
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});

    const LogLevel higher(18);
    stage.copy(other);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessGroundDetectionTest, AssignmentCallsTheVirtualCopyAndReturnsTheObject)
{
    struct Counting : kelAbstractProcessGroundDetection
    {
        void copy(const nubAbstractObject &) override { ++copies; }
        int copies = 0;
    } counting;
    kelAbstractProcessGroundDetection &stage = counting;
    const kelAbstractProcessGroundDetection other;
    EXPECT_EQ(&(stage = other), &stage);
    EXPECT_EQ(counting.copies, 1);
}
