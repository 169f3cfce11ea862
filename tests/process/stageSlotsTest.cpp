/// \file
/// What holds for the stage interfaces alike: the chain of classes, one pointer per object, and the order of
/// the operations that each appends.

#include <kelCore/process/kelAbstractProcessClassifier.h>
#include <kelCore/process/kelAbstractProcessClassifier_p.h>
#include <kelCore/process/kelAbstractProcessDepthSegmentation.h>
#include <kelCore/process/kelAbstractProcessDepthSegmentation_p.h>
#include <kelCore/process/kelAbstractProcessEventRecognition.h>
#include <kelCore/process/kelAbstractProcessEventRecognition_p.h>
#include <kelCore/process/kelAbstractProcessFakeTracker.h>
#include <kelCore/process/kelAbstractProcessFakeTracker_p.h>
#include <kelCore/process/kelAbstractProcessFeetDetection.h>
#include <kelCore/process/kelAbstractProcessFeetDetection_p.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker_p.h>
#include <kelCore/process/kelAbstractProcessGroundDetection.h>
#include <kelCore/process/kelAbstractProcessGroundDetection_p.h>
#include <kelCore/process/kelAbstractProcessGroupTracker.h>
#include <kelCore/process/kelAbstractProcessGroupTracker_p.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator_p.h>
#include <kelCore/process/kelAbstractProcessMessageSender.h>
#include <kelCore/process/kelAbstractProcessMessageSender_p.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector_p.h>
#include <kelCore/process/kelAbstractProcessReAcquisition.h>
#include <kelCore/process/kelAbstractProcessReAcquisition_p.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter_p.h>

#include "support/VirtualSlot.h"

#include <gtest/gtest.h>

#include <QMetaObject>

#include <type_traits>
#include <vector>

namespace {

template <class Stage, class Private> void expectStage(const char *name)
{
    const QMetaObject &meta = Stage::staticMetaObject;
    EXPECT_STREQ(meta.className(), name);
    EXPECT_EQ(meta.superClass(), &kelAbstractProcess::staticMetaObject) << name;
    EXPECT_EQ(meta.methodCount(), QObject::staticMetaObject.methodCount()) << name;
    EXPECT_EQ(meta.propertyCount(), QObject::staticMetaObject.propertyCount()) << name;
    EXPECT_EQ(sizeof(Stage), sizeof(nubAbstractObject)) << name;
    EXPECT_TRUE((std::is_base_of<kelAbstractProcessPrivate, Private>::value)) << name;
    EXPECT_TRUE(std::has_virtual_destructor<Private>::value) << name;
}

/// The operations that a stage appends stand in that order behind `setSpecificParameters`.
void expectAppended(const std::vector<int> &order)
{
    const int first = slot(&kelAbstractProcess::setSpecificParameters) + 1;
    for (std::size_t i = 0; i < order.size(); ++i)
        EXPECT_EQ(order[i], first + static_cast<int>(i)) << "operation " << i;
}

} // namespace

TEST(stageSlotsTest, EveryStageDerivesFromTheBaseAndSoDoesItsPrivateClass)
{
#define EXPECT_STAGE(Class) expectStage<Class, Class##Private>(#Class)
    EXPECT_STAGE(kelAbstractProcessClassifier);
    EXPECT_STAGE(kelAbstractProcessDepthSegmentation);
    EXPECT_STAGE(kelAbstractProcessFakeTracker);
    EXPECT_STAGE(kelAbstractProcessFeetDetection);
    EXPECT_STAGE(kelAbstractProcessGroundDetection);
    EXPECT_STAGE(kelAbstractProcessEventRecognition);
    EXPECT_STAGE(kelAbstractProcessJsonGenerator);
    EXPECT_STAGE(kelAbstractProcessMessageSender);
    EXPECT_STAGE(kelAbstractProcessPeopleDetector);
    EXPECT_STAGE(kelAbstractProcessFrameToFrameTracker);
    EXPECT_STAGE(kelAbstractProcessGroupTracker);
    EXPECT_STAGE(kelAbstractProcessReAcquisition);
    EXPECT_STAGE(kelAbstractProcessXMLReaderWriter);
#undef EXPECT_STAGE
}

TEST(stageSlotsTest, Classifier) { expectAppended({slot(&kelAbstractProcessClassifier::classify)}); }

