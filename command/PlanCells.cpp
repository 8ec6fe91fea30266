#include "command/PlanCells.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace {

bool isAllZeros(std::string_view text) {
    return text.find_first_not_of('0') == std::string_view::npos;
}

/** Of a text of digits. */
bool toNumber(std::string_view text, std::int32_t& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

/** A number in scientific form: one digit, a fraction, an exponent of one or two digits. */
struct Scientific {
    char first = '0';
    std::string_view fraction;
    int exponent = 0;
};

std::optional<Scientific> scientific(std::string_view cell) {
    const std::size_t mark = cell.find_first_of("eE");
    if (mark == std::string_view::npos || mark == 0)
        return std::nullopt;
    std::string_view mantissa = cell.substr(0, mark);
    std::string_view exponent = cell.substr(mark + 1);
    if (!exponent.empty() && exponent.front() == '+')
        exponent.remove_prefix(1);
    Scientific result;
    result.first = mantissa.front();
    mantissa.remove_prefix(1);
    const bool hasFraction =
        mantissa.size() > 1 && (mantissa.front() == '.' || mantissa.front() == ',');
    if (hasFraction)
        result.fraction = mantissa.substr(1);
    std::int32_t number = 0;
    if (!PlanCells::isAllDigits(cell.substr(0, 1)) || (!mantissa.empty() && !hasFraction) ||
        !PlanCells::isAllDigits(result.fraction) || exponent.empty() || exponent.size() > 2 ||
        !PlanCells::isAllDigits(exponent) || !toNumber(exponent, number))
        return std::nullopt;
    result.exponent = number;
    return result;
}

} // namespace

PlanCells::SerialFault PlanCells::parseSerial(std::string_view cell, std::int32_t& serialNumber) {
    if (isAllDigits(cell)) // the usual form
        return toNumber(cell, serialNumber) ? SerialFault::None : SerialFault::NoNumber;
    if (const auto number = scientific(cell)) {
        const auto exponent = static_cast<std::size_t>(number->exponent);
        // A missing digit may have been any digit.
        if (number->fraction.size() < exponent)
            return SerialFault::Inexact;
        const std::string whole = number->first + std::string(number->fraction.substr(0, exponent));
        const bool isWhole = isAllZeros(number->fraction.substr(exponent));
        return isWhole && toNumber(whole, serialNumber) ? SerialFault::None : SerialFault::NoNumber;
    }
    // Not ".000": 10.000 means ten thousand in many countries.
    for (const std::string_view fraction : {".00", ".0"}) {
        const bool ends =
            cell.size() > fraction.size() && cell.substr(cell.size() - fraction.size()) == fraction;
        if (ends) {
            cell.remove_suffix(fraction.size());
            break;
        }
    }
    const bool isNumber = !cell.empty() && isAllDigits(cell) && toNumber(cell, serialNumber);
    return isNumber ? SerialFault::None : SerialFault::NoNumber;
}

std::optional<std::uint32_t> PlanCells::onOff(std::string_view cell) {
    const auto is = [&](std::string_view word) {
        return std::equal(cell.begin(), cell.end(), word.begin(), word.end(), [](char a, char b) {
            return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b);
        });
    };
    if (is("on"))
        return 1;
    return is("off") ? std::optional<std::uint32_t>(0) : std::nullopt;
}

bool PlanCells::isAllDigits(std::string_view cell) {
    return std::all_of(cell.begin(), cell.end(),
                       [](char character) { return character >= '0' && character <= '9'; });
}

bool PlanCells::isShortenedNumber(std::string_view cell) {
    const bool begins = !cell.empty() && cell.front() >= '0' && cell.front() <= '9';
    return begins && cell.find("E+") != std::string_view::npos && scientific(cell).has_value();
}

std::string_view PlanCells::trimmed(std::string_view cell) {
    const auto isBlank = [](char character) { return character == ' ' || character == '\t'; };
    while (!cell.empty() && isBlank(cell.front()))
        cell.remove_prefix(1);
    while (!cell.empty() && isBlank(cell.back()))
        cell.remove_suffix(1);
    return cell;
}
