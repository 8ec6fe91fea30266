#include "files/NumberText.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <new>
#include <optional>
#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace {

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/** Skips the blanks and the sign that a number may begin with; whether it is a minus. */
bool skipSign(const char*& text) {
    while (isBlank(*text))
        ++text;
    const bool negative = *text == '-';
    if (negative || *text == '+')
        ++text;
    return negative;
}

/** The powers of ten that `plainDecimal` needs; each is exact in double precision. */
constexpr double powersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/** A number without exponent and of at most 15 digits, as calibration values usually are: both the
    digits and the power of ten are then exact, and their quotient is rounded once, as the C library
    rounds. Nothing for any other text. */
std::optional<double> plainDecimal(const char* text) {
    if (FLT_EVAL_METHOD != 0)
        return std::nullopt; // the quotient would be rounded twice
    const bool negative = skipSign(text);

    constexpr int mostDigits = 15;
    std::int64_t digits = 0;
    int count = 0;
    int decimals = 0;
    for (; isDigit(*text) && count <= mostDigits; ++text, ++count)
        digits = digits * 10 + (*text - '0');
    if (*text == '.') {
        ++text;
        for (; isDigit(*text) && count <= mostDigits; ++text, ++count, ++decimals)
            digits = digits * 10 + (*text - '0');
    }
    const bool goesOn = *text == 'e' || *text == 'E' || *text == 'x' || *text == 'X';
    if (count == 0 || count > mostDigits || goesOn)
        return std::nullopt;
    const double value = static_cast<double>(digits) / powersOfTen[decimals];
    return negative ? -value : value;
}

/** The "C" locale, made once and kept until the process ends. */
locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    if (!locale)
        throw std::bad_alloc(); // the only reason for which this locale cannot be made
    return locale;
}

} // namespace

std::int32_t NumberText::toInt32(const char* text) {
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();

    const bool negative = skipSign(text);

    // Counted downwards, because the lowest value has no positive counterpart.
    std::int64_t value = 0;
    for (; isDigit(*text); ++text) {
        const int digit = *text - '0';
        if (value < (lowest + digit) / 10) {
            value = lowest;
            break;
        }
        value = value * 10 - digit;
    }
    if (!negative)
        value = value < -highest ? highest : -value;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

float NumberText::toFloat(const char* text) {
    const std::optional<double> plain = plainDecimal(text);
    const double value = plain ? *plain : strtod_l(text, nullptr, cLocale());
    // The middle between the largest single and the value that would follow it. From here on the
    // conversion to single precision is out of range, which the language leaves undefined.
    constexpr double overflow = 0x1.ffffffp+127;
    if (std::fabs(value) >= overflow)
        return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
    return static_cast<float>(value);
}
