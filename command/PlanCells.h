#ifndef COMMAND_PLANCELLS_H
#define COMMAND_PLANCELLS_H

#include "command/NetworkFields.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/** Parsers of a plan's cells, which are UTF-8. They return nothing for a wrong cell. */
namespace PlanCells {

/** Why a cell is not a serial number. */
enum class SerialFault { None, NoNumber, Inexact };
/**
 * Digits, with or without leading zeros, or the form that a spreadsheet gives a number: 1000001.0,
 * 1.000001E+06. `Inexact` if the form has fewer digits than the number: some may be lost.
 */
SerialFault parseSerial(std::string_view cell, std::int32_t& serialNumber);

/** "on" or "off" in upper or lower case, as spreadsheets change it. */
std::optional<std::uint32_t> onOff(std::string_view cell);

/** Whether it has nothing but digits; an empty one has. */
bool isAllDigits(std::string_view cell);

/** Whether a spreadsheet may have taken digits for a number and shortened them: 1.23457E+15. */
bool isShortenedNumber(std::string_view cell);

/** Without leading and trailing blanks. */
std::string_view trimmed(std::string_view cell);

} // namespace PlanCells

#endif
