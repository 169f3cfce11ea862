/// \file
/// The base of the stages in the framework, and what holds for the stages of the recording as for the others
/// (stageTest.cpp, stageOperationsTest.cpp): the chain of classes and the order of the virtual operations.

#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader_p.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter_p.h>
#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/process/kelAbstractProcessDataReader_p.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/process/kelAbstractProcessDataWriter_p.h>

#include "support/Stage.h"

TEST(processModelTest, TheBaseDerivesFromTheFrameworksProcess)
{
    const QMetaObject &meta = kelAbstractProcess::staticMetaObject;
    EXPECT_STREQ(meta.className(), "kelAbstractProcess");
    EXPECT_EQ(meta.superClass(), &nubAbstractProcess::staticMetaObject);
    EXPECT_EQ(meta.methodCount(), QObject::staticMetaObject.methodCount());
    EXPECT_EQ(meta.propertyCount(), QObject::staticMetaObject.propertyCount());
    EXPECT_TRUE((std::is_base_of<nubAbstractProcessPrivate, kelAbstractProcessPrivate>::value));
}

TEST(processModelTest, TheStagesOfTheRecordingDeriveFromTheBaseAndSoDoTheirPrivateClasses)
{
#define EXPECT_STAGE(Class) expectStage<Class, Class##Private>(#Class)
    EXPECT_STAGE(kelAbstractProcessDataWriter);
    EXPECT_STAGE(kelAbstractProcessDataReader);
    EXPECT_STAGE(kelAbstractProcessDataFlowWriter);
    EXPECT_STAGE(kelAbstractProcessDataFlowReader);
#undef EXPECT_STAGE
}

TEST(processModelTest, TheBaseAppendsOneOperationToTheFrameworks)
{
    EXPECT_EQ(slot(&kelAbstractProcess::setSpecificParameters), slot(&nubAbstractProcess::channelCount) + 1);
    expectAppended<kelAbstractProcess>({});
}

TEST(processModelTest, TheStagesOfTheRecordingAppendTheirOwnInTheStatedOrder)
{
    using Writer = kelAbstractProcessDataFlowWriter;
    expectAppended<Writer>({slot<void(const QList<QSharedPointer<kelAbstractData>> &)>(&Writer::setDataFlow),
                            slot<void(const QSharedPointer<kelAbstractData> &)>(&Writer::setDataFlow),
                            slot<bool()>(&Writer::writeDataFlow)});

    using Reader = kelAbstractProcessDataFlowReader;
    expectAppended<Reader>({slot<QList<kelAbstractData *>()>(&Reader::getDataFlow),
                            slot(&Reader::HasReachedWantedStartTime),
                            slot(&Reader::HasReachedWantedStopTime)});

    expectAppended<kelAbstractProcessDataWriter>({});
    expectAppended<kelAbstractProcessDataReader>({});
}
