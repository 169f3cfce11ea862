#ifndef KELCORE_KELNUMBERTEXT_H
#define KELCORE_KELNUMBERTEXT_H

/// \file
/// Numbers as the RGB-D view writes them, the same in every locale.

class QString;

namespace kelNumberText {

/// As `printf` writes it with "%f" in the C locale: six decimals, exact ties to even, "-0.000000", "inf", "-nan".
QString sixDecimals(double number);

/// Rounded down to hundredths, with two decimals; what has none is as `sixDecimals` writes it.
QString hundredths(double number);

/// Millimetres in whole centimetres, cut.
QString centimetres(float millimetres);

} // namespace kelNumberText

#endif
