#ifndef TESTS_SUPPORT_VIRTUALSLOT_H
#define TESTS_SUPPORT_VIRTUALSLOT_H

/// \file
/// Where a virtual operation stands in its class.

#include <cstddef>
#include <cstring>

/// Index of a virtual operation in its class's table, as the Itanium C++ ABI numbers it.
template <class Signature, class Class> int slot(Signature Class::*operation)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof operation == sizeof words, "a pointer to a member function is two words");
    std::memcpy(words, &operation, sizeof words);
    return static_cast<int>((words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void *)));
}

#endif
