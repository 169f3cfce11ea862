#include <kelCore/process/kelAbstractProcessReAcquisition.h>
#include <kelCore/process/kelAbstractProcessReAcquisition_p.h>

#include "support/Capture.h"
#include "support/Stage.h"

namespace {

/// Knows every actor as number 1.
class ReAcquisition : public Opened<kelAbstractProcessReAcquisition, kelAbstractProcessReAcquisitionPrivate>
{
public:
    bool reAcquire() override
    {
        d().outputActors = d().inputActors;
        for (const QSharedPointer<kelDataActor> &actor : d().outputActors)
            actor->setIdent(1);
        return true;
    }
};

using Actors = QList<QSharedPointer<kelDataActor>>;

Actors oneActor() { return {QSharedPointer<kelDataActor>(new kelDataActor)}; }

} // namespace

TEST(kelAbstractProcessReAcquisitionTest, AFreshStageHoldsNothing)
{
    ReAcquisition stage;
    EXPECT_TRUE(stage.d().image.isNull());
    EXPECT_TRUE(stage.d().inputActors.isEmpty());
    EXPECT_EQ(stage.d().mtsPath, "");
    EXPECT_TRUE(stage.d().outputActors.isEmpty());
    EXPECT_TRUE(stage.getActors().isEmpty());
}

TEST(kelAbstractProcessReAcquisitionTest, TheSettersKeepWhatTheyAreGivenSilently)
{
    const LogLevel level(0);
    MessageCapture messages;
    ReAcquisition stage;
    expectKeptAndReleased<kelDataImage>(stage.d().image, [&](auto &object) { stage.setImage(object); });
    stage.setMTSPath("known");
    EXPECT_EQ(stage.d().mtsPath, "known");
    const Actors actors = oneActor();
    stage.setActors(actors);
    EXPECT_EQ(stage.d().inputActors, actors);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessReAcquisitionTest, ActorsThatAreSetAreNotGivenBackUntilAPlugInDoes)
{
    ReAcquisition stage;
    const Actors actors = oneActor();
    stage.setActors(actors);
    EXPECT_TRUE(stage.getActors().isEmpty());
    EXPECT_TRUE(stage.reAcquire());
    EXPECT_EQ(stage.getActors(), actors);
    EXPECT_EQ(actors.first()->getIdent(), 1u);
    stage.getActors().clear();
    EXPECT_EQ(stage.getActors().size(), 1);
    stage.setActors({});
    EXPECT_EQ(stage.getActors(), actors);
}

TEST(kelAbstractProcessReAcquisitionTest, ACopyTakesImageAndInputAndLeavesPathAndOutput)
{
    ReAcquisition stage;
    const QSharedPointer<kelDataImage> image(new kelDataImage);
    const Actors actors = oneActor();
    stage.setImage(image);
    stage.setMTSPath("known");
    stage.setActors(actors);
    stage.reAcquire();
    ReAcquisition copy(stage);
    EXPECT_EQ(copy.d().image, image);
    EXPECT_EQ(copy.d().inputActors, actors);
    EXPECT_EQ(copy.d().mtsPath, "");
    EXPECT_TRUE(copy.getActors().isEmpty());
    EXPECT_EQ(stage.d().mtsPath, "known");
    EXPECT_EQ(stage.getActors().size(), 1);
}
