/// \file
/// A plug-in overrides every virtual operation of each stage interface, and a caller who knows the interface
/// alone reaches it.

#include <kelCore/process/kelAbstractProcessAcquisition.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration.h>
#include <kelCore/process/kelAbstractProcessClassifier.h>
#include <kelCore/process/kelAbstractProcessDepthSegmentation.h>
#include <kelCore/process/kelAbstractProcessEventRecognition.h>
#include <kelCore/process/kelAbstractProcessFakeTracker.h>
#include <kelCore/process/kelAbstractProcessFeetDetection.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker.h>
#include <kelCore/process/kelAbstractProcessGroundDetection.h>
#include <kelCore/process/kelAbstractProcessGroupTracker.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator.h>
#include <kelCore/process/kelAbstractProcessMessageSender.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector.h>
#include <kelCore/process/kelAbstractProcessReAcquisition.h>
#include <kelCore/process/kelAbstractProcessSegmentation.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter.h>

#include "support/Capture.h"

namespace {

/// The operations that were reached, in order. Overrides say themselves.
QStringList reached;
void reach(const char *operation) { reached.append(operation); }

/// Every test starts with nothing reached, and shows that no default body ran.
class stageOverridesTest : public testing::Test
{
protected:
    stageOverridesTest() : m_level(1) { reached.clear(); }
    ~stageOverridesTest() override { EXPECT_EQ(m_messages.lines(), QStringList()); }

private:
    LogLevel m_level;
    MessageCapture m_messages;
};

} // namespace

TEST_F(stageOverridesTest, EveryStage)
{
    struct Plugin : kelAbstractProcess
    {
        Plugin *clone() override { return reach("clone"), nullptr; }
        void copy(const nubAbstractObject &) override { reach("copy"); }
        QString identifier() const override { return reach("identifier"), "Plugin"; }
        bool setSpecificParameters(const QVariantMap &) override { return reach("parameters"), false; }
    } plugin;
    kelAbstractProcess &stage = plugin;
    EXPECT_EQ(stage.clone(), nullptr);
    stage.copy(kelAbstractProcess());
    EXPECT_EQ(stage.identifier(), "Plugin");
    EXPECT_FALSE(stage.setSpecificParameters({}));
    EXPECT_EQ(reached, (QStringList{"clone", "copy", "identifier", "parameters"}));
}

TEST_F(stageOverridesTest, Acquisition)
{
    struct Plugin : kelAbstractProcessAcquisition
    {
        void setStream(QSharedPointer<kelAbstractDataStream> &) override { reach("setStream"); }
        bool acquire() override { return reach("acquire"), true; }
    } plugin;
    kelAbstractProcessAcquisition &stage = plugin;
    QSharedPointer<kelAbstractDataStream> stream;
    stage.setStream(stream);
    EXPECT_TRUE(stage.acquire());
    EXPECT_EQ(reached, (QStringList{"setStream", "acquire"}));
}

TEST_F(stageOverridesTest, StagesWithOneOperation)
{
    struct Segmentation : kelAbstractProcessSegmentation
    {
        bool segment() override { return reach("segment"), true; }
    } segmentation;
    struct Blobs : kelAbstractProcessBlobsGeneration
    {
        bool generateBlobs() override { return reach("generateBlobs"), true; }
    } blobs;
    struct Classifier : kelAbstractProcessClassifier
    {
        bool classify() override { return reach("classify"), true; }
    } classifier;
    struct ReAcquisition : kelAbstractProcessReAcquisition
    {
        bool reAcquire() override { return reach("reAcquire"), true; }
    } reAcquisition;
    EXPECT_TRUE(static_cast<kelAbstractProcessSegmentation &>(segmentation).segment());
    EXPECT_TRUE(static_cast<kelAbstractProcessBlobsGeneration &>(blobs).generateBlobs());
    EXPECT_TRUE(static_cast<kelAbstractProcessClassifier &>(classifier).classify());
    EXPECT_TRUE(static_cast<kelAbstractProcessReAcquisition &>(reAcquisition).reAcquire());
    EXPECT_EQ(reached, (QStringList{"segment", "generateBlobs", "classify", "reAcquire"}));
}

