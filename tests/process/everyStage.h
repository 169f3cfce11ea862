#ifndef TESTS_PROCESS_EVERYSTAGE_H
#define TESTS_PROCESS_EVERYSTAGE_H

/// \file
/// One stage of each kind, as a plug-in derives it: it supplies what it must and overrides nothing else.

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

// The constructors that take a private object are inherited: stages with one of their own derive from these.
namespace stage {

class Acquisition : public kelAbstractProcessAcquisition
{
    Q_OBJECT

public:
    using kelAbstractProcessAcquisition::kelAbstractProcessAcquisition;
};

class Segmentation : public kelAbstractProcessSegmentation
{
    Q_OBJECT

public:
    using kelAbstractProcessSegmentation::kelAbstractProcessSegmentation;
    bool segment() override { return true; }
};

class BlobsGeneration : public kelAbstractProcessBlobsGeneration
{
    Q_OBJECT

public:
    using kelAbstractProcessBlobsGeneration::kelAbstractProcessBlobsGeneration;
    bool generateBlobs() override { return true; }
};

class Classifier : public kelAbstractProcessClassifier
{
    Q_OBJECT

public:
    using kelAbstractProcessClassifier::kelAbstractProcessClassifier;
    bool classify() override { return true; }
};

class DepthSegmentation : public kelAbstractProcessDepthSegmentation
{
    Q_OBJECT

public:
    using kelAbstractProcessDepthSegmentation::kelAbstractProcessDepthSegmentation;
};

class FakeTracker : public kelAbstractProcessFakeTracker
{
    Q_OBJECT

public:
    using kelAbstractProcessFakeTracker::kelAbstractProcessFakeTracker;
};

class FeetDetection : public kelAbstractProcessFeetDetection
{
    Q_OBJECT

public:
    using kelAbstractProcessFeetDetection::kelAbstractProcessFeetDetection;
};

class GroundDetection : public kelAbstractProcessGroundDetection
{
    Q_OBJECT

public:
    using kelAbstractProcessGroundDetection::kelAbstractProcessGroundDetection;
};

class EventRecognition : public kelAbstractProcessEventRecognition
{
    Q_OBJECT

public:
    using kelAbstractProcessEventRecognition::kelAbstractProcessEventRecognition;
    bool recognizeEvents() override { return true; }
};

class JsonGenerator : public kelAbstractProcessJsonGenerator
{
    Q_OBJECT

public:
    using kelAbstractProcessJsonGenerator::kelAbstractProcessJsonGenerator;
};

class MessageSender : public kelAbstractProcessMessageSender
{
    Q_OBJECT

public:
    using kelAbstractProcessMessageSender::kelAbstractProcessMessageSender;
};

class PeopleDetector : public kelAbstractProcessPeopleDetector
{
    Q_OBJECT

public:
    using kelAbstractProcessPeopleDetector::kelAbstractProcessPeopleDetector;
    void setImage(const kelDataImage &) override { }
    bool detectPeople(PhysicalObjs &) override { return true; }
};

class FrameToFrameTracker : public kelAbstractProcessFrameToFrameTracker
{
    Q_OBJECT

public:
    using kelAbstractProcessFrameToFrameTracker::kelAbstractProcessFrameToFrameTracker;
    void setPhysicalObjects(const PhysicalObjs &) override { }
    bool track() override { return true; }
    QList<QSharedPointer<kelDataActor>> getActors() override { return {}; }
};

class GroupTracker : public kelAbstractProcessGroupTracker
{
    Q_OBJECT

public:
    using kelAbstractProcessGroupTracker::kelAbstractProcessGroupTracker;
    bool init() override { return true; }
    bool trackGroups() override { return true; }
};

class ReAcquisition : public kelAbstractProcessReAcquisition
{
    Q_OBJECT

public:
    using kelAbstractProcessReAcquisition::kelAbstractProcessReAcquisition;
    bool reAcquire() override { return true; }
};

class XMLReaderWriter : public kelAbstractProcessXMLReaderWriter
{
    Q_OBJECT

public:
    using kelAbstractProcessXMLReaderWriter::kelAbstractProcessXMLReaderWriter;
    bool parsePhysicalObjects() override { return true; }
    bool parseActors() override { return true; }
    bool writePhysicalObjects() override { return true; }
    bool writeActors() override { return true; }
};

} // namespace stage

#endif
