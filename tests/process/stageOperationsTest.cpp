/// \file
/// The operations of each stage interface: their signatures, which of them are virtual, and the order of those.

#include "process/everyStage.h"

#include "support/Stage.h"

#include <initializer_list>

// The signatures are written out: one that differs does not compile.

namespace {

using cv::Point3f;
using Actors = QList<QSharedPointer<kelDataActor>>;
using Image = QSharedPointer<kelDataImage>;

/// None of the operations is virtual.
void expectNotVirtual(std::initializer_list<bool> virtuals)
{
    for (const bool isVirtual : virtuals)
        EXPECT_FALSE(isVirtual);
}

} // namespace

TEST(stageOperationsTest, TheBase)
{
    using Stage = kelAbstractProcess;
    EXPECT_TRUE(isVirtual<bool(const QVariantMap &)>(&Stage::setSpecificParameters));
    expectNotVirtual({isVirtual<void(const CSynchronizer &)>(&Stage::setSynchronizer),
                      isVirtual<const CSynchronizer &() const>(&Stage::getSynchronizer),
                      isVirtual<const QVariantMap &() const>(&Stage::getSpecificParameters)});
}

TEST(stageOperationsTest, Acquisition)
{
    using Stage = kelAbstractProcessAcquisition;
    expectAppended<Stage>({slot<void(QSharedPointer<kelAbstractDataStream> &)>(&Stage::setStream),
                           slot<bool()>(&Stage::acquire)});
    expectNotVirtual({isVirtual<Image &()>(&Stage::getImage), isVirtual<Image &()>(&Stage::getDepth),
                      isVirtual<void(cv::Mat &)>(&Stage::setImage),
                      isVirtual<void(cv::Mat &)>(&Stage::setDepth)});
}

TEST(stageOperationsTest, Segmentation)
{
    using Stage = kelAbstractProcessSegmentation;
    expectAppended<Stage>({slot<bool()>(&Stage::segment)});
    expectNotVirtual({isVirtual<void(Image &)>(&Stage::setAcquisitionImage),
                      isVirtual<Image &()>(&Stage::getSegmentationImage)});
}

TEST(stageOperationsTest, BlobsGeneration)
{
    using Stage = kelAbstractProcessBlobsGeneration;
    expectAppended<Stage>({slot<bool()>(&Stage::generateBlobs)});
    expectNotVirtual({isVirtual<void(Image &)>(&Stage::setSegmentationImage),
                      isVirtual<void(int)>(&Stage::setMinArea), isVirtual<void(int)>(&Stage::setMinDimension),
                      isVirtual<QList<QSharedPointer<kelDataBlob>> &()>(&Stage::getBlobs)});
}

TEST(stageOperationsTest, Classifier)
{
    using Stage = kelAbstractProcessClassifier;
    expectAppended<Stage>({slot<bool()>(&Stage::classify)});
    expectNotVirtual(
        {isVirtual<void(QSharedPointer<kelAbstractDataCalibration> &)>(&Stage::setCalibration),
         isVirtual<void(QList<QSharedPointer<kelDataBlob>> &)>(&Stage::setBlobs),
         isVirtual<QList<QSharedPointer<kelDataPhysicalObject>> &()>(&Stage::getPhysicalObjects)});
}

TEST(stageOperationsTest, DepthSegmentation)
{
    using Stage = kelAbstractProcessDepthSegmentation;
    expectAppended<Stage>({slot<void(const kelDataImage &)>(&Stage::setColorImg),
                           slot<void(const kelDataImage &)>(&Stage::setDepthImg),
                           slot<void(const std::string &, std::string)>(&Stage::setParameterFile),
                           slot<void(kelAbstractDataCalibrationWithDepth *)>(&Stage::setCalibrationWithDepth),
                           slot<void(const kelDataContext *)>(&Stage::computeEquationPlan),
                           slot<void(PhysicalObjs &)>(&Stage::getPhysicalObjs),
                           slot<void(cv::Mat &)>(&Stage::getBackgroundDepthMap),
                           slot<void(PhysicalObjs &)>(&Stage::adjustBoundingBox3d),
                           slot<void(const std::string &)>(&Stage::saveBackground)});
}

