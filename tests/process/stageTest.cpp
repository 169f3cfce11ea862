/// \file
/// What holds for all stage interfaces alike: the chain of classes, copying, assignment, cloning, parameters, and
/// private classes of derived stages.

#include "process/everyStage.h"

#include <kelCore/process/kelAbstractProcessAcquisition_p.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration_p.h>
#include <kelCore/process/kelAbstractProcessClassifier_p.h>
#include <kelCore/process/kelAbstractProcessDepthSegmentation_p.h>
#include <kelCore/process/kelAbstractProcessEventRecognition_p.h>
#include <kelCore/process/kelAbstractProcessFakeTracker_p.h>
#include <kelCore/process/kelAbstractProcessFeetDetection_p.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker_p.h>
#include <kelCore/process/kelAbstractProcessGroundDetection_p.h>
#include <kelCore/process/kelAbstractProcessGroupTracker_p.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator_p.h>
#include <kelCore/process/kelAbstractProcessMessageSender_p.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector_p.h>
#include <kelCore/process/kelAbstractProcessReAcquisition_p.h>
#include <kelCore/process/kelAbstractProcessSegmentation_p.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter_p.h>

#include "support/Capture.h"
#include "support/Stage.h"

#include <memory>
#include <type_traits>

namespace {

template <class T, class... Ts> constexpr bool isOneOf = (std::is_same_v<T, Ts> || ...);

template <class S, class I, class P> struct Row
{
    using Stage = S; ///< A plug-in's.
    using Interface = I;
    using Private = P;
    /// Some say themselves what they are, clone themselves, and warn when they are copied from another kind. The
    /// others leave all of that to the framework.
    static constexpr bool knowsItself =
        isOneOf<I, kelAbstractProcessFeetDetection, kelAbstractProcessGroundDetection,
                kelAbstractProcessJsonGenerator, kelAbstractProcessMessageSender>;

    static QString stageName() { return S::staticMetaObject.className(); }
    static QString interfaceName() { return stageName().replace("stage::", "kelAbstractProcess"); }
};

#define ROW(Name) Row<stage::Name, kelAbstractProcess##Name, kelAbstractProcess##Name##Private>
using EveryStage =
    testing::Types<ROW(Acquisition), ROW(Segmentation), ROW(BlobsGeneration), ROW(Classifier),
                   ROW(DepthSegmentation), ROW(FakeTracker), ROW(FeetDetection), ROW(GroundDetection),
                   ROW(EventRecognition), ROW(JsonGenerator), ROW(MessageSender), ROW(PeopleDetector),
                   ROW(FrameToFrameTracker), ROW(GroupTracker), ROW(ReAcquisition), ROW(XMLReaderWriter)>;
#undef ROW

struct RowNames
{
    template <class T> static std::string GetName(int) { return T::interfaceName().toStdString(); }
};

/// A stage's own private class, and the stage as the guide shows it.
template <class T> struct OwnPrivate : T::Private
{
    OwnPrivate() = default;
    OwnPrivate(const OwnPrivate &other) : T::Private(other), carried(other.carried) { }
    ~OwnPrivate() override
    {
        if (dead)
            *dead = true;
    }

    int carried = 0;
    int leftBehind = 0;
    bool *dead = nullptr;
};

template <class T> class OwnStage : public T::Stage
{
public:
    OwnStage() : T::Stage(*new OwnPrivate<T>) { }
    OwnStage(const OwnStage &other) : T::Stage(*new OwnPrivate<T>(other.d()), other.parent()) { }

    OwnStage *clone() override { return new OwnStage(*this); }
    void copy(const nubAbstractObject &other) override
    {
        T::Stage::copy(other);
        ++copies;
    }

    OwnPrivate<T> &d() const { return static_cast<OwnPrivate<T> &>(*this->nub_d); }

    int copies = 0;
};

CSynchronizer stamp()
{
    CSynchronizer result;
    result.setFrameNumber(7);
    result.setDateTime(QDateTime(QDate(2009, 6, 1), QTime(12, 0)));
    return result;
}

template <class T> class stageTest : public testing::Test
{ };

TYPED_TEST_SUITE(stageTest, EveryStage, RowNames);

} // namespace

TYPED_TEST(stageTest, DerivesFromTheBaseAloneAndSoDoesItsPrivateClass)
{
    using Interface = typename TypeParam::Interface;
    expectStage<Interface, typename TypeParam::Private>(TypeParam::interfaceName());
    EXPECT_EQ(sizeof(Interface), sizeof(nubAbstractObject));
}

TYPED_TEST(stageTest, IsFreshWithoutParametersTimeStampAndParent)
{
    expectFreshBase<typename TypeParam::Stage>();
}

TYPED_TEST(stageTest, ACopyCarriesTimeStampParametersTablesAndParent)
{
    expectCopiedBase<Opened<typename TypeParam::Stage, typename TypeParam::Private>>();
}

TYPED_TEST(stageTest, CopyCarriesTheFrameworksPartAloneAndSaysNothing)
{
    using Stage = Opened<typename TypeParam::Stage, typename TypeParam::Private>;
    Stage source;
    source.d().properties["p"] = "v";
    source.setSynchronizer(stamp());
    source.setSpecificParameters({{"k", 1}});
    Stage stage;
    stage.setSpecificParameters({{"own", 2}});
    const LogLevel level(0);
    MessageCapture messages;
    stage.copy(source);
    EXPECT_EQ(stage.d().properties.value("p"), "v");
    EXPECT_EQ(stage.getSynchronizer(), CSynchronizer());
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"own", 2}}));
    EXPECT_EQ(messages.lines(), QStringList());
}

