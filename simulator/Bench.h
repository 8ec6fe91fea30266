/**
 * A bench: the attached instruments and the rules for faults, as plain data and as JSON.
 */
#ifndef SIMULATOR_BENCH_H
#define SIMULATOR_BENCH_H

#include "simulator/FaultRules.h"
#include "simulator/Instrument.h"

#include <cstdint>
#include <vector>

namespace kvasim {

struct Bench {
    std::vector<Json> instruments; /**< in the order of the list; serial numbers differ */
    std::vector<FaultRule> faults;

    bool operator==(const Bench& other) const {
        return instruments == other.instruments && faults == other.faults;
    }
};

// The benches that are compiled in; the build makes them from their files.
extern const char* const builtInBenchText;      /**< benches/usb-and-network.json */
extern const char* const startingBenchText;     /**< kvasim/starting-bench.json */
extern const char* const defaultInstrumentText; /**< default-instrument.json */

/** An instrument by its serial number; null when there is none. */
const Json* findInstrument(const Bench& bench, std::int32_t serialNumber);

/** The same. @throws InputError when there is none. */
Json& instrumentOf(Bench& bench, std::int32_t serialNumber);

/** @throws InputError when two instruments have one serial number. */
void requireDifferentSerialNumbers(const Bench& bench);

/** The list of the instruments that are plugged and have started. */
std::vector<KVA_PORTINFO> portsOf(const Bench& bench);

/** Reads the text of a bench file, comments allowed.
    @throws InputError with line and column, or with the path of the field, and the reason. */
Bench parseBench(const std::string& text);
Json benchToJson(const Bench& bench);

} // namespace kvasim

#endif
