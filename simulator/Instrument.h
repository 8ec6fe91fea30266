/**
 * One instrument and everything that it keeps, its JSON, and the fields of the records that the
 * library's functions answer with.
 */
#ifndef SIMULATOR_INSTRUMENT_H
#define SIMULATOR_INSTRUMENT_H

#include "instrument/KvaSdk.h"
#include "simulator/Field.h"
#include "simulator/SdkNames.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvasim {

struct Instrument {
    KVA_PORTINFO port{}; /**< its entry in the list; `port.serialNumber` names it on the bench */
    KVA_DEVICEINFO device{};
    KVA_JIG_ACTIONOPTIONFACTORYDATA factoryOptions{};
    KVA_NETWORKINFO activeNetwork{};           /**< what its radio uses */
    KVA_NETWORKINFO pendingNetwork{};          /**< in use after a power cycle */
    KVA_JIG_CALREFDATA committedCalibration{}; /**< in non-volatile memory */
    KVA_JIG_CALREFDATA stagedCalibration{};    /**< lost with a power cycle */
    bool isPending = false;                    /**< whether `pendingNetwork` is there */
    bool isStaged = false;                     /**< whether `stagedCalibration` is there */
    bool plugged = true;                       /**< attached */
    std::uint8_t powerOffMode = 0;
    std::uint32_t startUpMs = 1500; /**< from switching on until it answers */
    std::uint32_t powerCycles = 0;  /**< how often it was switched off and on */
    std::int64_t poweredOn = 0;     /**< when it last was, in ms since 1970; 0: it has started */

    /** The settings that were stored last. */
    const KVA_NETWORKINFO& network() const { return isPending ? pendingNetwork : activeNetwork; }

    /** The working copy of the calibration data. */
    const KVA_JIG_CALREFDATA& calibration() const {
        return isStaged ? stagedCalibration : committedCalibration;
    }
};

/** An instrument as it is where a bench says no more than its serial number. */
Instrument makeInstrument(std::int32_t serialNumber);

/** Attaches or detaches it; an instrument that is attached has started. */
void setPlugged(Instrument& instrument, bool plugged);

/** Whether a power cycle takes the instrument's time to start, or none. */
enum class StartUp { Timed, Skipped };

/** Switches the instrument off and on: pending settings come into use, data that was only staged is
    gone, and it starts, where it is plugged. */
void powerCycle(Instrument& instrument, StartUp startUp);

/** The milliseconds until a plugged instrument has started; 0 when it has. */
std::int64_t startUpLeft(const Instrument& instrument);

/** Whether it is plugged and has started. */
bool isReady(const Instrument& instrument);

/** @param path the place of @p json in its document.
    @throws InputError with the path of the field and the reason. */
Instrument instrumentFromJson(const Json& json, const std::string& path);
Json instrumentToJson(const Instrument& instrument, Keys keys = Keys::Shown);

/** Parts of an instrument's JSON: {"serialNumber", "port": {"type", "name"}}, and the settings. */
Json portToJson(const KVA_PORTINFO& port);
Json networkToJson(const KVA_NETWORKINFO& network, Keys keys);

/** Merges @p patch into the instrument as a JSON merge patch does; null removes a field, which then
    has its default. Bytes ({"hex"}, {"fill"}, {"seed"}) are replaced as a whole.
    @throws InputError as `instrumentFromJson` does; nothing has changed then. */
void patch(Instrument& instrument, const Json& patch);

/** Sets one field.
    @param assignment a dotted path into the instrument's JSON ("network.active.SSID",
        "calibration.committed.white.values.3", "device.firmware[1]"), "=" and the value: JSON, or,
        where the field holds a text, the text as it is. null gives the field its default.
    @throws InputError when it is no assignment, or as `instrumentFromJson` does. */
void assign(Instrument& instrument, const std::string& assignment);

/** The size of the record that the function answers with, an entry of the list for
    `KVA_GetDevicePortList`; 0 for a function that answers with its result only. */
std::size_t answerSize(Function function);

/** A field as the record declares it ("IPAddress", "rfWhite.spcData"), or one element of an array
    ("IPAddress[3]"). "mode" is the answer of `KVA_GetShutdownTime`.
    @return nothing when the function's answer has no such field */
std::optional<ByteRange> answerField(Function function, std::string_view name);

} // namespace kvasim

#endif
