#include <kelCore/process/kelAbstractProcessPeopleDetector.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector_p.h>

#include "support/Stage.h"

namespace {

/// Finds nobody.
class PeopleDetector
    : public Opened<kelAbstractProcessPeopleDetector, kelAbstractProcessPeopleDetectorPrivate>
{
public:
    void setImage(const kelDataImage &image) override { keepImage(image); }
    bool detectPeople(PhysicalObjs &) override { return true; }
};

} // namespace

TEST(kelAbstractProcessPeopleDetectorTest, AFreshStageHasAnEmptyImage)
{
    PeopleDetector stage;
    EXPECT_TRUE(stage.d().image.getImage().empty());
}

TEST(kelAbstractProcessPeopleDetectorTest, ACopyHasANewImage)
{
    PeopleDetector stage;
    kelDataImage image;
    image.setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setImage(image);
    stage.d().image.addSpecificProperty("k", 1);
    PeopleDetector copy(stage);
    EXPECT_TRUE(copy.d().image.getImage().empty());
    EXPECT_TRUE(copy.d().image.getSpecificProperties().isEmpty());
    EXPECT_FALSE(stage.d().image.getImage().empty());
}
