/// \file
/// The fields of the private classes: their types, their order, and that there are no others between them.

#include "data/DataClasses.h"

#include <cstdint>
#include <type_traits>
#include <utility>

namespace {

std::size_t aligned(std::size_t offset, std::size_t alignment)
{
    return (offset + alignment - 1) / alignment * alignment;
}

/// Where the field stands, from the address of one that exists.
template <class Private, class Field> std::size_t offsetOf(const Private &object, Field Private::*field)
{
    return static_cast<std::size_t>(reinterpret_cast<const char *>(&(object.*field))
                                    - reinterpret_cast<const char *>(&object));
}

template <class Private, class Field>
void expectNext(const Private &object, Field Private::*field, std::size_t &end, int index)
{
    const std::size_t offset = offsetOf(object, field);
    if (index == 0)
        EXPECT_LE(offset, aligned(end, alignof(Field))) << "the first field may use the base's last padding";
    else
        EXPECT_EQ(offset, aligned(end, alignof(Field))) << "field " << index;
    end = offset + sizeof(Field);
}

/// The class adds exactly these fields to its base, in this order.
template <class Base, class Private, class... Fields> void expectFields(Fields Private::*...fields)
{
    const Private object;
    std::size_t end = sizeof(Base);
    int index = 0;
    (expectNext(object, fields, end, index++), ...);
    EXPECT_EQ(sizeof(Private), aligned(end, alignof(Private)));
}

template <class Expected, class Private, class Field> constexpr bool is(Field Private::*)
{
    return std::is_same_v<Field, Expected>;
}

using Strings = QHash<QString, QString>;
using Lists = QHash<QString, QStringList>;
using Flags = QMap<QString, bool>;
using Object = QSharedPointer<kelDataLinkedPhysicalObject>;

} // namespace

TEST(privateFieldsTest, OfTheFrameworksObject)
{
    using P = nubAbstractObjectPrivate;
    static_assert(is<nubAbstractObject *>(&P::q_ptr) && is<int>(&P::retainCount) && is<Lists>(&P::values)
                  && is<Strings>(&P::properties) && is<Lists>(&P::metaData)
                  && is<bool>(&P::deferredDeletion));
    expectFields<void *>(&P::q_ptr, &P::retainCount, &P::values, &P::properties, &P::metaData,
                         &P::deferredDeletion);
}

TEST(privateFieldsTest, OfTheFrameworksData)
{
    using P = nubAbstractDataPrivate;
    static_assert(is<Flags>(&P::readers) && is<Flags>(&P::writers) && is<Flags>(&P::converters)
                  && is<Flags>(&P::serializers) && is<Flags>(&P::deserializers) && is<QString>(&P::path)
                  && is<QStringList>(&P::paths) && is<int>(&P::channelCount)
                  && is<QList<QImage>>(&P::thumbnails));
    expectFields<nubAbstractObjectPrivate>(&P::readers, &P::writers, &P::converters, &P::serializers,
                                           &P::deserializers, &P::path, &P::paths, &P::channelCount,
                                           &P::thumbnails);
}

TEST(privateFieldsTest, OfAbstractData)
{
    using P = kelAbstractDataPrivate;
    static_assert(is<QVariantMap>(&P::specificProperties) && is<QVariantMap>(&P::map));
    expectFields<nubAbstractDataPrivate>(&P::specificProperties, &P::map);
}

TEST(privateFieldsTest, OfImageAndBlob)
{
    static_assert(is<cv::Mat>(&kelDataImagePrivate::image)
                  && is<cv::Rect>(&kelDataBlobPrivate::boundingBox2D));
    expectFields<kelAbstractDataPrivate>(&kelDataImagePrivate::image);
    expectFields<kelAbstractDataPrivate>(&kelDataBlobPrivate::boundingBox2D);
}

TEST(privateFieldsTest, OfThePhysicalObject)
{
    using P = kelDataPhysicalObjectPrivate;
    static_assert(is<std::int32_t>(&P::id) && is<cv::Point3f>(&P::position)
                  && is<cv::Point3f>(&P::centroidPosition) && is<cv::Point3f>(&P::highestPosition)
                  && is<cv::Point3f>(&P::lowestPosition) && is<cv::Rect>(&P::boundingBox2D)
                  && is<BoundingBox3D>(&P::boundingBox3D) && is<Information3D>(&P::information3D)
                  && is<std::string>(&P::type) && is<SkeletonStructure>(&P::skeleton)
                  && is<std::list<cv::Point>>(&P::pixels) && is<std::list<cv::Point3f>>(&P::voxels));
    expectFields<kelAbstractDataPrivate>(&P::id, &P::position, &P::centroidPosition, &P::highestPosition,
                                         &P::lowestPosition, &P::boundingBox2D, &P::boundingBox3D,
                                         &P::information3D, &P::type, &P::skeleton, &P::pixels, &P::voxels);
}

