#ifndef KELCORE_KELNEARESTINT_H
#define KELCORE_KELNEARESTINT_H

/// \file
/// Numbers that no int may be able to hold.

#include <climits>
#include <cmath>

/// The nearest integer, ties to even; what no int can hold becomes the nearest one, not-a-number INT_MIN.
inline int kelNearestInt(double number)
{
    if (!(number > INT_MIN))
        return INT_MIN;
    return number < INT_MAX ? static_cast<int>(std::rint(number)) : INT_MAX;
}

#endif
