/// \file
/// What holds for all data classes alike: one pointer per object, the class names, and the order of the
/// virtual operations.

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelAbstractDataStream.h>
#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/data/kelDataLinkedPhysicalObject.h>
#include <kelCore/data/kelDataLinkedPhysicalObjectLink.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <nubCore/nubAbstractProcess.h>
#include <nubCore/nubAbstractProcess_p.h>
#include <nubCore/nubAbstractView_p.h>

#include "support/Capture.h"
#include "support/VirtualSlot.h"

#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

/// A concrete data class, as the shared tests need it.
struct Kind
{
    const char *name;
    std::size_t size;
    std::unique_ptr<nubAbstractData> (*make)();
};

template <class Class> Kind kind(const char *name)
{
    return {name, sizeof(Class),
            []() -> std::unique_ptr<nubAbstractData> { return std::make_unique<Class>(); }};
}

const std::vector<Kind> &kinds()
{
    static const std::vector<Kind> all{
        kind<kelDataImage>("kelDataImage"),
        kind<kelDataBlob>("kelDataBlob"),
        kind<kelDataPhysicalObject>("kelDataPhysicalObject"),
        kind<kelAbstractDataCalibration>("kelAbstractDataCalibration"),
        kind<kelAbstractDataCalibrationWithDepth>("kelAbstractDataCalibrationWithDepth"),
        kind<kelDataContext>("kelDataContext"),
        kind<kelDataActor>("kelDataActor"),
        kind<kelDataEvent>("kelDataEvent"),
        kind<kelDataLinkedPhysicalObject>("kelDataLinkedPhysicalObject"),
        kind<kelDataLinkedPhysicalObjectLink>("kelDataLinkedPhysicalObjectLink"),
        kind<kelAbstractDataStream>("kelAbstractDataStream"),
    };
    return all;
}

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
    for (const Kind &kind : kinds()) {
        if (QLatin1String(kind.name).startsWith(QLatin1String("kelDataLinkedPhysicalObject")))
            EXPECT_GT(kind.size, sizeof(nubAbstractObject)) << kind.name; // they hold the graph themselves
        else
            EXPECT_EQ(kind.size, sizeof(nubAbstractObject)) << kind.name;
    }
}

TEST(objectModelTest, TheIdentifierIsTheClassName)
{
    for (const Kind &kind : kinds()) {
        const auto object = kind.make();
        EXPECT_EQ(object->identifier(), kind.name);
        EXPECT_STREQ(object->metaObject()->className(), kind.name);
    }
}

TEST(objectModelTest, ClassesAreMetaObjectClassesWithoutSignalsSlotsOrProperties)
{
    for (const Kind &kind : kinds()) {
        const auto object = kind.make();
        for (const QMetaObject *meta = object->metaObject(); meta != &QObject::staticMetaObject;
             meta = meta->superClass()) {
            EXPECT_EQ(meta->methodCount(), QObject::staticMetaObject.methodCount()) << meta->className();
            EXPECT_EQ(meta->propertyCount(), QObject::staticMetaObject.propertyCount()) << meta->className();
        }
    }
}

TEST(objectModelTest, TheChainOfClassesIsTheStatedOne)
{
    for (const Kind &kind : kinds()) {
        const auto object = kind.make();
        QStringList chain;
        for (const QMetaObject *meta = object->metaObject(); meta; meta = meta->superClass())
            chain.append(meta->className());
        QStringList expected{kind.name, "kelAbstractData", "nubAbstractData", "nubAbstractObject", "QObject"};
        if (!qobject_cast<kelAbstractData *>(object.get()))
            expected.removeOne("kelAbstractData");
        if (object->identifier() == "kelAbstractDataCalibrationWithDepth")
            expected.insert(1, "kelAbstractDataCalibration");
        EXPECT_EQ(chain, expected);
    }
}

TEST(objectModelTest, PrivateClassesFollowTheirPublicClassesAndHaveVirtualDestructors)
{
    static_assert(std::has_virtual_destructor<nubAbstractObjectPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractObjectPrivate, nubAbstractDataPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractObjectPrivate, nubAbstractProcessPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractObjectPrivate, nubAbstractViewPrivate>::value, "");
    static_assert(std::is_base_of<nubAbstractDataPrivate, kelAbstractDataPrivate>::value, "");
}

TEST(objectModelTest, ACloneIsANewObjectOfTheSameClass)
{
    for (const Kind &kind : kinds()) {
        const auto object = kind.make();
        const std::unique_ptr<nubAbstractData> clone(object->clone());
        ASSERT_NE(clone, nullptr) << kind.name;
        EXPECT_NE(clone, object);
        EXPECT_STREQ(clone->metaObject()->className(), kind.name);
    }
}

TEST(objectModelTest, ACloneTakesTheParentOfItsSource)
{
    for (const Kind &kind : kinds()) {
        QObject parent;
        const auto object = kind.make();
        object->setParent(&parent);
        const std::unique_ptr<nubAbstractData> clone(object->clone());
        EXPECT_EQ(clone->parent(), &parent) << kind.name;
    }
}

TEST(objectModelTest, EveryKindKeepsTheBaseSetSpecificProperties)
{
    const char signature[] = "virtual bool kelAbstractData::setSpecificProperties(const QVariantMap&)";
    int checked = 0;
    for (const Kind &kind : kinds()) {
        const auto object = kind.make();
        auto *data = qobject_cast<kelAbstractData *>(object.get());
        if (!data)
            continue;
        const LogLevel level(1);
        MessageCapture messages;
        EXPECT_TRUE(data->setSpecificProperties(QVariantMap{{"k", 1}}));
        EXPECT_EQ(messages.lines(), QStringList{defaultNotice(signature, kind.name)});
        EXPECT_EQ(data->getSpecificProperties(), (QVariantMap{{"k", 1}}));
        ++checked;
    }
    EXPECT_EQ(checked, static_cast<int>(kinds().size()) - 2); // a stream descriptor and a link have none
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
