#ifndef KELCORE_KELABSTRACTPROCESSJSONGENERATOR_P_H
#define KELCORE_KELABSTRACTPROCESSJSONGENERATOR_P_H

/// \file
/// State of kelAbstractProcessJsonGenerator. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessJsonGenerator.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessJsonGeneratorPrivate : public kelAbstractProcessPrivate
{
public:
    kelAbstractProcessJsonGeneratorPrivate() = default;
    /// Leaves both lists behind.
    kelAbstractProcessJsonGeneratorPrivate(const kelAbstractProcessJsonGeneratorPrivate &other)
        : kelAbstractProcessPrivate(other)
    { }

    ActorList actors; ///< Input: what `keepActors` was given.
    EventList events; ///< Input: what `keepEvents` was given.
};

#endif
