#ifndef COMMAND_INSTRUMENTSTATE_H
#define COMMAND_INSTRUMENTSTATE_H

#include "command/Text.h"
#include "instrument/InstrumentAccess.h"

#include <QString>

#include <cstdint>
#include <optional>

/** All that is read of one instrument. Records are kept in one form only: a text in a network
    record is filled up with zeros behind its NUL, and what the library does not define is zero. So
    two states are the same when their bytes are. */
struct InstrumentState {
    KVA_DEVICEINFO device = {};             ///< without its reserved bytes
    std::uint8_t wirelessModule = 0;        ///< not zero where one is fitted and enabled
    std::optional<KVA_NETWORKINFO> network; ///< nothing without a wireless module
    std::uint8_t powerOffMode = 0;          ///< `eShutdownTime_…`, or what else it holds
    KVA_JIG_CALREFDATA calibration = {};
};

/** Serial number, firmware version and MAC address. */
bool isSameIdentity(const InstrumentState& left, const InstrumentState& right);
bool isSame(const KVA_NETWORKINFO& left, const KVA_NETWORKINFO& right);
bool isSame(const std::optional<KVA_NETWORKINFO>& left,
            const std::optional<KVA_NETWORKINFO>& right);
bool isSame(const KVA_JIG_CALREFDATA& left, const KVA_JIG_CALREFDATA& right);

/** The record with its texts filled up with zeros, and its padding zero. */
KVA_NETWORKINFO normalized(const KVA_NETWORKINFO& info);

/** "KVA_… answered KVA_ERROR_…". */
Text callFailure(const CallResult& result);

/** A serial number as everybody writes it: eight decimal digits, more where it has more. */
QString serialText(std::int32_t serialNumber);

/** Opens the connection to the instrument. Empty when it is open; otherwise why not. */
Text openInstrument(InstrumentAccess& access, std::int32_t serialNumber);

/** Reads all of the connected instrument twice, into records that are filled differently before: a
    byte that the library left alone differs then. Empty when @p state is what it said both times,
    and is one of @p serialNumber; otherwise why not. */
Text readTwice(InstrumentAccess& access, std::int32_t serialNumber, InstrumentState& state);

/** Reads the calibration record into one that holds no byte of @p expected before: what is equal
    afterwards was written by the library. Empty when all of it is equal; otherwise why not. */
Text requireCalibration(InstrumentAccess& access, const KVA_JIG_CALREFDATA& expected);

/** Whether the record is one that no instrument in use can have: all its bytes are 0x00 or 0xFF. */
bool isBlank(const KVA_JIG_CALREFDATA& record);

#endif
