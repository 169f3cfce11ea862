#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include "support/Capture.h"

#include <memory>

TEST(kelDataImageTest, AFreshImageIsEmpty)
{
    kelDataImage image;
    EXPECT_TRUE(image.getImage().empty());
    EXPECT_EQ(image.getImage().rows, 0);
    EXPECT_EQ(image.getImage().cols, 0);
    EXPECT_EQ(image.getImage().data, nullptr);
    EXPECT_EQ(image.identifier(), "kelDataImage");
    EXPECT_EQ(image.parent(), nullptr);
    EXPECT_TRUE(image.getMap().isEmpty());
    EXPECT_TRUE(image.getSpecificProperties().isEmpty());
}

TEST(kelDataImageTest, SettingAMatrixSharesItsPixels)
{
    cv::Mat pixels(2, 3, CV_8UC3, cv::Scalar::all(0));
    kelDataImage image;
    image.setImage(pixels);
    EXPECT_EQ(image.getImage().data, pixels.data);
    pixels.at<cv::Vec3b>(1, 2) = cv::Vec3b(7, 8, 9);
    EXPECT_EQ(image.getImage().at<cv::Vec3b>(1, 2), cv::Vec3b(7, 8, 9));
}

TEST(kelDataImageTest, AnyTypeOfMatrixIsStoredAsItIs)
{
    for (const int type : {CV_8UC1, CV_16UC1, CV_32FC1, CV_8UC4, CV_64FC2}) {
        kelDataImage image;
        image.setImage(cv::Mat(3, 5, type));
        EXPECT_EQ(image.getImage().type(), type);
        EXPECT_EQ(image.getImage().size(), cv::Size(5, 3));
    }
}

TEST(kelDataImageTest, TheGetterGivesTheStoredMatrixItself)
{
    kelDataImage image;
    const cv::Mat &stored = image.getImage();
    image.setImage(cv::Mat(2, 3, CV_8U));
    EXPECT_EQ(stored.rows, 2);
    EXPECT_EQ(&stored, &image.getImage());
}

TEST(kelDataImageTest, CopiesShareThePixels)
{
    kelDataImage image;
    cv::Mat pixels(2, 3, CV_8U, cv::Scalar(0));
    image.setImage(pixels);
    const kelDataImage copy(image);
    const std::unique_ptr<kelDataImage> clone(image.clone());
    kelDataImage assigned;
    EXPECT_EQ(&(assigned = image), &assigned);
    pixels.at<uchar>(1, 2) = 7;
    for (const kelDataImage *other :
         std::initializer_list<const kelDataImage *>{&copy, clone.get(), &assigned}) {
        EXPECT_EQ(other->getImage().data, pixels.data);
        EXPECT_EQ(other->getImage().at<uchar>(1, 2), 7);
    }
}

TEST(kelDataImageTest, CopyFromABlobWarnsTwiceAndKeepsTheImage)
{
    kelDataImage image;
    const cv::Mat pixels(2, 3, CV_8U);
    image.setImage(pixels);
    MessageCapture messages;
    image.copy(kelDataBlob());
    EXPECT_EQ(messages.lines(), (QStringList{slicingWarning(), slicingWarning()}));
    EXPECT_EQ(image.getImage().data, pixels.data);

    const LogLevel level(18);
    messages.take();
    image.copy(kelDataBlob());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelDataImageTest, AssigningAnImageToItselfLosesNothing)
{
    kelDataImage image;
    const cv::Mat pixels(2, 3, CV_8U);
    image.setImage(pixels);
    const kelDataImage &same = image;
    image = same;
    EXPECT_EQ(image.getImage().data, pixels.data);
    EXPECT_EQ(image.getImage().size(), cv::Size(3, 2));
}

TEST(kelDataImageTest, ReadAndWriteDoNothingAndSucceed)
{
    kelDataImage image;
    const LogLevel level(0);
    MessageCapture messages;
    EXPECT_TRUE(image.read(QString("/no such file")));
    EXPECT_TRUE(image.write(QString("/no such folder/file")));
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_TRUE(image.getImage().empty());
}
