#include "simulator/Bench.h"

#include <utility>

namespace kvasim {

namespace {

constexpr int writtenVersion = 2; // older ones are read

} // namespace

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

void changeInstrument(Bench& bench, std::int32_t serialNumber,
                      const std::function<void(Json& instrument)>& make) {
    Json& instrument = instrumentOf(bench, serialNumber);
    make(instrument);
    for (const Json& other : bench.instruments)
        require(&other == &instrument || serialNumberOf(other) != serialNumberOf(instrument),
                "serialNumber", "is the serial number of another instrument");
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
    const std::int64_t version = readInteger(fieldOf(json, "", "version"), "version", 1, INT32_MAX);
    require(version <= writtenVersion, "version",
            "is " + std::to_string(version) + ", newer than the version " +
                std::to_string(writtenVersion) + " that can be read");
    const Json& instruments = fieldOf(json, "", "instruments");
    const Json faults = json.value("faults", Json::array());
    require(instruments.is_array(), "instruments", "must be an array");
    require(faults.is_array(), "faults", "must be an array");
    requireFields(json, "", {"version", "instruments", "faults"});
    Bench bench;
    for (const Json& instrument : instruments) {
        const std::string path = "instruments[" + std::to_string(bench.instruments.size()) + ']';
        Json made = makeInstrument(instrument, path);
        require(findInstrument(bench, serialNumberOf(made)) == nullptr, path + ".serialNumber",
                "is the serial number of another instrument as well");
        bench.instruments.push_back(std::move(made));
    }
    for (const Json& fault : faults) {
        const std::string path = "faults[" + std::to_string(bench.faults.size()) + ']';
        bench.faults.push_back(makeFaultRule(fault, path));
    }
    return bench;
}

Json benchToJson(const Bench& bench) {
    Json faults = Json::array();
    for (const FaultRule& rule : bench.faults)
        faults.push_back(rule.json);
    return {{"version", writtenVersion}, {"instruments", bench.instruments}, {"faults", faults}};
}

} // namespace kvasim
