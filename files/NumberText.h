#ifndef FILES_NUMBERTEXT_H
#define FILES_NUMBERTEXT_H

#include <cstdint>

/**
 * Numbers from text as `atoi` and `atof` read them, but defined for every input and the same under
 * every locale: calibration values must not change with the user's decimal sign.
 */
namespace NumberText {

/** Skips leading blanks, then reads a sign and decimal digits up to the first other character;
    without digits 0. A number out of range saturates at the 64-bit limits; the result is the low
    32 bits, so that "-1" gives -1 and "99999999999999999999" gives -1 too. */
std::int32_t toInt32(const char* text);

/** Skips leading blanks, then reads the longest number that is valid in the C locale (decimal,
    hexadecimal, "inf", "nan"); without one 0. The value is rounded to double precision and then to
    single precision; beyond that range it becomes an infinity. */
float toFloat(const char* text);

} // namespace NumberText

#endif