TEST_F(stageOverridesTest, DepthSegmentation)
{
    struct Plugin : kelAbstractProcessDepthSegmentation
    {
        void setColorImg(const kelDataImage &) override { reach("setColorImg"); }
        void setDepthImg(const kelDataImage &) override { reach("setDepthImg"); }
        void setParameterFile(const std::string &, std::string) override { reach("setParameterFile"); }
        void setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth *) override { reach("calibration"); }
        void computeEquationPlan(const kelDataContext *) override { reach("computeEquationPlan"); }
        void getPhysicalObjs(PhysicalObjs &) override { reach("getPhysicalObjs"); }
        void getBackgroundDepthMap(cv::Mat &) override { reach("getBackgroundDepthMap"); }
        void adjustBoundingBox3d(PhysicalObjs &) override { reach("adjustBoundingBox3d"); }
        void saveBackground(const std::string &) override { reach("saveBackground"); }
    } plugin;
    kelAbstractProcessDepthSegmentation &stage = plugin;
    PhysicalObjs objects;
    cv::Mat depth;
    stage.setParameterFile("file", "folder");
    stage.setCalibrationWithDepth(nullptr);
    stage.computeEquationPlan(nullptr);
    stage.setColorImg(kelDataImage());
    stage.setDepthImg(kelDataImage());
    stage.getPhysicalObjs(objects);
    stage.adjustBoundingBox3d(objects);
    stage.getBackgroundDepthMap(depth);
    stage.saveBackground("file");
    EXPECT_EQ(
        reached,
        (QStringList{"setParameterFile", "calibration", "computeEquationPlan", "setColorImg", "setDepthImg",
                     "getPhysicalObjs", "adjustBoundingBox3d", "getBackgroundDepthMap", "saveBackground"}));
}

TEST_F(stageOverridesTest, FakeTracker)
{
    struct Plugin : kelAbstractProcessFakeTracker
    {
        void setPhysicalObjs(const PhysicalObjs &) override { reach("setPhysicalObjs"); }
        const ActorList getActors() const override { return reach("getActors"), ActorList(1); }
    } plugin;
    kelAbstractProcessFakeTracker &stage = plugin;
    stage.setPhysicalObjs({});
    EXPECT_EQ(stage.getActors().size(), 1u);
    EXPECT_EQ(reached, (QStringList{"setPhysicalObjs", "getActors"}));
}

TEST_F(stageOverridesTest, FeetDetection)
{
    using Points = std::list<cv::Point3f>;
    struct Plugin : kelAbstractProcessFeetDetection
    {
        void init() override { reach("init"); }
        void setParameterFile(std::string) override { reach("setParameterFile"); }
        void setActorList(ActorList) override { reach("setActorList"); }
        std::map<int, std::pair<Points *, Points *>> getLegsPoints() override
        {
            return reach("getLegsPoints"), std::map<int, std::pair<Points *, Points *>>{{1, {}}};
        }
        std::map<int, std::pair<cv::Point3f, cv::Point3f>> getFeetPositions() override
        {
            return reach("getFeetPositions"), std::map<int, std::pair<cv::Point3f, cv::Point3f>>{{1, {}}};
        }
        std::map<int, double> getSpeed() override { return reach("getSpeed"), std::map<int, double>{{1, 2}}; }
        void computeFeetPositions(std::vector<double>) override { reach("computeFeetPositions"); }
        void computeSpeeds(float) override { reach("computeSpeeds"); }
    } plugin;
    kelAbstractProcessFeetDetection &stage = plugin;
    stage.setParameterFile("file");
    stage.init();
    stage.setActorList({});
    stage.computeFeetPositions({0, 0, 1, 0});
    stage.computeSpeeds(0.04f);
    EXPECT_EQ(stage.getLegsPoints().size(), 1u);
    EXPECT_EQ(stage.getFeetPositions().size(), 1u);
    EXPECT_EQ(stage.getSpeed().at(1), 2);
    EXPECT_EQ(reached,
              (QStringList{"setParameterFile", "init", "setActorList", "computeFeetPositions",
                           "computeSpeeds", "getLegsPoints", "getFeetPositions", "getSpeed"}));
}

