#ifndef KELCORE_KELVARIANT_H
#define KELCORE_KELVARIANT_H

/// \file
/// Where the versions of Qt differ on variants and their types. Internal.

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QMetaType>
#include <QVariant>

namespace kelVariant {

/// True when a stream takes the value. Where it does not, Qt writes the type and leaves the value out.
inline bool hasStreamOperators(const QVariant &value)
{
    if (!value.isValid())
        return true;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return value.metaType().hasRegisteredDataStreamOperators();
#else
    QByteArray bytes;
    QDataStream trial(&bytes, QIODevice::WriteOnly);
    return QMetaType::save(trial, value.userType(), value.constData());
#endif
}

/// The flag that Qt records with a value: whether the variant was made without one. `isNull` is another
/// question under Qt 5, where a point at the origin is null as well.
inline bool nullFlag(const QVariant &value) { return value.data_ptr().is_null; }

/// The number of the type of that name; 0 for none.
inline int typeNamed(const QByteArray &name)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QMetaType::fromName(QByteArray(name.constData())).id();
#else
    return QMetaType::type(name.constData());
#endif
}

/// A value that holds another one.
inline QVariant holding(const QVariant &inner)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QVariant(QMetaType(QMetaType::QVariant), &inner);
#else
    return QVariant(int(QMetaType::QVariant), &inner);
#endif
}

/// Reads a value of the type with the type's own stream operator; false when it has none.
inline bool load(QDataStream &in, int type, bool isNull, QVariant &value)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    value = QVariant(QMetaType(type));
    if (!value.constData())
        return false;
    return QMetaType(type).load(in, isNull ? const_cast<void *>(value.constData()) : value.data());
#else
    value = isNull ? QVariant(static_cast<QVariant::Type>(type)) : QVariant(type, nullptr);
    return value.isValid() && QMetaType::load(in, type, const_cast<void *>(value.constData()));
#endif
}

} // namespace kelVariant

#endif
