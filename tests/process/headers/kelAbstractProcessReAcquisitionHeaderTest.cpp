#include <kelCore/process/kelAbstractProcessReAcquisition.h> // alone

#include <gtest/gtest.h>

namespace {

/// Knows every actor as the number of its frame's columns, where there is something to know people by.
class ReAcquisition : public kelAbstractProcessReAcquisition
{
public:
    bool reAcquire() override
    {
        if (!getImage() || getMTSPath().empty())
            return false;
        for (const QSharedPointer<kelDataActor> &actor : getInputActors())
            actor->setIdent(static_cast<unsigned int>(getImage()->getImage().cols));
        setOutputActors(getInputActors());
        return true;
    }
};

} // namespace

TEST(stageHeaderTest, ReAcquisitionNeedsNoOther)
{
    ReAcquisition stage;
    EXPECT_FALSE(stage.reAcquire());
    QSharedPointer<kelDataImage> frame(new kelDataImage);
    frame->setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setImage(frame);
    EXPECT_FALSE(stage.reAcquire());
    stage.setMTSPath("known");
    stage.setActors({QSharedPointer<kelDataActor>(new kelDataActor)});
    EXPECT_TRUE(stage.getActors().isEmpty());
    EXPECT_TRUE(stage.reAcquire());
    ASSERT_EQ(stage.getActors().size(), 1);
    EXPECT_EQ(stage.getActors().first()->getIdent(), 6u);
}
