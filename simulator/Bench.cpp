#include "simulator/Bench.h"
#include "simulator/Records.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace kvasim {

namespace {

constexpr int writtenVersion = 2; // older ones are read

/** Optional records; their missing fields are taken from another one. */
struct Optional {
    const char* place;
    const char* otherwise;
};
constexpr Optional optionals[] = {{"network.pending", "network.active"},
                                  {"calibration.staged", "calibration.committed"}};

std::int64_t millisecondsSince1970() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

bool isBytes(const Json& json) {
    return json.contains("hex") || json.contains("fill") || json.contains("seed");
}

/** Replaces defaults by the given fields. Refuses fields that do not exist. */
void overlay(Json& target, const Json& given, const std::string& path) {
    if (target.is_array())
        require(given.is_array() && given.size() == target.size(), path,
                "must be an array of " + std::to_string(target.size()) + " values");
    if (!target.is_object() || isBytes(target)) {
        target = given;
        return;
    }
    require(given.is_object(), path, "must be an object");
    for (const auto& item : given.items()) {
        const std::string itemPath = joined(path, item.key());
        require(target.contains(item.key()), itemPath, "is not a known field");
        overlay(target[item.key()], item.value(), itemPath);
    }
}

/** Checks all fields and normalises them. */
void settle(Json& instrument, const std::string& path) {
    for (const auto& [place, field] : instrumentPlaces()) {
        const Json::json_pointer pointer = pointerTo(place);
        if (!instrument.contains(pointer))
            continue; // of an optional record that is missing
        Json& value = instrument[pointer];
        std::vector<std::uint8_t> bytes(field->bytes.size);
        field->type->read(value, joined(path, place), bytes.data(), bytes.size());
        const bool isUsual = field->type == &floatsType &&
                             std::all_of(value.begin(), value.end(),
                                         [](const Json& number) { return number.is_number(); });
        if (!isUsual) // numbers keep the given form
            value = field->type->write(bytes.data(), bytes.size());
    }
}

Json defaultsFor(std::int32_t serialNumber) {
    Json json = parseJson(defaultInstrumentText, Comments::Allowed);
    json["serialNumber"] = serialNumber;
    json["device"]["serialNumber"] = static_cast<std::uint32_t>(serialNumber);
    // A locally administered address, so that it belongs to no maker.
    const std::string digits = toHex(static_cast<std::uint32_t>(serialNumber)).substr(2);
    std::string mac = "02:00";
    for (std::size_t index = 0; index < digits.size(); index += 2)
        mac += ':' + digits.substr(index, 2);
    json["device"]["macAddress"] = mac;
    return json;
}

Json valueOf(const std::string& text, const std::string& place) {
    const auto places = instrumentPlaces();
    const bool isString = std::any_of(places.begin(), places.end(), [&](const Place& known) {
        return known.path == place && known.field->type->isString;
    });
    const bool isStructured = !text.empty() && (text.front() == '{' || text.front() == '"');
    if (isString && !isStructured && text != "null")
        return text;
    try {
        return parseJson(text);
    } catch (const InputError&) {
        return text; // makeInstrument() checks it
    }
}

/** Adds the missing fields, and checks all. */
Json makeInstrument(const Json& json, const std::string& path) {
    const Json& serialNumber = fieldOf(json, path, "serialNumber");
    Json instrument =
        defaultsFor(readNumber<std::int32_t>(serialNumber, joined(path, "serialNumber")));
    overlay(instrument, json, path);
    for (const Optional& optional : optionals) {
        Json& given = instrument[pointerTo(optional.place)];
        if (given.is_null())
            continue;
        Json whole = instrument[pointerTo(optional.otherwise)];
        overlay(whole, given, joined(path, optional.place));
        given = std::move(whole);
    }
    settle(instrument, path);
    return instrument;
}

} // namespace

std::int32_t serialNumberOf(const Json& instrument) {
    return instrument["serialNumber"].get<std::int32_t>();
}

