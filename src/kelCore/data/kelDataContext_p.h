#ifndef KELCORE_KELDATACONTEXT_P_H
#define KELCORE_KELDATACONTEXT_P_H

/// \file
/// State of kelDataContext. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataContext.h>

class KELCORE_EXPORT kelDataContextPrivate : public kelAbstractDataPrivate
{
public:
    /// The elements themselves, for the library's own loops: `getContext` copies them all.
    static const std::list<ContextElement> &elementsOf(const kelDataContext &context)
    {
        return context.d_func()->elements;
    }

    std::list<ContextElement> elements; ///< In file order.
    std::string referentialName = "Default"; ///< Nothing changes it.
};

#endif
