/**
 * A bench: the attached instruments and the rules for faults, as plain data and as JSON.
 *
 * An instrument is kept as its JSON, with all fields, each checked and in normal form.
 * docs/simulator.md lists the fields.
 */
#ifndef SIMULATOR_BENCH_H
#define SIMULATOR_BENCH_H

#include "instrument/KvaSdk.h"
#include "simulator/FaultRules.h"
#include "simulator/Json.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kvasim {

// The benches that are compiled in; the build makes them from their files.
extern const char* const builtInBenchText;      /**< benches/usb-and-network.json */
extern const char* const startingBenchText;     /**< kvasim/starting-bench.json */
extern const char* const defaultInstrumentText; /**< default-instrument.json */

std::int32_t serialNumberOf(const Json& instrument);
KVA_PORTINFO portOf(const Json& instrument);
bool isSamePort(const KVA_PORTINFO& left, const KVA_PORTINFO& right);

/** The values stored last. */
const Json& networkOf(const Json& instrument);
const Json& calibrationOf(const Json& instrument);

/** An instrument has already started when it is plugged. */
bool isPlugged(const Json& instrument);
void setPlugged(Json& instrument, bool plugged);

/** Switches it off and on: pending settings become active, staged data is dropped. */
void powerCycle(Json& instrument);

/** The milliseconds until it has started; whether it is plugged and has started. */
std::int64_t startUpLeft(const Json& instrument);
bool isReady(const Json& instrument);

/** Merges @p patch into the instrument, as `KvaSim_Set` does.
    @throws InputError with the path of the field and the reason; nothing is changed then. */
void patch(Json& instrument, const Json& patch);

/** Sets one field by FIELD=VALUE ("calibration.committed.white.values.3=85.5",
    "device.firmware[1]=2"), as `kvasim set` does.
    @throws InputError when it is not an assignment, or as `patch` does */
void assign(Json& instrument, const std::string& assignment);

/** Replaces the security key of settings by {"length": bytes}, for display only. */
void hideKey(Json& network);

struct Bench {
    std::vector<Json> instruments; /**< in the order of the list; serial numbers differ */
    std::vector<FaultRule> faults;

    bool operator==(const Bench& other) const {
        return instruments == other.instruments && faults == other.faults;
    }
};

/** Reads the text of a bench file, comments allowed.
    @throws InputError with line and column, or with the path of the field, and the reason. */
Bench parseBench(const std::string& text);
Json benchToJson(const Bench& bench);

/** An instrument by its serial number. If there is none: null, or an InputError. */
const Json* findInstrument(const Bench& bench, std::int32_t serialNumber);
Json& instrumentOf(Bench& bench, std::int32_t serialNumber);

/** Changes an instrument.
    @throws InputError when there is none, or when its new serial number is another one's */
void changeInstrument(Bench& bench, std::int32_t serialNumber,
                      const std::function<void(Json& instrument)>& make);

/** The list of the instruments that are plugged and have started. */
std::vector<KVA_PORTINFO> portsOf(const Bench& bench);

} // namespace kvasim

#endif
