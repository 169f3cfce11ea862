/// \file
/// What holds for all stages alike: the chain of classes, one pointer per object, and the order of the
/// virtual operations.

#include <kelCore/process/kelAbstractProcessAcquisition.h>
#include <kelCore/process/kelAbstractProcessAcquisition_p.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration_p.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader_p.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter_p.h>
#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/process/kelAbstractProcessDataReader_p.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/process/kelAbstractProcessDataWriter_p.h>
#include <kelCore/process/kelAbstractProcessSegmentation.h>
#include <kelCore/process/kelAbstractProcessSegmentation_p.h>

#include "support/VirtualSlot.h"

#include <gtest/gtest.h>

#include <QMetaObject>

#include <cstring>
#include <type_traits>
#include <vector>

namespace {

/// The operations that a stage appends stand in that order behind `setSpecificParameters`.
void expectAppended(const std::vector<int> &order)
{
    const int first = slot(&kelAbstractProcess::setSpecificParameters) + 1;
    for (std::size_t i = 0; i < order.size(); ++i)
        EXPECT_EQ(order[i], first + static_cast<int>(i)) << "operation " << i;
}

/// Whether a stage's private class derives from that of the base, and the stage itself from the base alone.
template <class Stage, class Private> void expectStage(const char *name)
{
    const QMetaObject &meta = Stage::staticMetaObject;
    EXPECT_STREQ(meta.className(), name);
    EXPECT_EQ(meta.superClass(), &kelAbstractProcess::staticMetaObject) << name;
    EXPECT_EQ(meta.methodCount(), QObject::staticMetaObject.methodCount()) << name;
    EXPECT_EQ(meta.propertyCount(), QObject::staticMetaObject.propertyCount()) << name;
    EXPECT_TRUE((std::is_base_of<kelAbstractProcessPrivate, Private>::value)) << name;
    EXPECT_TRUE(std::has_virtual_destructor<Private>::value) << name;
}

} // namespace

TEST(processModelTest, TheBaseDerivesFromTheFrameworksProcess)
{
    const QMetaObject &meta = kelAbstractProcess::staticMetaObject;
    EXPECT_STREQ(meta.className(), "kelAbstractProcess");
    EXPECT_EQ(meta.superClass(), &nubAbstractProcess::staticMetaObject);
    EXPECT_EQ(meta.methodCount(), QObject::staticMetaObject.methodCount());
    EXPECT_EQ(meta.propertyCount(), QObject::staticMetaObject.propertyCount());
    EXPECT_TRUE((std::is_base_of<nubAbstractProcessPrivate, kelAbstractProcessPrivate>::value));
}

TEST(processModelTest, EveryStageDerivesFromTheBaseAndSoDoesItsPrivateClass)
{
#define EXPECT_STAGE(Class) expectStage<Class, Class##Private>(#Class)
    EXPECT_STAGE(kelAbstractProcessAcquisition);
    EXPECT_STAGE(kelAbstractProcessSegmentation);
    EXPECT_STAGE(kelAbstractProcessBlobsGeneration);
    EXPECT_STAGE(kelAbstractProcessDataWriter);
    EXPECT_STAGE(kelAbstractProcessDataReader);
    EXPECT_STAGE(kelAbstractProcessDataFlowWriter);
    EXPECT_STAGE(kelAbstractProcessDataFlowReader);
#undef EXPECT_STAGE
}

TEST(processModelTest, TheBaseAppendsOneOperationToTheFrameworks)
{
    EXPECT_EQ(slot(&kelAbstractProcess::setSpecificParameters), slot(&nubAbstractProcess::channelCount) + 1);
}

TEST(processModelTest, StagesAppendTheirOwnOperationsInTheStatedOrder)
{
    using Acquisition = kelAbstractProcessAcquisition;
    expectAppended({slot(&Acquisition::setStream), slot(&Acquisition::acquire)});
    expectAppended({slot(&kelAbstractProcessSegmentation::segment)});
    expectAppended({slot(&kelAbstractProcessBlobsGeneration::generateBlobs)});

    using Writer = kelAbstractProcessDataFlowWriter;
    expectAppended({slot<void(const QList<QSharedPointer<kelAbstractData>> &)>(&Writer::setDataFlow),
                    slot<void(const QSharedPointer<kelAbstractData> &)>(&Writer::setDataFlow),
                    slot(&Writer::writeDataFlow)});

    using Reader = kelAbstractProcessDataFlowReader;
    expectAppended({slot<QList<kelAbstractData *>()>(&Reader::getDataFlow),
                    slot(&Reader::HasReachedWantedStartTime), slot(&Reader::HasReachedWantedStopTime)});
}
