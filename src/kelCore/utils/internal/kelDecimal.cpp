#include <kelCore/utils/internal/kelDecimal.h>

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

/// A finite number other than 0 to six significant digits: `digits` (100000 to 999999) x 10^(exponent - 5).
struct SixDigits
{
    int digits = 0;
    int exponent = 0;
};

/// Rounds to nearest, ties away from zero, exactly; false outside 1e-16..1e26, roughly.
///
/// Up to 1e22 a power of ten is a double without error, so one multiplication or division scales the number
/// with one rounding. Such a rounding never carries a value across another double, and a tie, N + 1/2, is
/// one: only a result that is exactly N + 1/2 needs the remainder to tell on which side the number is.
bool toSixDigits(double number, SixDigits &result)
{
    static const double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (!(number > 1e-16 && number < 1e26))
        return false;
    std::uint64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    const int binary = static_cast<int>(bits >> 52) - 1023;
    int exponent = (binary * 1233) >> 12; // binary log10(2), rounded down: right, or one too small

    double power = 0;
    bool multiplied = true;
    const auto scaleTo = [&](int decimals) {
        multiplied = decimals >= 0;
        power = powers[multiplied ? decimals : -decimals];
        return multiplied ? number * power : number / power;
    };
    double scaled = scaleTo(5 - exponent);
    if (scaled >= 1e6)
        scaled = scaleTo(5 - ++exponent);

    int digits = static_cast<int>(scaled);
    const double half = scaled - digits - 0.5;
    if (half > 0
        || (half == 0
            && (multiplied ? std::fma(number, power, -scaled) : std::fma(-scaled, power, number)) >= 0))
        ++digits;
    if (digits == 1000000) {
        digits = 100000;
        ++exponent;
    }
    result = {digits, exponent};
    return true;
}

} // namespace

char *kelWriteDecimal(char *out, double number)
{
    SixDigits six;
    if (!toSixDigits(std::abs(number), six)) {
        const QByteArray text = QByteArray::number(number);
        return std::copy(text.begin(), text.end(), out);
    }
    if (std::signbit(number))
        *out++ = '-';

    char digits[6];
    for (int i = 5, rest = six.digits; i >= 0; --i, rest /= 10)
        digits[i] = static_cast<char>('0' + rest % 10);
    int used = 6;
    while (used > 1 && digits[used - 1] == '0')
        --used;

    const int e = six.exponent;
    const auto copy = [&](int from, int to) { out = std::copy(digits + from, digits + to, out); };
    if (e >= 0 && e < 6) {
        copy(0, e + 1);
        if (used > e + 1) {
            *out++ = '.';
            copy(e + 1, used);
        }
    } else if (e < 0 && e >= -4) {
        *out++ = '0';
        *out++ = '.';
        out = std::fill_n(out, -e - 1, '0');
        copy(0, used);
    } else {
        copy(0, 1);
        if (used > 1) {
            *out++ = '.';
            copy(1, used);
        }
        *out++ = 'e';
        *out++ = e < 0 ? '-' : '+';
        *out++ = static_cast<char>('0' + std::abs(e) / 10);
        *out++ = static_cast<char>('0' + std::abs(e) % 10);
    }
    return out;
}