TEST(stageOperationsTest, FakeTracker)
{
    using Stage = kelAbstractProcessFakeTracker;
    expectAppended<Stage>({slot<void(const PhysicalObjs &)>(&Stage::setPhysicalObjs),
                           slot<const ActorList() const>(&Stage::getActors)});
}

TEST(stageOperationsTest, FeetDetection)
{
    using Stage = kelAbstractProcessFeetDetection;
    using Legs = std::map<int, std::pair<std::list<Point3f> *, std::list<Point3f> *>>;
    expectAppended<Stage>({slot<void()>(&Stage::init), slot<void(std::string)>(&Stage::setParameterFile),
                           slot<void(ActorList)>(&Stage::setActorList), slot<Legs()>(&Stage::getLegsPoints),
                           slot<std::map<int, std::pair<Point3f, Point3f>>()>(&Stage::getFeetPositions),
                           slot<std::map<int, double>()>(&Stage::getSpeed),
                           slot<void(std::vector<double>)>(&Stage::computeFeetPositions),
                           slot<void(float)>(&Stage::computeSpeeds)});
    expectNotVirtual({isVirtual<Stage &(const Stage &)>(&Stage::operator=)});
}

TEST(stageOperationsTest, GroundDetection)
{
    using Stage = kelAbstractProcessGroundDetection;
    expectAppended<Stage>({slot<void(std::string)>(&Stage::setParameterFile),
                           slot<void(cv::Mat)>(&Stage::computeGroundPlaneFromDepthMap),
                           slot<void(kelAbstractDataCalibrationWithDepth)>(&Stage::setCalibrationWithDepth),
                           slot<std::vector<double>()>(&Stage::getGroundPlaneEquationCoef),
                           slot<std::list<Point3f>()>(&Stage::getGroundPlanePoints),
                           slot<std::vector<double>(float)>(&Stage::getShiftedGroundPlaneEquationCoef),
                           slot<std::list<Point3f>(float)>(&Stage::getShiftedGroundPlanePoints)});
    expectNotVirtual({isVirtual<Stage &(const Stage &)>(&Stage::operator=)});
}

TEST(stageOperationsTest, EventRecognition)
{
    using Stage = kelAbstractProcessEventRecognition;
    expectAppended<Stage>(
        {slot<void(ActorList)>(&Stage::setActors), slot<EventList()>(&Stage::getCurrentFrameEvents),
         slot<EventList()>(&Stage::getAllFramesEvents), slot<bool()>(&Stage::recognizeEvents),
         slot<void(const std::string &)>(&Stage::setParameterFile),
         slot<bool()>(&Stage::getParamSaveXML1File), slot<std::string()>(&Stage::getParamXML1FileName),
         slot<void()>(&Stage::init), slot<void(const std::string &)>(&Stage::setCommonFilePath),
         slot<std::string()>(&Stage::generateEventListStorageStream),
         slot<std::string()>(&Stage::generateEventListStreamToNotify)});
}

TEST(stageOperationsTest, JsonGenerator)
{
    using Stage = kelAbstractProcessJsonGenerator;
    expectAppended<Stage>({slot<void(ActorList)>(&Stage::setActors), slot<void(EventList)>(&Stage::setEvents),
                           slot<void(int)>(&Stage::setFrameNumber), slot<void(qint64)>(&Stage::setTimestamp),
                           slot<std::string()>(&Stage::generateJsonString)});
    expectNotVirtual({isVirtual<Stage &(const Stage &)>(&Stage::operator=)});
}

TEST(stageOperationsTest, MessageSender)
{
    using Stage = kelAbstractProcessMessageSender;
    expectAppended<Stage>(
        {slot<bool(std::string)>(&Stage::setParameterFile), slot<void(std::string)>(&Stage::sendMsg)});
    expectNotVirtual({isVirtual<Stage &(const Stage &)>(&Stage::operator=)});
}

