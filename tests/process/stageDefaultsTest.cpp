/// \file
/// Every default body of every stage: what it logs and what it gives.

#include "process/everyStage.h"

#include "support/Capture.h"

#include <functional>
#include <vector>

namespace {

using namespace stage;

/// A default body: what it logs (nothing when null), and a call that tells whether its result was the stated
/// one.
struct DefaultBody
{
    const char *name;
    const char *signature;
    const char *className;
    std::function<bool()> call;
};

/// What gtest says of a row: its name alone.
void PrintTo(const DefaultBody &body, std::ostream *out) { *out << body.name; }

/// A row whose operation is called on a new `Stage` and gives a result; `right` judges it.
template <class Stage> DefaultBody gives(const char *name, const char *signature, bool (*right)(Stage &))
{
    return {name, signature, Stage::staticMetaObject.className(), [right] {
                Stage stage;
                return right(stage);
            }};
}

/// A row whose operation gives nothing.
template <class Stage> DefaultBody does(const char *name, const char *signature, void (*call)(Stage &))
{
    return {name, signature, Stage::staticMetaObject.className(), [call] {
                Stage stage;
                call(stage);
                return true;
            }};
}

/// A list that an operation must leave as it is.
bool leavesAlone(DepthSegmentation &stage,
                 void (kelAbstractProcessDepthSegmentation::*operation)(PhysicalObjs &))
{
    PhysicalObjs objects(2);
    objects.back().setId(9);
    (stage.*operation)(objects);
    return objects.size() == 2 && objects.back().getId() == 9;
}

ActorList oneActor() { return {QSharedPointer<const kelDataActor>(new kelDataActor)}; }
EventList oneEvent() { return {QSharedPointer<kelDataEvent>(new kelDataEvent)}; }

const std::vector<DefaultBody> &noticed()
{
    static const std::vector<DefaultBody> bodies = {
        gives<Acquisition>("Acquisition_acquire", "virtual bool kelAbstractProcessAcquisition::acquire()",
                           [](auto &stage) { return !stage.acquire(); }),

        does<DepthSegmentation>(
            "DepthSegmentation_setColorImg",
            "virtual void kelAbstractProcessDepthSegmentation::setColorImg(const kelDataImage&)",
            [](auto &stage) { stage.setColorImg(kelDataImage()); }),
        does<DepthSegmentation>(
            "DepthSegmentation_setDepthImg",
            "virtual void kelAbstractProcessDepthSegmentation::setDepthImg(const kelDataImage&)",
            [](auto &stage) { stage.setDepthImg(kelDataImage()); }),
        does<DepthSegmentation>(
            "DepthSegmentation_setParameterFile",
            "virtual void kelAbstractProcessDepthSegmentation::setParameterFile(const string&, std::string)",
            [](auto &stage) { stage.setParameterFile("file", "folder"); }),
        does<DepthSegmentation>("DepthSegmentation_setCalibrationWithDepth",
                                "virtual void kelAbstractProcessDepthSegmentation::setCalibrationWithDepth("
                                "kelAbstractDataCalibrationWithDepth*)",
                                [](auto &stage) { stage.setCalibrationWithDepth(nullptr); }),
        does<DepthSegmentation>(
            "DepthSegmentation_computeEquationPlan",
            "virtual void kelAbstractProcessDepthSegmentation::computeEquationPlan(const kelDataContext*)",
            [](auto &stage) { stage.computeEquationPlan(nullptr); }),
        gives<DepthSegmentation>(
            "DepthSegmentation_getPhysicalObjs",
            "virtual void kelAbstractProcessDepthSegmentation::getPhysicalObjs(PhysicalObjs&)",
            [](auto &stage) { return leavesAlone(stage, &DepthSegmentation::getPhysicalObjs); }),
        gives<DepthSegmentation>(
            "DepthSegmentation_getBackgroundDepthMap",
            "virtual void kelAbstractProcessDepthSegmentation::getBackgroundDepthMap(cv::Mat&)",
            [](auto &stage) {
                cv::Mat depth(2, 3, CV_32F);
                const uchar *data = depth.data;
                stage.getBackgroundDepthMap(depth);
                return depth.data == data && depth.size() == cv::Size(3, 2);
            }),
        gives<DepthSegmentation>(
            "DepthSegmentation_adjustBoundingBox3d",
            "virtual void kelAbstractProcessDepthSegmentation::adjustBoundingBox3d(PhysicalObjs&)",
            [](auto &stage) { return leavesAlone(stage, &DepthSegmentation::adjustBoundingBox3d); }),
        does<DepthSegmentation>(
            "DepthSegmentation_saveBackground",
            "virtual void kelAbstractProcessDepthSegmentation::saveBackground(const string&)",
            [](auto &stage) { stage.saveBackground("file"); }),

        does<FakeTracker>("FakeTracker_setPhysicalObjs",
                          "virtual void kelAbstractProcessFakeTracker::setPhysicalObjs(const PhysicalObjs&)",
                          [](auto &stage) { stage.setPhysicalObjs(PhysicalObjs(1)); }),
        gives<FakeTracker>("FakeTracker_getActors",
                           "virtual const std::list<QSharedPointer<const kelDataActor> > "
                           "kelAbstractProcessFakeTracker::getActors() const",
                           [](auto &stage) { return stage.getActors().empty(); }),

        does<FeetDetection>("FeetDetection_init", "virtual void kelAbstractProcessFeetDetection::init()",
                            [](auto &stage) { stage.init(); }),
        does<FeetDetection>("FeetDetection_setParameterFile",
                            "virtual void kelAbstractProcessFeetDetection::setParameterFile(std::string)",
                            [](auto &stage) { stage.setParameterFile("file"); }),
        does<FeetDetection>("FeetDetection_setActorList",
                            "virtual void kelAbstractProcessFeetDetection::setActorList("
                            "std::list<QSharedPointer<const kelDataActor> >)",
                            [](auto &stage) { stage.setActorList(oneActor()); }),
        gives<FeetDetection>("FeetDetection_getLegsPoints",
                             "virtual std::map<int, std::pair<std::list<cv::Point3_<float> >*, "
                             "std::list<cv::Point3_<float> >*> > "
                             "kelAbstractProcessFeetDetection::getLegsPoints()",
                             [](auto &stage) { return stage.getLegsPoints().empty(); }),
        gives<FeetDetection>("FeetDetection_getFeetPositions",
                             "virtual std::map<int, std::pair<cv::Point3_<float>, cv::Point3_<float> > > "
                             "kelAbstractProcessFeetDetection::getFeetPositions()",
                             [](auto &stage) { return stage.getFeetPositions().empty(); }),
        gives<FeetDetection>("FeetDetection_getSpeed",
                             "virtual std::map<int, double> kelAbstractProcessFeetDetection::getSpeed()",
                             [](auto &stage) { return stage.getSpeed().empty(); }),
        does<FeetDetection>(
            "FeetDetection_computeFeetPositions",
            "virtual void kelAbstractProcessFeetDetection::computeFeetPositions(std::vector<double>)",
            [](auto &stage) {
                stage.computeFeetPositions({0, 0, 1, 0});
            }),
        does<FeetDetection>("FeetDetection_computeSpeeds",
                            "virtual void kelAbstractProcessFeetDetection::computeSpeeds(float)",
                            [](auto &stage) { stage.computeSpeeds(0.04f); }),

        does<GroundDetection>("GroundDetection_setParameterFile",
                              "virtual void kelAbstractProcessGroundDetection::setParameterFile(std::string)",
                              [](auto &stage) { stage.setParameterFile("file"); }),
        does<GroundDetection>(
            "GroundDetection_computeGroundPlaneFromDepthMap",
            "virtual void kelAbstractProcessGroundDetection::computeGroundPlaneFromDepthMap(cv::Mat)",
            [](auto &stage) { stage.computeGroundPlaneFromDepthMap(cv::Mat()); }),
        does<GroundDetection>(
            "GroundDetection_setCalibrationWithDepth",
            "virtual void kelAbstractProcessGroundDetection::setCalibrationWithDepth("
            "kelAbstractDataCalibrationWithDepth)",
            [](auto &stage) { stage.setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth()); }),
        gives<GroundDetection>(
            "GroundDetection_getGroundPlaneEquationCoef",
            "virtual std::vector<double> kelAbstractProcessGroundDetection::getGroundPlaneEquationCoef()",
            [](auto &stage) { return stage.getGroundPlaneEquationCoef().empty(); }),
        gives<GroundDetection>("GroundDetection_getGroundPlanePoints",
                               "virtual std::list<cv::Point3_<float> > "
                               "kelAbstractProcessGroundDetection::getGroundPlanePoints()",
                               [](auto &stage) { return stage.getGroundPlanePoints().empty(); }),
        gives<GroundDetection>(
            "GroundDetection_getShiftedGroundPlaneEquationCoef",
            "virtual std::vector<double> "
            "kelAbstractProcessGroundDetection::getShiftedGroundPlaneEquationCoef(float)",
            [](auto &stage) { return stage.getShiftedGroundPlaneEquationCoef(1).empty(); }),
        gives<GroundDetection>("GroundDetection_getShiftedGroundPlanePoints",
                               "virtual std::list<cv::Point3_<float> > "
                               "kelAbstractProcessGroundDetection::getShiftedGroundPlanePoints(float)",
                               [](auto &stage) { return stage.getShiftedGroundPlanePoints(1).empty(); }),

        does<EventRecognition>(
            "EventRecognition_setParameterFile",
            "virtual void kelAbstractProcessEventRecognition::setParameterFile(const string&)",
            [](auto &stage) { stage.setParameterFile("file"); }),
        does<EventRecognition>(
            "EventRecognition_setCommonFilePath",
            "virtual void kelAbstractProcessEventRecognition::setCommonFilePath(const string&)",
            [](auto &stage) { stage.setCommonFilePath("folder"); }),

        does<JsonGenerator>("JsonGenerator_setActors",
                            "virtual void kelAbstractProcessJsonGenerator::setActors("
                            "std::list<QSharedPointer<const kelDataActor> >)",
                            [](auto &stage) { stage.setActors(oneActor()); }),
        does<JsonGenerator>("JsonGenerator_setEvents",
                            "virtual void kelAbstractProcessJsonGenerator::setEvents("
                            "std::list<QSharedPointer<kelDataEvent> >)",
                            [](auto &stage) { stage.setEvents(oneEvent()); }),
        does<JsonGenerator>("JsonGenerator_setFrameNumber",
                            "virtual void kelAbstractProcessJsonGenerator::setFrameNumber(int)",
                            [](auto &stage) { stage.setFrameNumber(7); }),
        does<JsonGenerator>("JsonGenerator_setTimestamp",
                            "virtual void kelAbstractProcessJsonGenerator::setTimestamp(qint64)",
                            [](auto &stage) { stage.setTimestamp(Q_INT64_C(1243857600000)); }),
        gives<JsonGenerator>("JsonGenerator_generateJsonString",
                             "virtual std::string kelAbstractProcessJsonGenerator::generateJsonString()",
                             [](auto &stage) { return stage.generateJsonString().empty(); }),

        gives<MessageSender>("MessageSender_setParameterFile",
                             "virtual bool kelAbstractProcessMessageSender::setParameterFile(std::string)",
                             [](auto &stage) { return !stage.setParameterFile("file"); }),
        does<MessageSender>("MessageSender_sendMsg",
                            "virtual void kelAbstractProcessMessageSender::sendMsg(std::string)",
                            [](auto &stage) { stage.sendMsg("message"); }),
    };
    return bodies;
}

