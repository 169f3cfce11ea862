#include <kelCore/geometry/internal/kelNameFilter.h>

#include <algorithm>

kelNameFilter::kelNameFilter(const std::string &list)
{
    const char separators[] = ", ";
    for (std::size_t start = 0; start < list.size();) {
        const std::size_t end = std::min(list.find_first_of(separators, start), list.size());
        if (end > start)
            ++m_left[list.substr(start, end - start)];
        start = end + 1;
    }
}

bool kelNameFilter::takes(const std::string &name)
{
    if (m_left.empty())
        return false;
    const auto left = m_left.find(name);
    if (left == m_left.end() || left->second == 0)
        return false;
    --left->second;
    return true;
}