TEST(stageSlotsTest, DepthSegmentation)
{
    using Stage = kelAbstractProcessDepthSegmentation;
    expectAppended({slot(&Stage::setColorImg), slot(&Stage::setDepthImg), slot(&Stage::setParameterFile),
                    slot(&Stage::setCalibrationWithDepth), slot(&Stage::computeEquationPlan),
                    slot(&Stage::getPhysicalObjs), slot(&Stage::getBackgroundDepthMap),
                    slot(&Stage::adjustBoundingBox3d), slot(&Stage::saveBackground)});
}

TEST(stageSlotsTest, FakeTracker)
{
    using Stage = kelAbstractProcessFakeTracker;
    expectAppended({slot(&Stage::setPhysicalObjs), slot(&Stage::getActors)});
}

TEST(stageSlotsTest, FeetDetection)
{
    using Stage = kelAbstractProcessFeetDetection;
    expectAppended({slot(&Stage::init), slot(&Stage::setParameterFile), slot(&Stage::setActorList),
                    slot(&Stage::getLegsPoints), slot(&Stage::getFeetPositions), slot(&Stage::getSpeed),
                    slot(&Stage::computeFeetPositions), slot(&Stage::computeSpeeds)});
}

TEST(stageSlotsTest, GroundDetection)
{
    using Stage = kelAbstractProcessGroundDetection;
    expectAppended({slot(&Stage::setParameterFile), slot(&Stage::computeGroundPlaneFromDepthMap),
                    slot(&Stage::setCalibrationWithDepth), slot(&Stage::getGroundPlaneEquationCoef),
                    slot(&Stage::getGroundPlanePoints), slot(&Stage::getShiftedGroundPlaneEquationCoef),
                    slot(&Stage::getShiftedGroundPlanePoints)});
}

TEST(stageSlotsTest, EventRecognition)
{
    using Stage = kelAbstractProcessEventRecognition;
    expectAppended(
        {slot(&Stage::setActors), slot(&Stage::getCurrentFrameEvents), slot(&Stage::getAllFramesEvents),
         slot(&Stage::recognizeEvents), slot(&Stage::setParameterFile), slot(&Stage::getParamSaveXML1File),
         slot(&Stage::getParamXML1FileName), slot(&Stage::init), slot(&Stage::setCommonFilePath),
         slot(&Stage::generateEventListStorageStream), slot(&Stage::generateEventListStreamToNotify)});
}

TEST(stageSlotsTest, JsonGenerator)
{
    using Stage = kelAbstractProcessJsonGenerator;
    expectAppended({slot(&Stage::setActors), slot(&Stage::setEvents), slot(&Stage::setFrameNumber),
                    slot(&Stage::setTimestamp), slot(&Stage::generateJsonString)});
}

TEST(stageSlotsTest, MessageSender)
{
    using Stage = kelAbstractProcessMessageSender;
    expectAppended({slot(&Stage::setParameterFile), slot(&Stage::sendMsg)});
}

TEST(stageSlotsTest, PeopleDetector)
{
    using Stage = kelAbstractProcessPeopleDetector;
    expectAppended({slot(&Stage::setImage), slot(&Stage::detectPeople)});
}

TEST(stageSlotsTest, FrameToFrameTracker)
{
    using Stage = kelAbstractProcessFrameToFrameTracker;
    expectAppended({slot(&Stage::setPhysicalObjects), slot(&Stage::track), slot(&Stage::getActors)});
}

TEST(stageSlotsTest, GroupTracker)
{
    using Stage = kelAbstractProcessGroupTracker;
    expectAppended({slot(&Stage::setParameterFile), slot(&Stage::setFrame), slot(&Stage::setActors),
                    slot(&Stage::init), slot(&Stage::trackGroups), slot(&Stage::getActors)});
}

TEST(stageSlotsTest, ReAcquisition) { expectAppended({slot(&kelAbstractProcessReAcquisition::reAcquire)}); }

TEST(stageSlotsTest, XMLReaderWriter)
{
    using Stage = kelAbstractProcessXMLReaderWriter;
    expectAppended({slot(&Stage::parsePhysicalObjects), slot(&Stage::parseActors),
                    slot(&Stage::writePhysicalObjects), slot(&Stage::writeActors)});
}

TEST(stageSlotsTest, TheOverridesOfTheFrameworksOperationsKeepTheirSlots)
{
    EXPECT_LT(slot(&kelAbstractProcessMessageSender::copy),
              slot(&kelAbstractProcessMessageSender::setParameterFile));
    EXPECT_EQ(slot(&kelAbstractProcessMessageSender::copy), slot(&nubAbstractObject::copy));
    EXPECT_EQ(slot(&kelAbstractProcessMessageSender::identifier), slot(&nubAbstractObject::identifier));
}
