#include <kelCore/process/kelAbstractProcessPeopleDetector.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector_p.h>

#include <kelCore/data/kelDataPhysicalObject.h>

#include "support/Capture.h"
#include "support/Stage.h"

#include <type_traits>

namespace {

/// Finds one person, as large as the frame.
class PeopleDetector
    : public Opened<kelAbstractProcessPeopleDetector, kelAbstractProcessPeopleDetectorPrivate>
{
public:
    void setImage(const kelDataImage &image) override { d().image = image; }
    bool detectPeople(PhysicalObjs &people) override
    {
        const cv::Mat &pixels = d().image.getImage();
        people.clear();
        if (pixels.empty())
            return false;
        people.emplace_back();
        people.back().setBoundingBox2D(cv::Rect(0, 0, pixels.cols, pixels.rows));
        return true;
    }
};

} // namespace

TEST(kelAbstractProcessPeopleDetectorTest, PlugInsMustSupplyTheDetection)
{
    EXPECT_TRUE(std::is_abstract<kelAbstractProcessPeopleDetector>::value);
}

TEST(kelAbstractProcessPeopleDetectorTest, AFreshStageHasAnEmptyImage)
{
    PeopleDetector stage;
    EXPECT_TRUE(stage.d().image.getImage().empty());
    expectFreshBase<PeopleDetector>();
}

TEST(kelAbstractProcessPeopleDetectorTest, PeopleAreFoundInTheImageThatWasSet)
{
    PeopleDetector detector;
    kelAbstractProcessPeopleDetector &stage = detector;
    PhysicalObjs people(3);
    EXPECT_FALSE(stage.detectPeople(people));
    EXPECT_TRUE(people.empty());
    kelDataImage image;
    image.setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setImage(image);
    EXPECT_EQ(detector.d().image.getImage().data, image.getImage().data);
    EXPECT_TRUE(stage.detectPeople(people));
    ASSERT_EQ(people.size(), 1u);
    EXPECT_EQ(people.front().getBoundingBox2D(), cv::Rect(0, 0, 6, 4));
}

TEST(kelAbstractProcessPeopleDetectorTest, ACopyHasANewImageAndTheBase)
{
    PeopleDetector stage;
    kelDataImage image;
    image.setImage(cv::Mat(4, 6, CV_8UC3));
    image.addSpecificProperty("k", 1);
    stage.d().image = image;
    PeopleDetector copy(stage);
    EXPECT_TRUE(copy.d().image.getImage().empty());
    EXPECT_TRUE(copy.d().image.getSpecificProperties().isEmpty());
    EXPECT_FALSE(stage.d().image.getImage().empty());
    expectCopiedBase<PeopleDetector>();
}

TEST(kelAbstractProcessPeopleDetectorTest, TheIdentifierIsTheFrameworks)
{
    EXPECT_EQ(PeopleDetector().identifier(), "kelAbstractProcessPeopleDetector");
}
