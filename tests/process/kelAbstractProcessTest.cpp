#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelAbstractProcess_p.h>

#include "support/Capture.h"

#include <memory>

namespace {

const char setSpecificParameters[] =
    "virtual bool kelAbstractProcess::setSpecificParameters(const QVariantMap&)";

CSynchronizer stamp(unsigned int frame)
{
    CSynchronizer result;
    result.setFrameNumber(frame);
    result.setDateTime(QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58, 999), Qt::UTC));
    return result;
}

} // namespace

/// A stage of a plug-in, with nothing of its own.
class kelProcessTestStage : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelProcessTestStage() = default;
    explicit kelProcessTestStage(kelAbstractProcessPrivate &dd) : kelAbstractProcess(dd) { }

    nubAbstractObjectPrivate &d() { return *nub_d; }

    void copy(const nubAbstractObject &other) override
    {
        ++copies;
        kelAbstractProcess::copy(other);
    }

    int copies = 0;
};

TEST(kelAbstractProcessTest, AFreshStageHasNoParametersAndADefaultTimeStamp)
{
    const kelAbstractProcess stage;
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_EQ(stage.getSynchronizer(), CSynchronizer());
    EXPECT_TRUE(stage.getSynchronizer().getDateTime().isNull());
    EXPECT_EQ(stage.getSynchronizer().getFrameNumber(), 0u);
    EXPECT_EQ(stage.parent(), nullptr);
}

TEST(kelAbstractProcessTest, AStageHoldsNothingButThePrivatePointer)
{
    EXPECT_EQ(sizeof(kelAbstractProcess), sizeof(nubAbstractObject));
}

TEST(kelAbstractProcessTest, TheFrameworkPartOfAFreshStageIsEmptyAndKnowsItsOwner)
{
    kelProcessTestStage stage;
    EXPECT_EQ(stage.d().q_ptr, &stage);
    EXPECT_EQ(stage.d().retainCount, 0);
    EXPECT_TRUE(stage.d().values.isEmpty());
    EXPECT_TRUE(stage.d().properties.isEmpty());
    EXPECT_TRUE(stage.d().metaData.isEmpty());
    EXPECT_FALSE(stage.d().deferredDeletion);
}

TEST(kelAbstractProcessTest, ThePrivateObjectDiesWithTheStage)
{
    struct Witness : kelAbstractProcessPrivate
    {
        explicit Witness(bool *flag) : dead(flag) { }
        ~Witness() override { *dead = true; }
        bool *dead;
    };
    bool dead = false;
    {
        const kelProcessTestStage stage(*new Witness(&dead));
        EXPECT_FALSE(dead);
    }
    EXPECT_TRUE(dead);
}

TEST(kelAbstractProcessTest, SetSynchronizerStoresDateTimeAndFrameNumber)
{
    kelAbstractProcess stage;
    MessageCapture messages;
    stage.setSynchronizer(stamp(7));
    EXPECT_EQ(stage.getSynchronizer(), stamp(7));
    EXPECT_EQ(stage.getSynchronizer().getFrameNumber(), 7u);
    EXPECT_EQ(&stage.getSynchronizer(), &stage.getSynchronizer());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessTest, SetSpecificParametersLogsOneLineNamingTheMostDerivedClass)
{
    kelProcessTestStage stage;
    const LogLevel level(1);
    MessageCapture messages;
    EXPECT_TRUE(stage.setSpecificParameters({{"k", 1}}));
    EXPECT_EQ(messages.lines(), QStringList{defaultNotice(setSpecificParameters, "kelProcessTestStage")});
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"k", 1}}));

    kelAbstractProcess base;
    messages.take();
    EXPECT_TRUE(base.setSpecificParameters({}));
    EXPECT_EQ(messages.lines(), QStringList{defaultNotice(setSpecificParameters, "kelAbstractProcess")});
}

TEST(kelAbstractProcessTest, SetSpecificParametersIsSilentAboveLevelOneAndStillStores)
{
    kelAbstractProcess stage;
    const LogLevel level(2);
    MessageCapture messages;
    EXPECT_TRUE(stage.setSpecificParameters({{"k", 1}}));
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"k", 1}}));
}

