#include <kelCore/process/kelAbstractProcessGroupTracker.h>
#include <kelCore/process/kelAbstractProcessGroupTracker_p.h>

#include "support/Stage.h"

namespace {

/// Takes all actors for one group: adds an actor for it.
class GroupTracker : public Opened<kelAbstractProcessGroupTracker, kelAbstractProcessGroupTrackerPrivate>
{
public:
    bool init() override { return !d().parameterFile.empty(); }
    bool trackGroups() override
    {
        if (!d().frame)
            return false;
        d().actors.append(QSharedPointer<kelDataActor>(new kelDataActor));
        d().actors.last()->setType("group");
        return true;
    }
};

using Actors = QList<QSharedPointer<kelDataActor>>;

Actors twoActors()
{
    return {QSharedPointer<kelDataActor>(new kelDataActor), QSharedPointer<kelDataActor>(new kelDataActor)};
}

} // namespace

TEST(kelAbstractProcessGroupTrackerTest, AFreshStageHoldsNothing)
{
    GroupTracker stage;
    EXPECT_TRUE(stage.d().calibration.isNull());
    EXPECT_TRUE(stage.d().context.isNull());
    EXPECT_TRUE(stage.d().actors.isEmpty());
    EXPECT_TRUE(stage.d().frame.isNull());
    EXPECT_EQ(stage.d().parameterFile, "");
    EXPECT_TRUE(stage.getActors().isEmpty());
}

TEST(kelAbstractProcessGroupTrackerTest, TheSettersKeepWhatTheyAreGiven)
{
    GroupTracker stage;
    expectKeptAndReleased<kelAbstractDataCalibration>(stage.d().calibration,
                                                      [&](auto &object) { stage.setCalibration(object); });
    expectKeptAndReleased<kelDataContext>(stage.d().context, [&](auto &object) { stage.setContext(object); });
    expectKeptAndReleased<kelDataImage>(stage.d().frame, [&](auto &object) { stage.setFrame(object); });
    stage.setParameterFile("groups.txt");
    EXPECT_EQ(stage.d().parameterFile, "groups.txt");
    Actors actors = twoActors();
    stage.setActors(actors);
    EXPECT_EQ(stage.d().actors, actors);
}

TEST(kelAbstractProcessGroupTrackerTest, TheActorsAreUpdatedInPlaceAndTheCallersListStays)
{
    GroupTracker tracker;
    kelAbstractProcessGroupTracker &stage = tracker;
    Actors actors = twoActors();
    stage.setActors(actors);
    EXPECT_EQ(&stage.getActors(), &tracker.d().actors);
    EXPECT_FALSE(stage.init());
    EXPECT_FALSE(stage.trackGroups());
    stage.setParameterFile("groups.txt");
    stage.setFrame(QSharedPointer<kelDataImage>(new kelDataImage));
    EXPECT_TRUE(stage.init());
    EXPECT_TRUE(stage.trackGroups());
    EXPECT_EQ(stage.getActors().size(), 3);
    EXPECT_EQ(actors.size(), 2);
    stage.setActors(stage.getActors());
    EXPECT_EQ(stage.getActors().size(), 3);
}

TEST(kelAbstractProcessGroupTrackerTest, ACopyTakesAllFiveMembersAndTheBase)
{
    GroupTracker stage;
    QSharedPointer<kelAbstractDataCalibration> calibration(new kelAbstractDataCalibration);
    QSharedPointer<kelDataContext> context(new kelDataContext);
    const QSharedPointer<kelDataImage> frame(new kelDataImage);
    Actors actors = twoActors();
    stage.setCalibration(calibration);
    stage.setContext(context);
    stage.setActors(actors);
    stage.setFrame(frame);
    stage.setParameterFile("groups.txt");
    GroupTracker copy(stage);
    EXPECT_EQ(copy.d().calibration, calibration);
    EXPECT_EQ(copy.d().context, context);
    EXPECT_EQ(copy.d().actors, actors);
    EXPECT_EQ(copy.d().frame, frame);
    EXPECT_EQ(copy.d().parameterFile, "groups.txt");
    copy.getActors().clear();
    EXPECT_EQ(stage.getActors().size(), 2);
}
