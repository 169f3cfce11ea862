#include <kelCore/process/kelAbstractProcessJsonGenerator.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator_p.h>

#include <nubCore/nubNotice.h>

#include <utility>

kelAbstractProcessJsonGenerator::kelAbstractProcessJsonGenerator()
    : kelAbstractProcess(*new kelAbstractProcessJsonGeneratorPrivate)
{ }

kelAbstractProcessJsonGenerator::kelAbstractProcessJsonGenerator(const kelAbstractProcessJsonGenerator &other)
    : kelAbstractProcess(*new kelAbstractProcessJsonGeneratorPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessJsonGenerator::kelAbstractProcessJsonGenerator(kelAbstractProcessJsonGeneratorPrivate &dd,
                                                                 QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessJsonGenerator::~kelAbstractProcessJsonGenerator() = default;

kelAbstractProcessJsonGenerator *kelAbstractProcessJsonGenerator::clone()
{
    return new kelAbstractProcessJsonGenerator(*this);
}

void kelAbstractProcessJsonGenerator::copy(const nubAbstractObject &other)
{
    kelAbstractProcess::copy(other);
    nub::sameIdentifierOrWarn(*this, other);
}

QString kelAbstractProcessJsonGenerator::identifier() const
{
    return QStringLiteral("kelAbstractProcessJsonGenerator");
}

void kelAbstractProcessJsonGenerator::setActors(ActorList)
{
    nub::defaultBody(this,
                     "virtual void kelAbstractProcessJsonGenerator::setActors(std::list<QSharedPointer<const "
                     "kelDataActor> >)");
}

void kelAbstractProcessJsonGenerator::setEvents(EventList)
{
    nub::defaultBody(
        this,
        "virtual void kelAbstractProcessJsonGenerator::setEvents(std::list<QSharedPointer<kelDataEvent> >)");
}

void kelAbstractProcessJsonGenerator::setFrameNumber(int)
{
    nub::defaultBody(this, "virtual void kelAbstractProcessJsonGenerator::setFrameNumber(int)");
}

void kelAbstractProcessJsonGenerator::setTimestamp(qint64)
{
    nub::defaultBody(this, "virtual void kelAbstractProcessJsonGenerator::setTimestamp(qint64)");
}

std::string kelAbstractProcessJsonGenerator::generateJsonString()
{
    return nub::defaultBody<std::string>(
        this, "virtual std::string kelAbstractProcessJsonGenerator::generateJsonString()");
}

const ActorList &kelAbstractProcessJsonGenerator::getActors() const { return d_func()->actors; }

const EventList &kelAbstractProcessJsonGenerator::getEvents() const { return d_func()->events; }

void kelAbstractProcessJsonGenerator::keepActors(ActorList actors) { d_func()->actors = std::move(actors); }

void kelAbstractProcessJsonGenerator::keepEvents(EventList events) { d_func()->events = std::move(events); }
