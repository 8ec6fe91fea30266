#ifndef COMMAND_PLANCELLS_H
#define COMMAND_PLANCELLS_H

#include "command/NetworkFields.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/** What stands in the cells of a plan: bytes of UTF-8. Nothing is returned where it is wrong. */
namespace PlanCells {

/** Why a cell is no serial number. */
enum class SerialFault { None, NoNumber, Inexact };
/**
 * Digits, with leading zeros or without, or what a spreadsheet makes of a number: 1000001.0,
 * 1.000001E+06. Where the form has fewer digits than the number, some may be lost: `Inexact`.
 */
SerialFault parseSerial(std::string_view cell, std::int32_t& serialNumber);

/** "on" or "off", in any capitals, as spreadsheets make them. */
std::optional<std::uint32_t> onOff(std::string_view cell);

/** Whether the text looks like one of digits alone that a spreadsheet took for a number and
    shortened: 1.23457E+15. */
bool isShortenedNumber(std::string_view cell);

/** Without the blanks around. */
std::string_view trimmed(std::string_view cell);

} // namespace PlanCells

#endif
