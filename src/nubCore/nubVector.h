#ifndef NUBCORE_NUBVECTOR_H
#define NUBCORE_NUBVECTOR_H

/// \file
/// The framework's name for a growable array.

#include <vector>

template <class T> using nubVector = std::vector<T>;

#endif
