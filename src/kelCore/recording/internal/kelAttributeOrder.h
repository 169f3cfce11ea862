#ifndef KELCORE_KELATTRIBUTEORDER_H
#define KELCORE_KELATTRIBUTEORDER_H

/// \file
/// The order of attributes in a document. Internal.

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace kelDataFlow {

/// Attributes of the format, in the order in which they are written.
inline constexpr std::array<std::string_view, 14> attributeOrder{
    "frameNumber", // Frame
    "file", // Parameters
    "frameID",     "timeYear", "timeMonth", "timeDay",
    "timeHour",    "timeMin",  "timeSec",   "timeMs", // Synchronization
    "dataType", // Data
    "key",         "type",     "value", // entry
};

/// Sorts attributes as they are written: those of the format first, others behind them by name.
inline std::pair<size_t, std::string_view> attributeRank(std::string_view name)
{
    const auto found = std::find(attributeOrder.begin(), attributeOrder.end(), name);
    return {static_cast<size_t>(found - attributeOrder.begin()), name};
}

} // namespace kelDataFlow

#endif
