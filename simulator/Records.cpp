#include "simulator/Records.h"

#include "instrument/KvaSdk.h"

#include <algorithm>

namespace kvasim {

namespace {

#define KVASIM_FIELD(record, place, field, kind)                                                   \
    Field {                                                                                        \
        place, #field, Kind::kind, offsetof(record, field), sizeof(record::field)                  \
    }

constexpr Field portFields[] = {
    KVASIM_FIELD(KVA_PORTINFO, "serialNumber", serialNumber, Int32),
    KVASIM_FIELD(KVA_PORTINFO, "port.type", portType, Uint32),
    KVASIM_FIELD(KVA_PORTINFO, "port.name", portName, Text),
};

/** What no function of the library answers. */
struct State {
    bool plugged;
    std::uint32_t startUpMs;
    std::uint32_t powerCycles;
    std::int64_t poweredOn;
};

constexpr Field stateFields[] = {
    KVASIM_FIELD(State, "plugged", plugged, Flag),
    KVASIM_FIELD(State, "startUpMs", startUpMs, Duration),
    KVASIM_FIELD(State, "powerCycles", powerCycles, Uint32),
    KVASIM_FIELD(State, "poweredOn", poweredOn, Time),
};

constexpr Field deviceFields[] = {
    KVASIM_FIELD(KVA_DEVICEINFO, "device.serialNumber", serialNumber, Uint32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[0]", firmVersionMajor, Uint32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[1]", firmVersionMinor, Int32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[2]", firmVersionBuild, Int32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.macAddress", macAddress, Mac),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved1", reserved1, Bytes),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved2", reserved2, Bytes),
};

constexpr Field optionFields[] = {
    KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "wirelessModule", wifiModuleEnable, Module),
    KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "factoryOptionsReserved", reserved, Bytes),
};

constexpr Field networkFields[] = {
    KVASIM_FIELD(KVA_NETWORKINFO, "APConnectUse", APConnectUse, Uint32),
    KVASIM_FIELD(KVA_NETWORKINFO, "DHCPUse", DHCPUse, Uint32),
    KVASIM_FIELD(KVA_NETWORKINFO, "IPAddress", IPAddress, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "SubnetMask", SubnetMask, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "DefaultGateway", DefaultGateway, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "DNS", DNS, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "SSID", SSID, Text),
    KVASIM_FIELD(KVA_NETWORKINFO, "EncryptKey", EncryptKey, Text),
    KVASIM_FIELD(KVA_NETWORKINFO, nullptr, padding, Bytes),
};

constexpr Field modeFields[] = {{"powerOffMode", "mode", Kind::Byte, 0, 1}};

constexpr Field calibrationFields[] = {
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "white.serialNumber", whiteSerialNo, Digits),
    {"white.values", "rfWhite.spcData", Kind::Floats, offsetof(KVA_JIG_CALREFDATA, rfWhite),
     sizeof(KVA_JIG_WHITEDATA)},
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "ambientAdapter.serialNumber", ambAdpSerialNo, Digits),
    {"ambientAdapter.values", "ambAdp.spcData", Kind::Floats, offsetof(KVA_JIG_CALREFDATA, ambAdp),
     sizeof(KVA_JIG_AMBIENTADAPTERDATA)},
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "reserved", reserved, Bytes),
};

#undef KVASIM_FIELD

template <std::size_t Count>
constexpr Record recordOf(const Field (&fields)[Count], std::size_t size) {
    return {fields, fields + Count, size};
}

constexpr Record stateRecord = recordOf(stateFields, sizeof(State));

} // namespace

constexpr Record portRecord = recordOf(portFields, sizeof(KVA_PORTINFO));
constexpr Record deviceRecord = recordOf(deviceFields, sizeof(KVA_DEVICEINFO));
constexpr Record optionRecord = recordOf(optionFields, sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA));
constexpr Record networkRecord = recordOf(networkFields, sizeof(KVA_NETWORKINFO));
constexpr Record modeRecord = recordOf(modeFields, sizeof(std::uint8_t));
constexpr Record calibrationRecord = recordOf(calibrationFields, sizeof(KVA_JIG_CALREFDATA));

constexpr std::array<Part, 9> instrumentParts = {{
    {"", &portRecord},
    {"", &stateRecord},
    {"", &deviceRecord},
    {"", &optionRecord},
    {"network.active", &networkRecord},
    {"network.pending", &networkRecord},
    {"", &modeRecord},
    {"calibration.committed", &calibrationRecord},
    {"calibration.staged", &calibrationRecord},
}};

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
    for (const Field& field : record) {
        if (field.place != nullptr)
            json[pointerTo(field.place)] = field.write(static_cast<const std::uint8_t*>(bytes));
    }
    return json;
}

const Record* answerRecord(Function function) {
    switch (function) {
    case Function::GetDevicePortList:
        return &portRecord;
    case Function::GetDeviceInfo:
        return &deviceRecord;
    case Function::GetNetworkInfo:
        return &networkRecord;
    case Function::GetShutdownTime:
        return &modeRecord;
    case Function::GetCalibration:
        return &calibrationRecord;
    case Function::GetFactoryOptions:
        return &optionRecord;
    default:
        return nullptr;
    }
}

std::optional<ByteRange> answerField(Function function, std::string_view name) {
    const Record* const record = answerRecord(function);
    if (record == nullptr)
        return std::nullopt;
    const auto bracket = std::min(name.find('['), name.size());
    for (const Field& field : *record) {
        if (name.substr(0, bracket) == field.name)
            return field.range(name.substr(bracket));
    }
    return std::nullopt;
}

} // namespace kvasim