TEST(stageOperationsTest, PeopleDetector)
{
    using Stage = kelAbstractProcessPeopleDetector;
    expectAppended<Stage>({slot<void(const kelDataImage &)>(&Stage::setImage),
                           slot<bool(PhysicalObjs &)>(&Stage::detectPeople)});
}

TEST(stageOperationsTest, FrameToFrameTracker)
{
    using Stage = kelAbstractProcessFrameToFrameTracker;
    expectAppended<Stage>({slot<void(const PhysicalObjs &)>(&Stage::setPhysicalObjects),
                           slot<bool()>(&Stage::track), slot<Actors()>(&Stage::getActors)});
}

TEST(stageOperationsTest, GroupTracker)
{
    using Stage = kelAbstractProcessGroupTracker;
    expectAppended<Stage>({slot<void(const std::string &)>(&Stage::setParameterFile),
                           slot<void(Image)>(&Stage::setFrame), slot<void(Actors &)>(&Stage::setActors),
                           slot<bool()>(&Stage::init), slot<bool()>(&Stage::trackGroups),
                           slot<Actors &()>(&Stage::getActors)});
    expectNotVirtual({isVirtual<void(QSharedPointer<kelAbstractDataCalibration> &)>(&Stage::setCalibration),
                      isVirtual<void(QSharedPointer<kelDataContext> &)>(&Stage::setContext)});
}

TEST(stageOperationsTest, ReAcquisition)
{
    using Stage = kelAbstractProcessReAcquisition;
    expectAppended<Stage>({slot<bool()>(&Stage::reAcquire)});
    expectNotVirtual({isVirtual<void(Image)>(&Stage::setImage),
                      isVirtual<void(std::string)>(&Stage::setMTSPath),
                      isVirtual<void(Actors)>(&Stage::setActors), isVirtual<Actors()>(&Stage::getActors)});
}

TEST(stageOperationsTest, XMLReaderWriter)
{
    using Stage = kelAbstractProcessXMLReaderWriter;
    expectAppended<Stage>({slot<bool()>(&Stage::parsePhysicalObjects), slot<bool()>(&Stage::parseActors),
                           slot<bool()>(&Stage::writePhysicalObjects), slot<bool()>(&Stage::writeActors)});
    expectNotVirtual(
        {isVirtual<void(std::string)>(&Stage::setInputXML),
         isVirtual<void(std::string)>(&Stage::setOutputXML),
         isVirtual<QList<QSharedPointer<kelDataPhysicalObject>>()>(&Stage::getPhysicalObjectList),
         isVirtual<Actors()>(&Stage::getActorList)});
}

TEST(stageOperationsTest, AnInterfaceWithoutDefaultsForAllIsAbstract)
{
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessSegmentation>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessBlobsGeneration>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessClassifier>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessEventRecognition>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessPeopleDetector>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessFrameToFrameTracker>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessGroupTracker>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessReAcquisition>);
    EXPECT_TRUE(std::is_abstract_v<kelAbstractProcessXMLReaderWriter>);

    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcess>);
    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcessAcquisition>);
    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcessDepthSegmentation>);
    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcessFakeTracker>);
    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcessFeetDetection>);
    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcessGroundDetection>);
    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcessJsonGenerator>);
    EXPECT_FALSE(std::is_abstract_v<kelAbstractProcessMessageSender>);
}

TEST(stageOperationsTest, OverridesOfTheFrameworksOperationsKeepTheirSlots)
{
    using Stage = kelAbstractProcessMessageSender;
    EXPECT_EQ(slot(&Stage::clone), slot(&nubAbstractObject::clone));
    EXPECT_EQ(slot(&Stage::copy), slot(&nubAbstractObject::copy));
    EXPECT_EQ(slot(&Stage::identifier), slot(&nubAbstractObject::identifier));
}
