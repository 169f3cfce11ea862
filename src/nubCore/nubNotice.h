#ifndef NUBCORE_NUBNOTICE_H
#define NUBCORE_NUBNOTICE_H

/// \file
/// What every class of the object model says in the same words: that a default body ran, and that a copy
/// between unlike classes was cut down to what they share.

#include <nubCore/nubAbstractObject.h>

namespace nub {

/// Logs, at level 1, that the default body of the operation `signature` ran for `object`, naming the object's
/// most-derived meta-object class.
NUBCORE_EXPORT void defaultNotice(const nubAbstractObject *object, const char *signature);

/// The whole body of an operation that subclasses are expected to supply: the notice, then an empty result
/// (false, 0, an empty string or container, nothing for void).
///
/// Signatures are literals because compilers print them differently.
template <class Result = void> Result defaultBody(const nubAbstractObject *object, const char *signature)
{
    defaultNotice(object, signature);
    return Result();
}

/// Logs the slicing warning at level 17.
NUBCORE_EXPORT void warnSlicing();

/// Whether the two have equal identifiers, which is what `copy` goes by; the slicing warning otherwise.
NUBCORE_EXPORT bool sameIdentifierOrWarn(const nubAbstractObject &self, const nubAbstractObject &other);

/// `other` as a `Class` when it is of the same kind as `self`, that is, when their identifiers are equal;
/// null otherwise. A foreign class that reuses an identifier is not of the same kind.
template <class Class> const Class *sameKind(const nubAbstractObject &self, const nubAbstractObject &other)
{
    return self.identifier() == other.identifier() ? dynamic_cast<const Class *>(&other) : nullptr;
}

/// The same, with the slicing warning when `other` is of another kind.
template <class Class>
const Class *sameKindOrWarn(const nubAbstractObject &self, const nubAbstractObject &other)
{
    const Class *same = sameKind<Class>(self, other);
    if (!same)
        warnSlicing();
    return same;
}

} // namespace nub

#endif
