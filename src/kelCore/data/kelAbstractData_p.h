#ifndef KELCORE_KELABSTRACTDATA_P_H
#define KELCORE_KELABSTRACTDATA_P_H

/// \file
/// State of kelAbstractData. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractData.h>
#include <nubCore/nubAbstractData_p.h>

class KELCORE_EXPORT kelAbstractDataPrivate : public nubAbstractDataPrivate
{
public:
    kelAbstractDataPrivate() = default;
    /// `map` stays behind: a copy has been recorded nowhere yet.
    kelAbstractDataPrivate(const kelAbstractDataPrivate &other)
        : nubAbstractDataPrivate(other), specificProperties(other.specificProperties)
    { }

    QVariantMap specificProperties;
    QVariantMap map; ///< What the recording stores of the object.
};

#endif
