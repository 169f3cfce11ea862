#include <kelCore/process/kelAbstractProcessJsonGenerator.h>
#include <kelCore/process/kelAbstractProcessJsonGenerator_p.h>

#include <nubCore/nubNotice.h>

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

kelAbstractProcessJsonGenerator &
kelAbstractProcessJsonGenerator::operator=(const kelAbstractProcessJsonGenerator &other)
{
    copy(other);
    return *this;
}

kelAbstractProcessJsonGenerator *kelAbstractProcessJsonGenerator::clone()
{
    return new kelAbstractProcessJsonGenerator(*this);
}

void kelAbstractProcessJsonGenerator::copy(const nubAbstractObject &other)
{
    kelAbstractProcess::copy(other);
    if (other.identifier() != identifier())
        nub::warnSlicing();
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
