#include <kelCore/process/kelAbstractProcessEventRecognition.h>
#include <kelCore/process/kelAbstractProcessEventRecognition_p.h>

#include <nubCore/nubNotice.h>

#include <utility>

kelAbstractProcessEventRecognition::kelAbstractProcessEventRecognition()
    : kelAbstractProcess(*new kelAbstractProcessEventRecognitionPrivate)
{ }

kelAbstractProcessEventRecognition::kelAbstractProcessEventRecognition(
    const kelAbstractProcessEventRecognition &other)
    : kelAbstractProcess(*new kelAbstractProcessEventRecognitionPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessEventRecognition::kelAbstractProcessEventRecognition(
    kelAbstractProcessEventRecognitionPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessEventRecognition::~kelAbstractProcessEventRecognition() = default;

void kelAbstractProcessEventRecognition::setActors(ActorList actors) { d_func()->actors = std::move(actors); }

const ActorList &kelAbstractProcessEventRecognition::getActors() const { return d_func()->actors; }

EventList kelAbstractProcessEventRecognition::getCurrentFrameEvents() { return d_func()->events; }

void kelAbstractProcessEventRecognition::setCurrentFrameEvents(EventList events)
{
    d_func()->events = std::move(events);
}

EventList kelAbstractProcessEventRecognition::getAllFramesEvents() { return EventList(); }

void kelAbstractProcessEventRecognition::setParameterFile(const std::string &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessEventRecognition::setParameterFile(const string&)");
}

bool kelAbstractProcessEventRecognition::getParamSaveXML1File() { return true; }

std::string kelAbstractProcessEventRecognition::getParamXML1FileName() { return std::string(); }

void kelAbstractProcessEventRecognition::init() { }

void kelAbstractProcessEventRecognition::setCommonFilePath(const std::string &)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessEventRecognition::setCommonFilePath(const string&)");
}

std::string kelAbstractProcessEventRecognition::generateEventListStorageStream() { return std::string(); }

std::string kelAbstractProcessEventRecognition::generateEventListStreamToNotify() { return std::string(); }
