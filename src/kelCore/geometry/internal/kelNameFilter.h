#ifndef KELCORE_KELNAMEFILTER_H
#define KELCORE_KELNAMEFILTER_H

/// \file
/// A list of names to leave out. Internal.

#include <string>
#include <unordered_map>

/// Names separated by commas, blanks or both. Each name of the list leaves out the first thing that has it and
/// was not left out yet: one listed twice leaves out two. Names are compared byte by byte.
class kelNameFilter
{
public:
    explicit kelNameFilter(const std::string &list);

    /// Whether the next thing, of that name, is left out.
    bool takes(const std::string &name);

private:
    std::unordered_map<std::string, int> m_left;
};

#endif