const std::vector<DefaultBody> &quiet()
{
    static const std::vector<DefaultBody> bodies = {
        does<Acquisition>("Acquisition_setStream", nullptr,
                          [](auto &stage) {
                              QSharedPointer<kelAbstractDataStream> stream(new kelAbstractDataStream);
                              stage.setStream(stream);
                          }),
        does<EventRecognition>("EventRecognition_setActors", nullptr,
                               [](auto &stage) { stage.setActors(oneActor()); }),
        gives<EventRecognition>("EventRecognition_getCurrentFrameEvents", nullptr,
                                [](auto &stage) { return stage.getCurrentFrameEvents().empty(); }),
        gives<EventRecognition>("EventRecognition_getAllFramesEvents", nullptr,
                                [](auto &stage) { return stage.getAllFramesEvents().empty(); }),
        gives<EventRecognition>("EventRecognition_getParamSaveXML1File", nullptr,
                                [](auto &stage) { return stage.getParamSaveXML1File(); }),
        gives<EventRecognition>("EventRecognition_getParamXML1FileName", nullptr,
                                [](auto &stage) { return stage.getParamXML1FileName().empty(); }),
        does<EventRecognition>("EventRecognition_init", nullptr, [](auto &stage) { stage.init(); }),
        gives<EventRecognition>("EventRecognition_generateEventListStorageStream", nullptr,
                                [](auto &stage) { return stage.generateEventListStorageStream().empty(); }),
        gives<EventRecognition>("EventRecognition_generateEventListStreamToNotify", nullptr,
                                [](auto &stage) { return stage.generateEventListStreamToNotify().empty(); }),
        does<GroupTracker>("GroupTracker_setParameterFile", nullptr,
                           [](auto &stage) { stage.setParameterFile("file"); }),
        does<GroupTracker>("GroupTracker_setFrame", nullptr,
                           [](auto &stage) { stage.setFrame(QSharedPointer<kelDataImage>()); }),
        gives<GroupTracker>("GroupTracker_setActors", nullptr,
                            [](auto &stage) {
                                QList<QSharedPointer<kelDataActor>> actors = {{}, {}};
                                stage.setActors(actors);
                                return stage.getActors().size() == 2;
                            }),
        gives<GroupTracker>("GroupTracker_getActors", nullptr,
                            [](auto &stage) { return stage.getActors().isEmpty(); }),
    };
    return bodies;
}

