#ifndef TESTS_SUPPORT_VIRTUALSLOT_H
#define TESTS_SUPPORT_VIRTUALSLOT_H

/// \file
/// Where a virtual operation stands in its class, by what the Itanium C++ ABI stores for an operation.
///
/// With the signature written out, as in `slot<bool(int)>(&Class::operation)`, the compiler checks it as well.

#include <cstddef>
#include <cstring>

/// The first word of a pointer to an operation: an address, which is even, or, for a virtual operation, its
/// place in the class's table in bytes, plus one.
template <class Signature, class Class> std::ptrdiff_t firstWord(Signature Class::*operation)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof operation == sizeof words, "a pointer to a member function is two words");
    std::memcpy(words, &operation, sizeof words);
    return words[0];
}

template <class Signature, class Class> bool isVirtual(Signature Class::*operation)
{
    return firstWord(operation) % 2 != 0;
}

/// Index of a virtual operation in its class's table.
template <class Signature, class Class> int slot(Signature Class::*operation)
{
    return static_cast<int>((firstWord(operation) - 1) / static_cast<std::ptrdiff_t>(sizeof(void *)));
}

#endif
