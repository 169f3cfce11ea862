#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include "support/Capture.h"

#include <memory>
#include <type_traits>

TEST(kelDataBlobTest, AFreshBlobHasNoBox)
{
    const kelDataBlob blob;
    EXPECT_EQ(blob.getBoundingBox2D(), cv::Rect(-1, -1, 0, 0));
    EXPECT_TRUE(blob.getBoundingBox2D_qt().isNull());
    EXPECT_EQ(blob.identifier(), "kelDataBlob");
    EXPECT_EQ(blob.parent(), nullptr);
}

TEST(kelDataBlobTest, TheTwoBoxesAreIndependent)
{
    kelDataBlob blob;
    blob.setBoundingBox2D_qt(QRect(1, 2, 3, 4));
    EXPECT_EQ(blob.getBoundingBox2D(), cv::Rect(-1, -1, 0, 0));
    EXPECT_EQ(blob.getMap(), (QVariantMap{{"BoundingBox2D", QRect(1, 2, 3, 4)}}));

    blob.setBoundingBox2D(cv::Rect(5, 6, 7, 8));
    EXPECT_EQ(blob.getBoundingBox2D_qt(), QRect(1, 2, 3, 4));
    EXPECT_EQ(blob.getBoundingBox2D(), cv::Rect(5, 6, 7, 8));
}

TEST(kelDataBlobTest, SettingTheRecordedBoxAgainReplacesIt)
{
    kelDataBlob blob;
    blob.setBoundingBox2D_qt(QRect(1, 2, 3, 4));
    blob.setBoundingBox2D_qt(QRect(5, 6, 7, 8));
    EXPECT_EQ(blob.getMap().size(), 1);
    EXPECT_EQ(blob.getBoundingBox2D_qt(), QRect(5, 6, 7, 8));
}

TEST(kelDataBlobTest, CloneKeepsTheRectAndDropsTheMapEntry)
{
    kelDataBlob blob;
    blob.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    blob.setBoundingBox2D_qt(QRect(1, 2, 3, 4));
    blob.addSpecificProperty("k", 7);
    const std::unique_ptr<kelDataBlob> copy(blob.clone());
    EXPECT_EQ(copy->getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
    EXPECT_TRUE(copy->getMap().isEmpty());
    EXPECT_TRUE(copy->getBoundingBox2D_qt().isNull());
    EXPECT_EQ(copy->getSpecificProperties().value("k"), 7);
}

TEST(kelDataBlobTest, AssignmentTakesTheBoxAndNeitherMap)
{
    kelDataBlob from;
    from.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    from.setBoundingBox2D_qt(QRect(1, 2, 3, 4));
    from.addSpecificProperty("k", 7);
    kelDataBlob to;
    to.setBoundingBox2D_qt(QRect(9, 9, 9, 9));
    MessageCapture messages;
    to = from;
    EXPECT_EQ(to.getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
    EXPECT_EQ(to.getBoundingBox2D_qt(), QRect(9, 9, 9, 9));
    EXPECT_TRUE(to.getSpecificProperties().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelDataBlobTest, CopyFromAnImageWarnsOnceAndKeepsTheBox)
{
    kelDataBlob blob;
    blob.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    const kelDataImage image;
    MessageCapture messages;
    blob.copy(image);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    EXPECT_EQ(blob.getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
}

TEST(kelDataBlobTest, TheRecordedBoxIsReadFromAMapThatWasSet)
{
    kelDataBlob blob;
    QVariantMap map{{"BoundingBox2D", QRect(1, 2, 3, 4)}, {"other", 5}};
    blob.setMap(map);
    EXPECT_EQ(blob.getBoundingBox2D_qt(), QRect(1, 2, 3, 4));
    map.insert("BoundingBox2D", "no rectangle");
    blob.setMap(map);
    EXPECT_TRUE(blob.getBoundingBox2D_qt().isNull());
}

TEST(kelDataBlobTest, TheGetterGivesTheStoredBoxItself)
{
    kelDataBlob blob;
    const cv::Rect &stored = blob.getBoundingBox2D();
    blob.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    EXPECT_EQ(stored, cv::Rect(1, 2, 3, 4));
}

TEST(kelDataBlobTest, AssigningABlobToItselfLosesNothing)
{
    kelDataBlob blob;
    blob.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    blob.setBoundingBox2D_qt(QRect(5, 6, 7, 8));
    const kelDataBlob &same = blob;
    EXPECT_EQ(&(blob = same), &blob);
    EXPECT_EQ(blob.getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
    EXPECT_EQ(blob.getBoundingBox2D_qt(), QRect(5, 6, 7, 8));
}

TEST(kelDataBlobTest, TheAccessorsHaveTheirTypes)
{
    using B = kelDataBlob;
    EXPECT_TRUE((std::is_same_v<decltype(&B::setBoundingBox2D), void (B::*)(const cv::Rect &)>));
    EXPECT_TRUE((std::is_same_v<decltype(&B::getBoundingBox2D), const cv::Rect &(B::*)() const>));
    EXPECT_TRUE((std::is_same_v<decltype(&B::setBoundingBox2D_qt), void (B::*)(const QRect &)>));
    EXPECT_TRUE((std::is_same_v<decltype(&B::getBoundingBox2D_qt), QRect (B::*)() const>));
}
