#include <kelCore/process/kelAbstractProcessMessageSender.h>
#include <kelCore/process/kelAbstractProcessMessageSender_p.h>

#include <nubCore/nubNotice.h>

kelAbstractProcessMessageSender::kelAbstractProcessMessageSender()
    : kelAbstractProcess(*new kelAbstractProcessMessageSenderPrivate)
{ }

kelAbstractProcessMessageSender::kelAbstractProcessMessageSender(const kelAbstractProcessMessageSender &other)
    : kelAbstractProcess(*new kelAbstractProcessMessageSenderPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessMessageSender::kelAbstractProcessMessageSender(kelAbstractProcessMessageSenderPrivate &dd,
                                                                 QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessMessageSender::~kelAbstractProcessMessageSender() = default;

kelAbstractProcessMessageSender *kelAbstractProcessMessageSender::clone()
{
    return new kelAbstractProcessMessageSender(*this);
}

void kelAbstractProcessMessageSender::copy(const nubAbstractObject &other)
{
    kelAbstractProcess::copy(other);
    nub::sameIdentifierOrWarn(*this, other);
}

QString kelAbstractProcessMessageSender::identifier() const
{
    return QStringLiteral("kelAbstractProcessMessageSender");
}

bool kelAbstractProcessMessageSender::setParameterFile(std::string)
{
    return nub::defaultBody<bool>(
        this, "virtual bool kelAbstractProcessMessageSender::setParameterFile(std::string)");
}

void kelAbstractProcessMessageSender::sendMsg(std::string)
{
    nub::defaultBody(this, "virtual void kelAbstractProcessMessageSender::sendMsg(std::string)");
}
