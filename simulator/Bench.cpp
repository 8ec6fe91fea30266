#include "simulator/Bench.h"

#include "simulator/BenchTexts.h"
#include "simulator/JsonFields.h"

#include <utility>

namespace kvasim {

const Instrument* findInstrument(const Bench& bench, std::int32_t serialNumber) {
    for (const Instrument& instrument : bench.instruments) {
        if (instrument.port.serialNumber == serialNumber)
            return &instrument;
    }
    return nullptr;
}

Instrument& instrumentOf(Bench& bench, std::int32_t serialNumber) {
    for (Instrument& instrument : bench.instruments) {
        if (instrument.port.serialNumber == serialNumber)
            return instrument;
    }
    throw InputError("no instrument " + std::to_string(serialNumber) + " on the bench");
}

void requireDifferentSerialNumbers(const Bench& bench) {
    for (const Instrument& instrument : bench.instruments) {
        if (findInstrument(bench, instrument.port.serialNumber) != &instrument)
            refuse("serialNumber", "is the serial number of another instrument");
    }
}

std::vector<KVA_PORTINFO> portsOf(const Bench& bench) {
    std::vector<KVA_PORTINFO> list;
    for (const Instrument& instrument : bench.instruments) {
        if (isReady(instrument))
            list.push_back(instrument.port);
    }
    return list;
}

Bench parseBench(const std::string& text) {
    const Json json = parseJson(text, Comments::Allowed);
    JsonFields fields(json, "");
    const std::int64_t version = readInteger(fields.get("version"), "version", 1, INT32_MAX);
    if (version > benchVersion)
        refuse("version", "is " + std::to_string(version) + ", newer than the version " +
                              std::to_string(benchVersion) + " that can be read");
    Bench bench;
    const auto pathOf = [](const char* array, std::size_t index) {
        return array + ('[' + std::to_string(index)) + ']';
    };
    for (const Json& instrument : readArray(fields.get("instruments"), "instruments")) {
        const std::string path = pathOf("instruments", bench.instruments.size());
        Instrument read = instrumentFromJson(instrument, path);
        if (findInstrument(bench, read.port.serialNumber) != nullptr)
            refuse(path + ".serialNumber", "is the serial number of another instrument as well");
        bench.instruments.push_back(read);
    }
    if (const Json* faults = fields.find("faults")) {
        for (const Json& fault : readArray(*faults, "faults"))
            bench.faults.push_back(faultRuleFromJson(fault, pathOf("faults", bench.faults.size())));
    }
    fields.finish();
    return bench;
}

Json benchToJson(const Bench& bench) {
    Json instruments = Json::array();
    for (const Instrument& instrument : bench.instruments)
        instruments.push_back(instrumentToJson(instrument));
    Json faults = Json::array();
    for (const FaultRule& rule : bench.faults)
        faults.push_back(faultRuleToJson(rule));
    return {{"version", benchVersion},
            {"instruments", std::move(instruments)},
            {"faults", std::move(faults)}};
}

Bench makeBuiltInBench() {
    return parseBench(builtInBenchText);
}

} // namespace kvasim
