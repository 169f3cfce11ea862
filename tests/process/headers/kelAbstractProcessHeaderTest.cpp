#include <kelCore/process/kelAbstractProcess.h> // alone

#include <gtest/gtest.h>

namespace {

/// Keeps what it knows and refuses the rest.
class Strict : public kelAbstractProcess
{
public:
    bool setSpecificParameters(const QVariantMap &parameters) override
    {
        if (!parameters.contains("k"))
            return false;
        keepSpecificParameters(parameters);
        return true;
    }
};

} // namespace

TEST(stageHeaderTest, TheBaseNeedsNoOther)
{
    Strict stage;
    CSynchronizer stamp;
    stamp.setFrameNumber(7);
    stage.setSynchronizer(stamp);
    EXPECT_EQ(stage.getSynchronizer().getFrameNumber(), 7u);

    EXPECT_TRUE(stage.setSpecificParameters({{"k", 1}}));
    EXPECT_FALSE(stage.setSpecificParameters({{"other", 2}}));
    EXPECT_EQ(stage.getSpecificParameters().value("k").toInt(), 1);
}
