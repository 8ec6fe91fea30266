#include "simulator/Records.h"

#include <algorithm>
#include <charconv>

namespace kvasim {

namespace {

// NOLINTBEGIN(bugprone-macro-parentheses): a type and a member cannot have any
#define KVASIM_FIELD(record, place, field, type)                                                   \
    Field {                                                                                        \
        place, #field, &type, {                                                                    \
            offsetof(record, field), sizeof(record{}.field)                                        \
        }                                                                                          \
    }
// NOLINTEND(bugprone-macro-parentheses)

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

struct NamedResult {
    KVA_RESULT value;
    const char* name;
};

/** The warnings come last; they are bits, and several of them may be set. */
constexpr std::array<NamedResult, 25> results = {{
    {KVA_SUCCESS, "KVA_SUCCESS"},
    {KVA_ERROR, "KVA_ERROR"},
    {KVA_ERROR_CONNECT, "KVA_ERROR_CONNECT"},
    {KVA_ERROR_DISCONNECT, "KVA_ERROR_DISCONNECT"},
    {KVA_ERROR_CONNECT_TIMEOUT, "KVA_ERROR_CONNECT_TIMEOUT"},
    {KVA_ERROR_CONNECT_ALREADY, "KVA_ERROR_CONNECT_ALREADY"},
    {KVA_ERROR_INSTRUMENT_UNAVAILABLE, "KVA_ERROR_INSTRUMENT_UNAVAILABLE"},
    {KVA_ERROR_INSTRUMENT_INFORMATION, "KVA_ERROR_INSTRUMENT_INFORMATION"},
    {KVA_ERROR_ARGUMENT, "KVA_ERROR_ARGUMENT"},
    {KVA_ERROR_COMMUNICATION_SEND, "KVA_ERROR_COMMUNICATION_SEND"},
    {KVA_ERROR_COMMUNICATION_RECEIVE, "KVA_ERROR_COMMUNICATION_RECEIVE"},
    {KVA_ERROR_COMMUNICATION_CHECKSUM, "KVA_ERROR_COMMUNICATION_CHECKSUM"},
    {KVA_ERROR_COMMUNICATION_PARAM, "KVA_ERROR_COMMUNICATION_PARAM"},
    {KVA_ERROR_COMMUNICATION_TIMEOUT, "KVA_ERROR_COMMUNICATION_TIMEOUT"},
    {KVA_ERROR_CANT_USED, "KVA_ERROR_CANT_USED"},
    {KVA_ERROR_NO_DATA, "KVA_ERROR_NO_DATA"},
    {KVA_ERROR_NAK, "KVA_ERROR_NAK"},
    {KVA_ERROR_NAV, "KVA_ERROR_NAV"},
    {KVA_ERROR_NSP, "KVA_ERROR_NSP"},
    {KVA_ERROR_CNF, "KVA_ERROR_CNF"},
    {KVA_ERROR_NDT, "KVA_ERROR_NDT"},
    {KVA_ERROR_NEQ, "KVA_ERROR_NEQ"},
    {KVA_WARNING_WCALIB_TEMP, "KVA_WARNING_WCALIB_TEMP"},
    {KVA_WARNING_BATTERY_EMPTY, "KVA_WARNING_BATTERY_EMPTY"},
    {KVA_WARNING_INITIALDATE_SETTING, "KVA_WARNING_INITIALDATE_SETTING"},
}};

} // namespace

constexpr std::array<std::string_view, 13> functionNames = {
    "KVA_RegisterDeviceEventHandler",
    "KVA_GetDevicePortList",
    "KVA_Connect",
    "KVA_Disconnect",
    "KVA_GetDeviceInfo",
    "KVA_GetNetworkInfo",
    "KVA_SetNetworkInfo",
    "KVA_GetShutdownTime",
    "KVA_SetShutdownTime",
    "KVA_JIG_GetFactoryCalib_CALREFDATA",
    "KVA_JIG_SetFactoryCalib_CALREFDATA",
    "KVA_JIG_SetFactoryCalib_WriteSector",
    "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
};

std::string resultName(KVA_RESULT result) {
    std::string name;
    for (const NamedResult& named : results) {
        if (named.value == result)
            return named.name;
        if (result > 0 && named.value > 0 && (result & named.value) != 0)
            name += (name.empty() ? "" : "/") + std::string(named.name);
    }
    return name;
}

std::optional<KVA_RESULT> resultFromName(std::string_view name) {
    const auto slash = name.find('/');
    const auto first = std::find_if(results.begin(), results.end(), [&](const NamedResult& named) {
        return named.name == name.substr(0, slash);
    });
    if (first == results.end())
        return std::nullopt;
    if (slash == std::string_view::npos)
        return first->value;
    const auto others = resultFromName(name.substr(slash + 1));
    if (!others || first->value <= 0 || *others <= 0)
        return std::nullopt; // only warnings can be joined
    return first->value | *others;
}

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
    const auto* const field = std::find_if(record.begin(), record.end(), [&](const Field& one) {
        return name.substr(0, bracket) == one.name;
    });
    if (field == record.end() || bracket == name.size())
        return field == record.end() ? std::nullopt : std::optional(field->bytes);
    const std::string_view digits = name.substr(bracket + 1);
    const std::size_t width = field->type->elementSize;
    std::size_t index = 0;
    const char* const end = std::from_chars(digits.begin(), digits.end(), index).ptr;
    if (width == 0 || end == digits.begin() || std::string_view(end, digits.end() - end) != "]" ||
        index >= field->bytes.size / width)
        return std::nullopt;
    return ByteRange{field->bytes.offset + index * width, width};
}

} // namespace kvasim
