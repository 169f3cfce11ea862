#ifndef NUBCORE_NUBABSTRACTOBJECT_P_H
#define NUBCORE_NUBABSTRACTOBJECT_P_H

/// \file
/// State of nubAbstractObject. Installed for code that derives from it; not part of the stable interface.

#include <nubCore/nubAbstractObject.h>

#include <QHash>
#include <QStringList>

/// A private class needs no constructor: the public root sets the back pointer. One that carries less than
/// everything into a copy says so in its copy constructor.
class NUBCORE_EXPORT nubAbstractObjectPrivate
{
public:
    nubAbstractObjectPrivate() = default;
    /// The copy gets its owner from the root constructor and starts with a retain count of its own.
    nubAbstractObjectPrivate(const nubAbstractObjectPrivate &other);
    nubAbstractObjectPrivate &operator=(const nubAbstractObjectPrivate &) = delete;
    virtual ~nubAbstractObjectPrivate();

    nubAbstractObject *q_ptr = nullptr;
    mutable int retainCount = 0;
    // Named tables for derived classes; nothing here reads them, copies carry them.
    QHash<QString, QStringList> values;
    QHash<QString, QString> properties;
    QHash<QString, QStringList> metaData;
    bool deferredDeletion = false; ///< `release` deletes through the event loop instead of at once.
};

#endif
