#include <kelCore/process/kelAbstractProcessAcquisition.h>
#include <kelCore/process/kelAbstractProcessAcquisition_p.h>

#include "support/Capture.h"
#include "support/Stage.h"

#include <opencv2/core.hpp>

namespace {
using Acquisition = Opened<kelAbstractProcessAcquisition, kelAbstractProcessAcquisitionPrivate>;
}

TEST(kelAbstractProcessAcquisitionTest, AFreshStageHasNoStreamAndNoImages)
{
    Acquisition stage;
    EXPECT_TRUE(stage.d().stream.isNull());
    EXPECT_TRUE(stage.getImage().isNull());
    EXPECT_TRUE(stage.getDepth().isNull());
}

TEST(kelAbstractProcessAcquisitionTest, SetStreamKeepsTheStreamAndReleasesThePreviousOne)
{
    Acquisition stage;
    MessageCapture messages;
    expectKeptAndReleased<kelAbstractDataStream>(stage.d().stream,
                                                 [&](auto &object) { stage.setStream(object); });
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessAcquisitionTest, TheImagesAreSetThroughTheReferences)
{
    kelAbstractProcessAcquisition stage;
    const QSharedPointer<kelDataImage> image(new kelDataImage);
    const QSharedPointer<kelDataImage> depth(new kelDataImage);
    stage.getImage() = image;
    stage.getDepth() = depth;
    EXPECT_EQ(stage.getImage(), image);
    EXPECT_EQ(stage.getDepth(), depth);
}

TEST(kelAbstractProcessAcquisitionTest, SetImageHandsTheMatrixToTheColourObjectAlone)
{
    kelAbstractProcessAcquisition stage;
    const QSharedPointer<kelDataImage> image(new kelDataImage);
    const QSharedPointer<kelDataImage> depth(new kelDataImage);
    stage.getImage() = image;
    stage.getDepth() = depth;
    cv::Mat matrix(2, 3, CV_8UC3, cv::Scalar::all(5));
    stage.setImage(matrix);
    EXPECT_EQ(stage.getImage(), image);
    EXPECT_EQ(image->getImage().data, matrix.data);
    EXPECT_TRUE(depth->getImage().empty());
}

TEST(kelAbstractProcessAcquisitionTest, SetDepthHandsTheMatrixToTheDepthObjectAlone)
{
    kelAbstractProcessAcquisition stage;
    const QSharedPointer<kelDataImage> image(new kelDataImage);
    const QSharedPointer<kelDataImage> depth(new kelDataImage);
    stage.getImage() = image;
    stage.getDepth() = depth;
    cv::Mat matrix(2, 3, CV_16UC1, cv::Scalar::all(5));
    stage.setDepth(matrix);
    EXPECT_EQ(stage.getDepth(), depth);
    EXPECT_EQ(depth->getImage().data, matrix.data);
    EXPECT_TRUE(image->getImage().empty());
}

TEST(kelAbstractProcessAcquisitionTest, AMissingImageObjectIsMade)
{
    kelAbstractProcessAcquisition stage;
    cv::Mat colour(2, 3, CV_8UC3);
    cv::Mat depth(2, 3, CV_16UC1);
    stage.setImage(colour);
    ASSERT_FALSE(stage.getImage().isNull());
    EXPECT_TRUE(stage.getDepth().isNull());
    stage.setDepth(depth);
    ASSERT_FALSE(stage.getDepth().isNull());
    EXPECT_EQ(stage.getImage()->getImage().data, colour.data);
    EXPECT_EQ(stage.getDepth()->getImage().data, depth.data);
}

TEST(kelAbstractProcessAcquisitionTest, ACopySharesStreamAndImages)
{
    Acquisition stage;
    QSharedPointer<kelAbstractDataStream> stream(new kelAbstractDataStream);
    stage.setStream(stream);
    stage.getImage().reset(new kelDataImage);
    stage.getDepth().reset(new kelDataImage);
    Acquisition copy(stage);
    EXPECT_EQ(copy.d().stream, stream);
    EXPECT_EQ(copy.getImage(), stage.getImage());
    EXPECT_EQ(copy.getDepth(), stage.getDepth());

    copy.getImage().reset();
    EXPECT_FALSE(stage.getImage().isNull());
}
