#include <kelCore/view/internal/kelNumberText.h>

#include <kelCore/view/internal/kelNearestInt.h>

#include <QString>

#include <charconv>
#include <cmath>
#include <limits>

QString kelNumberText::sixDecimals(double number)
{
    // QString::number rounds exact ties up, and has no negative zero.
    constexpr int decimals = 6;
    char text[std::numeric_limits<double>::max_exponent10 + decimals + 8];
    const auto end = std::to_chars(text, text + sizeof text, number, std::chars_format::fixed, decimals).ptr;
    return QString::fromLatin1(text, static_cast<int>(end - text));
}

QString kelNumberText::hundredths(double number)
{
    const QString text = sixDecimals(std::floor(number * 100) / 100);
    const auto point = text.indexOf(QLatin1Char('.'));
    return point < 0 ? text : text.left(point + 3);
}

QString kelNumberText::centimetres(float millimetres)
{
    return QString::number(kelNearestInt(std::trunc(static_cast<double>(millimetres))) / 10);
}
