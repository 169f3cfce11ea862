/// \file
/// The framework's classes and the base of the data classes: one pointer on top of QObject, and the order of
/// the virtual operations.

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataStream.h>
#include <kelCore/data/kelAbstractData_p.h>
#include <nubCore/nubAbstractProcess.h>
#include <nubCore/nubAbstractProcess_p.h>
#include <nubCore/nubAbstractView_p.h>

#include "support/VirtualSlot.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

namespace {

void expectConsecutive(const std::vector<int> &order, int first)
{
    for (std::size_t i = 0; i < order.size(); ++i)
        EXPECT_EQ(order[i], first + static_cast<int>(i)) << "operation " << i;
}

/// Those of QObject: three of the meta-object, two destructors, seven event handlers.
const int rootSlots = 12;

} // namespace

TEST(objectModelTest, AnObjectIsOnePointerOnTopOfQObject)
{
    EXPECT_EQ(sizeof(nubAbstractObject), sizeof(QObject) + sizeof(void *));
    EXPECT_EQ(sizeof(nubAbstractData), sizeof(nubAbstractObject));
    EXPECT_EQ(sizeof(nubAbstractProcess), sizeof(nubAbstractObject));
    EXPECT_EQ(sizeof(kelAbstractData), sizeof(nubAbstractObject));
}

TEST(objectModelTest, PrivateClassesFollowTheirPublicClassesAndHaveVirtualDestructors)
{
    static_assert(std::has_virtual_destructor<nubAbstractObjectPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractObjectPrivate, nubAbstractDataPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractObjectPrivate, nubAbstractProcessPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractObjectPrivate, nubAbstractViewPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractDataPrivate, kelAbstractDataPrivate>::value, "");
}

TEST(objectModelTest, ObjectOperationsAreInTheStatedOrder)
{
    using C = nubAbstractObject;
    expectConsecutive({slot(&C::clone), slot(&C::copy), slot(&C::isEqual), slot(&C::description),
                       slot(&C::identifier), slot(&C::name), slot(&C::onPropertySet),
                       slot(&C::onMetaDataSet)},
                      rootSlots);
}

TEST(objectModelTest, DataOperationsAreInTheStatedOrder)
{
    using C = nubAbstractData;
    expectConsecutive({slot(&C::draw),
                       slot<bool(const QString &)>(&C::read),
                       slot<bool(const QStringList &)>(&C::read),
                       slot<bool(const QString &)>(&C::write),
                       slot<bool(const QStringList &)>(&C::write),
                       slot(&C::convert),
                       slot(&C::serialize),
                       slot(&C::deserialize),
                       slot<C *()>(&C::output),
                       slot<C *(int)>(&C::output),
                       slot<void *()>(&C::data),
                       slot<void *(int)>(&C::data),
                       slot(&C::parameter),
                       slot(&C::numberOfChannels),
                       slot<void(int)>(&C::setParameter),
                       slot<void(int, int)>(&C::setParameter),
                       slot<void(long long)>(&C::setParameter),
                       slot<void(long long, int)>(&C::setParameter),
                       slot<void(float)>(&C::setParameter),
                       slot<void(float, int)>(&C::setParameter),
                       slot<void(double)>(&C::setParameter),
                       slot<void(double, int)>(&C::setParameter),
                       slot<void(const QString &)>(&C::setParameter),
                       slot<void(const QString &, int)>(&C::setParameter),
                       slot<void(C *)>(&C::setParameter),
                       slot<void(C *, int)>(&C::setParameter),
                       slot<void(const nubVector<double> &)>(&C::setParameter),
                       slot<void(const nubVector<double> &, int)>(&C::setParameter),
                       slot<void(void *)>(&C::setData),
                       slot<void(void *, int)>(&C::setData),
                       slot(&C::setNumberOfChannels),
                       slot(&C::update),
                       slot(&C::thumbnail),
                       slot(&C::thumbnails),
                       slot(&C::toVariant),
                       slot(&C::fromVariant),
                       slot(&kelAbstractData::setSpecificProperties)},
                      rootSlots + 8);
}

TEST(objectModelTest, ProcessOperationsAreInTheStatedOrder)
{
    using C = nubAbstractProcess;
    using Object = nubAbstractObject *;
    using Data = nubAbstractData *;
    expectConsecutive({slot(&C::update),
                       slot(&C::onCanceled),
                       slot<bool(const QString &)>(&C::read),
                       slot<bool(const QStringList &)>(&C::read),
                       slot<bool(const QString &)>(&C::write),
                       slot<bool(const QStringList &)>(&C::write),
                       slot<void(int)>(&C::setParameter),
                       slot<void(int, int)>(&C::setParameter),
                       slot<void(int, int, int)>(&C::setParameter),
                       slot<void(int *)>(&C::setParameter),
                       slot<void(int *, int)>(&C::setParameter),
                       slot<void(int *, int, int)>(&C::setParameter),
                       slot<void(long long)>(&C::setParameter),
                       slot<void(long long, int)>(&C::setParameter),
                       slot<void(long long, int, int)>(&C::setParameter),
                       slot<void(long long *)>(&C::setParameter),
                       slot<void(long long *, int)>(&C::setParameter),
                       slot<void(long long *, int, int)>(&C::setParameter),
                       slot<void(double)>(&C::setParameter),
                       slot<void(double, int)>(&C::setParameter),
                       slot<void(double, int, int)>(&C::setParameter),
                       slot<void(double *, int)>(&C::setParameter),
                       slot<void(double *, int, int)>(&C::setParameter),
                       slot<void(double *, int, int, int)>(&C::setParameter),
                       slot<void(Object)>(&C::setParameter),
                       slot<void(Object, int)>(&C::setParameter),
                       slot<void(Object, int, int)>(&C::setParameter),
                       slot<void(Data)>(&C::setInput),
                       slot<void(Data, int)>(&C::setInput),
                       slot<void(Data, int, int)>(&C::setInput),
                       slot<void(void *)>(&C::setData),
                       slot<void(void *, int)>(&C::setData),
                       slot<void(void *, int, int)>(&C::setData),
                       slot<Data()>(&C::output),
                       slot<Data(int)>(&C::output),
                       slot<Data(int, int)>(&C::output),
                       slot<void *()>(&C::data),
                       slot<void *(int)>(&C::data),
                       slot<void *(int, int)>(&C::data),
                       slot(&C::channelCount)},
                      rootSlots + 8);
}

TEST(objectModelTest, ClassesAppendTheirOwnOperationsInTheStatedOrder)
{
    const int afterData = slot(&nubAbstractData::fromVariant) + 1;
    using Calibration = kelAbstractDataCalibration;
    expectConsecutive({slot(&Calibration::setSpecificProperties), slot(&Calibration::compute_3d_height),
                       slot(&Calibration::imageToWorld), slot(&Calibration::worldToImage)},
                      afterData);

    using Stream = kelAbstractDataStream;
    expectConsecutive({slot<void(const nubAbstractData &)>(&Stream::copy),
                       slot<const QUrl &() const>(&Stream::url), slot<void(const QUrl &)>(&Stream::url),
                       slot<QString() const>(&Stream::device), slot<void(QString)>(&Stream::device),
                       slot<QString() const>(&Stream::streamName), slot<void(QString)>(&Stream::streamName),
                       slot(&Stream::getCameraCalibration), slot(&Stream::setCameraCalibration),
                       slot<int() const>(&Stream::fps), slot<void(int)>(&Stream::fps),
                       slot<QString() const>(&Stream::resolution), slot<void(QString)>(&Stream::resolution)},
                      afterData);
}