TEST(privateFieldsTest, OfTheActor)
{
    using P = kelDataActorPrivate;
    static_assert(is<quint32>(&P::ident) && is<std::string>(&P::type) && is<BoundingBox3D>(&P::boundingBox3D)
                  && is<Information3D>(&P::information3D) && is<cv::Rect>(&P::boundingBox2D)
                  && is<cv::Point3f>(&P::currentPosition)
                  && is<std::map<CSynchronizer, cv::Point3f>>(&P::trajectory)
                  && is<SkeletonStructure>(&P::skeleton) && is<std::list<cv::Point>>(&P::pixels)
                  && is<std::list<cv::Point3f>>(&P::voxels) && is<Object>(&P::LPO)
                  && is<std::list<Object>>(&P::linkedPhysicalObjects) && is<bool>(&P::hasSon)
                  && is<double>(&P::speed) && is<double>(&P::reliability) && is<quint32>(&P::cameraId)
                  && is<std::vector<unsigned int>>(&P::VtRefIds) && is<CSynchronizer>(&P::sync));
    expectFields<kelAbstractDataPrivate>(
        &P::ident, &P::type, &P::boundingBox3D, &P::information3D, &P::boundingBox2D, &P::currentPosition,
        &P::trajectory, &P::skeleton, &P::pixels, &P::voxels, &P::LPO, &P::linkedPhysicalObjects, &P::hasSon,
        &P::speed, &P::reliability, &P::cameraId, &P::VtRefIds, &P::sync);
}

TEST(privateFieldsTest, OfTheEvent)
{
    using P = kelDataEventPrivate;
    static_assert(is<std::string>(&P::SEDAlarmLevel) && is<CSynchronizer>(&P::SEDBegin)
                  && is<double>(&P::SEDConfidence) && is<double>(&P::SEDDuration)
                  && is<CSynchronizer>(&P::SEDEnd) && is<quint32>(&P::SEDId) && is<double>(&P::SEDLatency)
                  && is<std::string>(&P::SEDName) && is<std::string>(&P::SEDType)
                  && is<qint32>(&P::involvedActorId));
    expectFields<kelAbstractDataPrivate>(&P::SEDAlarmLevel, &P::SEDBegin, &P::SEDConfidence, &P::SEDDuration,
                                         &P::SEDEnd, &P::SEDId, &P::SEDLatency, &P::SEDName, &P::SEDType,
                                         &P::involvedActorId);
}

TEST(privateFieldsTest, OfTheContext)
{
    using P = kelDataContextPrivate;
    static_assert(is<std::list<ContextElement>>(&P::elements) && is<std::string>(&P::referentialName));
    expectFields<kelAbstractDataPrivate>(&P::elements, &P::referentialName);
}

TEST(privateFieldsTest, OfTheCalibrations)
{
    using P = kelAbstractDataCalibrationPrivate;
    static_assert(is<QString>(&P::referentialName) && is<cv::Mat>(&P::intrinsicMatrix)
                  && is<cv::Mat>(&P::extrinsicMatrix) && is<cv::Mat>(&P::distortionMatrix));
    expectFields<kelAbstractDataPrivate>(&P::referentialName, &P::intrinsicMatrix, &P::extrinsicMatrix,
                                         &P::distortionMatrix);
    using D = kelAbstractDataCalibrationWithDepthPrivate;
    static_assert(is<cv::Mat>(&D::depthInformation) && is<std::string>(&D::contextObjectsForbidden));
    expectFields<P>(&D::depthInformation, &D::contextObjectsForbidden);
}

TEST(privateFieldsTest, OfTheStreamDescriptor)
{
    using P = kelAbstractDataStreamPrivate;
    static_assert(is<QUrl>(&P::url) && is<QString>(&P::device) && is<QString>(&P::streamName)
                  && is<kelAbstractDataCalibration>(&P::cameraCalibration));
    expectFields<nubAbstractDataPrivate>(&P::url, &P::device, &P::streamName, &P::cameraCalibration);
}

TEST(privateFieldsTest, TheLinkedClassesAddNone)
{
    EXPECT_EQ(sizeof(kelDataLinkedPhysicalObjectPrivate), sizeof(kelAbstractDataPrivate));
    EXPECT_EQ(sizeof(kelDataLinkedPhysicalObjectLinkPrivate), sizeof(nubAbstractDataPrivate));
}
