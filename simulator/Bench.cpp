#include "simulator/Bench.h"

#include "simulator/Json.h"

#include <utility>

namespace kvasim {

const Json* findInstrument(const Bench& bench, std::int32_t serialNumber) {
    for (const Json& instrument : bench.instruments) {
        if (serialNumberOf(instrument) == serialNumber)
            return &instrument;
    }
    return nullptr;
}

Json& instrumentOf(Bench& bench, std::int32_t serialNumber) {
    for (Json& instrument : bench.instruments) {
        if (serialNumberOf(instrument) == serialNumber)
            return instrument;
    }
    throw InputError("no instrument " + std::to_string(serialNumber) + " on the bench");
}

void requireDifferentSerialNumbers(const Bench& bench) {
    for (const Json& instrument : bench.instruments) {
        if (findInstrument(bench, serialNumberOf(instrument)) != &instrument)
            refuse("serialNumber", "is the serial number of another instrument");
    }
}

std::vector<KVA_PORTINFO> portsOf(const Bench& bench) {
    std::vector<KVA_PORTINFO> list;
    for (const Json& instrument : bench.instruments) {
        if (isReady(instrument))
            list.push_back(portOf(instrument));
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
        Json made = makeInstrument(instrument, path);
        if (findInstrument(bench, serialNumberOf(made)) != nullptr)
            refuse(path + ".serialNumber", "is the serial number of another instrument as well");
        bench.instruments.push_back(std::move(made));
    }
    if (const Json* faults = fields.find("faults")) {
        for (const Json& fault : readArray(*faults, "faults"))
            bench.faults.push_back(makeFaultRule(fault, pathOf("faults", bench.faults.size())));
    }
    fields.finish();
    return bench;
}

Json benchToJson(const Bench& bench) {
    Json faults = Json::array();
    for (const FaultRule& rule : bench.faults)
        faults.push_back(rule.json);
    return {{"version", benchVersion}, {"instruments", bench.instruments}, {"faults", faults}};
}

Bench makeBuiltInBench() {
    return parseBench(builtInBenchText);
}

} // namespace kvasim
