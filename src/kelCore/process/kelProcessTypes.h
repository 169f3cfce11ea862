#ifndef KELCORE_KELPROCESSTYPES_H
#define KELCORE_KELPROCESSTYPES_H

/// \file
/// The lists that stages hand on.

#include <QSharedPointer>

#include <list>

class kelDataActor;
class kelDataEvent;
class kelDataPhysicalObject;

/// Physical objects by value: code that builds or copies such a list includes kelDataPhysicalObject.h.
///
/// Assigning to a list that is not empty assigns object by object, and each assignment of a physical object
/// prints a line to standard output; `clear`, then append, or swap.
using PhysicalObjs = std::list<kelDataPhysicalObject>;

/// Actors to look at: shared with the stage that made them, and not to be changed.
using ActorList = std::list<QSharedPointer<const kelDataActor>>;

using EventList = std::list<QSharedPointer<kelDataEvent>>;

#endif