TEST_F(stageOverridesTest, GroundDetection)
{
    struct Plugin : kelAbstractProcessGroundDetection
    {
        void setParameterFile(std::string) override { reach("setParameterFile"); }
        void computeGroundPlaneFromDepthMap(cv::Mat) override { reach("compute"); }
        void setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth) override { reach("calibration"); }
        std::vector<double> getGroundPlaneEquationCoef() override { return reach("plane"), Plane(4); }
        std::list<cv::Point3f> getGroundPlanePoints() override { return reach("points"), Points(3); }
        std::vector<double> getShiftedGroundPlaneEquationCoef(float) override
        {
            return reach("shifted plane"), Plane(4);
        }
        std::list<cv::Point3f> getShiftedGroundPlanePoints(float) override
        {
            return reach("shifted points"), Points(3);
        }
        using Plane = std::vector<double>;
        using Points = std::list<cv::Point3f>;
    } plugin;
    kelAbstractProcessGroundDetection &stage = plugin;
    stage.setParameterFile("file");
    stage.setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth());
    stage.computeGroundPlaneFromDepthMap(cv::Mat());
    EXPECT_EQ(stage.getGroundPlaneEquationCoef().size(), 4u);
    EXPECT_EQ(stage.getGroundPlanePoints().size(), 3u);
    EXPECT_EQ(stage.getShiftedGroundPlaneEquationCoef(1).size(), 4u);
    EXPECT_EQ(stage.getShiftedGroundPlanePoints(1).size(), 3u);
    EXPECT_EQ(reached,
              (QStringList{"setParameterFile", "calibration", "compute", "plane", "points", "shifted plane",
                           "shifted points"}));
}

TEST_F(stageOverridesTest, EventRecognition)
{
    struct Plugin : kelAbstractProcessEventRecognition
    {
        void setActors(ActorList) override { reach("setActors"); }
        EventList getCurrentFrameEvents() override { return reach("current"), EventList(1); }
        EventList getAllFramesEvents() override { return reach("all"), EventList(2); }
        bool recognizeEvents() override { return reach("recognizeEvents"), true; }
        void setParameterFile(const std::string &) override { reach("setParameterFile"); }
        bool getParamSaveXML1File() override { return reach("save"), false; }
        std::string getParamXML1FileName() override { return reach("name"), "events.xml"; }
        void init() override { reach("init"); }
        void setCommonFilePath(const std::string &) override { reach("setCommonFilePath"); }
        std::string generateEventListStorageStream() override { return reach("storage"), "stored"; }
        std::string generateEventListStreamToNotify() override { return reach("notify"), "sent"; }
    } plugin;
    kelAbstractProcessEventRecognition &stage = plugin;
    stage.setCommonFilePath("folder");
    stage.setParameterFile("file");
    stage.init();
    stage.setActors({});
    EXPECT_TRUE(stage.recognizeEvents());
    EXPECT_EQ(stage.getCurrentFrameEvents().size(), 1u);
    EXPECT_EQ(stage.getAllFramesEvents().size(), 2u);
    EXPECT_FALSE(stage.getParamSaveXML1File());
    EXPECT_EQ(stage.getParamXML1FileName(), "events.xml");
    EXPECT_EQ(stage.generateEventListStorageStream(), "stored");
    EXPECT_EQ(stage.generateEventListStreamToNotify(), "sent");
    EXPECT_EQ(reached,
              (QStringList{"setCommonFilePath", "setParameterFile", "init", "setActors", "recognizeEvents",
                           "current", "all", "save", "name", "storage", "notify"}));
}

TEST_F(stageOverridesTest, JsonGenerator)
{
    struct Plugin : kelAbstractProcessJsonGenerator
    {
        void setActors(ActorList) override { reach("setActors"); }
        void setEvents(EventList) override { reach("setEvents"); }
        void setFrameNumber(int) override { reach("setFrameNumber"); }
        void setTimestamp(qint64) override { reach("setTimestamp"); }
        std::string generateJsonString() override { return reach("generateJsonString"), "{}"; }
    } plugin;
    kelAbstractProcessJsonGenerator &stage = plugin;
    stage.setActors({});
    stage.setEvents({});
    stage.setFrameNumber(7);
    stage.setTimestamp(Q_INT64_C(1243857600000));
    EXPECT_EQ(stage.generateJsonString(), "{}");
    EXPECT_EQ(
        reached,
        (QStringList{"setActors", "setEvents", "setFrameNumber", "setTimestamp", "generateJsonString"}));
}

