#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataEvent_p.h>

#include <nubCore/nubNotice.h>

#include <utility>

kelDataEvent::kelDataEvent() : kelDataEvent(*new kelDataEventPrivate) { }

kelDataEvent::kelDataEvent(const kelDataEvent &other)
    : kelDataEvent(*new kelDataEventPrivate(*other.d_func()), other.parent())
{ }

kelDataEvent::kelDataEvent(kelDataEventPrivate &dd, QObject *parent) : kelAbstractData(dd, parent) { }

kelDataEvent::~kelDataEvent() = default;

kelDataEvent &kelDataEvent::operator=(const kelDataEvent &other)
{
    copy(other);
    return *this;
}

kelDataEvent *kelDataEvent::clone() { return new kelDataEvent(*this); }

void kelDataEvent::copy(const nubAbstractObject &other)
{
    kelAbstractData::copy(other);
    const auto *event = nub::sameKindOrWarn<kelDataEvent>(*this, other);
    if (!event)
        return;

    setSEDAlarmLevel(event->getSEDAlarmLevel());
    setSEDBegin(event->getSEDBegin());
    setSEDConfidence(event->getSEDConfidence());
    setSEDDuration(event->getSEDDuration());
    setSEDEnd(event->getSEDEnd());
    setSEDId(event->getSEDId());
    setSEDLatency(event->getSEDLatency());
    setSEDName(event->getSEDName());
    setSEDType(event->getSEDType());
    setInvolvedActorId(event->getInvolvedActorId());
}

QString kelDataEvent::identifier() const { return QStringLiteral("kelDataEvent"); }

std::string kelDataEvent::getSEDAlarmLevel() const { return d_func()->SEDAlarmLevel; }
void kelDataEvent::setSEDAlarmLevel(std::string level) { d_func()->SEDAlarmLevel = std::move(level); }

const CSynchronizer &kelDataEvent::getSEDBegin() const { return d_func()->SEDBegin; }
void kelDataEvent::setSEDBegin(const CSynchronizer &begin) { d_func()->SEDBegin = begin; }

double kelDataEvent::getSEDConfidence() const { return d_func()->SEDConfidence; }
void kelDataEvent::setSEDConfidence(double confidence) { d_func()->SEDConfidence = confidence; }

double kelDataEvent::getSEDDuration() const { return d_func()->SEDDuration; }
void kelDataEvent::setSEDDuration(double duration) { d_func()->SEDDuration = duration; }

const CSynchronizer &kelDataEvent::getSEDEnd() const { return d_func()->SEDEnd; }
void kelDataEvent::setSEDEnd(const CSynchronizer &end) { d_func()->SEDEnd = end; }

unsigned int kelDataEvent::getSEDId() const { return d_func()->SEDId; }
void kelDataEvent::setSEDId(unsigned int id) { d_func()->SEDId = id; }

double kelDataEvent::getSEDLatency() const { return d_func()->SEDLatency; }
void kelDataEvent::setSEDLatency(double latency) { d_func()->SEDLatency = latency; }

std::string kelDataEvent::getSEDName() const { return d_func()->SEDName; }
void kelDataEvent::setSEDName(std::string name) { d_func()->SEDName = std::move(name); }

std::string kelDataEvent::getSEDType() const { return d_func()->SEDType; }
void kelDataEvent::setSEDType(std::string type) { d_func()->SEDType = std::move(type); }

int kelDataEvent::getInvolvedActorId() const { return d_func()->involvedActorId; }
void kelDataEvent::setInvolvedActorId(int id) { d_func()->involvedActorId = id; }
