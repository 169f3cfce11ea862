#include <nubCore/nubAbstractObject.h>
#include <nubCore/nubAbstractObject_p.h>

nubAbstractObjectPrivate::nubAbstractObjectPrivate(const nubAbstractObjectPrivate &other)
    : values(other.values), properties(other.properties), metaData(other.metaData),
      deferredDeletion(other.deferredDeletion)
{ }

nubAbstractObjectPrivate::~nubAbstractObjectPrivate() = default;

nubAbstractObject::nubAbstractObject(nubAbstractObject *parent)
    : nubAbstractObject(*new nubAbstractObjectPrivate, parent)
{ }

nubAbstractObject::nubAbstractObject(const nubAbstractObject &other)
    : nubAbstractObject(*new nubAbstractObjectPrivate(*other.d_func()), other.parent())
{ }

nubAbstractObject::nubAbstractObject(nubAbstractObjectPrivate &dd, QObject *parent)
    : QObject(parent), nub_d(&dd)
{
    dd.q_ptr = this;
}

nubAbstractObject::~nubAbstractObject() = default;

nubAbstractObject &nubAbstractObject::operator=(const nubAbstractObject &other)
{
    copy(other);
    return *this;
}

nubAbstractObject *nubAbstractObject::clone() { return nullptr; }

void nubAbstractObject::copy(const nubAbstractObject &other)
{
    Q_D(nubAbstractObject);
    d->values = other.d_func()->values;
    d->properties = other.d_func()->properties;
    d->metaData = other.d_func()->metaData;
    d->deferredDeletion = other.d_func()->deferredDeletion;
}

bool nubAbstractObject::isEqual(const nubAbstractObject &other) const { return this == &other; }

QString nubAbstractObject::description() const { return QString(); }

QString nubAbstractObject::identifier() const { return QString::fromLatin1(metaObject()->className()); }

QString nubAbstractObject::name() const { return objectName(); }

void nubAbstractObject::onPropertySet(const QString &, const QString &) { }

void nubAbstractObject::onMetaDataSet(const QString &, const QString &) { }

int nubAbstractObject::retain() const { return ++d_func()->retainCount; }

int nubAbstractObject::release() const
{
    const nubAbstractObjectPrivate *d = d_func();
    if (d->retainCount == 0)
        return 0;
    const int left = --d->retainCount;
    if (left == 0) {
        if (d->deferredDeletion)
            const_cast<nubAbstractObject *>(this)->deleteLater();
        else
            delete this;
    }
    return left;
}
