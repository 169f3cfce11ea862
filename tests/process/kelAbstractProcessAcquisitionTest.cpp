#include <kelCore/process/kelAbstractProcessAcquisition.h>
#include <kelCore/process/kelAbstractProcessAcquisition_p.h>

#include "support/Capture.h"

#include <opencv2/core.hpp>

namespace {
const char acquire[] = "virtual bool kelAbstractProcessAcquisition::acquire()";
}

class kelAcquisitionTestStage : public kelAbstractProcessAcquisition
{
    Q_OBJECT

public:
    kelAbstractProcessAcquisitionPrivate &d()
    {
        return static_cast<kelAbstractProcessAcquisitionPrivate &>(*nub_d);
    }
};

TEST(kelAbstractProcessAcquisitionTest, AFreshStageHasNoStreamAndNoImages)
{
    kelAcquisitionTestStage stage;
    EXPECT_TRUE(stage.d().stream.isNull());
    EXPECT_TRUE(stage.getImage().isNull());
    EXPECT_TRUE(stage.getDepth().isNull());
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_EQ(stage.parent(), nullptr);
    EXPECT_EQ(sizeof(kelAbstractProcessAcquisition), sizeof(nubAbstractObject));
}

TEST(kelAbstractProcessAcquisitionTest, AcquireLogsOneLineNamingTheMostDerivedClassAndFails)
{
    const LogLevel level(1);
    kelAcquisitionTestStage stage;
    MessageCapture messages;
    EXPECT_FALSE(stage.acquire());
    EXPECT_EQ(messages.take(), QStringList{defaultNotice(acquire, "kelAcquisitionTestStage")});
    EXPECT_FALSE(kelAbstractProcessAcquisition().acquire());
    EXPECT_EQ(messages.take(), QStringList{defaultNotice(acquire, "kelAbstractProcessAcquisition")});
}

TEST(kelAbstractProcessAcquisitionTest, AcquireIsSilentAboveLevelOne)
{
    const LogLevel level(2);
    MessageCapture messages;
    EXPECT_FALSE(kelAbstractProcessAcquisition().acquire());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractProcessAcquisitionTest, SetStreamKeepsTheStreamAndReleasesThePreviousOne)
{
    kelAcquisitionTestStage stage;
    QSharedPointer<kelAbstractDataStream> first(new kelAbstractDataStream);
    QSharedPointer<kelAbstractDataStream> second(new kelAbstractDataStream);
    MessageCapture messages;
    stage.setStream(first);
    EXPECT_EQ(stage.d().stream, first);
    stage.setStream(second);
    EXPECT_EQ(stage.d().stream, second);
    const QWeakPointer<kelAbstractDataStream> watched(first);
    first.reset();
    EXPECT_TRUE(watched.isNull());
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

TEST(kelAbstractProcessAcquisitionTest, ACopySharesStreamAndImagesAndCarriesTheBase)
{
    kelAcquisitionTestStage stage;
    QSharedPointer<kelAbstractDataStream> stream(new kelAbstractDataStream);
    stage.setStream(stream);
    stage.getImage().reset(new kelDataImage);
    stage.getDepth().reset(new kelDataImage);
    stage.setSpecificParameters({{"k", 1}});
    kelAcquisitionTestStage copy(stage);
    EXPECT_EQ(copy.d().stream, stream);
    EXPECT_EQ(copy.getImage(), stage.getImage());
    EXPECT_EQ(copy.getDepth(), stage.getDepth());
    EXPECT_EQ(copy.getSpecificParameters(), (QVariantMap{{"k", 1}}));

    copy.getImage().reset();
    EXPECT_FALSE(stage.getImage().isNull());
}

TEST(kelAbstractProcessAcquisitionTest, ACopyTakesTheParentOfItsSource)
{
    QObject parent;
    auto *stage = new kelAbstractProcessAcquisition;
    stage->setParent(&parent);
    EXPECT_EQ((new kelAbstractProcessAcquisition(*stage))->parent(), &parent);
}

TEST(kelAbstractProcessAcquisitionTest, TheIdentifierIsTheFrameworks)
{
    EXPECT_EQ(kelAbstractProcessAcquisition().identifier(), "kelAbstractProcessAcquisition");
    EXPECT_EQ(kelAcquisitionTestStage().identifier(), "kelAcquisitionTestStage");
}

TEST(kelAbstractProcessAcquisitionTest, PlugInsOverrideSetStreamAndAcquire)
{
    struct Source : kelAbstractProcessAcquisition
    {
        void setStream(QSharedPointer<kelAbstractDataStream> &) override { ++streams; }
        bool acquire() override { return true; }
        int streams = 0;
    } source;
    kelAbstractProcessAcquisition &stage = source;
    QSharedPointer<kelAbstractDataStream> stream;
    stage.setStream(stream);
    EXPECT_EQ(source.streams, 1);
    EXPECT_TRUE(stage.acquire());
}

#include "kelAbstractProcessAcquisitionTest.moc"