KVA_PORTINFO portOf(const Json& instrument) {
    return fromJson<KVA_PORTINFO>(portRecord, instrument);
}

bool isSamePort(const KVA_PORTINFO& left, const KVA_PORTINFO& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

const Json& networkOf(const Json& instrument) {
    const Json& network = instrument["network"];
    return network["pending"].is_null() ? network["active"] : network["pending"];
}

const Json& calibrationOf(const Json& instrument) {
    const Json& calibration = instrument["calibration"];
    return calibration["staged"].is_null() ? calibration["committed"] : calibration["staged"];
}

bool isPlugged(const Json& instrument) {
    return instrument["plugged"].get<bool>();
}

void setPlugged(Json& instrument, bool plugged) {
    if (isPlugged(instrument) != plugged)
        instrument.update({{"plugged", plugged}, {"poweredOn", 0}});
}

void powerCycle(Json& instrument) {
    instrument["network"]["active"] = Json(networkOf(instrument));
    instrument["network"]["pending"] = nullptr;
    instrument["calibration"]["staged"] = nullptr;
    instrument["powerCycles"] = instrument["powerCycles"].get<std::uint32_t>() + 1;
    instrument["poweredOn"] = isPlugged(instrument) ? millisecondsSince1970() : 0;
}

std::int64_t startUpLeft(const Json& instrument) {
    const auto poweredOn = instrument["poweredOn"].get<std::int64_t>();
    const std::int64_t sinceThen = millisecondsSince1970() - poweredOn;
    // Even if the clock was set back, an instrument must start.
    if (poweredOn == 0 || sinceThen < 0)
        return 0;
    return std::max<std::int64_t>(instrument["startUpMs"].get<std::int64_t>() - sinceThen, 0);
}

bool isReady(const Json& instrument) {
    return isPlugged(instrument) && startUpLeft(instrument) == 0;
}

void patch(Json& instrument, const Json& patch) {
    require(patch.is_object(), "", "must be an object");
    Json merged = instrument;
    for (const auto& [place, field] : instrumentPlaces()) {
        if (patch.contains(pointerTo(place)))
            merged[pointerTo(place)] = nullptr; // bytes are replaced as a whole
    }
    merged.merge_patch(patch);
    merged = makeInstrument(merged, "");
    if (isPlugged(merged) != isPlugged(instrument))
        merged["poweredOn"] = 0;
    instrument = std::move(merged);
}

void assign(Json& instrument, const std::string& assignment) {
    const auto equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0)
        throw InputError(assignment + ": is not FIELD=VALUE");
    const std::string place = assignment.substr(0, equals);
    Json::json_pointer pointer = pointerTo(place);
    Json value = valueOf(assignment.substr(equals + 1), place);
    Json whole = instrument;
    for (const Optional& optional : optionals) {
        if (whole[pointerTo(optional.place)].is_null())
            whole[pointerTo(optional.place)] = whole[pointerTo(optional.otherwise)];
    }
    const Json::json_pointer parent = pointer.parent_pointer();
    if (whole.contains(parent) && whole[parent].is_array()) { // a patch has whole arrays only
        if (!whole.contains(pointer))
            throw InputError(place + ": has no element " + pointer.back());
        whole[pointer] = std::move(value);
        value = std::move(whole[parent]);
        pointer = parent;
    }
    for (; !pointer.empty(); pointer.pop_back()) {
        if (pointer.back().empty())
            throw InputError(place + ": is not the path of a field");
        Json outer;
        outer[pointer.back()] = std::move(value);
        value = std::move(outer);
    }
    patch(instrument, value);
}

void hideKey(Json& network) {
    if (!network.is_object())
        return;
    const auto record = fromJson<KVA_NETWORKINFO>(networkRecord, network);
    const auto length = std::string_view(record.EncryptKey, sizeof record.EncryptKey).find('\0');
    network["EncryptKey"] = {{"length", std::min(length, sizeof record.EncryptKey)}};
}

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
