/**
 * One instrument and everything that it keeps: its JSON, with all its fields, each checked and in
 * its usual form. docs/simulator.md lists the fields.
 */
#ifndef SIMULATOR_INSTRUMENT_H
#define SIMULATOR_INSTRUMENT_H

#include "instrument/KvaSdk.h"
#include "simulator/Json.h"

#include <cstdint>
#include <string>

namespace kvasim {

/** Checks @p json and adds the fields that it leaves out.
    @param path the place of @p json in its document
    @throws InputError with the path of the field and the reason */
Json makeInstrument(const Json& json, const std::string& path);

std::int32_t serialNumberOf(const Json& instrument);

/** Its entry in the list. */
KVA_PORTINFO portOf(const Json& instrument);
bool isSamePort(const KVA_PORTINFO& left, const KVA_PORTINFO& right);

/** The settings that were stored last, and the working copy of the calibration data. */
const Json& networkOf(const Json& instrument);
const Json& calibrationOf(const Json& instrument);

/** Commits the staged calibration data. @return KVA_ERROR_NO_DATA where there is none */
KVA_RESULT commitCalibration(Json& instrument);

bool isPlugged(const Json& instrument);

/** Attaches or detaches it, unless it is so; an instrument that is attached has started. */
void setPlugged(Json& instrument, bool plugged);

/** Switches the instrument off and on: pending settings come into use, data that was only staged is
    gone, and it starts, where it is plugged. */
void powerCycle(Json& instrument);

/** The milliseconds until a plugged instrument has started; 0 when it has. */
std::int64_t startUpLeft(const Json& instrument);

/** Whether it is plugged and has started. */
bool isReady(const Json& instrument);

/** Merges @p patch into the instrument as a JSON merge patch does; null removes a field, which then
    has its default. Bytes ({"hex"}, {"fill"}, {"seed"}) are replaced as a whole.
    @throws InputError as `makeInstrument` does; nothing has changed then. */
void patch(Json& instrument, const Json& patch);

/** Sets one field.
    @param assignment a dotted path into the instrument's JSON ("network.active.SSID",
        "calibration.committed.white.values.3", "device.firmware[1]"), "=" and the value: JSON, or,
        where the field holds a text, the text as it is. null gives the field its default.
    @throws InputError when it is no assignment, or as `makeInstrument` does */
void assign(Json& instrument, const std::string& assignment);

/** Puts {"length": bytes} in place of the security key of settings, for showing only. */
void hideKey(Json& network);

} // namespace kvasim

#endif
