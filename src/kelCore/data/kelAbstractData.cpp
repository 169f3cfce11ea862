#include <kelCore/data/kelAbstractData.h>
#include <kelCore/data/kelAbstractData_p.h>

#include <nubCore/nubNotice.h>

kelAbstractData::kelAbstractData() : kelAbstractData(*new kelAbstractDataPrivate) { }

kelAbstractData::kelAbstractData(const kelAbstractData &other)
    : kelAbstractData(*new kelAbstractDataPrivate(*other.d_func()), other.parent())
{ }

kelAbstractData::kelAbstractData(kelAbstractDataPrivate &dd, QObject *parent)
    : nubAbstractData(dd, parent) { }

kelAbstractData::~kelAbstractData() = default;

kelAbstractData &kelAbstractData::operator=(const kelAbstractData &other)
{
    copy(other);
    return *this;
}

void kelAbstractData::copy(const nubAbstractObject &other)
{
    nubAbstractData::copy(other);
    nub::sameIdentifierOrWarn(*this, other);
}

QString kelAbstractData::identifier() const { return QStringLiteral("kelAbstractData"); }

bool kelAbstractData::read(const QString &)
{
    return nub::defaultBody<bool>(this, "virtual bool kelAbstractData::read(const QString&)");
}

bool kelAbstractData::write(const QString &)
{
    return nub::defaultBody<bool>(this, "virtual bool kelAbstractData::write(const QString&)");
}

bool kelAbstractData::setSpecificProperties(const QVariantMap &properties)
{
    nub::defaultNotice(this, "virtual bool kelAbstractData::setSpecificProperties(const QVariantMap&)");
    d_func()->specificProperties = properties;
    return true;
}

const QVariantMap &kelAbstractData::getSpecificProperties() const { return d_func()->specificProperties; }

void kelAbstractData::addSpecificProperty(const QString &key, const QVariant &value)
{
    d_func()->specificProperties.insert(key, value);
}

QVariantMap kelAbstractData::getMap() { return d_func()->map; }

bool kelAbstractData::setMap(QVariantMap &map)
{
    d_func()->map = map;
    return true;
}
