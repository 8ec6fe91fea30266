/**
 * A bench: the attached instruments and the rules for faults, as plain data.
 */
#ifndef SIMULATOR_BENCH_H
#define SIMULATOR_BENCH_H

#include "instrument/KvaSdk.h"
#include "simulator/FaultRules.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kvasim {

/** One instrument and everything that it keeps. */
struct Instrument {
    KVA_PORTINFO port{}; /**< its entry in the list; `port.serialNumber` names it on the bench */
    bool plugged = true; /**< attached: in the list and to be connected to */
    KVA_DEVICEINFO device{};
    KVA_JIG_ACTIONOPTIONFACTORYDATA factoryOptions{};
    KVA_NETWORKINFO activeNetwork{};               /**< what its radio uses */
    std::optional<KVA_NETWORKINFO> pendingNetwork; /**< stored, in use after a power cycle */
    std::uint8_t powerOffMode = 0;
    std::uint32_t startUpMs = 1500;                      /**< from switching on until it answers */
    KVA_JIG_CALREFDATA committedCalibration{};           /**< in non-volatile memory */
    std::optional<KVA_JIG_CALREFDATA> stagedCalibration; /**< lost with a power cycle */
};

struct Bench {
    std::vector<Instrument> instruments; /**< in the order of the list; serial numbers differ */
    std::vector<FaultRule> faults;       /**< as the bench file has them, without counters */
};

/** An instrument by its serial number. @return its index, nothing when there is none. */
std::optional<std::size_t> findInstrument(const Bench& bench, std::int32_t serialNumber);

/** An instrument as it is where a bench says no more than its serial number; the values are in
    BenchJson.h. */
Instrument makeInstrument(std::int32_t serialNumber);

/** The bench that serves where none is named: instrument 1000001 on USB and instrument 1000002 at
    192.168.0.20, both with a wireless module. */
Bench makeBuiltInBench();

/** What a power cycle does to the instrument's memory: pending settings come into use, data that
    was only staged is gone. */
void powerCycle(Instrument& instrument);

} // namespace kvasim

#endif
