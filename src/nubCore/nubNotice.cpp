#include <nubCore/nubNotice.h>

#include <nubLog/nubLog.h>

void nub::defaultNotice(const nubAbstractObject *object, const char *signature)
{
    nub::log(nub::DefaultNotice, "Using default implementation of", signature, "for",
             object->metaObject()->className());
}

void nub::warnSlicing()
{
    nub::log(nub::Warning, "Other is not of same type than this, slicing is occuring.");
}

bool nub::sameIdentifierOrWarn(const nubAbstractObject &self, const nubAbstractObject &other)
{
    const bool same = self.identifier() == other.identifier();
    if (!same)
        warnSlicing();
    return same;
}
