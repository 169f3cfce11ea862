/// \file
/// The fields of each stage's private class: their types and their order, and that there are no others.

#include <kelCore/process/kelAbstractProcessAcquisition_p.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration_p.h>
#include <kelCore/process/kelAbstractProcessClassifier_p.h>
#include <kelCore/process/kelAbstractProcessDepthSegmentation_p.h>
#include <kelCore/process/kelAbstractProcessEventRecognition_p.h>
#include <kelCore/process/kelAbstractProcessFakeTracker_p.h>
#include <kelCore/process/kelAbstractProcessFeetDetection_p.h>
#include <kelCore/process/kelAbstractProcessFrameToFrameTracker_p.h>
#include <kelCore/process/kelAbstractProcessGroundDetection_p.h>
#include <kelCore/process/kelAbstractProcessGroupTracker_p.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator_p.h>
#include <kelCore/process/kelAbstractProcessMessageSender_p.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector_p.h>
#include <kelCore/process/kelAbstractProcessReAcquisition_p.h>
#include <kelCore/process/kelAbstractProcessSegmentation_p.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter_p.h>

#include <gtest/gtest.h>

namespace {

using Image = QSharedPointer<kelDataImage>;
using Calibration = QSharedPointer<kelAbstractDataCalibration>;
using Actors = QList<QSharedPointer<kelDataActor>>;
using Blobs = QList<QSharedPointer<kelDataBlob>>;
using Objects = QList<QSharedPointer<kelDataPhysicalObject>>;

/// `Private` adds to `Base` fields of these types, in this order, and nothing else. A type that differs does not
/// compile; a field behind, between or before them leaves a gap.
template <class Private, class Base, class... Fields> void expectFields(Fields Private::*...fields)
{
    const Private d;
    const auto place = [&d](const auto &field) {
        return static_cast<std::size_t>(reinterpret_cast<const char *>(&field)
                                        - reinterpret_cast<const char *>(&d));
    };
    const auto upTo = [](std::size_t size, std::size_t alignment) {
        return (size + alignment - 1) / alignment * alignment;
    };
    std::size_t end = sizeof(Base);
    [[maybe_unused]] const auto next = [&](const auto &field) {
        using Field = std::decay_t<decltype(field)>;
        EXPECT_EQ(place(field), upTo(end, alignof(Field)));
        end = place(field) + sizeof(Field);
    };
    (next(d.*fields), ...);
    EXPECT_EQ(sizeof(Private), upTo(end, alignof(Private)));
}

template <class Private, class... Fields> void expectAdded(Fields Private::*...fields)
{
    expectFields<Private, kelAbstractProcessPrivate>(fields...);
}

} // namespace

TEST(stageFieldsTest, TheBaseHoldsTimeStampAndParameters)
{
    using P = kelAbstractProcessPrivate;
    expectFields<P, nubAbstractProcessPrivate, CSynchronizer, QVariantMap>(&P::synchronizer,
                                                                           &P::specificParameters);
}

TEST(stageFieldsTest, Acquisition)
{
    using P = kelAbstractProcessAcquisitionPrivate;
    expectAdded<P, QSharedPointer<kelAbstractDataStream>, Image, Image>(&P::stream, &P::image, &P::depth);
}

TEST(stageFieldsTest, Segmentation)
{
    using P = kelAbstractProcessSegmentationPrivate;
    expectAdded<P, Image, Image>(&P::acquisitionImage, &P::segmentationImage);
}

TEST(stageFieldsTest, BlobsGeneration)
{
    using P = kelAbstractProcessBlobsGenerationPrivate;
    expectAdded<P, Image, int, int, Blobs>(&P::segmentationImage, &P::minArea, &P::minDimension, &P::blobs);
}

TEST(stageFieldsTest, Classifier)
{
    using P = kelAbstractProcessClassifierPrivate;
    expectAdded<P, Calibration, Blobs, Objects>(&P::calibration, &P::blobs, &P::physicalObjects);
}

TEST(stageFieldsTest, EventRecognition)
{
    using P = kelAbstractProcessEventRecognitionPrivate;
    expectAdded<P, ActorList, EventList>(&P::actors, &P::events);
}

TEST(stageFieldsTest, JsonGenerator)
{
    using P = kelAbstractProcessJsonGeneratorPrivate;
    expectAdded<P, ActorList, EventList>(&P::actors, &P::events);
}

TEST(stageFieldsTest, PeopleDetector)
{
    using P = kelAbstractProcessPeopleDetectorPrivate;
    expectAdded<P, kelDataImage>(&P::image);
}

TEST(stageFieldsTest, GroupTracker)
{
    using P = kelAbstractProcessGroupTrackerPrivate;
    expectAdded<P, Calibration, QSharedPointer<kelDataContext>, Actors, Image, std::string>(
        &P::calibration, &P::context, &P::actors, &P::frame, &P::parameterFile);
}

TEST(stageFieldsTest, ReAcquisition)
{
    using P = kelAbstractProcessReAcquisitionPrivate;
    expectAdded<P, Image, Actors, std::string, Actors>(&P::image, &P::inputActors, &P::mtsPath,
                                                       &P::outputActors);
}

TEST(stageFieldsTest, XMLReaderWriter)
{
    using P = kelAbstractProcessXMLReaderWriterPrivate;
    expectAdded<P, QDomDocument, std::string, Objects, Actors>(&P::document, &P::outputXML,
                                                               &P::physicalObjects, &P::actors);
}

TEST(stageFieldsTest, TheOthersHoldNothingOfTheirOwn)
{
    expectAdded<kelAbstractProcessDepthSegmentationPrivate>();
    expectAdded<kelAbstractProcessFakeTrackerPrivate>();
    expectAdded<kelAbstractProcessFeetDetectionPrivate>();
    expectAdded<kelAbstractProcessFrameToFrameTrackerPrivate>();
    expectAdded<kelAbstractProcessGroundDetectionPrivate>();
    expectAdded<kelAbstractProcessMessageSenderPrivate>();
}