TEST(kelAbstractProcessTest, SetSpecificParametersReplacesTheWholeMap)
{
    kelAbstractProcess stage;
    stage.setSpecificParameters({{"a", 1}, {"b", 2}});
    EXPECT_TRUE(stage.setSpecificParameters({{"b", 3}}));
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"b", 3}}));
    EXPECT_TRUE(stage.setSpecificParameters({}));
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
}

TEST(kelAbstractProcessTest, SettingTheMapOfAStageToItselfChangesNothing)
{
    kelAbstractProcess stage;
    stage.setSpecificParameters({{"a", 1}, {"b", 2}});
    EXPECT_TRUE(stage.setSpecificParameters(stage.getSpecificParameters()));
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"a", 1}, {"b", 2}}));
}

TEST(kelAbstractProcessTest, ACopyCarriesTimeStampAndParameters)
{
    kelAbstractProcess stage;
    stage.setSynchronizer(stamp(7));
    stage.setSpecificParameters({{"k", 1}});
    kelAbstractProcess copy(stage);
    EXPECT_EQ(copy.getSynchronizer(), stamp(7));
    EXPECT_EQ(copy.getSynchronizer().getFrameNumber(), 7u);
    EXPECT_EQ(copy.getSpecificParameters(), (QVariantMap{{"k", 1}}));

    copy.setSpecificParameters({{"k", 2}});
    copy.setSynchronizer(CSynchronizer());
    EXPECT_EQ(stage.getSpecificParameters(), (QVariantMap{{"k", 1}}));
    EXPECT_EQ(stage.getSynchronizer(), stamp(7));
}

TEST(kelAbstractProcessTest, ACopyTakesTheParentOfItsSource)
{
    QObject parent;
    auto *stage = new kelAbstractProcess;
    stage->setParent(&parent);
    const auto *copy = new kelAbstractProcess(*stage);
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(kelAbstractProcess(kelAbstractProcess()).parent(), nullptr);
}

TEST(kelAbstractProcessTest, ACopyCarriesTheTablesAndTheFlagOfTheFramework)
{
    kelProcessTestStage stage;
    stage.d().values.insert("v", {"1", "2"});
    stage.d().properties.insert("p", "x");
    stage.d().metaData.insert("m", {"y"});
    stage.d().deferredDeletion = true;
    stage.retain();
    stage.retain();
    kelProcessTestStage copy(stage);
    EXPECT_EQ(copy.d().q_ptr, &copy);
    EXPECT_EQ(copy.d().values, stage.d().values);
    EXPECT_EQ(copy.d().properties, stage.d().properties);
    EXPECT_EQ(copy.d().metaData, stage.d().metaData);
    EXPECT_TRUE(copy.d().deferredDeletion);
    EXPECT_EQ(copy.retain(), 1); // who holds the source does not hold the copy
}

TEST(kelAbstractProcessTest, AssignmentCallsTheVirtualCopyAndCarriesTheFrameworksPartAlone)
{
    kelProcessTestStage from;
    from.d().properties.insert("p", "x");
    from.setSynchronizer(stamp(7));
    from.setSpecificParameters({{"k", 1}});
    kelProcessTestStage to;
    to.setSpecificParameters({{"own", 2}});
    MessageCapture messages;
    kelAbstractProcess &base = to;
    EXPECT_EQ(&(base = from), &to);
    EXPECT_EQ(to.copies, 1);
    EXPECT_EQ(to.d().properties, from.d().properties);
    EXPECT_EQ(to.getSynchronizer(), CSynchronizer());
    EXPECT_EQ(to.getSpecificParameters(), (QVariantMap{{"own", 2}}));
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessTest, CloneAndIdentifierAreTheFrameworks)
{
    kelProcessTestStage stage;
    EXPECT_EQ(std::unique_ptr<nubAbstractObject>(stage.clone()), nullptr);
    EXPECT_EQ(stage.identifier(), "kelProcessTestStage");
    EXPECT_EQ(kelAbstractProcess().identifier(), "kelAbstractProcess");
}

#include "kelAbstractProcessTest.moc"
