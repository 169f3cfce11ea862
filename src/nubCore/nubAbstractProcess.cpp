#include <nubCore/nubAbstractProcess.h>
#include <nubCore/nubAbstractProcess_p.h>

nubAbstractProcess::nubAbstractProcess(nubAbstractProcess *parent)
    : nubAbstractObject(*new nubAbstractProcessPrivate, parent)
{ }

nubAbstractProcess::nubAbstractProcess(const nubAbstractProcess &other)
    : nubAbstractObject(*new nubAbstractProcessPrivate(*other.d_func()), other.parent())
{ }

nubAbstractProcess::nubAbstractProcess(nubAbstractProcessPrivate &dd, QObject *parent)
    : nubAbstractObject(dd, parent)
{ }

nubAbstractProcess::~nubAbstractProcess() = default;

nubAbstractProcess &nubAbstractProcess::operator=(const nubAbstractProcess &other)
{
    copy(other);
    return *this;
}

int nubAbstractProcess::update() { return 0; }
void nubAbstractProcess::onCanceled() { }
bool nubAbstractProcess::read(const QString &) { return false; }
bool nubAbstractProcess::read(const QStringList &) { return false; }
bool nubAbstractProcess::write(const QString &) { return false; }
bool nubAbstractProcess::write(const QStringList &) { return false; }
void nubAbstractProcess::setParameter(int) { }
void nubAbstractProcess::setParameter(int, int) { }
void nubAbstractProcess::setParameter(int, int, int) { }
void nubAbstractProcess::setParameter(int *) { }
void nubAbstractProcess::setParameter(int *, int) { }
void nubAbstractProcess::setParameter(int *, int, int) { }
void nubAbstractProcess::setParameter(long long) { }
void nubAbstractProcess::setParameter(long long, int) { }
void nubAbstractProcess::setParameter(long long, int, int) { }
void nubAbstractProcess::setParameter(long long *) { }
void nubAbstractProcess::setParameter(long long *, int) { }
void nubAbstractProcess::setParameter(long long *, int, int) { }
void nubAbstractProcess::setParameter(double) { }
void nubAbstractProcess::setParameter(double, int) { }
void nubAbstractProcess::setParameter(double, int, int) { }
void nubAbstractProcess::setParameter(double *, int) { }
void nubAbstractProcess::setParameter(double *, int, int) { }
void nubAbstractProcess::setParameter(double *, int, int, int) { }
void nubAbstractProcess::setParameter(nubAbstractObject *) { }
void nubAbstractProcess::setParameter(nubAbstractObject *, int) { }
void nubAbstractProcess::setParameter(nubAbstractObject *, int, int) { }
void nubAbstractProcess::setInput(nubAbstractData *) { }
void nubAbstractProcess::setInput(nubAbstractData *, int) { }
void nubAbstractProcess::setInput(nubAbstractData *, int, int) { }
void nubAbstractProcess::setData(void *) { }
void nubAbstractProcess::setData(void *, int) { }
void nubAbstractProcess::setData(void *, int, int) { }
nubAbstractData *nubAbstractProcess::output() { return nullptr; }
nubAbstractData *nubAbstractProcess::output(int) { return nullptr; }
nubAbstractData *nubAbstractProcess::output(int, int) { return nullptr; }
void *nubAbstractProcess::data() { return nullptr; }
void *nubAbstractProcess::data(int) { return nullptr; }
void *nubAbstractProcess::data(int, int) { return nullptr; }
int nubAbstractProcess::channelCount() { return 0; }
