#ifndef COMMAND_INSTRUMENTSTATE_H
#define COMMAND_INSTRUMENTSTATE_H

#include "command/Text.h"
#include "instrument/InstrumentAccess.h"

#include <QString>

#include <cstdint>
#include <optional>

/** Everything that is read from one instrument. Records are normalised: texts in a network record
    are padded with zeros, and bytes that the library does not define are zero. So two states are
    the same when their bytes are. */
struct InstrumentState {
    KVA_DEVICEINFO device = {};             ///< without its reserved bytes
    std::uint8_t wirelessModule = 0;        ///< not zero when one is fitted and enabled
    std::optional<KVA_NETWORKINFO> network; ///< nothing without a wireless module
    std::uint8_t powerOffMode = 0;          ///< `eShutdownTime_…`, or another value
    KVA_JIG_CALREFDATA calibration = {};
};

/** Whether serial number, firmware version and MAC address are the same. */
bool isSameIdentity(const InstrumentState& left, const InstrumentState& right);
bool isSame(const KVA_NETWORKINFO& left, const KVA_NETWORKINFO& right);
bool isSame(const std::optional<KVA_NETWORKINFO>& left,
            const std::optional<KVA_NETWORKINFO>& right);
bool isSame(const KVA_JIG_CALREFDATA& left, const KVA_JIG_CALREFDATA& right);

/** The record with its texts padded with zeros, and its padding bytes zero. */
KVA_NETWORKINFO normalized(const KVA_NETWORKINFO& info);

/** "KVA_… answered KVA_ERROR_…". */
Text callFailure(const CallResult& result);
/** The name of a result code; its number if it has none. */
QString resultText(std::int32_t code);

/** A serial number with at least eight decimal digits. */
QString serialText(std::int32_t serialNumber);

/** Opens the connection to the instrument. Empty when it is open; otherwise why not. */
Text openInstrument(InstrumentAccess& access, std::int32_t serialNumber);

/** Reads all of the connected instrument twice, into buffers filled with different patterns, so
    that a byte that the library did not write differs. Empty when both readings are equal and from
    @p serialNumber; @p state is then the result. Otherwise the reason. */
Text readTwice(InstrumentAccess& access, std::int32_t serialNumber, InstrumentState& state);

/** Reads the calibration record into a buffer that differs from @p expected in every byte, so that
    equal bytes were written by the library. Empty when all are equal; otherwise the reason. */
Text requireCalibration(InstrumentAccess& access, const KVA_JIG_CALREFDATA& expected);

/** Whether the record is blank, as in no instrument in use: all bytes 0x00, or all 0xFF. */
bool isBlank(const KVA_JIG_CALREFDATA& record);

#endif