TEST_F(stageOverridesTest, MessageSender)
{
    struct Plugin : kelAbstractProcessMessageSender
    {
        bool setParameterFile(std::string) override { return reach("setParameterFile"), true; }
        void sendMsg(std::string) override { reach("sendMsg"); }
    } plugin;
    kelAbstractProcessMessageSender &stage = plugin;
    EXPECT_TRUE(stage.setParameterFile("file"));
    stage.sendMsg("message");
    EXPECT_EQ(reached, (QStringList{"setParameterFile", "sendMsg"}));
}

TEST_F(stageOverridesTest, PeopleDetector)
{
    struct Plugin : kelAbstractProcessPeopleDetector
    {
        void setImage(const kelDataImage &) override { reach("setImage"); }
        bool detectPeople(PhysicalObjs &) override { return reach("detectPeople"), true; }
    } plugin;
    kelAbstractProcessPeopleDetector &stage = plugin;
    PhysicalObjs people;
    stage.setImage(kelDataImage());
    EXPECT_TRUE(stage.detectPeople(people));
    EXPECT_EQ(reached, (QStringList{"setImage", "detectPeople"}));
}

TEST_F(stageOverridesTest, FrameToFrameTracker)
{
    struct Plugin : kelAbstractProcessFrameToFrameTracker
    {
        void setPhysicalObjects(const PhysicalObjs &) override { reach("setPhysicalObjects"); }
        bool track() override { return reach("track"), true; }
        QList<QSharedPointer<kelDataActor>> getActors() override
        {
            return reach("getActors"), QList<QSharedPointer<kelDataActor>>{{}};
        }
    } plugin;
    kelAbstractProcessFrameToFrameTracker &stage = plugin;
    stage.setPhysicalObjects({});
    EXPECT_TRUE(stage.track());
    EXPECT_EQ(stage.getActors().size(), 1);
    EXPECT_EQ(reached, (QStringList{"setPhysicalObjects", "track", "getActors"}));
}

TEST_F(stageOverridesTest, GroupTracker)
{
    struct Plugin : kelAbstractProcessGroupTracker
    {
        void setParameterFile(const std::string &) override { reach("setParameterFile"); }
        void setFrame(QSharedPointer<kelDataImage>) override { reach("setFrame"); }
        void setActors(QList<QSharedPointer<kelDataActor>> &) override { reach("setActors"); }
        bool init() override { return reach("init"), true; }
        bool trackGroups() override { return reach("trackGroups"), true; }
        QList<QSharedPointer<kelDataActor>> &getActors() override { return reach("getActors"), own; }
        QList<QSharedPointer<kelDataActor>> own;
    } plugin;
    kelAbstractProcessGroupTracker &stage = plugin;
    stage.setParameterFile("file");
    EXPECT_TRUE(stage.init());
    stage.setFrame({});
    stage.setActors(plugin.own);
    EXPECT_TRUE(stage.trackGroups());
    EXPECT_EQ(&stage.getActors(), &plugin.own);
    EXPECT_EQ(reached,
              (QStringList{"setParameterFile", "init", "setFrame", "setActors", "trackGroups", "getActors"}));
}

TEST_F(stageOverridesTest, XMLReaderWriter)
{
    struct Plugin : kelAbstractProcessXMLReaderWriter
    {
        bool parsePhysicalObjects() override { return reach("parsePhysicalObjects"), true; }
        bool parseActors() override { return reach("parseActors"), true; }
        bool writePhysicalObjects() override { return reach("writePhysicalObjects"), true; }
        bool writeActors() override { return reach("writeActors"), true; }
    } plugin;
    kelAbstractProcessXMLReaderWriter &stage = plugin;
    EXPECT_TRUE(stage.parsePhysicalObjects());
    EXPECT_TRUE(stage.parseActors());
    EXPECT_TRUE(stage.writePhysicalObjects());
    EXPECT_TRUE(stage.writeActors());
    EXPECT_EQ(reached,
              (QStringList{"parsePhysicalObjects", "parseActors", "writePhysicalObjects", "writeActors"}));
}
