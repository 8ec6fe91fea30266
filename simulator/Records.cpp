#include "simulator/Records.h"

#include "instrument/KvaSdk.h"

#include <algorithm>

namespace kvasim {

namespace {

#define KVASIM_FIELD(record, place, field, type)                                                   \
    Field {                                                                                        \
        place, #field, &type, {                                                                    \
            offsetof(record, field), sizeof(record{}.field)                                        \
        }                                                                                          \
    }

constexpr Field portFields[] = {
    KVASIM_FIELD(KVA_PORTINFO, "serialNumber", serialNumber, int32Type),
    KVASIM_FIELD(KVA_PORTINFO, "port.type", portType, uint32Type),
    KVASIM_FIELD(KVA_PORTINFO, "port.name", portName, textType),
};

/** What no function of the library answers. */
struct State {
    bool plugged;
    std::uint32_t startUpMs;
    std::uint32_t powerCycles;
    std::int64_t poweredOn;
};

constexpr Field stateFields[] = {
    KVASIM_FIELD(State, "plugged", plugged, flagType),
    KVASIM_FIELD(State, "startUpMs", startUpMs, durationType),
    KVASIM_FIELD(State, "powerCycles", powerCycles, uint32Type),
    KVASIM_FIELD(State, "poweredOn", poweredOn, timeType),
};

constexpr Field deviceFields[] = {
    KVASIM_FIELD(KVA_DEVICEINFO, "device.serialNumber", serialNumber, uint32Type),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[0]", firmVersionMajor, uint32Type),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[1]", firmVersionMinor, int32Type),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[2]", firmVersionBuild, int32Type),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.macAddress", macAddress, macType),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved1", reserved1, bytesType),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved2", reserved2, bytesType),
};

constexpr Field optionFields[] = {
    KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "wirelessModule", wifiModuleEnable, moduleType),
    KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "factoryOptionsReserved", reserved, bytesType),
};

constexpr Field networkFields[] = {
    KVASIM_FIELD(KVA_NETWORKINFO, "APConnectUse", APConnectUse, uint32Type),
    KVASIM_FIELD(KVA_NETWORKINFO, "DHCPUse", DHCPUse, uint32Type),
    KVASIM_FIELD(KVA_NETWORKINFO, "IPAddress", IPAddress, addressType),
    KVASIM_FIELD(KVA_NETWORKINFO, "SubnetMask", SubnetMask, addressType),
    KVASIM_FIELD(KVA_NETWORKINFO, "DefaultGateway", DefaultGateway, addressType),
    KVASIM_FIELD(KVA_NETWORKINFO, "DNS", DNS, addressType),
    KVASIM_FIELD(KVA_NETWORKINFO, "SSID", SSID, textType),
    KVASIM_FIELD(KVA_NETWORKINFO, "EncryptKey", EncryptKey, textType),
    KVASIM_FIELD(KVA_NETWORKINFO, nullptr, padding, bytesType),
};

constexpr Field modeFields[] = {{"powerOffMode", "mode", &byteType, {0, 1}}};

constexpr Field calibrationFields[] = {
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "white.serialNumber", whiteSerialNo, digitsType),
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "white.values", rfWhite.spcData, floatsType),
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "ambientAdapter.serialNumber", ambAdpSerialNo, digitsType),
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "ambientAdapter.values", ambAdp.spcData, floatsType),
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "reserved", reserved, bytesType),
};

#undef KVASIM_FIELD

template <std::size_t Count>
constexpr Record recordOf(const char* source, const Field (&fields)[Count], std::size_t size) {
    return {source, fields, fields + Count, size};
}

constexpr Record stateRecord = recordOf("", stateFields, sizeof(State));

/** A record as a part of an instrument's JSON. */
struct Part {
    const char* place; /**< empty: its fields are in the instrument itself */
    const Record* record;
};

constexpr Part parts[] = {
    {"", &portRecord},
    {"", &stateRecord},
    {"", &deviceRecord},
    {"", &optionRecord},
    {"network.active", &networkRecord},
    {"network.pending", &networkRecord},
    {"", &modeRecord},
    {"calibration.committed", &calibrationRecord},
    {"calibration.staged", &calibrationRecord},
};

} // namespace

constexpr Record portRecord = recordOf("KVA_GetDevicePortList", portFields, sizeof(KVA_PORTINFO));
constexpr Record deviceRecord = recordOf("KVA_GetDeviceInfo", deviceFields, sizeof(KVA_DEVICEINFO));
constexpr Record optionRecord = recordOf("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA", optionFields,
                                         sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA));
constexpr Record networkRecord =
    recordOf("KVA_GetNetworkInfo", networkFields, sizeof(KVA_NETWORKINFO));
constexpr Record modeRecord = recordOf("KVA_GetShutdownTime", modeFields, sizeof(std::uint8_t));
constexpr Record calibrationRecord =
    recordOf("KVA_JIG_GetFactoryCalib_CALREFDATA", calibrationFields, sizeof(KVA_JIG_CALREFDATA));

std::vector<Place> instrumentPlaces() {
    std::vector<Place> places;
    for (const Part& part : parts) {
        for (const Field& field : *part.record) {
            if (field.place != nullptr)
                places.push_back({joined(part.place, field.place), &field});
        }
    }
    return places;
}

Json::json_pointer pointerTo(const std::string& place) {
    std::string pointer = place.empty() ? "" : "/";
    for (const char character : place) {
        if (character == '.' || character == '[')
            pointer += '/';
        else if (character == '~' || character == '/')
            pointer += character == '~' ? "~0" : "~1";
        else if (character != ']')
            pointer += character;
    }
    return Json::json_pointer(pointer);
}

Json toJson(const Record& record, const void* bytes) {
    Json json = Json::object();
    for (const auto& [place, name, type, range] : record) {
        if (place != nullptr)
            json[pointerTo(place)] =
                type->write(static_cast<const std::uint8_t*>(bytes) + range.offset, range.size);
    }
    return json;
}

const Record* answerRecord(std::string_view function) {
    for (const Part& part : parts) {
        if (part.record->source == function)
            return part.record;
    }
    return nullptr;
}

std::optional<ByteRange> rangeOf(const Record& record, std::string_view name) {
    const auto bracket = std::min(name.find('['), name.size());
    for (const Field& field : record) {
        if (name.substr(0, bracket) == field.name)
            return field.range(name.substr(bracket));
    }
    return std::nullopt;
}

} // namespace kvasim
