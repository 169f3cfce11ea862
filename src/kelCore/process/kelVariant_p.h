#ifndef KELCORE_KELVARIANT_P_H
#define KELCORE_KELVARIANT_P_H

/// \file
/// Where the versions of Qt differ on variants. Internal.

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

/// A null value of the type.
inline QVariant null(int type)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QVariant(QMetaType(type));
#else
    return QVariant(static_cast<QVariant::Type>(type));
#endif
}

} // namespace kelVariant

#endif