TYPED_TEST(stageTest, AssignmentCallsTheVirtualCopyAndDoesNothingElse)
{
    using Interface = typename TypeParam::Interface;
    OwnStage<TypeParam> source;
    source.setSpecificParameters({{"k", 1}});
    source.d().properties["p"] = "v";
    OwnStage<TypeParam> stage;
    Interface &base = stage;
    EXPECT_EQ(&(base = source), &base);
    EXPECT_EQ(stage.copies, 1);
    EXPECT_EQ(stage.d().properties.value("p"), "v");
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
}

TYPED_TEST(stageTest, CopyFromAnotherKindWarnsOnceWhereAStageKnowsItself)
{
    const kelAbstractProcess other;
    typename TypeParam::Stage stage;
    MessageCapture messages;
    {
        const LogLevel level(17);
        stage.copy(other);
        EXPECT_EQ(messages.take(), TypeParam::knowsItself ? QStringList{slicingWarning()} : QStringList());
        EXPECT_TRUE(messages.onlyDebug());
    }
    const LogLevel higher(18);
    stage.copy(other);
    EXPECT_EQ(messages.lines(), QStringList());
}

TYPED_TEST(stageTest, SaysWhatItIs)
{
    EXPECT_EQ(typename TypeParam::Stage().identifier(),
              TypeParam::knowsItself ? TypeParam::interfaceName() : TypeParam::stageName());
}

TYPED_TEST(stageTest, ClonesItselfOnlyWhereItKnowsItself)
{
    typename TypeParam::Stage stage;
    stage.setSpecificParameters({{"k", 1}});
    nubAbstractObject &object = stage;
    const std::unique_ptr<nubAbstractObject> clone(object.clone());
    EXPECT_EQ(clone != nullptr, TypeParam::knowsItself);
    if (clone) {
        const auto *copy = dynamic_cast<typename TypeParam::Interface *>(clone.get());
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(clone.get(), &object);
        EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
    }
}

TYPED_TEST(stageTest, ParametersAreKeptBehindANoticeThatNamesTheMostDerivedClass)
{
    typename TypeParam::Stage stage;
    stage.setSpecificParameters({{"old", 0}});
    const LogLevel level(1);
    MessageCapture messages;
    QVariantMap whenCaught;
    messages.whenCaught([&] { whenCaught = stage.getSpecificParameters(); });
    EXPECT_TRUE(stage.setSpecificParameters({{"k", 1}}));
    EXPECT_EQ(whenCaught, (QVariantMap{{"old", 0}}));
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"k", 1}}));
    EXPECT_EQ(messages.lines(),
              QStringList{
                  defaultNotice("virtual bool kelAbstractProcess::setSpecificParameters(const QVariantMap&)",
                                TypeParam::Stage::staticMetaObject.className())});
    EXPECT_TRUE(messages.onlyDebug());
}

TYPED_TEST(stageTest, AboveLevelOneParametersAreKeptSilently)
{
    const LogLevel level(2);
    MessageCapture messages;
    typename TypeParam::Stage stage;
    EXPECT_TRUE(stage.setSpecificParameters({{"k", 1}}));
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"k", 1}}));
    EXPECT_EQ(messages.lines(), QStringList());
}

TYPED_TEST(stageTest, AStageMayHaveAPrivateClassOfItsOwn)
{
    QObject parent;
    bool dead = false;
    {
        OwnStage<TypeParam> stage;
        EXPECT_EQ(stage.d().q_ptr, &stage);
        stage.setSpecificParameters({{"k", 1}});
        stage.d().carried = 3;
        stage.d().leftBehind = 4;
        stage.d().dead = &dead;
        stage.setParent(&parent);

        kelAbstractProcess &base = stage;
        const std::unique_ptr<nubAbstractObject> clone(base.clone());
        const auto *copy = dynamic_cast<OwnStage<TypeParam> *>(clone.get());
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(copy->d().q_ptr, copy);
        EXPECT_EQ(copy->d().carried, 3);
        EXPECT_EQ(copy->d().leftBehind, 0);
        EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
        EXPECT_EQ(copy->parent(), &parent);
        EXPECT_FALSE(dead);
    }
    EXPECT_TRUE(dead);
}

TEST(stageKindsTest, AFeetDetectionWarnsWhenItIsCopiedFromAGroundDetection)
{
    const LogLevel level(17);
    MessageCapture messages;
    kelAbstractProcessFeetDetection().copy(kelAbstractProcessGroundDetection());
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
}

TEST(stageKindsTest, AStageThatIsNotDerivedFromNamesItself)
{
    const LogLevel level(1);
    MessageCapture messages;
    kelAbstractProcessFeetDetection feet;
    feet.init();
    feet.setSpecificParameters({});
    const char *name = "kelAbstractProcessFeetDetection";
    EXPECT_EQ(messages.take(),
              (QStringList{
                  defaultNotice("virtual void kelAbstractProcessFeetDetection::init()", name),
                  defaultNotice("virtual bool kelAbstractProcess::setSpecificParameters(const QVariantMap&)",
                                name)}));
}
