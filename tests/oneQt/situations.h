#ifndef TESTS_ONEQT_SITUATIONS_H
#define TESTS_ONEQT_SITUATIONS_H

/// \file
/// What a test lets a process of its own do, which runs this program with the name as its argument.

#include <vector>

struct Situation
{
    const char *name;
    bool (*run)(int &argc, char **argv);
};

const std::vector<Situation> &situations();

#endif
