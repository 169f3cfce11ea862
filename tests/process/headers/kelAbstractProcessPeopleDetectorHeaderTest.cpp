#include <kelCore/process/kelAbstractProcessPeopleDetector.h> // alone

#include <gtest/gtest.h>

namespace {

/// Finds one person, as large as the frame.
class PeopleDetector : public kelAbstractProcessPeopleDetector
{
public:
    void setImage(const kelDataImage &image) override { keepImage(image); }
    bool detectPeople(PhysicalObjs &people) override
    {
        const cv::Mat &pixels = getImage().getImage();
        people.clear();
        if (pixels.empty())
            return false;
        people.emplace_back();
        people.back().setBoundingBox2D(cv::Rect(0, 0, pixels.cols, pixels.rows));
        return true;
    }
    const uchar *pixels() const { return getImage().getImage().data; }
};

/// An image of a program's own.
class Photograph : public kelDataImage
{
public:
    QString identifier() const override { return "Photograph"; }
};

} // namespace

TEST(stageHeaderTest, PeopleDetectorNeedsNoOther)
{
    PeopleDetector detector;
    kelAbstractProcessPeopleDetector &stage = detector;
    PhysicalObjs people(3);
    EXPECT_FALSE(stage.detectPeople(people));
    EXPECT_TRUE(people.empty());
    kelDataImage image;
    image.setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setImage(image);
    EXPECT_EQ(detector.pixels(), image.getImage().data);
    EXPECT_TRUE(stage.detectPeople(people));
    ASSERT_EQ(people.size(), 1u);
    EXPECT_EQ(people.front().getBoundingBox2D(), cv::Rect(0, 0, 6, 4));
}

TEST(stageHeaderTest, APeopleDetectorKeepsThePixelsOfEveryKindOfImage)
{
    PeopleDetector stage;
    Photograph photograph;
    photograph.setImage(cv::Mat(4, 6, CV_8UC3));
    stage.setImage(photograph);
    EXPECT_EQ(stage.pixels(), photograph.getImage().data);
}
