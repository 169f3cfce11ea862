#ifndef KELCORE_KELDECIMAL_H
#define KELCORE_KELDECIMAL_H

/// \file
/// The decimal text of a number. Internal.

#include <cstddef>

constexpr std::size_t kelLongestDecimal = 16; ///< Characters; -1.23457e-308 takes 13 of them.

/// Writes the number as `QString::number` does, to six significant digits, at a fraction of its cost. The
/// result is the end of the text.
char *kelWriteDecimal(char *out, double number);

#endif
