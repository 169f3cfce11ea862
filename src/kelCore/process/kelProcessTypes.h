#ifndef KELCORE_KELPROCESSTYPES_H
#define KELCORE_KELPROCESSTYPES_H

/// \file
/// The lists that stages hand on.

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include <QSharedPointer>

#include <list>

/// Physical objects by value.
///
/// Assigning to a list that is not empty assigns object by object, and each assignment of a physical object
/// prints a line to standard output; `clear`, then append, or swap.
using PhysicalObjs = std::list<kelDataPhysicalObject>;

/// Actors to look at: shared with the stage that made them, and not to be changed.
using ActorList = std::list<QSharedPointer<const kelDataActor>>;

/// Events, shared: of one frame or of a whole run.
using EventList = std::list<QSharedPointer<kelDataEvent>>;

#endif
