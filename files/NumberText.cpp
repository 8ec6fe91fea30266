#include "files/NumberText.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <new>
#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace {

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/** The "C" locale, made once and kept until the process ends. */
locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    if (!locale)
        throw std::bad_alloc(); // the only way in which making the built-in locale can fail
    return locale;
}

} // namespace

std::int32_t NumberText::toInt32(const char* text) {
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();

    while (isBlank(*text))
        ++text;
    const bool negative = *text == '-';
    if (negative || *text == '+')
        ++text;

    // Counted downwards, because the lowest value has no positive counterpart.
    std::int64_t value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
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
    const double value = strtod_l(text, nullptr, cLocale());
    // From here on rounding to single precision leaves its range, which the language does not
    // define: the middle between the largest single and the value that would follow it.
    constexpr double overflow = 0x1.ffffffp+127;
    if (std::fabs(value) >= overflow)
        return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
    return static_cast<float>(value);
}
