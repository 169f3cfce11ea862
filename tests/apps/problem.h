#ifndef TESTS_APPS_PROBLEM_H
#define TESTS_APPS_PROBLEM_H

/// \file
/// What a program would say of a failure.

#include "common/Failure.h"

#include <functional>

/// The line that `body` fails with; empty when it does not.
inline QString problem(const std::function<void()> &body)
{
    try {
        body();
    } catch (const Failure &failure) {
        return QString::fromUtf8(failure.what());
    }
    return QString();
}

#endif
