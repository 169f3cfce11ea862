#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelAbstractProcess_p.h>

#include <nubCore/nubNotice.h>

kelAbstractProcess::kelAbstractProcess() : kelAbstractProcess(*new kelAbstractProcessPrivate) { }

kelAbstractProcess::kelAbstractProcess(const kelAbstractProcess &other)
    : kelAbstractProcess(*new kelAbstractProcessPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcess::kelAbstractProcess(kelAbstractProcessPrivate &dd, QObject *parent)
    : nubAbstractProcess(dd, parent)
{ }

kelAbstractProcess::~kelAbstractProcess() = default;

kelAbstractProcess &kelAbstractProcess::operator=(const kelAbstractProcess &other)
{
    copy(other);
    return *this;
}

void kelAbstractProcess::setSynchronizer(const CSynchronizer &synchronizer)
{
    d_func()->synchronizer = synchronizer;
}

const CSynchronizer &kelAbstractProcess::getSynchronizer() const { return d_func()->synchronizer; }

const QVariantMap &kelAbstractProcess::getSpecificParameters() const { return d_func()->specificParameters; }

bool kelAbstractProcess::setSpecificParameters(const QVariantMap &parameters)
{
    nub::defaultNotice(this, "virtual bool kelAbstractProcess::setSpecificParameters(const QVariantMap&)");
    keepSpecificParameters(parameters);
    return true;
}

void kelAbstractProcess::keepSpecificParameters(const QVariantMap &parameters)
{
    d_func()->specificParameters = parameters;
}