std::string rowName(const testing::TestParamInfo<DefaultBody> &info) { return info.param.name; }

class stageDefaultsTest : public testing::TestWithParam<DefaultBody>
{ };

class stageQuietDefaultsTest : public testing::TestWithParam<DefaultBody>
{ };

} // namespace

TEST_P(stageDefaultsTest, LogsOneNoticeThatNamesTheMostDerivedClassAndGivesNothing)
{
    const LogLevel level(1);
    MessageCapture messages;
    EXPECT_TRUE(GetParam().call());
    EXPECT_EQ(messages.take(), QStringList{defaultNotice(GetParam().signature, GetParam().className)});
    EXPECT_TRUE(messages.onlyDebug());
}

TEST_P(stageDefaultsTest, IsSilentAboveLevelOneAndGivesTheSame)
{
    const LogLevel level(2);
    MessageCapture messages;
    EXPECT_TRUE(GetParam().call());
    EXPECT_TRUE(messages.lines().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Stages, stageDefaultsTest, testing::ValuesIn(noticed()), rowName);

TEST_P(stageQuietDefaultsTest, LogsNothingAndGivesTheStatedResult)
{
    const LogLevel level(0);
    MessageCapture messages;
    EXPECT_TRUE(GetParam().call());
    EXPECT_TRUE(messages.lines().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Stages, stageQuietDefaultsTest, testing::ValuesIn(quiet()), rowName);
