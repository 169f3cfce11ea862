#include <nubCore/nubAbstractData.h>
#include <nubCore/nubAbstractData_p.h>

nubAbstractData::nubAbstractData(nubAbstractData *parent)
    : nubAbstractObject(*new nubAbstractDataPrivate, parent)
{ }

nubAbstractData::nubAbstractData(const nubAbstractData &other)
    : nubAbstractObject(*new nubAbstractDataPrivate(*other.d_func()), other.parent())
{ }

nubAbstractData::nubAbstractData(nubAbstractDataPrivate &dd, QObject *parent) : nubAbstractObject(dd, parent)
{ }

nubAbstractData::~nubAbstractData() = default;

nubAbstractData &nubAbstractData::operator=(const nubAbstractData &other)
{
    copy(other);
    return *this;
}

void nubAbstractData::copy(const nubAbstractObject &other)
{
    nubAbstractObject::copy(other);
    const auto *data = dynamic_cast<const nubAbstractData *>(&other);
    if (!data)
        return;
    Q_D(nubAbstractData);
    const nubAbstractDataPrivate *from = data->d_func();
    d->readers = from->readers;
    d->writers = from->writers;
    d->converters = from->converters;
    d->serializers = from->serializers;
    d->deserializers = from->deserializers;
    d->path = from->path;
    d->paths = from->paths;
    d->channelCount = from->channelCount;
    d->thumbnails = from->thumbnails;
}

void nubAbstractData::draw() { }
bool nubAbstractData::read(const QString &) { return false; }
bool nubAbstractData::read(const QStringList &) { return false; }
bool nubAbstractData::write(const QString &) { return false; }
bool nubAbstractData::write(const QStringList &) { return false; }
nubAbstractData *nubAbstractData::convert(const QString &) { return nullptr; }
QByteArray nubAbstractData::serialize() { return QByteArray(); }
bool nubAbstractData::deserialize(const QByteArray &) { return false; }
nubAbstractData *nubAbstractData::output() { return nullptr; }
nubAbstractData *nubAbstractData::output(int) { return nullptr; }
void *nubAbstractData::data() { return nullptr; }
void *nubAbstractData::data(int) { return nullptr; }
void *nubAbstractData::parameter(int) { return nullptr; }
int nubAbstractData::numberOfChannels() { return 0; }
void nubAbstractData::setParameter(int) { }
void nubAbstractData::setParameter(int, int) { }
void nubAbstractData::setParameter(long long) { }
void nubAbstractData::setParameter(long long, int) { }
void nubAbstractData::setParameter(float) { }
void nubAbstractData::setParameter(float, int) { }
void nubAbstractData::setParameter(double) { }
void nubAbstractData::setParameter(double, int) { }
void nubAbstractData::setParameter(const QString &) { }
void nubAbstractData::setParameter(const QString &, int) { }
void nubAbstractData::setParameter(nubAbstractData *) { }
void nubAbstractData::setParameter(nubAbstractData *, int) { }
void nubAbstractData::setParameter(const nubVector<double> &) { }
void nubAbstractData::setParameter(const nubVector<double> &, int) { }
void nubAbstractData::setData(void *) { }
void nubAbstractData::setData(void *, int) { }
void nubAbstractData::setNumberOfChannels(int) { }
void nubAbstractData::update() { }
QImage nubAbstractData::thumbnail() { return QImage(); }
QList<QImage> nubAbstractData::thumbnails() { return QList<QImage>(); }
QVariant nubAbstractData::toVariant(nubAbstractData *) { return QVariant(); }
nubAbstractData *nubAbstractData::fromVariant(const QVariant &) { return nullptr; }
