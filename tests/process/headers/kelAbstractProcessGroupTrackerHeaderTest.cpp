#include <kelCore/process/kelAbstractProcessGroupTracker.h> // alone

#include <gtest/gtest.h>

namespace {

/// Takes all actors for one group: adds an actor for it, named after what it was given.
class GroupTracker : public kelAbstractProcessGroupTracker
{
public:
    bool init() override { return getCalibration() && getContext() && !getParameterFile().empty(); }
    bool trackGroups() override
    {
        if (!getFrame() || getFrame()->getImage().empty())
            return false;
        getActors().append(QSharedPointer<kelDataActor>(new kelDataActor));
        getActors().last()->setType(
            (getCalibration()->identifier() + getContext()->identifier()).toStdString() + getParameterFile());
        return true;
    }
};

} // namespace

TEST(stageHeaderTest, GroupTrackerNeedsNoOther)
{
    GroupTracker tracker;
    kelAbstractProcessGroupTracker &stage = tracker;
    EXPECT_FALSE(stage.init());
    EXPECT_FALSE(stage.trackGroups());
    QSharedPointer<kelAbstractDataCalibration> calibration(new kelAbstractDataCalibration);
    QSharedPointer<kelDataContext> context(new kelDataContext);
    QSharedPointer<kelDataImage> frame(new kelDataImage);
    frame->setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setCalibration(calibration);
    stage.setContext(context);
    stage.setParameterFile("file");
    stage.setFrame(frame);
    EXPECT_TRUE(stage.init());
    EXPECT_TRUE(stage.trackGroups());
    ASSERT_EQ(stage.getActors().size(), 1);
    EXPECT_EQ(stage.getActors().first()->getType(), "kelAbstractDataCalibrationkelDataContextfile");
}
